// File helpers of the test programs: a fresh temporary folder per test (removed with its
// contents at the end), whole-file bytes and lines, the platform's text line end.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#define ZBTEST_GETPID _getpid
#else
#include <unistd.h>
#define ZBTEST_GETPID getpid
#endif

namespace zbtest {

#if defined(_WIN32)
inline const std::string kEol = "\r\n";
#else
inline const std::string kEol = "\n";
#endif

class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter{0};
        const std::string prefix = "zbBase_test_" + std::to_string(ZBTEST_GETPID()) + "_";
        do {
            m_path = std::filesystem::temp_directory_path() /
                     (prefix + std::to_string(counter.fetch_add(1)));
        } while (!std::filesystem::create_directory(m_path));
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::string file(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

inline std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Writes the bytes as they stand, creating the folders on the way.
inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
    if (path.has_parent_path()) {
        std::filesystem::create_directories(path.parent_path());
    }
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// The lines of a text-mode file without their line ends; a last line without one is marked
// "<unterminated>".
inline std::vector<std::string> readLines(const std::filesystem::path& path) {
    const std::string bytes = readBytes(path);
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = bytes.find(kEol, start)) != std::string::npos;
         start = end + kEol.size()) {
        lines.push_back(bytes.substr(start, end - start));
    }
    if (start < bytes.size()) {
        lines.push_back(bytes.substr(start) + "<unterminated>");
    }
    return lines;
}

// A writable copy of a text, for the library's char* parameters.
class Text {
public:
    Text(const std::string& text) : m_bytes(text.begin(), text.end()) { m_bytes.push_back('\0'); }
    operator char*() { return m_bytes.data(); }

private:
    std::vector<char> m_bytes;
};

} // namespace zbtest
