// Test helpers of the data file tests, on top of the shared temporary folder.
#pragma once

#include "support/zbTestFiles.h"

#include <zbBase/datafiles/CzbFileDB.h>

#include <string>

// The line end that text-mode streams write on this platform.
#if defined(_WIN32)
#define NL "\r\n"
#else
#define NL "\n"
#endif

using zbtest::readBytes;
using zbtest::TempFolder;
using zbtest::writeBytes;

inline bool fileExists(const std::string& path) {
    std::error_code ec;
    return std::filesystem::exists(path, ec);
}

// The library's arguments are declared char*; tests hand over texts they own.
inline char* T(const std::string& text) {
    return const_cast<char*>(text.c_str());
}

// The items of a database in their order, as "key=value|...".
inline std::string dump(const CzbFileDB& db) {
    std::string text;
    for (const auto& entry : db.m_order) {
        text += std::string(entry->first.GetString()) + "=" + entry->second.GetString() + "|";
    }
    return text;
}
