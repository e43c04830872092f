// The log line of one CzbLogger record, formatted by hand:
//   "%08d   %02d/%02d/%02d %02d:%02d:%02d.%03d   L[%02d] %s" and a line end
// (number; year modulo 100, month, day, hour, minute, second, milliseconds; level; text).
// The bytes are those of the printf format for every value; fields beyond their usual width
// (a number past 8 digits or negative, a level past 2 digits) take the runtime's formatter.
#pragma once

#include "zbBase/diagnostics/CzbLogger.h"

#include <stddef.h>

namespace zbBase {
namespace detail {

class LogLineFormatter {
public:
    // Widest header: "%08d" of INT_MIN (11), "%02d" of a unsigned short (5) six times and of the
    // milliseconds (5), "%02d" of a char (4), and the 16 fixed characters between them.
    static const size_t kMaxHeader = 11 + 6 * 5 + 5 + 4 + 16;

    // Writes the header (up to the blank before the text) into out, which has room for
    // kMaxHeader + 1 bytes; returns its length (at most kMaxHeader).
    size_t header(char* out, int number, char level, const zbBase::zbSystemTime& time);

private:
    // "yy/mm/dd hh:mm:ss." of the last second formatted.
    char m_second[18] = {};
    unsigned short m_key[6] = {0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff};
};

} // namespace detail
} // namespace zbBase
