// The text of one CzbLogger message: printf formatting into the fixed text of setLog.
//
// The conversions that log messages use most are formatted here by hand, which spares each
// message the runtime's stream set-up: %d %i %u %x %X with the flags '-' and '0', a width and a
// precision (digits, not '*') and the sizes h, l and ll; %s with '-', a width and a precision;
// %c with '-' and a width; and %%. The bytes are those of vsnprintf for every value. Any other
// format (a float, a pointer, '*', '+', '#', positional arguments, a wide text, a null text, a
// NUL character, a width or precision of more than 4 digits, a result past the largest int)
// is left to the runtime, from the start.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace zbBase {
namespace detail {

class LogMessageFormatter {
public:
    // Formats into `out` of `bytes` bytes (at least 1), cut and always terminated as vsnprintf
    // does, and sets `length` to the length of the text. False where the format is null or
    // holds anything else: `args` is then consumed in part and `out` undefined, and the caller
    // formats with the runtime from a fresh argument list.
    static bool format(char* out, size_t bytes, const char* format, va_list args, size_t* length);
};

} // namespace detail
} // namespace zbBase
