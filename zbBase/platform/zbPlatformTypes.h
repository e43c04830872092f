// Platform records that appear in the public class declarations.
//
// The public headers never include <windows.h> and never define its configuration macros
// (UNICODE, NOMINMAX, WIN32_LEAN_AND_MEAN, ...): a Windows host includes it in its own way,
// before or after these headers, or not at all. On Windows the classes therefore hold records
// of their own where they hold a system record:
//
//  - zbBase::zbSystemTime (CzbLogger::_LoggerData::time) has the fields of SYSTEMTIME with
//    their names, widths and order, and converts to and from SYSTEMTIME (or any record of
//    that shape): `SYSTEMTIME st = rec->time;`, `rec->time = st;`,
//    `_LoggerData rec{0, 0, st, text};`, `zbSystemTime t{2026, 11, 4, 19, 9, 5, 7, 0};` and a
//    copy with memcpy all work, whether <windows.h> comes before this header, after it or not
//    at all. A pointer does not convert: read GetLocalTime into a SYSTEMTIME and assign it.
//  - zbBase::zbCriticalSection (the m_lock members) is storage of the size and alignment of
//    CRITICAL_SECTION, which only the library's own code uses, as that record.
//  - __finddata64_t is the C runtime's own record from <io.h> (a header of the runtime, not
//    of the Windows API, which sets no configuration macro).
//
// Elsewhere the system has none of these records, and this header defines them with the
// Windows names, fields, widths and order; zbSystemTime is SYSTEMTIME itself there, and
// zbCriticalSection is CRITICAL_SECTION, the library's own re-entrant lock.
#pragma once

#if defined(_WIN32)

#include <io.h>
#include <type_traits>

namespace zbBase {

struct zbSystemTime;

namespace detail {

template <class T, class Member> using IsWordOf = std::is_same<Member, unsigned short T::*>;

template <class T, class = void> struct IsSystemTimeRecord : std::false_type {};

// A record of 16 bytes with the eight 16-bit fields of SYSTEMTIME: the system's own, or an
// equal record of a host's.
template <class T>
struct IsSystemTimeRecord<
    T, typename std::enable_if<
           IsWordOf<T, decltype(&T::wYear)>::value && IsWordOf<T, decltype(&T::wMonth)>::value &&
           IsWordOf<T, decltype(&T::wDayOfWeek)>::value && IsWordOf<T, decltype(&T::wDay)>::value &&
           IsWordOf<T, decltype(&T::wHour)>::value && IsWordOf<T, decltype(&T::wMinute)>::value &&
           IsWordOf<T, decltype(&T::wSecond)>::value &&
           IsWordOf<T, decltype(&T::wMilliseconds)>::value>::type>
    : std::integral_constant<bool, !std::is_same<T, zbSystemTime>::value && sizeof(T) == 16 &&
                                       std::is_trivially_copyable<T>::value &&
                                       std::is_default_constructible<T>::value> {};

} // namespace detail

// A local date and time with milliseconds, laid out as SYSTEMTIME (16 bytes).
struct zbSystemTime {
    unsigned short wYear;
    unsigned short wMonth;
    unsigned short wDayOfWeek; // 0 is Sunday
    unsigned short wDay;
    unsigned short wHour;
    unsigned short wMinute;
    unsigned short wSecond;
    unsigned short wMilliseconds;

    // Fields not set (zero when value-initialised, as `zbSystemTime t{};`).
    zbSystemTime() = default;
    // All eight fields in their order, as a SYSTEMTIME is brace-initialised.
    zbSystemTime(unsigned short year, unsigned short month, unsigned short dayOfWeek,
                 unsigned short day, unsigned short hour, unsigned short minute,
                 unsigned short second, unsigned short milliseconds)
        : wYear(year), wMonth(month), wDayOfWeek(dayOfWeek), wDay(day), wHour(hour),
          wMinute(minute), wSecond(second), wMilliseconds(milliseconds) {}

    // From and to SYSTEMTIME, or any record of the same fields.
    template <class Record,
              typename std::enable_if<detail::IsSystemTimeRecord<Record>::value, int>::type = 0>
    zbSystemTime(const Record& t)
        : wYear(t.wYear), wMonth(t.wMonth), wDayOfWeek(t.wDayOfWeek), wDay(t.wDay), wHour(t.wHour),
          wMinute(t.wMinute), wSecond(t.wSecond), wMilliseconds(t.wMilliseconds) {}

    template <class Record,
              typename std::enable_if<detail::IsSystemTimeRecord<Record>::value, int>::type = 0>
    operator Record() const {
        Record t;
        t.wYear = wYear;
        t.wMonth = wMonth;
        t.wDayOfWeek = wDayOfWeek;
        t.wDay = wDay;
        t.wHour = wHour;
        t.wMinute = wMinute;
        t.wSecond = wSecond;
        t.wMilliseconds = wMilliseconds;
        return t;
    }
};

static_assert(sizeof(zbSystemTime) == 16 && std::is_trivially_copyable<zbSystemTime>::value &&
                  std::is_standard_layout<zbSystemTime>::value,
              "zbSystemTime has the layout of SYSTEMTIME");

// Room for the system's CRITICAL_SECTION (40 bytes, alignment 8 on 64-bit Windows; 24 and 4
// on 32-bit), which the library's sources check against the real record.
struct zbCriticalSection {
    alignas(void*) unsigned char opaque[sizeof(void*) == 8 ? 40 : 24];
};

} // namespace zbBase

#else

#include <pthread.h>
#include <stdint.h>

typedef unsigned short WORD;
typedef uint32_t DWORD;
typedef int BOOL;
typedef long long __int64;
typedef long long __time64_t;
typedef uint32_t _fsize_t;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif
#ifndef MAX_PATH
#define MAX_PATH 260
#endif

typedef union _LARGE_INTEGER {
    struct {
        DWORD LowPart;
        int32_t HighPart;
    } u;
    long long QuadPart;
} LARGE_INTEGER;

typedef struct _SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
} SYSTEMTIME;

// A re-entrant lock. The mutex is recursive; Enter spins SpinCount times on a try-lock
// before it blocks, as the Windows lock does on a multi-core machine.
typedef struct _RTL_CRITICAL_SECTION {
    pthread_mutex_t Mutex;
    DWORD SpinCount;
} CRITICAL_SECTION;

namespace zbBase {
typedef ::SYSTEMTIME zbSystemTime;
typedef ::CRITICAL_SECTION zbCriticalSection;
} // namespace zbBase

// Entry of a wildcard folder listing, as the Windows runtime fills it.
struct __finddata64_t {
    unsigned attrib;
    __time64_t time_create;
    __time64_t time_access;
    __time64_t time_write;
    __int64 size;
    char name[260];
};

// The same entry with a 32-bit size (the _findfirst64i32 family).
struct _finddata64i32_t {
    unsigned attrib;
    __time64_t time_create;
    __time64_t time_access;
    __time64_t time_write;
    _fsize_t size;
    char name[260];
};

#ifndef _A_SUBDIR
#define _A_NORMAL 0x00
#define _A_RDONLY 0x01
#define _A_HIDDEN 0x02
#define _A_SYSTEM 0x04
#define _A_SUBDIR 0x10
#define _A_ARCH 0x20
#endif

#endif
