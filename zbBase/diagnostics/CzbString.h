// CzbString: static routines on NUL-terminated byte strings, and charToWchar.
//
// Positions are zero-based byte indexes; nothing here decodes multibyte text. Routines that
// write into a caller's buffer take its capacity in bytes and never write past it: a result
// that does not fit is cut and terminated. Path splitting treats '/' before '\\' (the last
// '/' decides when a path holds both); GetFullPathName sees only '/'.
//
// charToWchar converts into one buffer shared by the whole process (m_pWstrTemp). That
// buffer, and so the text it last handed out, dies with the next charToWchar call or with
// the destruction of any CzbString object. Both are for one thread at a time.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <string>

// The buffer last returned by charToWchar (malloc'd), or null. Owned by the library.
extern ZB_API wchar_t* m_pWstrTemp;

// Converts the text with the runtime's multibyte conversion (current C locale) into the
// shared buffer and returns it; null for a null argument, leaving the buffer as it was.
// Text that the locale cannot convert gives an empty result.
ZB_API wchar_t* charToWchar(char* text);

// <windows.h> makes GetFullPathName a macro for GetFullPathNameA, or GetFullPathNameW under
// UNICODE. The name is declared here as it stands, whatever the macro's state, and the class
// also answers to both spellings that the macro gives a host's call (see below).
#pragma push_macro("GetFullPathName")
#undef GetFullPathName

namespace zbBase {

class ZB_API CzbString {
public:
    CzbString() {}
    CzbString(const CzbString&) {}
    // Releases the buffer of charToWchar and sets m_pWstrTemp to null.
    ~CzbString();
    CzbString& operator=(const CzbString&) { return *this; }

    // Index of the first occurrence of c, the terminating NUL included (searching for NUL
    // gives the length); -1 if absent.
    static int Find(const char* text, char c);
    // Index of the first occurrence of pattern in text; -1 if absent. An empty pattern, or
    // an empty text, gives -1.
    static int Find(const char* text, char* pattern);
    // Index of the last occurrence of c; NUL is met first and gives the length. -1 if absent.
    static int ReverseFind(const char* text, char c);
    // Index of the first occurrence of pattern in text (as strstr finds it); -1 if absent.
    static int StringFind(const char* text, const char* pattern);

    // Left, Right and Mid copy count bytes to dst and set dst[size - 1] to NUL; the bytes
    // between count and size - 1 are left as they were, so pass a zeroed buffer. They refuse
    // (false, dst untouched) unless count is less than the bytes available and size is at
    // least count + 1. Mid alone takes count -1 for the whole rest from start, and needs
    // start inside the string (0 to the length).
    static bool Left(const char* source, char* dst, int size, int count);
    static bool Right(const char* source, char* dst, int size, int count);
    static bool Mid(const char* source, char* dst, int size, int start, int count);

    // Pointer behind the last '.' of the path (the whole string, separators not considered),
    // or null when there is none or it is the first character.
    static char* GetExt(const char* path);
    // Clears size bytes of dst and copies the text behind the last '.' there; false (dst
    // untouched) when the path has no '.'. A '.' at index 0 counts here.
    static bool GetExt(char* dst, int size, const char* path);
    // Clears size bytes of dst and copies what follows the last separator; a path without
    // separator gives the empty string.
    static void GetName(char* dst, int size, const char* path);
    // Clears size bytes of dst and copies what stands before the last separator.
    static void GetPath(char* dst, int size, const char* path);
    // Joins relative to the folder of base (up to and including its last '/'), after
    // dropping one leading "./" or else one leading "/" from relative. False when the folder
    // part does not fit in size bytes (dst then stays cleared), or when the rest does not fit
    // behind it with its NUL (dst then holds the folder part, unterminated if it fills dst).
    static bool GetFullPathName(char* dst, int size, const char* base, const char* relative);
    // The same routine under the names that a host's call of GetFullPathName becomes where
    // <windows.h> is included, before or after this header, with or without UNICODE.
    static bool GetFullPathNameA(char* dst, int size, const char* base, const char* relative) {
        return GetFullPathName(dst, size, base, relative);
    }
    static bool GetFullPathNameW(char* dst, int size, const char* base, const char* relative) {
        return GetFullPathName(dst, size, base, relative);
    }

    // True for the empty string and for digits with at most one '.' and an optional leading
    // '-' ("-", "." and "1." included; "+1" and "1e5" not).
    static bool IsNumber(char* text);
    static void MakeLower(char* text);
    static void MakeUpper(char* text);
    // Replaces every non-overlapping occurrence of from by to, left to right, through a
    // 512-byte scratch buffer that is then copied back over text. Replacing stops at the
    // first occurrence whose replacement would not fit the 511 characters, and a longer
    // result is cut there. The caller's buffer must hold the result.
    static void StringReplace(char* text, char* from, char* to);
    // Replaces every occurrence of one byte in place; NUL as old changes nothing.
    static void StringReplace(char* text, char oldChar, char newChar);
    // The low 8 bits of each element, in order.
    static std::string ToString(const std::wstring& text);
    // Each byte widened with sign extension (0xE9 gives an element with all upper bits set).
    static std::wstring ToWString(const char* text);
};

} // namespace zbBase

#pragma pop_macro("GetFullPathName")
