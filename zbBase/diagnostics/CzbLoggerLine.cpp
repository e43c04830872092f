#include "zbBase/diagnostics/detail/CzbLoggerLine.h"
#include "zbBase/diagnostics/detail/zbDecimalPairs.h"

#include <stdio.h>
#include <string.h>

namespace zbBase {
namespace detail {

namespace {

// Two digits of v (0 to 99).
inline void put2(char* out, unsigned v) {
    memcpy(out, kDecimalPairs + 2 * v, 2);
}

} // namespace

size_t LogLineFormatter::header(char* out, int number, char level, const zbBase::zbSystemTime& t) {
    const unsigned year = t.wYear % 100u;
    const bool usual = number >= 0 && number <= 99999999 && level >= 0 && level <= 99 &&
                       t.wMonth <= 99 && t.wDay <= 99 && t.wHour <= 99 && t.wMinute <= 99 &&
                       t.wSecond <= 99 && t.wMilliseconds <= 999;
    if (!usual) {
        int n =
            snprintf(out, kMaxHeader + 1, "%08d   %02d/%02d/%02d %02d:%02d:%02d.%03d   L[%02d] ",
                     number, static_cast<int>(year), t.wMonth, t.wDay, t.wHour, t.wMinute,
                     t.wSecond, t.wMilliseconds, level);
        return n > 0 ? static_cast<size_t>(n) : 0;
    }
    if (m_key[0] != t.wYear || m_key[1] != t.wMonth || m_key[2] != t.wDay || m_key[3] != t.wHour ||
        m_key[4] != t.wMinute || m_key[5] != t.wSecond) {
        put2(m_second, year);
        m_second[2] = '/';
        put2(m_second + 3, t.wMonth);
        m_second[5] = '/';
        put2(m_second + 6, t.wDay);
        m_second[8] = ' ';
        put2(m_second + 9, t.wHour);
        m_second[11] = ':';
        put2(m_second + 12, t.wMinute);
        m_second[14] = ':';
        put2(m_second + 15, t.wSecond);
        m_second[17] = '.';
        const unsigned short key[6] = {t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond};
        memcpy(m_key, key, sizeof m_key);
    }
    unsigned n = static_cast<unsigned>(number);
    put2(out + 6, n % 100);
    n /= 100;
    put2(out + 4, n % 100);
    n /= 100;
    put2(out + 2, n % 100);
    n /= 100;
    put2(out, n);
    memcpy(out + 8, "   ", 3);
    memcpy(out + 11, m_second, sizeof m_second);
    const unsigned ms = t.wMilliseconds;
    out[29] = static_cast<char>('0' + ms / 100);
    put2(out + 30, ms % 100);
    memcpy(out + 32, "   L[", 5);
    put2(out + 37, static_cast<unsigned>(level));
    memcpy(out + 39, "] ", 2);
    return 41;
}

} // namespace detail
} // namespace zbBase
