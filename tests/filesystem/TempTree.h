// A fresh folder under the system's temporary folder for one test, removed at the end, with
// helpers to build trees and to speak the library's path text.
#pragma once

#include <zbBase/platform/zbPlatformTypes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#else
#include <unistd.h>
#endif

namespace fstest {

namespace fs = std::filesystem;

// The library's form of a path: backslashes on every platform.
inline std::string lib(const fs::path& path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

// A writable copy of a text, for the operations that take char*.
class Text {
public:
    explicit Text(const std::string& text) : m_text(text.begin(), text.end()) {
        m_text.push_back('\0');
    }
    operator char*() { return m_text.data(); }

private:
    std::vector<char> m_text;
};

inline std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void writeFile(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

inline std::vector<std::string> names(const std::vector<__finddata64_t>& list) {
    std::vector<std::string> out;
    for (const __finddata64_t& entry : list) {
        out.push_back(entry.name);
    }
    return out;
}

// The listing order of the POSIX layer is fixed (names in upper case); Windows file systems
// have their own, so there only the set is compared.
inline void expectListed(std::vector<std::string> actual, std::vector<std::string> expected) {
#if defined(_WIN32)
    std::sort(actual.begin(), actual.end());
    std::sort(expected.begin(), expected.end());
#endif
    EXPECT_EQ(actual, expected);
}

class TempTree {
public:
    TempTree() {
        static int counter = 0;
#if defined(_WIN32)
        int pid = _getpid();
#else
        int pid = getpid();
#endif
        m_root = fs::temp_directory_path() /
                 ("zbfs_" + std::to_string(pid) + "_" + std::to_string(counter++));
        fs::remove_all(m_root);
        fs::create_directories(m_root);
        m_root = fs::canonical(m_root);
        m_cwd = fs::current_path();
    }
    ~TempTree() {
        std::error_code ignored;
        fs::current_path(m_cwd, ignored);
        fs::remove_all(m_root, ignored);
    }
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    const fs::path& root() const {
        return m_root;
    }
    fs::path path(const std::string& relative) const {
        return m_root / relative;
    }
    // The library's text for a path below the root.
    std::string text(const std::string& relative = "") const {
        return relative.empty() ? lib(m_root) : lib(m_root / relative);
    }
    fs::path file(const std::string& relative, const std::string& content = "data") const {
        writeFile(m_root / relative, content);
        return m_root / relative;
    }
    fs::path dir(const std::string& relative) const {
        fs::create_directories(m_root / relative);
        return m_root / relative;
    }
    void enter(const std::string& relative = "") const {
        fs::current_path(m_root / relative);
    }

private:
    fs::path m_root;
    fs::path m_cwd;
};

} // namespace fstest
