// Platform records that appear in the public class declarations.
//
// On Windows they come from the system headers. Elsewhere this header supplies the same
// names with the Windows field names, widths and order, so that class layouts and host code
// read the same on every platform.
#pragma once

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <io.h>
#include <windows.h>

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
