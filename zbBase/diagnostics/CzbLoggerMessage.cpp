#include "zbBase/diagnostics/detail/CzbLoggerMessage.h"
#include "zbBase/diagnostics/detail/zbDecimalPairs.h"

#include <climits>
#include <cstring>

namespace zbBase {
namespace detail {

namespace {

// Widths and precisions above this go to the runtime (which refuses those past the largest int).
const size_t kMaxField = 9999;

// The text being formatted: cut at its last byte, while the length of the whole result is
// counted on, as vsnprintf counts it.
class Output {
public:
    Output(char* out, size_t bytes) : m_start(out), m_pos(out), m_last(out + bytes - 1) {}

    void put(char c) {
        if (m_pos != m_last) {
            *m_pos++ = c;
        } else {
            ++m_beyond;
        }
    }
    void put(const char* text, size_t n) {
        size_t room = static_cast<size_t>(m_last - m_pos);
        size_t take = room < n ? room : n;
        memcpy(m_pos, text, take);
        m_pos += take;
        m_beyond += n - take;
    }
    // The literal text of a format up to its next '%' or its end; returns where it stopped.
    // (Locals: stores through a char pointer could otherwise reach the members.)
    const char* putLiteral(const char* format) {
        char* pos = m_pos;
        size_t beyond = 0;
        char c;
        while ((c = *format) != '\0' && c != '%') {
            if (pos != m_last) {
                *pos++ = c;
            } else {
                ++beyond;
            }
            ++format;
        }
        m_pos = pos;
        m_beyond += beyond;
        return format;
    }
    // A text up to its terminator: a short one byte by byte, the rest of a longer one by the
    // runtime's string routines.
    void put(const char* text) {
        char* pos = m_pos;
        for (int i = 0; i < 32 && pos != m_last; ++i) {
            if (*text == '\0') {
                m_pos = pos;
                return;
            }
            *pos++ = *text++;
        }
        size_t n = strnlen(text, static_cast<size_t>(m_last - pos));
        memcpy(pos, text, n);
        m_pos = pos + n;
        if (text[n] != '\0') {
            m_beyond += strlen(text + n);
        }
    }
    void fill(char c, size_t n) {
        size_t room = static_cast<size_t>(m_last - m_pos);
        size_t take = room < n ? room : n;
        memset(m_pos, c, take);
        m_pos += take;
        m_beyond += n - take;
    }
    // A text padded to `width`: blanks in front, or behind where `left`.
    void padded(const char* text, size_t n, size_t width, bool left) {
        size_t pad = width > n ? width - n : 0;
        if (!left) {
            fill(' ', pad);
        }
        put(text, n);
        if (left) {
            fill(' ', pad);
        }
    }
    // vsnprintf fails on a result past the largest int.
    bool fits() const {
        return static_cast<size_t>(m_pos - m_start) + m_beyond <= static_cast<size_t>(INT_MAX);
    }
    size_t end() {
        *m_pos = '\0';
        return static_cast<size_t>(m_pos - m_start);
    }

private:
    char* m_start;
    char* m_pos;
    char* m_last;
    size_t m_beyond = 0;
};

// The decimal digits of v, written backwards to end just before `end`; returns their count.
size_t decimalDigits(char* end, unsigned long long v) {
    char* p = end;
    while (v >= 100) {
        p -= 2;
        memcpy(p, kDecimalPairs + 2 * (v % 100), 2);
        v /= 100;
    }
    if (v >= 10) {
        p -= 2;
        memcpy(p, kDecimalPairs + 2 * v, 2);
    } else {
        *--p = static_cast<char>('0' + v);
    }
    return static_cast<size_t>(end - p);
}

// The hexadecimal digits of v, as decimalDigits.
size_t hexDigits(char* end, unsigned long long v, bool upper) {
    const char* symbols = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    char* p = end;
    do {
        *--p = symbols[v & 15];
        v >>= 4;
    } while (v != 0);
    return static_cast<size_t>(end - p);
}

// A whole number: blanks up to the width, its sign, the zeros of the precision or of the '0'
// flag, and its digits (none for 0 with a precision of 0).
void putNumber(Output& out, bool negative, unsigned long long magnitude, bool hex, bool upper,
               size_t width, long precision, bool left, bool zero) {
    char buffer[24];
    char* end = buffer + sizeof buffer;
    size_t count = 0;
    if (precision != 0 || magnitude != 0) {
        count = hex ? hexDigits(end, magnitude, upper) : decimalDigits(end, magnitude);
    }
    if (width == 0 && precision < 0) {
        if (negative) {
            out.put('-');
        }
        out.put(end - count, count);
        return;
    }
    size_t sign = negative ? 1 : 0;
    size_t zeros = 0;
    if (precision >= 0) {
        if (static_cast<size_t>(precision) > count) {
            zeros = static_cast<size_t>(precision) - count;
        }
    } else if (zero && !left && width > sign + count) {
        zeros = width - sign - count;
    }
    size_t length = sign + zeros + count;
    size_t pad = width > length ? width - length : 0;
    if (!left) {
        out.fill(' ', pad);
    }
    if (negative) {
        out.put('-');
    }
    out.fill('0', zeros);
    out.put(end - count, count);
    if (left) {
        out.fill(' ', pad);
    }
}

} // namespace

bool LogMessageFormatter::format(char* out, size_t bytes, const char* format, va_list args,
                                 size_t* length) {
    if (format == nullptr) {
        return false;
    }
    Output text(out, bytes);
    const char* p = format;
    for (;;) {
        p = text.putLiteral(p);
        if (*p == '\0') {
            break;
        }
        ++p;
        if (*p == '%') {
            text.put('%');
            ++p;
            continue;
        }
        bool left = false;
        bool zero = false;
        for (;; ++p) {
            if (*p == '-') {
                left = true;
            } else if (*p == '0') {
                zero = true;
            } else {
                break;
            }
        }
        size_t width = 0;
        for (; *p >= '0' && *p <= '9'; ++p) {
            width = width * 10 + static_cast<size_t>(*p - '0');
            if (width > kMaxField) {
                return false;
            }
        }
        long precision = -1;
        if (*p == '.') {
            precision = 0;
            for (++p; *p >= '0' && *p <= '9'; ++p) {
                precision = precision * 10 + (*p - '0');
                if (precision > static_cast<long>(kMaxField)) {
                    return false;
                }
            }
        }
        // -1 short, 0 int, 1 long, 2 long long
        int size = 0;
        if (*p == 'h') {
            size = -1;
            ++p;
        } else if (*p == 'l') {
            size = 1;
            ++p;
            if (*p == 'l') {
                size = 2;
                ++p;
            }
        }
        const char conversion = *p;
        switch (conversion) {
        case 'd':
        case 'i': {
            long long v;
            if (size == 2) {
                v = va_arg(args, long long);
            } else if (size == 1) {
                v = va_arg(args, long);
            } else if (size == -1) {
                v = static_cast<short>(va_arg(args, int));
            } else {
                v = va_arg(args, int);
            }
            // The magnitude of the smallest value too, in unsigned arithmetic.
            unsigned long long magnitude = v < 0 ? 0ull - static_cast<unsigned long long>(v)
                                                 : static_cast<unsigned long long>(v);
            putNumber(text, v < 0, magnitude, false, false, width, precision, left, zero);
            break;
        }
        case 'u':
        case 'x':
        case 'X': {
            unsigned long long v;
            if (size == 2) {
                v = va_arg(args, unsigned long long);
            } else if (size == 1) {
                v = va_arg(args, unsigned long);
            } else if (size == -1) {
                v = static_cast<unsigned short>(va_arg(args, unsigned));
            } else {
                v = va_arg(args, unsigned);
            }
            putNumber(text, false, v, conversion != 'u', conversion == 'X', width, precision, left,
                      zero);
            break;
        }
        case 's': {
            // '0' pads a text with zeros in one runtime and with blanks in another.
            if (size != 0 || zero) {
                return false;
            }
            const char* s = va_arg(args, const char*);
            if (s == nullptr) {
                return false;
            }
            if (width == 0 && precision < 0) {
                text.put(s);
            } else {
                size_t n = precision < 0 ? strlen(s) : strnlen(s, static_cast<size_t>(precision));
                text.padded(s, n, width, left);
            }
            break;
        }
        case 'c': {
            if (size != 0 || zero || precision >= 0) {
                return false;
            }
            const char c = static_cast<char>(va_arg(args, int));
            if (c == '\0') {
                return false;
            }
            text.padded(&c, 1, width, left);
            break;
        }
        default:
            return false;
        }
        ++p;
    }
    if (!text.fits()) {
        return false;
    }
    *length = text.end();
    return true;
}

} // namespace detail
} // namespace zbBase
