// Search of CzbFileUtil: splitting of the search path and the depth-first walk.
#include "zbBase/filesystem/CzbFileUtil.h"

#include "zbBase/platform/detail/zbpFileOps.h"
#include "zbBase/platform/detail/zbpFind.h"
#include "zbBase/platform/detail/zbpFindTree.h"
#include "zbBase/platform/detail/zbpPath.h"

#include <errno.h>
#include <string.h>
#include <string>

namespace {

const size_t kFolderLimit = 511;  // an absolute folder, closing backslash included
const size_t kPatternLimit = 255; // the last component of a search path
const size_t kDirLimit = 255;     // the directory part of a search path

bool isSeparator(char c) {
    return c == '\\' || c == '/';
}

// Splits a search path as makeAbPathWildcard does: 0, or the reason why no folder came out
// (both buffers then hold empty texts): EINVAL for a null path or buffer, ENAMETOOLONG for a
// part over its limit or its buffer, and the system's reason when the current folder, which a
// relative path needs, cannot be named.
int splitSearchPath(char* path, char* folder, int folderSize, char* pattern, int patternSize) {
    if (folder != nullptr && folderSize > 0) {
        folder[0] = '\0';
    }
    if (pattern != nullptr && patternSize > 0) {
        pattern[0] = '\0';
    }
    if (path == nullptr || folder == nullptr || pattern == nullptr || folderSize <= 0 ||
        patternSize <= 0) {
        return EINVAL;
    }
    size_t length = strnlen(path, kFolderLimit + 1);
    if (length > kFolderLimit) {
        return ENAMETOOLONG;
    }
    // The parts are measured before they are cut out, so that none is ever shortened.
    size_t nameStart = length;
    while (nameStart > 0 && !isSeparator(path[nameStart - 1])) {
        --nameStart;
    }
    if (nameStart > kDirLimit + 2 || length - nameStart > kPatternLimit) {
        return ENAMETOOLONG;
    }
    char drive[_MAX_DRIVE];
    char dir[_MAX_DIR];
    char fname[_MAX_FNAME];
    char ext[_MAX_EXT];
    zbp::_splitpath(path, drive, dir, fname, ext);
    size_t head = strlen(drive) + strlen(dir);
    if (head < nameStart || strlen(fname) + strlen(ext) != length - head) {
        return ENAMETOOLONG;
    }
    bool network = CzbFileUtil::isNetworkPath(path) > 0;
    std::string base = std::string(drive) + dir;
    std::string name = std::string(fname) + ext;

    bool absolute = drive[0] != '\0' || network;
#if defined(_WIN32)
    if (drive[0] != '\0' && dir[0] == '\0') {
        // "C:name" names a file in the current folder of drive C.
        char current[kFolderLimit + 1];
        DWORD n = zbp::GetFullPathNameA(drive, sizeof current, current, nullptr);
        if (n == 0 || n >= sizeof current) {
            return n == 0 ? ENOENT : ENAMETOOLONG;
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
        errno = 0;
        DWORD n = zbp::GetCurrentDirectoryA(sizeof current, current);
        if (n == 0) {
            return errno != 0 ? errno : ENOENT;
        }
        if (n >= sizeof current) {
            return ENAMETOOLONG;
        }
        base = std::string(current) + "\\" + base;
    } else if (!base.empty()) {
        base.back() = '\\';
    }
    if (base.size() > kFolderLimit) {
        return ENAMETOOLONG;
    }
    if (!network) {
        std::vector<char> text(base.begin(), base.end());
        text.push_back('\0');
        CzbFileUtil::changeAbsolutePath(text.data());
        base = text.data();
    }
    if (base.size() >= static_cast<size_t>(folderSize) ||
        name.size() >= static_cast<size_t>(patternSize)) {
        return ENAMETOOLONG;
    }
    memcpy(folder, base.c_str(), base.size() + 1);
    memcpy(pattern, name.c_str(), name.size() + 1);
    return 0;
}

} // namespace

void CzbFileUtil::makeAbPathWildcard(char* path, char* folder, int folderSize, char* pattern,
                                     int patternSize) {
    splitSearchPath(path, folder, folderSize, pattern, patternSize);
}

void CzbFileUtil::makeAbPathWildcardFolder(char* path, char* folder, int folderSize, char* pattern,
                                           int patternSize) {
    makeAbPathWildcard(path, folder, folderSize, pattern, patternSize);
}

void CzbFileUtil::FindFile(char* path, bool subDir) {
    clear();
    char folder[kFolderLimit + 1];
    char pattern[kPatternLimit + 1];
    const int error = splitSearchPath(path, folder, sizeof folder, pattern, sizeof pattern);
    memcpy(m_processPath, folder, strlen(folder) + 1);
    if (error != 0) {
        m_lastError = error;
        return;
    }
    m_lastError =
        zbp::searchTree(folder, pattern, {false, subDir, false}, m_findData, m_subDirCount);
}

void CzbFileUtil::FindFileSubDir(char* folder, char* pattern) {
    zbp::searchTree(folder, pattern, {false, true, true}, m_findData, m_subDirCount);
}

void CzbFileUtil::FindFolder(char* path, bool subDir) {
    clear();
    char folder[kFolderLimit + 1];
    char pattern[kPatternLimit + 1];
    const int error = splitSearchPath(path, folder, sizeof folder, pattern, sizeof pattern);
    if (error != 0) {
        m_lastError = error;
        return;
    }
    m_lastError =
        zbp::searchTree(folder, pattern, {true, subDir, false}, m_findData, m_subDirCount);
}

void CzbFileUtil::FindFolderSubDir(const char* folder, const char* pattern) {
    zbp::searchTree(folder, pattern, {true, true, true}, m_findData, m_subDirCount);
}
