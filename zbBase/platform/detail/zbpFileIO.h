// File streams and descriptors of the Windows runtime, in namespace zbp.
//
// Paths are the library's path text: on POSIX backslashes become slashes before the system
// sees them. Text mode ("t", or no "b") writes CR LF line ends on Windows and LF elsewhere;
// "t" is accepted on every platform.
#pragma once

#include <stddef.h>
#include <stdio.h>

#if defined(_WIN32)
#include <io.h>
#endif

// MinGW-w64 programs on the old msvcrt.dll have no fread_s: the library brings its own there.
#if !defined(_WIN32) || (defined(__MINGW32__) && !defined(_UCRT))
#define ZBP_OWN_FREAD_S 1
#endif

namespace zbp {

#if defined(_WIN32)
using ::_filelength;
using ::_fileno;
using ::_read;
using ::fopen_s;
#if !defined(ZBP_OWN_FREAD_S)
using ::fread_s;
#endif
inline FILE* fopen(const char* path, const char* mode) {
    return ::fopen(path, mode);
}
#else
typedef int errno_t;

// Opens a stream; null when the file cannot be opened (a folder too, with EACCES).
FILE* fopen(const char* path, const char* mode);
// Opens a stream into *stream (null on failure); 0 on success, else an errno value.
errno_t fopen_s(FILE** stream, const char* path, const char* mode);
int _fileno(FILE* stream);
// Length in bytes of the open file, or -1.
long _filelength(int fd);
// Reads up to count bytes; returns the bytes read, 0 at the end, -1 on failure.
int _read(int fd, void* buffer, unsigned int count);
#endif

#if defined(ZBP_OWN_FREAD_S)
// Reads at most count elements, never more than bufferSize bytes; returns whole elements read.
// A read that cannot fit the buffer reads nothing.
size_t fread_s(void* buffer, size_t bufferSize, size_t elementSize, size_t count, FILE* stream);
#endif

} // namespace zbp
