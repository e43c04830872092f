// Text routines of the Windows runtime, in namespace zbp.
#pragma once

#include <string.h>
#if defined(_WIN32)
#include <mbstring.h>
#endif

namespace zbp {

#if defined(_WIN32)
using ::_strlwr;
using ::_strupr;
inline int _mbscmp(const char* a, const char* b) {
    return ::_mbscmp(reinterpret_cast<const unsigned char*>(a),
                     reinterpret_cast<const unsigned char*>(b));
}
#else
// Lower-case and upper-case the ASCII letters in place; returns the text.
char* _strlwr(char* text);
char* _strupr(char* text);
// Byte order of two texts as unsigned bytes: negative, zero or positive.
int _mbscmp(const char* a, const char* b);
#endif

} // namespace zbp
