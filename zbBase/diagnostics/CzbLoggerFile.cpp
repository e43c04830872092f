#include "zbBase/diagnostics/detail/CzbLoggerFile.h"
#include "zbBase/diagnostics/detail/CzbLoggerLine.h"

#include "zbBase/platform/detail/zbpFileIO.h"

namespace zbBase {
namespace detail {

bool LogFileAppender::open(const char* name, bool raw) {
    close();
    // Reading is needed only to look at the last byte; a file that may be written but not
    // read is still appended to, without that look.
    m_file = zbp::fopen(name, raw ? "a+b" : "a+");
    if (m_file == nullptr) {
        m_file = zbp::fopen(name, raw ? "ab" : "a");
    }
    if (m_file == nullptr) {
        return false;
    }
    if (raw) {
        setvbuf(m_file, nullptr, _IONBF, 0);
    }
    m_raw = raw;
    m_mayEndInPart = true;
    return true;
}

bool LogFileAppender::close() {
    if (m_file == nullptr) {
        return true;
    }
    bool closed = fclose(m_file) == 0;
    m_file = nullptr;
    return closed;
}

bool LogFileAppender::startLine() {
    if (!m_mayEndInPart) {
        return true;
    }
    bool ok = true;
    // A file that cannot seek or read (a device, a file open for writing only) is taken as it
    // stands.
    if (fseek(m_file, -1, SEEK_END) == 0) {
        int last = fgetc(m_file);
        // A stream turns from reading to writing only through a positioning call.
        fseek(m_file, 0, SEEK_END);
        if (last != EOF && last != '\n') {
            const char* eol = m_raw ? kLogEol : "\n";
            size_t length = m_raw ? kLogEolLength : 1;
            ok = fwrite(eol, 1, length, m_file) == length && fflush(m_file) == 0;
        }
    }
    clearerr(m_file);
    if (ok) {
        m_mayEndInPart = false;
    }
    return ok;
}

size_t LogFileAppender::append(const char* bytes, size_t length) {
    if (m_file == nullptr || !startLine()) {
        return 0;
    }
    // Unbuffered: the count is what the system took.
    size_t written = fwrite(bytes, 1, length, m_file);
    if (written != length) {
        clearerr(m_file);
        m_mayEndInPart = true;
    }
    return written;
}

bool LogFileAppender::startRecord() {
    return m_file != nullptr && startLine();
}

bool LogFileAppender::endRecord() {
    bool ok = fflush(m_file) == 0 && ferror(m_file) == 0;
    if (!ok) {
        clearerr(m_file);
        m_mayEndInPart = true;
    }
    return ok;
}

} // namespace detail
} // namespace zbBase
