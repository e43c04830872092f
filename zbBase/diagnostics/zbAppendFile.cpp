#include "zbBase/diagnostics/detail/zbAppendFile.h"

#include "zbBase/platform/detail/zbpFileIO.h"

#include <string.h>

namespace zbBase {
namespace detail {

size_t textModeSize(const char* text, size_t length) {
    size_t bytes = length;
#if defined(_WIN32)
    for (size_t i = 0; i < length; ++i) {
        bytes += text[i] == '\n' ? kTextEolLength - 1 : 0;
    }
#else
    (void)text;
#endif
    return bytes;
}

size_t copyAsTextMode(char* out, const char* text, size_t length) {
#if defined(_WIN32)
    size_t written = 0;
    const char* end = text + length;
    while (text < end) {
        const char* lf =
            static_cast<const char*>(memchr(text, '\n', static_cast<size_t>(end - text)));
        size_t part = static_cast<size_t>((lf != nullptr ? lf : end) - text);
        memcpy(out + written, text, part);
        written += part;
        text += part;
        if (lf != nullptr) {
            memcpy(out + written, kTextEol, kTextEolLength);
            written += kTextEolLength;
            ++text;
        }
    }
    return written;
#else
    memcpy(out, text, length);
    return length;
#endif
}

bool AppendFile::open(const char* name, bool raw) {
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

bool AppendFile::close() {
    if (m_file == nullptr) {
        return true;
    }
    bool closed = fclose(m_file) == 0;
    m_file = nullptr;
    return closed;
}

bool AppendFile::startLine() {
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
            const char* eol = m_raw ? kTextEol : "\n";
            size_t length = m_raw ? kTextEolLength : 1;
            ok = fwrite(eol, 1, length, m_file) == length && fflush(m_file) == 0;
        }
    }
    clearerr(m_file);
    if (ok) {
        m_mayEndInPart = false;
    }
    return ok;
}

size_t AppendFile::append(const char* bytes, size_t length) {
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

bool AppendFile::startRecord() {
    return m_file != nullptr && startLine();
}

bool AppendFile::endRecord() {
    bool ok = fflush(m_file) == 0 && ferror(m_file) == 0;
    if (!ok) {
        clearerr(m_file);
        m_mayEndInPart = true;
    }
    return ok;
}

} // namespace detail
} // namespace zbBase
