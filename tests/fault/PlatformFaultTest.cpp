// File systems that answer otherwise (no entry types, vanishing entries, interrupted or failing
// folder reads, no no-replace rename, no hard links), through system calls this program takes
// over on demand and otherwise passes to the C library.
#include <stdio.h> // tells __GLIBC__

#if defined(__linux__) && defined(__GLIBC__)

#include <zbBase/filesystem/CzbFileUtil.h>
#include <zbBase/platform/detail/zbpFileOps.h>

#include "filesystem/TempTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <filesystem>
#include <stddef.h>
#include <stdio.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;
using zbtest::Text;

namespace {

// What the definitions below do instead of passing the call on.
std::atomic<bool> g_unknownTypes{false};  // getdents64: every entry's type unknown
std::atomic<bool> g_ghosts{false};        // getdents64: three entries that are not there
std::atomic<int> g_interrupts{0};         // getdents64: this many calls fail with EINTR
std::atomic<int> g_readErrors{0};         // getdents64: this many calls fail with EIO
std::atomic<bool> g_noRenameFlags{false}; // renameat2: flags not supported (EINVAL)
std::atomic<bool> g_noHardLinks{false};   // link: not supported (EPERM)
std::atomic<bool> g_ghostsDue{true};      // the next read of a folder gets the ghosts

template <class Function> Function real(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Appends one entry record to a buffer of getdents64 records.
size_t appendEntry(char* at, const char* name, unsigned char type) {
    const size_t length = offsetof(struct dirent64, d_name) + strlen(name) + 1;
    const size_t reclen = (length + 7) & ~size_t(7);
    memset(at, 0, reclen);
    struct dirent64 entry;
    entry.d_ino = 12345;
    entry.d_off = 0;
    entry.d_reclen = static_cast<unsigned short>(reclen);
    entry.d_type = type;
    memcpy(at, &entry, offsetof(struct dirent64, d_name));
    memcpy(at + offsetof(struct dirent64, d_name), name, strlen(name) + 1);
    return reclen;
}

} // namespace

extern "C" ssize_t getdents64(int fd, void* buffer, size_t length) noexcept {
    using Getdents = ssize_t (*)(int, void*, size_t);
    static const Getdents next = real<Getdents>("getdents64");
    int interrupts = g_interrupts.load();
    while (interrupts > 0) {
        if (g_interrupts.compare_exchange_weak(interrupts, interrupts - 1)) {
            errno = EINTR;
            return -1;
        }
    }
    int errors = g_readErrors.load();
    while (errors > 0) {
        if (g_readErrors.compare_exchange_weak(errors, errors - 1)) {
            errno = EIO;
            return -1;
        }
    }
    const bool ghosts = g_ghosts.load();
    const size_t room = 256;
    if (ghosts && length <= room) {
        errno = EINVAL;
        return -1;
    }
    ssize_t n = next(fd, buffer, ghosts ? length - room : length);
    if (n < 0) {
        return n;
    }
    char* bytes = static_cast<char*>(buffer);
    if (g_unknownTypes) {
        for (ssize_t at = 0; at < n;) {
            struct dirent64* entry = reinterpret_cast<struct dirent64*>(bytes + at);
            entry->d_type = DT_UNKNOWN;
            at += entry->d_reclen;
        }
    }
    if (ghosts && n > 0 && g_ghostsDue.exchange(false)) {
        // Entries listed by the folder and gone before they are looked at.
        n += static_cast<ssize_t>(appendEntry(bytes + n, "ghost.txt", DT_REG));
        n += static_cast<ssize_t>(appendEntry(bytes + n, "ghost2.txt", DT_UNKNOWN));
        n += static_cast<ssize_t>(appendEntry(bytes + n, "ghostdir", DT_DIR));
    } else if (n == 0) {
        g_ghostsDue = true; // the folder is read to its end: the next one gets them
    }
    return n;
}

extern "C" int renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
                         unsigned int flags) noexcept {
    using Renameat2 = int (*)(int, const char*, int, const char*, unsigned int);
    static const Renameat2 next = real<Renameat2>("renameat2");
    if (g_noRenameFlags && flags != 0) {
        errno = EINVAL;
        return -1;
    }
    return next(oldFolder, oldPath, newFolder, newPath, flags);
}

extern "C" int link(const char* from, const char* to) noexcept {
    using Link = int (*)(const char*, const char*);
    static const Link next = real<Link>("link");
    if (g_noHardLinks) {
        errno = EPERM;
        return -1;
    }
    return next(from, to);
}

namespace {

using fstest::lib;

// What a search gives: the entries with their records, then the folders entered and the error.
using Result = std::vector<std::string>;
Result search(const std::string& path, bool folders, bool subDir) {
    CzbFileUtil util;
    folders ? util.FindFolder(Text(path), subDir) : util.FindFile(Text(path), subDir);
    Result result;
    for (const __finddata64_t& entry : *util.getFindData()) {
        result.push_back(std::string(entry.name) + " attrib " + std::to_string(entry.attrib) +
                         " size " + std::to_string(entry.size) + " written " +
                         std::to_string(entry.time_write));
    }
    result.push_back(std::to_string(util.getFindSubDirCount()) + " folders, error " +
                     std::to_string(util.getLastError()));
    return result;
}

Result entries(Result result) {
    result.pop_back();
    return result;
}

// The tree of the search tests, with a link to sub, a dangling link, a pipe and a socket.
void buildTree(const fs::path& root) {
    for (const char* name : {"a.txt", "b.log", ".hidden.txt", "m.txt/inner.txt", "sub/c.txt",
                             "sub/deep/d.txt", ".dot/e.txt"}) {
        zbtest::writeBytes(root / name, name);
    }
    fs::create_directory_symlink(root / "sub", root / "link.txt");
    fs::create_symlink(root / "nowhere", root / "dangling.txt");
    ASSERT_EQ(mkfifo((root / "pipe.txt").c_str(), 0600), 0);
    int s = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(s, 0);
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string socketPath = (root / "socket.txt").string();
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
    ASSERT_EQ(bind(s, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
    close(s);
}

} // namespace

TEST(PlatformFault, WalksOnFileSystemsThatAnswerOtherwiseFindTheSame) {
    zbtest::TempFolder dir;
    const fs::path root = fs::canonical(dir.path());
    buildTree(root);
    const std::string files = lib(root / "*.txt");
    const std::string all = lib(root / "*");
    const Result txt = search(files, false, true);
    const Result everything = search(all, false, true);
    const Result folders = search(all, true, true);
    // Pipes, sockets and links are plain entries, never entered: the walk stays in the tree.
    ASSERT_EQ(txt.size(), 10u);
    EXPECT_EQ(txt[0].substr(0, lib(root / ".hidden.txt").size()), lib(root / ".hidden.txt"));
    for (int i : {3, 4, 5}) {
        const std::string name = i == 3 ? "link" : i == 4 ? "pipe" : "socket";
        EXPECT_NE(txt[i].find(name + ".txt attrib 32 size 0 "), std::string::npos) << txt[i];
    }
    EXPECT_EQ(txt.back(), "4 folders, error " + std::to_string(ENOENT));
    ASSERT_EQ(folders.size(), 4u);
    g_interrupts = 3; // an interrupted read of a folder is repeated
    EXPECT_EQ(search(files, false, true), txt);
    EXPECT_EQ(g_interrupts.exchange(0), 0);
    // A failing read ends that folder's listing only (here the start's), without a hang.
    g_readErrors = 1;
    EXPECT_EQ(search(files, false, true), Result{"0 folders, error " + std::to_string(ENOENT)});
    g_readErrors = 0;
    // Each read lists a file, an unknown entry and a folder that are gone: none is stored, the
    // folder counts as entered.
    g_ghosts = true;
    Result more = txt;
    more.back() = "8 folders, error " + std::to_string(ENOENT);
    EXPECT_EQ(search(files, false, true), more);
    EXPECT_EQ(entries(search(all, true, true)), entries(folders));
    g_unknownTypes = true;
    EXPECT_EQ(entries(search(files, false, true)), entries(txt));
    g_ghosts = false;
    // Folders read without the entries' types.
    EXPECT_EQ(search(files, false, true), txt);
    EXPECT_EQ(search(all, false, true), everything);
    EXPECT_EQ(search(all, true, true), folders);
    EXPECT_EQ(search(lib(root / "sub"), true, false).size(), 2u);
    EXPECT_EQ(search(lib(root / "link.txt"), true, false).size(), 1u);
    g_unknownTypes = false;
}

TEST(PlatformFault, RenamesNeverReplaceWithOrWithoutAnAtomicNoReplaceRename) {
    for (int mode = 0; mode < 3; ++mode) {
        SCOPED_TRACE(mode == 0 ? "no-replace rename" : mode == 1 ? "hard links" : "neither");
        zbtest::TempFolder dir;
        const fs::path root = dir.path();
        zbtest::writeBytes(root / "a.txt", "a");
        zbtest::writeBytes(root / "b.txt", "b");
        fs::create_directories(root / "d1" / "inner");
        fs::create_directories(root / "d2");
        g_noRenameFlags = mode > 0;
        g_noHardLinks = mode == 2;
        auto rename = [&](const std::string& from, const std::string& to) {
            errno = 0;
            return zbp::rename(lib(root / from).c_str(), lib(root / to).c_str());
        };
        EXPECT_EQ(rename("a.txt", "c.txt"), 0);
        EXPECT_EQ(rename("c.txt", "b.txt"), -1);
        EXPECT_EQ(errno, EEXIST);
        // An empty folder as the target is not replaced either, as the system's rename would.
        EXPECT_EQ(rename("d1", "d2"), -1);
        EXPECT_EQ(errno, EEXIST);
        EXPECT_EQ(rename("d1\\", "d3"), 0);
        EXPECT_EQ(rename("none", "x"), -1);
        EXPECT_EQ(rename("b.txt", "no/b.txt"), -1);
        // The batch rename: one file takes the name, the other is refused and not recorded.
        CzbFileUtil util;
        util.RenameFile(Text(lib(root / "*.txt")), Text("same.txt"), false);
        EXPECT_EQ(util.getFindData()->size(), 2u);
        EXPECT_EQ(util.getProcessData()->size(), 1u);
        EXPECT_EQ(zbtest::readBytes(root / "same.txt"), "b");
        EXPECT_EQ(zbtest::readBytes(root / "c.txt"), "a");
        EXPECT_TRUE(fs::is_directory(root / "d2") && fs::exists(root / "d3" / "inner"));
        EXPECT_EQ(std::distance(fs::directory_iterator(root), fs::directory_iterator()), 4);
        g_noRenameFlags = false;
        g_noHardLinks = false;
    }
}

#endif
