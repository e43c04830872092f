// The item file of CzbFileDB: savefile and openfile.
#include "zbBase/datafiles/CzbFileDB.h"

#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstring>

namespace {
const size_t kLineSize = 1024;
}

bool CzbFileDB::savefile(char* path) {
    FILE* file = zbp::fopen(path, "w");
    if (file == nullptr) {
        return false;
    }
    for (const ItemMap::iterator& entry : m_order) {
        if (entry->second.GetLength() == 0) {
            continue;
        }
        std::fprintf(file, "%s=`%s`\n", entry->first.GetString(), entry->second.GetString());
    }
    std::fclose(file);
    return true;
}

bool CzbFileDB::openfile(char* path) {
    FILE* file = zbp::fopen(path, "r");
    if (file == nullptr) {
        return false;
    }
    char line[kLineSize];
    char keyText[kLineSize];
    char valueText[kLineSize];
    // The pending pair lives from line to line; before any line sets a key nothing is added.
    CStringT key;
    CStringT value;
    bool haveKey = false;
    while (std::fgets(line, static_cast<int>(kLineSize), file) != nullptr) {
        size_t length = std::strlen(line);
        if (length == 0) {
            break;
        }
        // The first "=" among characters 1 to L-2.
        size_t equals = 0;
        for (size_t i = 1; i + 1 < length; ++i) {
            if (line[i] == '=') {
                equals = i;
                break;
            }
        }
        if (equals == 0) {
            // No new pair: applying the pending one again would change nothing.
            continue;
        }
        std::memcpy(keyText, line, equals);
        keyText[equals] = '\0';
        key = keyText;
        haveKey = true;
        // The last quote character from the line's end down to two places behind the "=";
        // the place right behind the "=" holds the opening quote and is not looked at.
        for (size_t q = length - 1; q >= equals + 2; --q) {
            if (line[q] == '`' || line[q] == '\'') {
                size_t count = q - (equals + 2);
                std::memcpy(valueText, line + equals + 2, count);
                valueText[count] = '\0';
                value = valueText;
                break;
            }
        }
        if (haveKey) {
            addOrReplace(key, value);
        }
    }
    std::fclose(file);
    return true;
}
