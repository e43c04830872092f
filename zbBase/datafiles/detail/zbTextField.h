// Fixed 128-byte text fields of the attribute records: at most 127 characters and a NUL.
// Every text is cut at 127 characters on its way in and compared as cut, so a field is never
// overrun and a long text still finds what it stored. Fields are read with a bound, so even a
// field without its NUL is never read past.
#pragma once

#include <cstddef>
#include <cstring>

namespace zbBase {
namespace detail {

const size_t kFieldSize = 128;

// Characters of a text as a field keeps them: up to the NUL, at most 127.
inline size_t fieldLength(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    // memchr stops at the first NUL, so a shorter text is not read past its end.
    const void* end = std::memchr(text, '\0', kFieldSize - 1);
    return end != nullptr ? static_cast<size_t>(static_cast<const char*>(end) - text)
                          : kFieldSize - 1;
}

// Copies the text, cut at 127 characters, with a NUL; a null text gives the empty text.
inline void copyField(char* field, const char* text) {
    size_t length = fieldLength(text);
    if (length > 0) {
        std::memmove(field, text, length);
    }
    field[length] = '\0';
}

inline bool sameField(const char* field, const char* text) {
    size_t length = fieldLength(field);
    return length == fieldLength(text) && (length == 0 || std::memcmp(field, text, length) == 0);
}

inline bool sameFields(const char* a, const char* b) {
    return sameField(a, b);
}

} // namespace detail
} // namespace zbBase
