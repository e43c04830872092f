// CzbFileMgr::OpenFile on arbitrary file bytes, reads of every title, and a write and reread.
#include <zbBase/datafiles/CzbFileMgr.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    char input[] = "sections_in.ini";
    char output[] = "sections_out.ini";
    FILE* file = std::fopen(input, "wb");
    if (file == nullptr) {
        return 0;
    }
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    zbBase::CzbFileMgr mgr;
    if (!mgr.OpenFile(input)) {
        __builtin_trap();
    }
    std::vector<std::string> titles;
    for (const _Attribute& record : mgr.m_attributes) {
        if (std::strlen(record.title) > 127 || std::strlen(record.name) > 127 ||
            std::strlen(record.value) > 127 || record.title[0] == '\0') {
            __builtin_trap();
        }
        titles.push_back(record.title);
    }
    for (const std::string& title : titles) {
        char value[128];
        int number = 0;
        mgr.SetTitle(const_cast<char*>(title.c_str()));
        mgr.GetAttribute(const_cast<char*>("a"), value);
        mgr.GetAttribute(const_cast<char*>("a"), number);
    }
    zbBase::CzbFileMgr copy(mgr);
    copy.MakeFile(output);
    copy.OpenFile(output);
    std::remove(input);
    std::remove(output);
    return 0;
}
