#include "zbBase/datafiles/detail/zbLineReader.h"

#include <cstring>

namespace zbBase {
namespace detail {

bool LineReader::next(char*& line, size_t& length) {
    const size_t longest = kLineSize - 1;
    for (;;) {
        const size_t available = m_end - m_begin;
        const size_t span = available < longest ? available : longest;
        const void* lineEnd = std::memchr(m_chunk + m_begin, '\n', span);
        if (lineEnd != nullptr) {
            take(static_cast<size_t>(static_cast<const char*>(lineEnd) - (m_chunk + m_begin)) + 1,
                 line, length);
            return true;
        }
        if (span == longest) {
            take(longest, line, length);
            return true;
        }
        if (m_atEnd || !refill()) {
            m_atEnd = true;
            if (available == 0 || m_source.failed()) {
                m_begin = m_end;
                return false;
            }
            take(available, line, length);
            return true;
        }
    }
}

bool LineReader::refill() {
    const size_t available = m_end - m_begin;
    if (m_begin > 0) {
        std::memmove(m_chunk, m_chunk + m_begin, available);
        m_begin = 0;
        m_end = available;
    }
    size_t count = m_source.read(m_chunk + m_end, sizeof m_chunk - m_end);
    m_end += count;
    return count > 0;
}

void LineReader::take(size_t count, char*& line, size_t& length) {
    std::memcpy(m_line, m_chunk + m_begin, count);
    m_line[count] = '\0';
    m_begin += count;
    line = m_line;
    length = count;
}

} // namespace detail
} // namespace zbBase
