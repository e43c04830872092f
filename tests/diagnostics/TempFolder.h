// A fresh folder under the system's temporary folder, removed with everything in it when the
// object goes; and small file helpers for the diagnostics tests.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#define ZB_TEST_PID _getpid()
#else
#include <unistd.h>
#define ZB_TEST_PID getpid()
#endif

namespace diagtest {

// The line end that text-mode streams write on this platform.
#if defined(_WIN32)
inline const std::string kEol = "\r\n";
#else
inline const std::string kEol = "\n";
#endif

class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter{0};
        std::filesystem::path base = std::filesystem::temp_directory_path();
        for (;;) {
            m_path = base / ("zbBase_diag_" + std::to_string(ZB_TEST_PID) + "_" +
                             std::to_string(counter.fetch_add(1)));
            if (std::filesystem::create_directory(m_path)) {
                break;
            }
        }
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    // A name inside the folder as text the library takes.
    std::string file(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

inline std::string readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

// The lines of a file written in text mode, without their line ends.
inline std::vector<std::string> readLines(const std::filesystem::path& path) {
    std::string bytes = readBytes(path);
    std::vector<std::string> lines;
    size_t start = 0;
    for (;;) {
        size_t end = bytes.find(kEol, start);
        if (end == std::string::npos) {
            break;
        }
        lines.push_back(bytes.substr(start, end - start));
        start = end + kEol.size();
    }
    if (start < bytes.size()) {
        lines.push_back(bytes.substr(start) + "<unterminated>");
    }
    return lines;
}

// A writable char* copy of a literal, for the library's char* parameters.
class Text {
public:
    Text(const std::string& text) : m_bytes(text.begin(), text.end()) { m_bytes.push_back('\0'); }
    operator char*() { return m_bytes.data(); }

private:
    std::vector<char> m_bytes;
};

} // namespace diagtest
