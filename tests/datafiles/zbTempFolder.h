// Test helpers of the data file tests, on top of the shared ones.
#pragma once

#include "support/zbTestFiles.h"

#include <zbBase/datafiles/CzbFileDB.h>

#include <string>

// The line end that text-mode streams write on this platform, as a literal.
#if defined(_WIN32)
#define NL "\r\n"
#else
#define NL "\n"
#endif

using zbtest::readBytes;
using zbtest::TempFolder;
using zbtest::writeBytes;
using T = zbtest::Text; // the library's arguments are char*: tests hand over texts they own

// The items of a database in their order, as "key=value|...".
inline std::string dump(const CzbFileDB& db) {
    std::string text;
    for (const auto& entry : db.m_order) {
        text += std::string(entry->first.GetString()) + "=" + entry->second.GetString() + "|";
    }
    return text;
}
