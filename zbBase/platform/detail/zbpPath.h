// Current folder, host executable path and separator handling, in namespace zbp.
//
// The library speaks Windows path text everywhere: paths it hands out use the backslash.
// On POSIX the paths given to the system have their backslashes turned into slashes, and
// paths read from the system have their slashes turned into backslashes.
#pragma once

#include "zbBase/platform/detail/zbpSystem.h"

#include <string>

namespace zbp {

#if defined(_WIN32)
using ::GetCurrentDirectoryA;
using ::GetModuleFileNameA;
#else
typedef void* HMODULE;
// Writes the current folder as Windows path text. Returns its length, or, when the buffer is
// too small, the size needed including the terminating NUL (nothing written); 0 on failure.
DWORD GetCurrentDirectoryA(DWORD bufferLength, char* buffer);
// Writes the path of the host executable (module must be null) as Windows path text,
// truncated to the buffer and NUL-terminated. Returns the characters written, 0 on failure.
DWORD GetModuleFileNameA(HMODULE module, char* buffer, DWORD size);
#endif

// The path as the operating system takes it: on POSIX backslashes become slashes.
std::string toNativePath(const char* path);
// The path in the library's form: on POSIX slashes become backslashes.
std::string toLibraryPath(const std::string& path);

} // namespace zbp
