// printf-style formatting into a fixed text, as the diagnostics classes do it.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace zbBase {
namespace detail {

// Formats into `out` of `bytes` bytes: a longer result is cut and always terminated, and a
// null format or one that the runtime rejects gives the empty text. (A null format never
// reaches the runtime: the Visual C++ runtime ends the process on it. A conversion that it
// rejects, such as %n, ends the process there all the same: formats are the host's.)
inline void formatBounded(char* out, size_t bytes, const char* format, va_list args) {
    if (format == nullptr || std::vsnprintf(out, bytes, format, args) < 0) {
        out[0] = '\0';
    }
}

} // namespace detail
} // namespace zbBase
