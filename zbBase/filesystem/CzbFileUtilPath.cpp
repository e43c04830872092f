// Path text helpers of CzbFileUtil: pure text, the same results on every platform.
#include "zbBase/filesystem/CzbFileUtil.h"

#include <string.h>

namespace {

bool isSeparator(char c) {
    return c == '\\' || c == '/';
}

// changeAbsolutePath works in a local text of this size.
const size_t kNormaliseSize = 512;

} // namespace

char* CzbFileUtil::getFileExt(char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    size_t length = strlen(path);
    for (size_t i = length; i > 0; --i) {
        if (path[i - 1] == '.') {
            return path + i;
        }
        if (isSeparator(path[i - 1])) {
            return path + length;
        }
    }
    return path;
}

char* CzbFileUtil::getFileName(char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    size_t length = strlen(path);
    for (size_t i = length; i > 0; --i) {
        if (isSeparator(path[i - 1])) {
            return path + i;
        }
    }
    return strchr(path, '.') != nullptr ? path : path + length;
}

char* CzbFileUtil::getLastPath(char* path) {
    if (path == nullptr) {
        return nullptr;
    }
    size_t length = strlen(path);
    size_t i = length;
    while (i > 0 && isSeparator(path[i - 1])) {
        --i;
    }
    for (; i > 0; --i) {
        if (isSeparator(path[i - 1])) {
            return path + i;
        }
    }
    return path + length;
}

int CzbFileUtil::getLastPath(char* buffer, int size, char* path) {
    if (buffer != nullptr && size > 0) {
        memset(buffer, 0, static_cast<size_t>(size));
    }
    if (path == nullptr) {
        return -1;
    }
    size_t end = strlen(path);
    while (end > 0 && isSeparator(path[end - 1])) {
        --end;
    }
    size_t start = end;
    while (start > 0 && !isSeparator(path[start - 1])) {
        --start;
    }
    if (end == 0 || start == 0) {
        return -1;
    }
    size_t count = end - start;
    if (buffer == nullptr || size <= 0 || count >= static_cast<size_t>(size) ||
        start > 0x7fffffff) {
        return -1;
    }
    memcpy(buffer, path + start, count);
    return static_cast<int>(start);
}

void CzbFileUtil::getPath(char* buffer, int size, const char* path) {
    if (buffer == nullptr || size <= 0) {
        return;
    }
    memset(buffer, 0, static_cast<size_t>(size));
    if (path == nullptr) {
        return;
    }
    size_t length = strlen(path);
    size_t i = length;
    bool dot = false;
    while (i > 0 && !isSeparator(path[i - 1])) {
        dot = dot || path[i - 1] == '.';
        --i;
    }
    // A dot in the last component marks a file name: the folder is the text up to the
    // separator. Otherwise the whole text is the folder.
    size_t count = dot ? i : length;
    if (count < static_cast<size_t>(size)) {
        memcpy(buffer, path, count);
    }
}

int CzbFileUtil::isNetworkPath(char* path) {
    if (path == nullptr) {
        return -1;
    }
    if (path[0] == '\\' && path[1] != '\\') {
        return -1;
    }
    size_t length = strlen(path);
    if (length < 3) {
        return -1;
    }
    int dots = 0;
    int separators = 0;
    for (size_t i = 2; i < length && i < 0x7fffffff; ++i) {
        if (isSeparator(path[i])) {
            ++separators;
        } else if (path[i] == '.') {
            ++dots;
        }
        if (dots == 3 && separators == 1) {
            return static_cast<int>(i + 1);
        }
    }
    return -1;
}

void CzbFileUtil::changeAbsolutePath(char* path) {
    if (path == nullptr) {
        return;
    }
    size_t length = strlen(path);
    if (length >= kNormaliseSize) {
        return;
    }
    for (size_t i = 0; i < length; ++i) {
        if (path[i] == '/') {
            path[i] = '\\';
        }
    }
    bool leading = length > 0 && path[0] == '\\';
    bool closing = length > 0 && path[length - 1] == '\\';

    char rebuilt[kNormaliseSize];
    size_t used = 0;
    if (leading) {
        rebuilt[used++] = '\\';
    }
    size_t i = 0;
    while (i < length) {
        while (i < length && path[i] == '\\') {
            ++i;
        }
        size_t start = i;
        while (i < length && path[i] != '\\') {
            ++i;
        }
        size_t count = i - start;
        if (count == 0) {
            break;
        }
        const char* part = path + start;
        if (count == 2 && part[0] == '.' && part[1] == '.') {
            // Take off the last component built, when a backslash stands before it.
            if (used >= 2) {
                size_t k = used - 1;
                while (k > 0 && rebuilt[k - 1] != '\\') {
                    --k;
                }
                if (k > 0) {
                    used = k;
                }
            }
        } else if (!(count == 1 && part[0] == '.')) {
            memcpy(rebuilt + used, part, count);
            used += count;
            rebuilt[used++] = '\\';
        }
    }
    // Every step above leaves the rebuilt text ending in a backslash.
    if (!closing && used > 0) {
        --used;
    }
    memcpy(path, rebuilt, used);
    path[used] = '\0';
}
