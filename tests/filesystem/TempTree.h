// A fresh folder under the system's temporary folder for one test, removed at the end, with
// helpers to build trees, to describe them whole and to speak the library's path text.
#pragma once

#include "support/zbTestFiles.h"

#include <zbBase/platform/zbPlatformTypes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace fstest {

namespace fs = std::filesystem;
using zbtest::Text;
using Names = std::vector<std::string>;

// The library's form of a path: backslashes on every platform.
inline std::string lib(const fs::path& path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

inline std::string readFile(const fs::path& path) {
    return zbtest::readBytes(path);
}

inline Names names(const std::vector<__finddata64_t>& list) {
    Names out;
    for (const __finddata64_t& entry : list) {
        out.push_back(entry.name);
    }
    return out;
}

// The listing order of the POSIX layer is fixed (names in upper case); Windows file systems
// have their own, so there only the set is compared.
inline void expectListed(Names actual, Names expected) {
#if defined(_WIN32)
    std::sort(actual.begin(), actual.end());
    std::sort(expected.begin(), expected.end());
#endif
    EXPECT_EQ(actual, expected);
}

// Everything below a folder, sorted, links not followed: "a/b=bytes" for a file, "a/" for a
// folder, "a@" for a link.
inline Names contents(const fs::path& base) {
    Names out;
    for (auto it = fs::recursive_directory_iterator(base); it != fs::end(it); ++it) {
        const std::string name = it->path().lexically_relative(base).generic_string();
        if (it->is_symlink()) {
            out.push_back(name + "@");
        } else if (it->is_directory()) {
            out.push_back(name + "/");
        } else {
            out.push_back(name + "=" + zbtest::readBytes(it->path()));
        }
    }
    std::sort(out.begin(), out.end());
    return out;
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
        zbtest::writeBytes(m_root / relative, content);
        return m_root / relative;
    }
    fs::path dir(const std::string& relative) const {
        fs::create_directories(m_root / relative);
        return m_root / relative;
    }
    void enter(const std::string& relative = "") const { fs::current_path(m_root / relative); }
    Names contents(const std::string& relative = "") const {
        return fstest::contents(relative.empty() ? m_root : m_root / relative);
    }

private:
    zbtest::TempFolder m_folder; // removed last, after the current folder has left it
    fs::path m_root;
    fs::path m_cwd;
};

} // namespace fstest
