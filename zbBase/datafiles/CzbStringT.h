// CzbStringT: the text type of CzbFileDB's keys and values.
//
// A NUL-terminated byte text with value semantics. Copies share one character block until one
// of them asks for writable characters (GetBuffer), so copying is cheap; the share count is
// atomic, so copies may live on different threads. A null pointer given as text is the empty
// text. Order is that of _mbscmp (byte by byte, case-sensitive). Memory exhaustion raises
// std::bad_alloc, a text longer than INT_MAX characters std::length_error.
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API CzbStringT {
public:
    CzbStringT() noexcept;
    CzbStringT(const char* text);
    CzbStringT(const CzbStringT& other) noexcept;
    CzbStringT(CzbStringT&& other) noexcept;
    ~CzbStringT();

    CzbStringT& operator=(const char* text);
    CzbStringT& operator=(const CzbStringT& other) noexcept;
    CzbStringT& operator=(CzbStringT&& other) noexcept;

    // Replaces the text by the printf-style result; an encoding failure gives the empty text.
    void Format(const char* format, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 2, 3)))
#endif
        ;

    // Characters before the terminating NUL.
    int GetLength() const noexcept;
    // _mbscmp order against a NUL-terminated text (null counts as empty): <0, 0 or >0.
    int Compare(const char* text) const;
    bool operator<(const CzbStringT& other) const;

    // The characters, NUL-terminated; valid until this object changes or is destroyed.
    const char* GetString() const noexcept;
    operator const char*() const noexcept {
        return GetString();
    }
    // Character i, 0 <= i <= GetLength() (the last one is the NUL).
    char operator[](int i) const noexcept {
        return GetString()[i];
    }
    // The characters made this object's own (no longer shared with any copy), writable within
    // GetLength(); valid until this object changes or is destroyed.
    char* GetBuffer();

private:
    struct Block;
    void assign(const char* text, int length);
    void release() noexcept;

    Block* m_block; // null for the empty text
};

} // namespace zbBase
