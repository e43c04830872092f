// The section file of CzbFileMgr: MakeFile, OpenFile and the grouping by title.
#include "zbBase/datafiles/CzbFileMgr.h"

#include "zbBase/datafiles/detail/zbTextField.h"
#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstring>
#include <utility>

using namespace zbBase::detail;

namespace {

const size_t kLineSize = 1024;

// Each non-empty title once, in order of first appearance.
std::vector<_Title> titleList(const std::vector<_Attribute>& table) {
    std::vector<_Title> titles;
    for (const _Attribute& record : table) {
        if (fieldLength(record.title) == 0) {
            continue;
        }
        bool known = false;
        for (_Title& title : titles) {
            if (sameFields(title.title, record.title)) {
                known = true;
                break;
            }
        }
        if (!known) {
            titles.emplace_back();
            copyField(titles.back().title, record.title);
        }
    }
    return titles;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// The next run of non-blank characters, as "%s" takes it; false at the end of the text.
// The field receives the run cut at 127 characters.
bool scanWord(const char*& p, char* field) {
    while (isBlank(*p)) {
        ++p;
    }
    if (*p == '\0') {
        return false;
    }
    const char* start = p;
    while (*p != '\0' && !isBlank(*p)) {
        ++p;
    }
    size_t length = static_cast<size_t>(p - start);
    if (length > kFieldSize - 1) {
        length = kFieldSize - 1;
    }
    std::memcpy(field, start, length);
    field[length] = '\0';
    return true;
}

// "[%s]" into the title, then cut at the first "]".
void scanHeader(const char* line, _Attribute& scratch) {
    const char* p = line + 1;
    if (scanWord(p, scratch.title)) {
        char* bracket = std::strchr(scratch.title, ']');
        if (bracket != nullptr) {
            *bracket = '\0';
        }
    }
}

// "%s = %s" into the name and the value.
void scanAttribute(const char* line, _Attribute& scratch) {
    const char* p = line;
    if (!scanWord(p, scratch.name)) {
        return;
    }
    while (isBlank(*p)) {
        ++p;
    }
    if (*p != '=') {
        return;
    }
    ++p;
    scanWord(p, scratch.value);
}

} // namespace

namespace zbBase {

void CzbFileMgr::DataSort() {
    if (m_attributes.empty()) {
        return;
    }
    std::vector<_Attribute> aside;
    aside.swap(m_attributes);
    std::vector<_Title> titles = titleList(aside);
    m_attributes.reserve(aside.size());
    for (const _Title& title : titles) {
        for (const _Attribute& record : aside) {
            if (sameFields(record.title, title.title)) {
                m_attributes.push_back(record);
            }
        }
    }
}

bool CzbFileMgr::MakeFile(char* path) {
    SetTitle(const_cast<char*>(""));
    if (m_attributes.empty()) {
        return false;
    }
    std::vector<_Title> titles = titleList(m_attributes);
    FILE* file = zbp::fopen(path, "wt");
    if (file == nullptr) {
        return false;
    }
    for (const _Title& title : titles) {
        std::fprintf(file, "[%s]\n", title.title);
        for (const _Attribute& record : m_attributes) {
            if (sameFields(record.title, title.title)) {
                std::fprintf(file, "%.127s = %.127s\n", record.name, record.value);
            }
        }
    }
    std::fclose(file);
    return true;
}

bool CzbFileMgr::OpenFile(char* path) {
    SetTitle(const_cast<char*>(""));
    m_attributes.clear();
    FILE* file = zbp::fopen(path, "r");
    if (file == nullptr) {
        return false;
    }
    _Attribute scratch;
    char line[kLineSize];
    while (std::fgets(line, static_cast<int>(kLineSize), file) != nullptr) {
        char* comment = std::strstr(line, "//");
        if (comment != nullptr) {
            *comment = '\0';
        }
        if (line[0] == '[') {
            scanHeader(line, scratch);
        } else {
            scanAttribute(line, scratch);
            m_attributes.push_back(scratch);
        }
    }
    std::fclose(file);
    DataSort();
    return true;
}

} // namespace zbBase
