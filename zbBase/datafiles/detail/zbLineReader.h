// Lines of a text as fgets with a 1024-byte buffer takes them, read in chunks from a source.
//
// A line runs up to and including its first line end, and stops after 1023 bytes without one;
// the rest is the next line. The last line may lack its line end. A line may hold NUL bytes
// (a parser that takes it as a C text sees it end there). A read that fails ends the lines and
// drops a line that was not complete, as fgets gives nothing then.
#pragma once

#include "zbBase/datafiles/detail/zbByteSource.h"

#include <cstddef>

namespace zbBase {
namespace detail {

class LineReader {
public:
    static const size_t kLineSize = 1024;

    explicit LineReader(ByteSource& source) : m_source(source) {}
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line, NUL-terminated in a buffer of the reader's that the caller may change
    // until the next call; `length` counts the bytes that fgets would have stored. false when
    // no line is left.
    bool next(char*& line, size_t& length);

private:
    // Moves the unread bytes to the front and reads behind them; false when nothing came.
    bool refill();
    void take(size_t count, char*& line, size_t& length);

    ByteSource& m_source;
    size_t m_begin = 0;
    size_t m_end = 0;
    bool m_atEnd = false;
    char m_line[kLineSize];
    char m_chunk[16 * 1024];
};

} // namespace detail
} // namespace zbBase
