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

bool AppendFile::open(const char* name, bool raw, End end) {
    close();
    m_file = zbp::fopen(name, raw ? "ab" : "a");
    if (m_file == nullptr) {
        return false;
    }
    if (raw) {
        setvbuf(m_file, nullptr, _IONBF, 0);
    }
    m_name = name;
    m_raw = raw;
    m_end = end;
    return true;
}

bool AppendFile::close() {
    if (m_file == nullptr) {
        return true;
    }
    bool closed = fclose(m_file) == 0;
    m_file = nullptr;
    m_name = nullptr;
    return closed;
}

bool AppendFile::startLine() {
    if (m_end == End::Unknown) {
        // Read through a stream of its own: a stream that has read places its writes anywhere
        // in its buffer and may then send one line out in two writes. A file that cannot be
        // read or cannot seek (a device) is taken as it stands.
        m_end = End::Whole;
        FILE* probe = zbp::fopen(m_name, "rb");
        if (probe != nullptr) {
            if (fseek(probe, -1, SEEK_END) == 0) {
                int last = fgetc(probe);
                m_end = last != EOF && last != '\n' ? End::InPart : End::Whole;
            }
            fclose(probe);
        }
    }
    if (m_end == End::InPart) {
        const char* eol = m_raw ? kTextEol : "\n";
        const size_t length = m_raw ? kTextEolLength : 1;
        const bool ok = fwrite(eol, 1, length, m_file) == length && fflush(m_file) == 0;
        if (!ok) {
            // Nothing, or part of the line end, went out: the file still ends in part.
            clearerr(m_file);
            return false;
        }
        m_end = End::Whole;
    }
    return true;
}

size_t AppendFile::append(const char* bytes, size_t length) {
    if (!startLine()) {
        return 0;
    }
    return continueLine(bytes, length);
}

size_t AppendFile::continueLine(const char* bytes, size_t length) {
    // Unbuffered: the count is what the system took.
    const size_t written = fwrite(bytes, 1, length, m_file);
    if (written != length) {
        clearerr(m_file);
    }
    if (written > 0) {
        m_end = bytes[written - 1] == '\n' ? End::Whole : End::InPart;
    }
    return written;
}

bool AppendFile::startRecord() {
    return m_file != nullptr && startLine();
}

bool AppendFile::endRecord() {
    const bool ok = fflush(m_file) == 0 && ferror(m_file) == 0;
    if (!ok) {
        // How much of the record went out is not known.
        clearerr(m_file);
        m_end = End::Unknown;
    }
    return ok;
}

} // namespace detail
} // namespace zbBase
