// The section file of CzbFileMgr: MakeFile, OpenFile and the grouping by title.
#include "zbBase/datafiles/CzbFileMgr.h"

#include "zbBase/datafiles/detail/zbLineReader.h"
#include "zbBase/datafiles/detail/zbSectionText.h"
#include "zbBase/datafiles/detail/zbTextField.h"
#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <new>
#include <string_view>
#include <utility>

namespace zbBase {
namespace detail {

namespace {

const size_t kDropped = static_cast<size_t>(-1);

// The place of every record in the grouped table, records without a title behind the others;
// the result is the number of records that keep a place. A map from title to group makes this
// n log n for any number of titles.
size_t groupedPlaces(const std::vector<_Attribute>& table, std::vector<size_t>& places) {
    places.assign(table.size(), 0);
    std::map<std::string_view, size_t> groupOf;
    std::vector<size_t> sizes; // records of each group, then the first place of each group
    const char* lastTitle = nullptr;
    size_t lastGroup = 0;
    for (size_t i = 0; i < table.size(); ++i) {
        const char* title = table[i].title;
        const size_t length = fieldLength(title);
        if (length == 0) {
            places[i] = kDropped;
            continue;
        }
        if (lastTitle == nullptr || !sameFields(lastTitle, title)) {
            auto found = groupOf.emplace(std::string_view(title, length), sizes.size());
            if (found.second) {
                sizes.push_back(0);
            }
            lastGroup = found.first->second;
            lastTitle = title;
        }
        places[i] = lastGroup;
        ++sizes[lastGroup];
    }
    size_t kept = 0;
    for (size_t& size : sizes) {
        const size_t count = size;
        size = kept;
        kept += count;
    }
    size_t dropped = kept;
    for (size_t& place : places) {
        place = place == kDropped ? dropped++ : sizes[place]++;
    }
    return kept;
}

bool writeField(ByteSink& sink, const char* field) {
    return sink.write(field, fieldLength(field));
}

// White space as "%s" skips it (isspace in the C locale).
const char* const kBlanks = " \t\n\v\f\r";

// The next run of non-blank characters, as "%s" takes it; false at the end of the text.
// The field receives the run cut at 127 characters.
bool scanWord(const char*& p, char* field) {
    p += std::strspn(p, kBlanks);
    if (*p == '\0') {
        return false;
    }
    const size_t length = std::strcspn(p, kBlanks);
    const size_t kept = length < kFieldSize - 1 ? length : kFieldSize - 1;
    std::memcpy(field, p, kept);
    field[kept] = '\0';
    p += length;
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
    p += std::strspn(p, kBlanks);
    if (*p != '=') {
        return;
    }
    ++p;
    scanWord(p, scratch.value);
}

} // namespace

void readSectionLines(std::vector<_Attribute>& table, ByteSource& source) {
    // The scratch record lives for the whole reading: a field that a line does not reach keeps
    // what an earlier line gave it.
    _Attribute scratch;
    LineReader lines(source);
    char* line = nullptr;
    size_t length = 0;
    while (lines.next(line, length)) {
        char* comment = std::strstr(line, "//");
        if (comment != nullptr) {
            *comment = '\0';
        }
        if (line[0] == '[') {
            scanHeader(line, scratch);
        } else {
            scanAttribute(line, scratch);
            table.push_back(scratch);
        }
    }
}

void groupByTitle(std::vector<_Attribute>& table) {
    std::vector<size_t> places;
    const size_t kept = groupedPlaces(table, places);
    // Every swap puts one record at its place for good: at most n swaps and no second table.
    for (size_t i = 0; i < table.size(); ++i) {
        while (places[i] != i) {
            const size_t j = places[i];
            std::swap(table[i], table[j]);
            std::swap(places[i], places[j]);
        }
    }
    table.erase(table.begin() + static_cast<std::ptrdiff_t>(kept), table.end());
}

bool writeSectionText(const std::vector<_Attribute>& table, ByteSink& sink) {
    std::vector<size_t> places;
    const size_t kept = groupedPlaces(table, places);
    std::vector<size_t> order(kept);
    for (size_t i = 0; i < places.size(); ++i) {
        if (places[i] < kept) {
            order[places[i]] = i;
        }
    }
    const char* title = nullptr;
    for (size_t i : order) {
        const _Attribute& record = table[i];
        if (title == nullptr || !sameFields(title, record.title)) {
            title = record.title;
            if (!sink.write("[") || !writeField(sink, title) || !sink.write("]\n")) {
                return false;
            }
        }
        if (!writeField(sink, record.name) || !sink.write(" = ") ||
            !writeField(sink, record.value) || !sink.write("\n")) {
            return false;
        }
    }
    return true;
}

} // namespace detail

void CzbFileMgr::DataSort() {
    detail::groupByTitle(m_attributes);
}

bool CzbFileMgr::MakeFile(char* path) {
    SetTitle(const_cast<char*>(""));
    if (m_attributes.empty()) {
        return false;
    }
    zbp::AtomicFile file;
    if (!file.open(path, "wt")) {
        return false;
    }
    detail::FileSink sink(file.stream());
    try {
        if (!detail::writeSectionText(m_attributes, sink)) {
            file.fail();
        }
    } catch (const std::bad_alloc&) {
        return false; // the new file goes, the old one stays
    }
    return file.commit();
}

bool CzbFileMgr::OpenFile(char* path) {
    SetTitle(const_cast<char*>(""));
    m_attributes.clear();
    FILE* file = zbp::fopen(path, "r");
    if (file == nullptr) {
        return false;
    }
    detail::FileSource source(file);
    bool read = true;
    try {
        detail::readSectionLines(m_attributes, source);
        DataSort();
    } catch (const std::bad_alloc&) {
        // A table that does not fit in memory fails as a file that cannot be opened does.
        std::vector<_Attribute>().swap(m_attributes);
        read = false;
    }
    std::fclose(file);
    return read;
}

} // namespace zbBase
