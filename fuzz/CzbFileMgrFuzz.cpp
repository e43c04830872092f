// The section file reader of CzbFileMgr on arbitrary bytes, read from memory through the parser
// and grouping behind OpenFile; reads of the first titles, then the writer behind MakeFile.
// Every title must stand in one contiguous run.
#include <zbBase/datafiles/CzbFileMgr.h>
#include <zbBase/datafiles/detail/zbSectionText.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>

using namespace zbBase::detail;

namespace {

// Fields within 127 characters, no record without a title, each title in one run.
void checkGrouped(const zbBase::CzbFileMgr& mgr) {
    std::set<std::string> done;
    const char* current = nullptr;
    for (const _Attribute& record : mgr.m_attributes) {
        if (strnlen(record.title, 128) > 127 || strnlen(record.name, 128) > 127 ||
            strnlen(record.value, 128) > 127 || record.title[0] == '\0') {
            __builtin_trap();
        }
        if (current == nullptr || std::strcmp(current, record.title) != 0) {
            if (!done.insert(record.title).second) {
                __builtin_trap();
            }
            current = record.title;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zbBase::CzbFileMgr mgr;
    MemorySource source(data, size);
    readSectionLines(mgr.m_attributes, source);
    groupByTitle(mgr.m_attributes);
    checkGrouped(mgr);

    // Reads of the first titles (SetTitle searches from the table's start, so all of them
    // would cost titles times records).
    const char* previous = nullptr;
    int titles = 0;
    for (const _Attribute& record : mgr.m_attributes) {
        if (previous != nullptr && std::strcmp(previous, record.title) == 0) {
            continue;
        }
        if (++titles > 8) {
            break;
        }
        previous = record.title;
        char value[128];
        int number = 0;
        mgr.SetTitle(const_cast<char*>(record.title));
        mgr.GetAttribute(const_cast<char*>("a"), value);
        mgr.GetAttribute(const_cast<char*>("a"), number);
    }

    StringSink sink;
    if (!writeSectionText(mgr.m_attributes, sink)) {
        __builtin_trap();
    }
    return 0;
}
