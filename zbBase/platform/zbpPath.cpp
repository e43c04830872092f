#include "zbBase/platform/detail/zbpPath.h"

#include <algorithm>
#include <cstring>

#if !defined(_WIN32)
#include <limits.h>
#include <unistd.h>
#endif

namespace zbp {

std::string toNativePath(const char* path) {
    std::string native(path != nullptr ? path : "");
#if !defined(_WIN32)
    std::replace(native.begin(), native.end(), '\\', '/');
#endif
    return native;
}

std::string toLibraryPath(const std::string& path) {
    std::string text(path);
#if !defined(_WIN32)
    std::replace(text.begin(), text.end(), '/', '\\');
#endif
    return text;
}

#if !defined(_WIN32)

DWORD GetCurrentDirectoryA(DWORD bufferLength, char* buffer) {
    char native[PATH_MAX];
    if (getcwd(native, sizeof native) == nullptr) {
        return 0;
    }
    std::string text = toLibraryPath(native);
    if (buffer == nullptr || text.size() + 1 > bufferLength) {
        return static_cast<DWORD>(text.size() + 1);
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

DWORD GetModuleFileNameA(HMODULE, char* buffer, DWORD size) {
    if (buffer == nullptr || size == 0) {
        return 0;
    }
    char native[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", native, sizeof native - 1);
    if (n <= 0) {
        buffer[0] = '\0';
        return 0;
    }
    native[n] = '\0';
    std::string text = toLibraryPath(native);
    size_t count = std::min<size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    return static_cast<DWORD>(count);
}

#endif

} // namespace zbp
