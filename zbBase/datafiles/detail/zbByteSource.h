// Bytes in order from an open stream or from memory, for the file readers: each reader parses
// what a source delivers, so the same parser reads a file or a buffer that is already in memory.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace zbBase {
namespace detail {

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Up to `size` bytes into `buffer`; fewer only at the end of the bytes or on a failure.
    virtual size_t read(void* buffer, size_t size) = 0;
    // Moves the read place by `offset` from where it stands, as fseek from the current place
    // does: a place before the start is refused (false, the place stays), a place behind the
    // end is taken and reads nothing.
    virtual bool skip(long offset) = 0;
    // true once a read has failed, as opposed to having reached the end.
    virtual bool failed() const = 0;
};

// An open stream; text-mode streams deliver their bytes translated, as fgets would see them.
class FileSource : public ByteSource {
public:
    explicit FileSource(FILE* file) : m_file(file) {}
    size_t read(void* buffer, size_t size) override { return std::fread(buffer, 1, size, m_file); }
    bool skip(long offset) override { return std::fseek(m_file, offset, SEEK_CUR) == 0; }
    bool failed() const override { return std::ferror(m_file) != 0; }

private:
    FILE* m_file;
};

class MemorySource : public ByteSource {
public:
    MemorySource(const void* data, size_t size)
        : m_data(static_cast<const char*>(data)), m_size(size) {}
    size_t read(void* buffer, size_t size) override {
        if (m_place >= m_size || size == 0) {
            return 0;
        }
        size_t count = m_size - m_place < size ? m_size - m_place : size;
        std::memcpy(buffer, m_data + m_place, count);
        m_place += count;
        return count;
    }
    bool skip(long offset) override {
        if (offset < 0) {
            unsigned long long back = 0ull - static_cast<unsigned long long>(offset);
            if (back > m_place) {
                return false;
            }
            m_place -= static_cast<size_t>(back);
        } else {
            m_place += static_cast<size_t>(offset);
        }
        return true;
    }
    bool failed() const override { return false; }

private:
    const char* m_data;
    size_t m_size;
    size_t m_place = 0;
};

} // namespace detail
} // namespace zbBase
