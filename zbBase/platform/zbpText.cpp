#include "zbBase/platform/detail/zbpText.h"

#if !defined(_WIN32)

namespace zbp {

char* _strlwr(char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    for (char* p = text; *p != '\0'; ++p) {
        if (*p >= 'A' && *p <= 'Z') {
            *p = static_cast<char>(*p - 'A' + 'a');
        }
    }
    return text;
}

char* _strupr(char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    for (char* p = text; *p != '\0'; ++p) {
        if (*p >= 'a' && *p <= 'z') {
            *p = static_cast<char>(*p - 'a' + 'A');
        }
    }
    return text;
}

int _mbscmp(const char* a, const char* b) {
    const unsigned char* x = reinterpret_cast<const unsigned char*>(a);
    const unsigned char* y = reinterpret_cast<const unsigned char*>(b);
    while (*x != 0 && *x == *y) {
        ++x;
        ++y;
    }
    return static_cast<int>(*x) - static_cast<int>(*y);
}

} // namespace zbp

#endif
