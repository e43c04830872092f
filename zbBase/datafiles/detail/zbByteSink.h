// Where the file writers put their bytes: an open stream, or memory. A writer that is handed a
// sink stops at the first write that fails and says so.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

namespace zbBase {
namespace detail {

class ByteSink {
public:
    virtual ~ByteSink() = default;
    // true when all `size` bytes were taken.
    virtual bool write(const void* data, size_t size) = 0;
    bool write(const char* text) { return write(text, std::strlen(text)); }
};

// An open stream; a text-mode stream writes its platform's line ends.
class FileSink : public ByteSink {
public:
    explicit FileSink(FILE* file) : m_file(file) {}
    using ByteSink::write;
    bool write(const void* data, size_t size) override {
        return size == 0 || std::fwrite(data, 1, size, m_file) == size;
    }

private:
    FILE* m_file;
};

class StringSink : public ByteSink {
public:
    using ByteSink::write;
    bool write(const void* data, size_t size) override {
        m_bytes.append(static_cast<const char*>(data), size);
        return true;
    }
    const std::string& bytes() const { return m_bytes; }

private:
    std::string m_bytes;
};

} // namespace detail
} // namespace zbBase
