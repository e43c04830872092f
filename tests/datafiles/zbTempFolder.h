// A fresh folder under the system's temporary folder for one test, removed with everything in
// it when the test ends; and whole-file byte access.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <process.h>
#define ZB_TEST_PID _getpid()
#else
#include <unistd.h>
#define ZB_TEST_PID getpid()
#endif

// The line end that text-mode streams write on this platform.
#if defined(_WIN32)
#define NL "\r\n"
#else
#define NL "\n"
#endif

class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter(0);
        m_path =
            std::filesystem::temp_directory_path() /
            ("zbBase_datafiles_" + std::to_string(ZB_TEST_PID) + "_" + std::to_string(counter++));
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
        std::filesystem::create_directories(m_path);
    }
    ~TempFolder() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    // A file name in the folder, as the library takes it.
    std::string file(const char* name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

inline std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline bool fileExists(const std::string& path) {
    std::error_code ec;
    return std::filesystem::exists(path, ec);
}

// The library's arguments are declared char*; tests hand over texts they own.
inline char* T(const std::string& text) {
    return const_cast<char*>(text.c_str());
}
