// A fresh folder under the system's temporary folder for one test, removed at the end, with
// helpers to build trees and to speak the library's path text.
#pragma once

#include "support/zbTestFiles.h"

#include <zbBase/platform/zbPlatformTypes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace fstest {

namespace fs = std::filesystem;

// The library's form of a path: backslashes on every platform.
inline std::string lib(const fs::path& path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

using zbtest::Text;

inline std::string readFile(const fs::path& path) {
    return zbtest::readBytes(path);
}
inline void writeFile(const fs::path& path, const std::string& content) {
    zbtest::writeBytes(path, content);
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
    TempTree() : m_root(fs::canonical(m_folder.path())), m_cwd(fs::current_path()) {}
    ~TempTree() {
        std::error_code ignored;
        fs::current_path(m_cwd, ignored);
    }
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    const fs::path& root() const { return m_root; }
    fs::path path(const std::string& relative) const { return m_root / relative; }
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
    void enter(const std::string& relative = "") const { fs::current_path(m_root / relative); }

private:
    zbtest::TempFolder m_folder; // removed last, after the current folder has left it
    fs::path m_root;
    fs::path m_cwd;
};

} // namespace fstest
