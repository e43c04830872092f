// Member batch operations of CzbFileUtil: a search, then one disk call per entry found.
#include "zbBase/filesystem/CzbFileUtil.h"

#include "zbBase/platform/detail/zbpFileOps.h"

#include <string.h>
#include <string>

namespace {

const size_t kEntryLimit = 259; // a new full path is built in an entry's name field

// Length of the folder part of an entry's path, closing separator included.
size_t folderLength(const char* path) {
    size_t cut = 0;
    for (size_t i = 0; path[i] != '\0'; ++i) {
        if (path[i] == '\\' || path[i] == '/') {
            cut = i + 1;
        }
    }
    return cut;
}

// The entry's path with the leftmost `find` in its last component replaced; false when
// that component does not hold `find`.
bool replacedPath(const char* path, const char* find, const char* replace, std::string& out) {
    size_t cut = folderLength(path);
    const char* name = path + cut;
    const char* hit = strstr(name, find);
    if (hit == nullptr) {
        return false;
    }
    out.assign(path, cut);
    out.append(name, static_cast<size_t>(hit - name));
    out.append(replace);
    out.append(hit + strlen(find));
    return true;
}

// Renames the entry to `target` and records the renamed copy; nothing when the new path
// passes the limit or the rename is refused.
void renameEntry(const __finddata64_t& entry, const std::string& target,
                 std::vector<__finddata64_t>& done) {
    if (target.size() > kEntryLimit) {
        return;
    }
    if (zbp::rename(entry.name, target.c_str()) < 0) {
        return;
    }
    __finddata64_t renamed = entry;
    memcpy(renamed.name, target.c_str(), target.size() + 1);
    done.push_back(renamed);
}

// Renames each entry whose last component holds `find` to the path with it replaced.
void renameReplaced(const std::vector<__finddata64_t>& found, const char* find, const char* replace,
                    std::vector<__finddata64_t>& done) {
    if (find == nullptr || replace == nullptr) {
        return;
    }
    std::string target;
    for (const __finddata64_t& entry : found) {
        if (replacedPath(entry.name, find, replace, target)) {
            renameEntry(entry, target, done);
        }
    }
}

// Renames each entry to `newName` in its own folder; `suffix` closes a folder's path.
void renameTo(const std::vector<__finddata64_t>& found, const char* newName, const char* suffix,
              std::vector<__finddata64_t>& done) {
    if (newName == nullptr) {
        return;
    }
    for (const __finddata64_t& entry : found) {
        std::string target(entry.name, folderLength(entry.name));
        target += newName;
        target += suffix;
        renameEntry(entry, target, done);
    }
}

} // namespace

void CzbFileUtil::DeleteFiles(char* path, bool subDir) {
    FindFile(path, subDir);
    for (const __finddata64_t& entry : m_findData) {
        if (zbp::remove(entry.name) != -1) {
            m_processData.push_back(entry);
        }
    }
}

void CzbFileUtil::RenameFile(char* path, char* find, char* replace, bool subDir) {
    FindFile(path, subDir);
    renameReplaced(m_findData, find, replace, m_processData);
}

void CzbFileUtil::RenameFile(char* path, char* newName, bool subDir) {
    FindFile(path, subDir);
    renameTo(m_findData, newName, "", m_processData);
}

void CzbFileUtil::RenameFolder(char* path, char* find, char* replace, bool subDir) {
    FindFolder(path, subDir);
    renameReplaced(m_findData, find, replace, m_processData);
}

void CzbFileUtil::RenameFolder(char* path, char* newName, bool subDir) {
    FindFolder(path, subDir);
    renameTo(m_findData, newName, "\\", m_processData);
}
