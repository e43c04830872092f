#include "zbBase/diagnostics/CzbString.h"

#include "zbBase/platform/detail/zbpText.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

// The exported routine keeps its own name even where a system header makes it a macro.
#undef GetFullPathName

namespace zbBase {

namespace {

int lengthOf(const char* text) {
    size_t n = strlen(text);
    return n > static_cast<size_t>(INT32_MAX) ? INT32_MAX : static_cast<int>(n);
}

// Copies text into dst cut to size - 1 bytes and terminated; nothing for size < 1.
void copyCut(char* dst, int size, const char* text, size_t length) {
    if (size < 1) {
        return;
    }
    size_t n = length < static_cast<size_t>(size - 1) ? length : static_cast<size_t>(size - 1);
    memcpy(dst, text, n);
    dst[n] = '\0';
}

void clear(char* dst, int size) {
    if (size > 0) {
        memset(dst, 0, static_cast<size_t>(size));
    }
}

// The last separator of a path: the last '/', or without one the last '\\'.
const char* lastSeparator(const char* path) {
    const char* slash = strrchr(path, '/');
    return slash != nullptr ? slash : strrchr(path, '\\');
}

// The shared shape of Left, Right and Mid once the source range is known.
bool copyRange(const char* from, char* dst, int size, int count) {
    memcpy(dst, from, static_cast<size_t>(count));
    dst[size - 1] = '\0';
    return true;
}

} // namespace

CzbString::~CzbString() {
    free(m_pWstrTemp);
    m_pWstrTemp = nullptr;
}

int CzbString::Find(const char* text, char c) {
    const char* hit = strchr(text, c);
    return hit != nullptr ? static_cast<int>(hit - text) : -1;
}

int CzbString::Find(const char* text, char* pattern) {
    int textLength = lengthOf(text);
    int patternLength = lengthOf(pattern);
    if (textLength == 0 || patternLength == 0) {
        return -1;
    }
    for (int i = 0; i < textLength; ++i) {
        if (text[i] != pattern[0]) {
            continue;
        }
        if (textLength - i < patternLength) {
            return -1;
        }
        if (memcmp(text + i, pattern, static_cast<size_t>(patternLength)) == 0) {
            return i;
        }
    }
    return -1;
}

int CzbString::ReverseFind(const char* text, char c) {
    const char* hit = strrchr(text, c);
    return hit != nullptr ? static_cast<int>(hit - text) : -1;
}

int CzbString::StringFind(const char* text, const char* pattern) {
    const char* hit = strstr(text, pattern);
    return hit != nullptr ? static_cast<int>(hit - text) : -1;
}

bool CzbString::Left(const char* source, char* dst, int size, int count) {
    int64_t available = lengthOf(source);
    if (count < 0 || available < int64_t(count) + 1 || int64_t(size) < int64_t(count) + 1) {
        return false;
    }
    return copyRange(source, dst, size, count);
}

bool CzbString::Right(const char* source, char* dst, int size, int count) {
    int64_t available = lengthOf(source);
    if (count < 0 || available < int64_t(count) + 1 || int64_t(size) < int64_t(count) + 1) {
        return false;
    }
    return copyRange(source + (available - count), dst, size, count);
}

bool CzbString::Mid(const char* source, char* dst, int size, int start, int count) {
    int64_t length = lengthOf(source);
    if (start < 0 || start > length) {
        return false;
    }
    int64_t available = length - start;
    if (count == -1) {
        if (int64_t(size) < available + 1) {
            return false;
        }
        return copyRange(source + start, dst, size, static_cast<int>(available));
    }
    if (count < 0 || available < int64_t(count) + 1 || int64_t(size) < int64_t(count) + 1) {
        return false;
    }
    return copyRange(source + start, dst, size, count);
}

char* CzbString::GetExt(const char* path) {
    const char* point = strrchr(path, '.');
    if (point == nullptr || point == path) {
        return nullptr;
    }
    return const_cast<char*>(point + 1);
}

bool CzbString::GetExt(char* dst, int size, const char* path) {
    const char* point = strrchr(path, '.');
    if (point == nullptr) {
        return false;
    }
    clear(dst, size);
    copyCut(dst, size, point + 1, strlen(point + 1));
    return true;
}

void CzbString::GetName(char* dst, int size, const char* path) {
    clear(dst, size);
    const char* separator = lastSeparator(path);
    if (separator != nullptr) {
        copyCut(dst, size, separator + 1, strlen(separator + 1));
    }
}

void CzbString::GetPath(char* dst, int size, const char* path) {
    clear(dst, size);
    const char* separator = lastSeparator(path);
    if (separator != nullptr) {
        copyCut(dst, size, path, static_cast<size_t>(separator - path));
    }
}

bool CzbString::GetFullPathName(char* dst, int size, const char* base, const char* relative) {
    clear(dst, size);
    const char* slash = strrchr(base, '/');
    size_t folderLength = slash != nullptr ? static_cast<size_t>(slash - base) + 1 : 0;
    // The folder part alone must fit; its terminator comes with the rest.
    if (size < 0 || static_cast<size_t>(size) < folderLength) {
        return false;
    }
    memcpy(dst, base, folderLength);
    if (strncmp(relative, "./", 2) == 0) {
        relative += 2;
    } else if (relative[0] == '/') {
        relative += 1;
    }
    size_t restLength = strlen(relative);
    if (restLength + 1 > static_cast<size_t>(size) - folderLength) {
        return false;
    }
    memcpy(dst + folderLength, relative, restLength + 1);
    return true;
}

bool CzbString::IsNumber(char* text) {
    int points = 0;
    for (int i = 0; text[i] != '\0'; ++i) {
        char c = text[i];
        if (c >= '0' && c <= '9') {
            continue;
        }
        if (c == '-' && i == 0) {
            continue;
        }
        if (c == '.' && ++points == 1) {
            continue;
        }
        return false;
    }
    return true;
}

void CzbString::MakeLower(char* text) {
    zbp::_strlwr(text);
}

void CzbString::MakeUpper(char* text) {
    zbp::_strupr(text);
}

void CzbString::StringReplace(char* text, char* from, char* to) {
    if (Find(text, from) < 0) {
        return;
    }
    const size_t limit = 511;
    char scratch[512] = {};
    size_t fromLength = strlen(from);
    size_t toLength = strlen(to);
    size_t used = 0;
    const char* scan = text;
    for (;;) {
        int at = Find(scan, from);
        if (at < 0) {
            break;
        }
        size_t before = static_cast<size_t>(at);
        if (used + before + toLength > limit) {
            break;
        }
        memcpy(scratch + used, scan, before);
        memcpy(scratch + used + before, to, toLength);
        used += before + toLength;
        scan += before + fromLength;
    }
    size_t rest = strlen(scan);
    if (used + rest > limit) {
        rest = limit - used;
    }
    memcpy(scratch + used, scan, rest);
    used += rest;
    memcpy(text, scratch, used + 1);
}

void CzbString::StringReplace(char* text, char oldChar, char newChar) {
    if (oldChar == '\0') {
        return;
    }
    for (char* p = text; *p != '\0'; ++p) {
        if (*p == oldChar) {
            *p = newChar;
        }
    }
}

std::string CzbString::ToString(const std::wstring& text) {
    std::string result;
    result.reserve(text.size());
    for (wchar_t element : text) {
        result.push_back(static_cast<char>(static_cast<unsigned char>(element & 0xFF)));
    }
    return result;
}

std::wstring CzbString::ToWString(const char* text) {
    std::wstring result;
    if (text == nullptr) {
        return result;
    }
    for (const char* p = text; *p != '\0'; ++p) {
        result.push_back(static_cast<wchar_t>(static_cast<signed char>(*p)));
    }
    return result;
}

} // namespace zbBase

wchar_t* charToWchar(char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    free(m_pWstrTemp);
    m_pWstrTemp = nullptr;
    size_t length = strlen(text);
    wchar_t* buffer = static_cast<wchar_t*>(malloc((length + 1) * sizeof(wchar_t)));
    if (buffer == nullptr) {
        return nullptr;
    }
    if (mbstowcs(buffer, text, length + 1) == static_cast<size_t>(-1)) {
        buffer[0] = L'\0';
    }
    buffer[length] = L'\0';
    m_pWstrTemp = buffer;
    return m_pWstrTemp;
}
