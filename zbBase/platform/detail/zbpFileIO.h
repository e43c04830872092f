// File streams and descriptors of the Windows runtime, in namespace zbp.
//
// Paths are the library's path text: on POSIX backslashes become slashes before the system
// sees them. Text mode ("t", or no "b") writes CR LF line ends on Windows and LF elsewhere;
// "t" is accepted on every platform.
#pragma once

#include <errno.h>
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
using ::_fileno;
#if !defined(ZBP_OWN_FREAD_S)
using ::fread_s;
#endif
// The Visual C++ runtime ends the process (through its invalid-parameter handler) when a
// stream is opened with a null path or mode, read from a bad descriptor or with more than
// INT_MAX bytes at once: such calls fail here with errno instead, as they do elsewhere.
inline FILE* fopen(const char* path, const char* mode) {
    if (path == nullptr || mode == nullptr || mode[0] == '\0') {
        errno = EINVAL;
        return nullptr;
    }
    return ::fopen(path, mode);
}
inline errno_t fopen_s(FILE** stream, const char* path, const char* mode) {
    if (stream == nullptr) {
        return EINVAL;
    }
    *stream = nullptr;
    if (path == nullptr || mode == nullptr || mode[0] == '\0') {
        errno = EINVAL;
        return EINVAL;
    }
    return ::fopen_s(stream, path, mode);
}
// Length in bytes of the open file, 64 bits wide (the runtime's _filelength is 32-bit), or -1.
inline long long _filelengthi64(int fd) {
    if (fd < 0) {
        errno = EBADF;
        return -1;
    }
    return ::_filelengthi64(fd);
}
inline int _read(int fd, void* buffer, unsigned int count) {
    if (fd < 0) {
        errno = EBADF;
        return -1;
    }
    if (buffer == nullptr && count > 0) {
        errno = EINVAL;
        return -1;
    }
    return ::_read(fd, buffer, count > 0x7fffffffu ? 0x7fffffffu : count);
}
#else
typedef int errno_t;

// Opens a stream; null when the file cannot be opened (a folder too, with EACCES).
FILE* fopen(const char* path, const char* mode);
// Opens a stream into *stream (null on failure); 0 on success, else an errno value.
errno_t fopen_s(FILE** stream, const char* path, const char* mode);
int _fileno(FILE* stream);
// Length in bytes of the open file, or -1.
long long _filelengthi64(int fd);
// Reads up to count bytes; returns the bytes read, 0 at the end, -1 on failure.
int _read(int fd, void* buffer, unsigned int count);
#endif

#if defined(ZBP_OWN_FREAD_S)
// Reads at most count elements, never more than bufferSize bytes; returns whole elements read.
// A read that cannot fit the buffer reads nothing.
size_t fread_s(void* buffer, size_t bufferSize, size_t elementSize, size_t count, FILE* stream);
#endif

} // namespace zbp
