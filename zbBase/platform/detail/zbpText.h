// Text routines of the Windows runtime, in namespace zbp.
#pragma once

#include <string.h>
#if defined(_WIN32)
#include <mbstring.h>
#endif

namespace zbp {

#if defined(_WIN32)
// A null text is left alone: the Visual C++ runtime would end the process on it.
inline char* _strlwr(char* text) {
    return text != nullptr ? ::_strlwr(text) : nullptr;
}
inline char* _strupr(char* text) {
    return text != nullptr ? ::_strupr(text) : nullptr;
}
inline int _mbscmp(const char* a, const char* b) {
    return ::_mbscmp(reinterpret_cast<const unsigned char*>(a),
                     reinterpret_cast<const unsigned char*>(b));
}
#else
// Lower-case and upper-case the ASCII letters in place; returns the text (a null text is
// left alone).
char* _strlwr(char* text);
char* _strupr(char* text);
// Byte order of two texts as unsigned bytes: negative, zero or positive.
int _mbscmp(const char* a, const char* b);
#endif

} // namespace zbp
