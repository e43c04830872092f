// A text file opened for appending whose writes are all checked, and which never lets a line
// continue one that a failed write left unfinished; and the bytes of text as a text-mode stream
// writes them.
//
// A write that fails may leave the file ending in part of a line. The file knows what its own
// writes left: before the next write after one that stopped inside a line, a line end is
// written first, so the next line starts on a line of its own and the fragment stays as it is.
// Nothing already in the file is removed. Where the state is not known (a file opened afresh
// that an earlier writer may have left so, or a buffered write that failed without telling how
// much of it went out) the last byte of the file is read before the next write. That look can
// be misled by another process appending to the same file at that very moment (it may see a
// file end in the middle of that process's write), so writers that can remember what they
// left say so when they open the file.
#pragma once

#include <stddef.h>
#include <stdio.h>

namespace zbBase {
namespace detail {

// The line end of a text-mode stream on this platform.
#if defined(_WIN32)
const char kTextEol[] = "\r\n";
#else
const char kTextEol[] = "\n";
#endif
constexpr size_t kTextEolLength = sizeof kTextEol - 1;

// Bytes that a text of `length` characters can take once its line ends are translated.
constexpr size_t textModeBound(size_t length) {
    return length * kTextEolLength;
}

// Bytes that the text takes once its line ends are translated.
size_t textModeSize(const char* text, size_t length);

// Copies text as a text-mode stream would write it (every '\n' becomes kTextEol); returns the
// bytes written, at most textModeBound(length).
size_t copyAsTextMode(char* out, const char* text, size_t length);

class AppendFile {
public:
    // What is known of the end of a file when it is opened.
    enum class End { Whole, InPart, Unknown };

    AppendFile() = default;
    ~AppendFile() { close(); }
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    // Opens name for appending (creating it); name must stay valid while the file is open. A
    // raw file is binary and unbuffered: whole runs of lines with their own line ends
    // (kTextEol) go out through append(). Otherwise the stream is a buffered text stream for
    // lines written through stdio, each followed by endRecord().
    bool open(const char* name, bool raw, End end);
    bool isOpen() const { return m_file != nullptr; }
    FILE* stream() const { return m_file; }
    // False when closing reported an error.
    bool close();
    // What is known of the end of the file after the writes so far.
    End end() const { return m_end; }

    // Writes length bytes to the open file, behind a line end where the file needs one;
    // returns how many of the bytes reached the file: all of them, or fewer when a write
    // failed.
    size_t append(const char* bytes, size_t length);
    // Writes length bytes where the last append() or continueLine() stopped, which wrote all
    // of its bytes: the next piece of a line written in pieces. Returns as append() does.
    size_t continueLine(const char* bytes, size_t length);

    // Before a record written through stream(): false when the file needed a line end and it
    // could not be written (the record must not be written then).
    bool startRecord();
    // After a record written through stream(): flushes it; true when the whole record reached
    // the file.
    bool endRecord();

private:
    bool startLine();

    FILE* m_file = nullptr;
    const char* m_name = nullptr;
    bool m_raw = false;
    End m_end = End::Whole;
};

} // namespace detail
} // namespace zbBase
