#include "zbBase/platform/detail/zbpFileIO.h"

#include <errno.h>

#if defined(ZBP_OWN_FREAD_S)
namespace zbp {

size_t fread_s(void* buffer, size_t bufferSize, size_t elementSize, size_t count, FILE* stream) {
    if (elementSize == 0 || count == 0 || stream == nullptr) {
        return 0;
    }
    if (buffer == nullptr) {
        errno = EINVAL;
        return 0;
    }
    if (count > bufferSize / elementSize) {
        // The runtime refuses a read that cannot fit; it reads nothing.
        errno = ERANGE;
        return 0;
    }
    return ::fread(buffer, elementSize, count, stream);
}

} // namespace zbp
#endif

#if !defined(_WIN32)

#include "zbBase/platform/detail/zbpPath.h"

#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace zbp {

namespace {
// The C library knows no "t"; binary and text streams are the same here.
std::string posixMode(const char* mode) {
    std::string result;
    for (const char* p = mode; *p != '\0'; ++p) {
        if (*p != 't') {
            result += *p;
        }
    }
    return result;
}
} // namespace

FILE* fopen(const char* path, const char* mode) {
    if (path == nullptr || mode == nullptr || mode[0] == '\0') {
        errno = EINVAL;
        return nullptr;
    }
    FILE* file = ::fopen(toNativePath(path).c_str(), posixMode(mode).c_str());
    // A folder opens for reading here but is no file on Windows: refuse it the same way, so
    // that no reader takes a folder for an empty file and no copy empties its target.
    struct stat info;
    if (file != nullptr && ::fstat(::fileno(file), &info) == 0 && S_ISDIR(info.st_mode)) {
        ::fclose(file);
        errno = EACCES;
        return nullptr;
    }
    return file;
}

errno_t fopen_s(FILE** stream, const char* path, const char* mode) {
    if (stream == nullptr) {
        return EINVAL;
    }
    *stream = fopen(path, mode);
    if (*stream == nullptr) {
        return errno != 0 ? errno : EINVAL;
    }
    return 0;
}

int _fileno(FILE* stream) {
    return stream != nullptr ? ::fileno(stream) : -1;
}

long long _filelengthi64(int fd) {
    struct stat info;
    if (::fstat(fd, &info) != 0) {
        return -1;
    }
    return static_cast<long long>(info.st_size);
}

int _read(int fd, void* buffer, unsigned int count) {
    // The result is an int: one call reads at most INT_MAX bytes.
    if (count > 0x7fffffffu) {
        count = 0x7fffffffu;
    }
    ssize_t n = ::read(fd, buffer, count);
    return n < 0 ? -1 : static_cast<int>(n);
}

} // namespace zbp

#endif
