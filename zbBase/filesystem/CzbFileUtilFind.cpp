// Search of CzbFileUtil: splitting of the search path and the depth-first walk.
#include "zbBase/filesystem/CzbFileUtil.h"

#include "zbBase/platform/detail/zbpFileOps.h"
#include "zbBase/platform/detail/zbpFind.h"
#include "zbBase/platform/detail/zbpPath.h"

#include <errno.h>
#include <string.h>
#include <string>

namespace {

const size_t kFolderLimit = 511;  // an absolute folder, closing backslash included
const size_t kPatternLimit = 255; // the last component of a search path
const size_t kDirLimit = 255;     // the directory part of a search path
const size_t kEntryLimit = 259;   // a stored full path

bool isSeparator(char c) {
    return c == '\\' || c == '/';
}

// Adds to `out` the entries of `folder` that match `pattern`: files, or folders whose names
// do not begin with a dot. An entry whose full path would pass the limit is left out.
// Returns whether the listing found anything at all.
bool collect(const char* folder, const char* pattern, bool folders,
             std::vector<__finddata64_t>& out) {
    std::string search = std::string(folder) + pattern;
    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(search.c_str(), &data);
    if (handle == -1) {
        return false;
    }
    size_t folderLength = strlen(folder);
    do {
        bool isFolder = (data.attrib & _A_SUBDIR) != 0;
        bool wanted = folders ? isFolder && data.name[0] != '.' : !isFolder;
        size_t nameLength = strlen(data.name);
        if (wanted && folderLength + nameLength <= kEntryLimit) {
            out.push_back(data);
            __finddata64_t& entry = out.back();
            memcpy(entry.name, folder, folderLength);
            memcpy(entry.name + folderLength, data.name, nameLength + 1);
        }
    } while (zbp::_findnext64(handle, &data) == 0);
    zbp::_findclose(handle);
    return true;
}

// Calls step(sub, pattern) for every folder of `folder` whose name does not begin with a
// dot, in listing order; `sub` is the folder's path with a closing backslash.
template <class Step> void descend(const char* folder, Step step) {
    std::string search = std::string(folder) + "*.*";
    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(search.c_str(), &data);
    if (handle == -1) {
        return;
    }
    size_t folderLength = strlen(folder);
    do {
        if ((data.attrib & _A_SUBDIR) == 0 || data.name[0] == '.') {
            continue;
        }
        size_t nameLength = strlen(data.name);
        if (folderLength + nameLength + 1 > kFolderLimit) {
            continue;
        }
        char sub[kFolderLimit + 1];
        memcpy(sub, folder, folderLength);
        memcpy(sub + folderLength, data.name, nameLength);
        sub[folderLength + nameLength] = '\\';
        sub[folderLength + nameLength + 1] = '\0';
        step(sub);
    } while (zbp::_findnext64(handle, &data) == 0);
    zbp::_findclose(handle);
}

void copyOut(const std::string& text, char* buffer, int size) {
    if (buffer != nullptr && size > 0 && text.size() < static_cast<size_t>(size)) {
        memcpy(buffer, text.c_str(), text.size() + 1);
    }
}

} // namespace

void CzbFileUtil::makeAbPathWildcard(char* path, char* folder, int folderSize, char* pattern,
                                     int patternSize) {
    if (folder != nullptr && folderSize > 0) {
        folder[0] = '\0';
    }
    if (pattern != nullptr && patternSize > 0) {
        pattern[0] = '\0';
    }
    if (path == nullptr) {
        return;
    }
    size_t length = strnlen(path, kFolderLimit + 1);
    if (length > kFolderLimit) {
        return;
    }
    // The parts are measured before they are cut out, so that none is ever shortened.
    size_t nameStart = length;
    while (nameStart > 0 && !isSeparator(path[nameStart - 1])) {
        --nameStart;
    }
    if (nameStart > kDirLimit + 2 || length - nameStart > kPatternLimit) {
        return;
    }
    char drive[_MAX_DRIVE];
    char dir[_MAX_DIR];
    char fname[_MAX_FNAME];
    char ext[_MAX_EXT];
    zbp::_splitpath(path, drive, dir, fname, ext);
    size_t head = strlen(drive) + strlen(dir);
    if (head < nameStart || strlen(fname) + strlen(ext) != length - head) {
        return;
    }
    bool network = isNetworkPath(path) > 0;
    std::string base = std::string(drive) + dir;
    std::string name = std::string(fname) + ext;

    bool absolute = drive[0] != '\0' || network;
#if defined(_WIN32)
    if (drive[0] != '\0' && dir[0] == '\0') {
        // "C:name" names a file in the current folder of drive C.
        char current[kFolderLimit + 1];
        DWORD n = zbp::GetFullPathNameA(drive, sizeof current, current, nullptr);
        if (n == 0 || n >= sizeof current) {
            return;
        }
        base = current;
        if (!isSeparator(base.back())) {
            base += '\\';
        }
    }
#else
    // A path that begins with a separator is absolute here: it plays the part of a drive.
    absolute = absolute || isSeparator(path[0]);
#endif
    if (!absolute) {
        char current[kFolderLimit + 1];
        DWORD n = zbp::GetCurrentDirectoryA(sizeof current, current);
        if (n == 0 || n >= sizeof current) {
            return;
        }
        base = std::string(current) + "\\" + base;
    } else if (!base.empty()) {
        base.back() = '\\';
    }
    if (base.size() > kFolderLimit) {
        return;
    }
    if (!network) {
        std::vector<char> text(base.begin(), base.end());
        text.push_back('\0');
        changeAbsolutePath(text.data());
        base = text.data();
    }
    if (base.empty() || base.size() > kFolderLimit) {
        return;
    }
    if (folder == nullptr || pattern == nullptr || base.size() >= static_cast<size_t>(folderSize) ||
        name.size() >= static_cast<size_t>(patternSize)) {
        return;
    }
    copyOut(base, folder, folderSize);
    copyOut(name, pattern, patternSize);
}

void CzbFileUtil::makeAbPathWildcardFolder(char* path, char* folder, int folderSize, char* pattern,
                                           int patternSize) {
    makeAbPathWildcard(path, folder, folderSize, pattern, patternSize);
}

void CzbFileUtil::FindFile(char* path, bool subDir) {
    clear();
    char folder[kFolderLimit + 1];
    char pattern[kPatternLimit + 1];
    makeAbPathWildcard(path, folder, sizeof folder, pattern, sizeof pattern);
    memcpy(m_processPath, folder, strlen(folder) + 1);
    if (folder[0] == '\0') {
        m_lastError = path == nullptr ? EINVAL : ENAMETOOLONG;
        return;
    }
    if (collect(folder, pattern, false, m_findData)) {
        ++m_subDirCount;
    }
    if (subDir) {
        descend(folder, [&](char* sub) { FindFileSubDir(sub, pattern); });
    }
    m_lastError = errno;
}

void CzbFileUtil::FindFileSubDir(char* folder, char* pattern) {
    ++m_subDirCount;
    collect(folder, pattern, false, m_findData);
    descend(folder, [&](char* sub) { FindFileSubDir(sub, pattern); });
}

void CzbFileUtil::FindFolder(char* path, bool subDir) {
    clear();
    char folder[kFolderLimit + 1];
    char pattern[kPatternLimit + 1];
    makeAbPathWildcard(path, folder, sizeof folder, pattern, sizeof pattern);
    if (folder[0] == '\0') {
        m_lastError = path == nullptr ? EINVAL : ENAMETOOLONG;
        return;
    }
    if (collect(folder, pattern, true, m_findData)) {
        ++m_subDirCount;
    }
    if (subDir) {
        descend(folder, [&](char* sub) { FindFolderSubDir(sub, pattern); });
    }
    m_lastError = errno;
}

void CzbFileUtil::FindFolderSubDir(const char* folder, const char* pattern) {
    ++m_subDirCount;
    collect(folder, pattern, true, m_findData);
    descend(folder, [&](char* sub) { FindFolderSubDir(sub, pattern); });
}
