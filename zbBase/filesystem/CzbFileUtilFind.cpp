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
    makeAbPathWildcard(path, folder, sizeof folder, pattern, sizeof pattern);
    if (folder[0] == '\0') {
        m_lastError = path == nullptr ? EINVAL : ENAMETOOLONG;
        return;
    }
    m_lastError =
        zbp::searchTree(folder, pattern, {true, subDir, false}, m_findData, m_subDirCount);
}

void CzbFileUtil::FindFolderSubDir(const char* folder, const char* pattern) {
    zbp::searchTree(folder, pattern, {true, true, true}, m_findData, m_subDirCount);
}
