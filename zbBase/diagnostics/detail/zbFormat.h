// printf-style formatting into a fixed text, as the diagnostics classes do it.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace zbBase {
namespace detail {

// Formats into `out` of `bytes` bytes: a longer result is cut and always terminated, and a
// format the runtime rejects gives the empty text.
inline void formatBounded(char* out, size_t bytes, const char* format, va_list args) {
    if (std::vsnprintf(out, bytes, format, args) < 0) {
        out[0] = '\0';
    }
}

} // namespace detail
} // namespace zbBase
