// The listing, splitting and file operations of the platform layer.
#include <zbBase/platform/detail/zbpFileOps.h>
#include <zbBase/platform/detail/zbpFind.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <process.h>
#define ZBP_TEST_PID _getpid()
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#define ZBP_TEST_PID getpid()
#endif

namespace fs = std::filesystem;

namespace {

class Folder {
public:
    Folder() {
        static int counter = 0;
        m_root = fs::temp_directory_path() /
                 ("zbp_" + std::to_string(ZBP_TEST_PID) + "_" + std::to_string(counter++));
        fs::remove_all(m_root);
        fs::create_directories(m_root);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }
    // The path with backslashes, as the library hands it over.
    std::string text(const std::string& relative) const {
        std::string s = (m_root / relative).string();
        for (char& c : s) {
            if (c == '/') {
                c = '\\';
            }
        }
        return s;
    }
    void file(const std::string& relative, const std::string& content) const {
        fs::create_directories((m_root / relative).parent_path());
        std::ofstream(m_root / relative, std::ios::binary) << content;
    }
    fs::path path(const std::string& relative) const { return m_root / relative; }

private:
    fs::path m_root;
};

std::string read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> listing(const std::string& pattern) {
    std::vector<std::string> names;
    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(pattern.c_str(), &data);
    if (handle == -1) {
        return names;
    }
    do {
        names.push_back(data.name);
    } while (zbp::_findnext64(handle, &data) == 0);
    EXPECT_EQ(errno, ENOENT);
    zbp::_findclose(handle);
    return names;
}

} // namespace

TEST(zbpFind, WindowsWildcards) {
    struct {
        const char* pattern;
        const char* name;
        bool match;
    } cases[] = {
        {"*.*", "abc", true},     {"*.*", "a.b.c", true},     {"*.*", ".", true},
        {"*", "x", true},         {"*.txt", "a.txt", true},   {"*.txt", "a.txt.bak", false},
        {"*.TXT", "a.txt", true}, {"a?c", "abc", true},       {"a?c", "ac", false},
        {"a.*", "a", true},       {"a*b*c", "aXbYbZc", true}, {"a*b*c", "aXbYbZ", false},
        {"*a", "aaa", true},      {"", "a", false},           {"name", "name", true},
        {"*x*", "", false},       {"**", "q", true},          {"?.txt", ".txt", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " / " + c.name);
        EXPECT_EQ(zbp::matchWildcard(c.pattern, c.name), c.match);
    }
}

TEST(zbpFind, ListingRecordsAndOrder) {
    Folder folder;
    folder.file("b.txt", "12345");
    folder.file("A.txt", "");
    folder.file("c", "no dot");
    fs::create_directories(folder.path("sub"));
    std::vector<std::string> all = listing(folder.text("*.*"));
#if !defined(_WIN32)
    EXPECT_EQ(all, (std::vector<std::string>{".", "..", "A.txt", "b.txt", "c", "sub"}));
#else
    EXPECT_EQ(all.size(), 6u);
#endif
    EXPECT_EQ(listing(folder.text("*.txt")).size(), 2u);
    EXPECT_TRUE(listing(folder.text("*.zzz")).empty());
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(listing(folder.text("missing\\*.*")).empty());
    EXPECT_EQ(errno, ENOENT);
    // Forward slashes work as well.
    EXPECT_EQ(listing((folder.path("") / "b.txt").generic_string()).size(), 1u);

    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(folder.text("b.txt").c_str(), &data);
    ASSERT_NE(handle, -1);
    EXPECT_EQ(data.size, 5);
    EXPECT_EQ(data.attrib & _A_SUBDIR, 0u);
    EXPECT_EQ(zbp::_findnext64(handle, &data), -1);
    EXPECT_EQ(zbp::_findclose(handle), 0);

    _finddata64i32_t small;
    handle = zbp::_findfirst64i32(folder.text("sub").c_str(), &small);
    ASSERT_NE(handle, -1);
    EXPECT_NE(small.attrib & _A_SUBDIR, 0u);
    EXPECT_STREQ(small.name, "sub");
    zbp::_findclose(handle);

    zbp::WIN32_FIND_DATAA win;
    zbp::HANDLE found = zbp::FindFirstFileA(folder.text("c").c_str(), &win);
    ASSERT_NE(found, INVALID_HANDLE_VALUE);
    EXPECT_EQ(win.nFileSizeLow, 6u);
    EXPECT_EQ(win.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_FALSE(zbp::FindNextFileA(found, &win));
    EXPECT_TRUE(zbp::FindClose(found));
    EXPECT_EQ(zbp::FindFirstFileA(folder.text("none").c_str(), &win), INVALID_HANDLE_VALUE);
}

TEST(zbpFind, SplitPath) {
    char drive[_MAX_DRIVE];
    char dir[_MAX_DIR];
    char fname[_MAX_FNAME];
    char ext[_MAX_EXT];
    zbp::_splitpath("x/y\\name.tar.gz", drive, dir, fname, ext);
    EXPECT_STREQ(drive, "");
    EXPECT_STREQ(dir, "x/y\\");
    EXPECT_STREQ(fname, "name.tar");
    EXPECT_STREQ(ext, ".gz");
    zbp::_splitpath("", drive, dir, fname, ext);
    EXPECT_STREQ(dir, "");
    EXPECT_STREQ(fname, "");
    zbp::_splitpath("d.x\\noext", nullptr, dir, fname, ext);
    EXPECT_STREQ(fname, "noext");
    EXPECT_STREQ(ext, "");
#if defined(_WIN32)
    zbp::_splitpath("C:\\a\\b.c", drive, dir, fname, ext);
    EXPECT_STREQ(drive, "C:");
#endif
}

TEST(zbpFileOps, RenameRemoveAndCopyKeepTheWindowsRules) {
    Folder folder;
    folder.file("a.txt", "a");
    folder.file("b.txt", "b");
    fs::create_directories(folder.path("dir"));

    EXPECT_EQ(zbp::rename(folder.text("a.txt").c_str(), folder.text("b.txt").c_str()), -1);
    EXPECT_EQ(read(folder.path("b.txt")), "b");
    EXPECT_EQ(zbp::rename(folder.text("a.txt").c_str(), folder.text("c.txt").c_str()), 0);
    EXPECT_EQ(read(folder.path("c.txt")), "a");
    EXPECT_EQ(zbp::rename(folder.text("dir").c_str(), (folder.text("dir2") + "\\").c_str()), 0);
    EXPECT_TRUE(fs::is_directory(folder.path("dir2")));

    EXPECT_EQ(zbp::remove(folder.text("dir2").c_str()), -1);
    EXPECT_TRUE(fs::is_directory(folder.path("dir2")));
    EXPECT_EQ(zbp::remove(folder.text("c.txt").c_str()), 0);
    EXPECT_EQ(zbp::remove(folder.text("c.txt").c_str()), -1);

    EXPECT_TRUE(zbp::CopyFileA(folder.text("b.txt").c_str(), folder.text("d.txt").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("d.txt")), "b");
    folder.file("e.txt", "eee");
    EXPECT_FALSE(zbp::CopyFileA(folder.text("e.txt").c_str(), folder.text("d.txt").c_str(), TRUE));
    EXPECT_EQ(read(folder.path("d.txt")), "b");
    EXPECT_TRUE(zbp::CopyFileA(folder.text("e.txt").c_str(), folder.text("d.txt").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("d.txt")), "eee");
    EXPECT_FALSE(zbp::CopyFileA(folder.text("d.txt").c_str(), folder.text("d.txt").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("d.txt")), "eee");
    EXPECT_FALSE(zbp::CopyFileA(folder.text("dir2").c_str(), folder.text("f").c_str(), FALSE));

    EXPECT_TRUE(zbp::sameFileContent(folder.text("e.txt").c_str(), folder.text("d.txt").c_str()));
    EXPECT_FALSE(zbp::sameFileContent(folder.text("e.txt").c_str(), folder.text("e.txt").c_str()));
    EXPECT_FALSE(zbp::sameFileContent(folder.text("b.txt").c_str(), folder.text("d.txt").c_str()));
    EXPECT_FALSE(zbp::sameFileContent(folder.text("b.txt").c_str(), folder.text("no").c_str()));
    EXPECT_TRUE(zbp::sameFile(folder.text("b.txt").c_str(), folder.text("b.txt").c_str()));
    EXPECT_FALSE(zbp::sameFile(folder.text("b.txt").c_str(), folder.text("no").c_str()));

    EXPECT_EQ(zbp::_mkdir(folder.text("m").c_str()), 0);
    EXPECT_EQ(zbp::_mkdir(folder.text("m").c_str()), -1);
    EXPECT_TRUE(zbp::CreateDirectoryA(folder.text("n").c_str(), nullptr));
    EXPECT_FALSE(zbp::CreateDirectoryA(folder.text("x\\y").c_str(), nullptr));
    EXPECT_EQ(zbp::_rmdir((folder.text("m") + "\\").c_str()), 0);
    EXPECT_FALSE(fs::exists(folder.path("m")));
}

TEST(zbpFileOps, CopyOverAFileGoesBesideItAndKeepsTheRecord) {
    Folder folder;
    folder.file("src.bin", std::string(70000, 's'));
    folder.file("dst.bin", "old");
    auto count = [&] {
        size_t n = 0;
        for (auto it = fs::directory_iterator(folder.path("")); it != fs::directory_iterator();
             ++it) {
            ++n;
        }
        return n;
    };
    const fs::file_time_type written =
        fs::last_write_time(folder.path("src.bin")) - std::chrono::hours(50);
    fs::last_write_time(folder.path("src.bin"), written);
#if !defined(_WIN32)
    fs::permissions(folder.path("src.bin"),
                    fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
#endif
    EXPECT_TRUE(
        zbp::CopyFileA(folder.text("src.bin").c_str(), folder.text("dst.bin").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("dst.bin")), std::string(70000, 's'));
    EXPECT_EQ(fs::last_write_time(folder.path("dst.bin")), written);
    EXPECT_EQ(count(), 2u); // nothing left beside the target
#if !defined(_WIN32)
    EXPECT_EQ(fs::status(folder.path("dst.bin")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
#endif
    // A read-only target is refused, as the system refuses it, and keeps its bytes.
    folder.file("ro.bin", "read only");
    fs::permissions(folder.path("ro.bin"),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
#if defined(_WIN32)
    EXPECT_FALSE(
        zbp::CopyFileA(folder.text("src.bin").c_str(), folder.text("ro.bin").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("ro.bin")), "read only");
#endif
    fs::permissions(folder.path("ro.bin"), fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(count(), 3u);

#if !defined(_WIN32)
    // The target name gets a new file: a hard link to the old one keeps the old bytes.
    fs::create_hard_link(folder.path("ro.bin"), folder.path("twin.bin"));
    EXPECT_TRUE(
        zbp::CopyFileA(folder.text("src.bin").c_str(), folder.text("ro.bin").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("twin.bin")), "read only");
    EXPECT_EQ(read(folder.path("ro.bin")), std::string(70000, 's'));

    // A pipe as the source is no file to copy: refused at once, never waited on.
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(
        zbp::CopyFileA(folder.text("pipe").c_str(), folder.text("dst.bin").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("dst.bin")), std::string(70000, 's'));
#endif
}

#if !defined(_WIN32)
TEST(zbpFind, LinksAreListedWithTheirTargetsRecord) {
    Folder folder;
    folder.file("target.txt", "12345");
    fs::create_directories(folder.path("dir"));
    fs::create_symlink(folder.path("target.txt"), folder.path("to_file"));
    fs::create_directory_symlink(folder.path("dir"), folder.path("to_dir"));
    fs::create_symlink(folder.path("none"), folder.path("to_none"));
    // Distinct times for every node, the links' own ones included.
    auto stamp = [&](const char* name, long long seconds) {
        struct timespec times[2] = {{seconds, 0}, {seconds + 1, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, folder.path(name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    };
    stamp("target.txt", 1000000000);
    stamp("dir", 1100000000);
    stamp("to_file", 1200000000);
    stamp("to_dir", 1300000000);
    stamp("to_none", 1400000000);
    chmod(folder.path("target.txt").c_str(), 0444);

    struct Expected {
        const char* name;
        unsigned attrib;
        long long size;
        long long written;
    } expected[] = {
        {"to_dir", _A_ARCH, 0, 1100000001},
        {"to_file", _A_ARCH | _A_RDONLY, 5, 1000000001},
        {"to_none", _A_ARCH, static_cast<long long>(folder.path("none").string().size()),
         1400000001},
    };
    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(folder.text("to_*").c_str(), &data);
    ASSERT_NE(handle, -1);
    for (const Expected& e : expected) {
        SCOPED_TRACE(e.name);
        EXPECT_STREQ(data.name, e.name);
        EXPECT_EQ(data.attrib, e.attrib);
        EXPECT_EQ(data.size, e.size);
        EXPECT_EQ(data.time_write, e.written);
        EXPECT_EQ(data.time_access, e.written - 1);
        zbp::_findnext64(handle, &data);
    }
    zbp::_findclose(handle);

    EXPECT_TRUE(zbp::isFolderLink(folder.text("to_dir").c_str()));
    EXPECT_TRUE(zbp::isFolderLink((folder.text("to_dir") + "\\").c_str()));
    EXPECT_TRUE(zbp::isFolderLink(folder.text("to_none").c_str()));
    EXPECT_FALSE(zbp::isFolderLink(folder.text("to_file").c_str()));
    EXPECT_FALSE(zbp::isFolderLink(folder.text("dir").c_str()));
    EXPECT_EQ(zbp::removeFolderLink(folder.text("to_file").c_str()), -1);
    EXPECT_EQ(zbp::removeFolderLink((folder.text("to_dir") + "\\").c_str()), 0);
    EXPECT_FALSE(fs::is_symlink(folder.path("to_dir")));
    EXPECT_TRUE(fs::is_directory(folder.path("dir")));
}
#endif

TEST(zbpFileOps, CopyToANewNameAndCompareContents) {
    Folder folder;
    folder.file("src.bin", std::string(70000, 's'));
    const fs::file_time_type written =
        fs::last_write_time(folder.path("src.bin")) - std::chrono::hours(30);
    fs::last_write_time(folder.path("src.bin"), written);
    // With failIfExists the copy goes to a new file of its own, with the source's record.
    EXPECT_TRUE(
        zbp::CopyFileA(folder.text("src.bin").c_str(), folder.text("new.bin").c_str(), TRUE));
    EXPECT_EQ(read(folder.path("new.bin")), std::string(70000, 's'));
    EXPECT_EQ(fs::last_write_time(folder.path("new.bin")), written);
    EXPECT_FALSE(
        zbp::CopyFileA(folder.text("src.bin").c_str(), folder.text("no\\new.bin").c_str(), TRUE));
    EXPECT_FALSE(fs::exists(folder.path("no")));
    EXPECT_FALSE(zbp::CopyFileA(nullptr, folder.text("x.bin").c_str(), FALSE));
    EXPECT_FALSE(zbp::CopyFileA(folder.text("src.bin").c_str(), nullptr, FALSE));
    EXPECT_FALSE(zbp::CopyFileA(folder.text("none").c_str(), folder.text("x.bin").c_str(), FALSE));
    EXPECT_FALSE(fs::exists(folder.path("x.bin")));

    // Contents are compared block by block, past the first block too.
    std::string big(200000, 'b');
    folder.file("big1", big);
    folder.file("big2", big);
    big[150000] = 'c';
    folder.file("big3", big);
    EXPECT_TRUE(zbp::sameFileContent(folder.text("big1").c_str(), folder.text("big2").c_str()));
    EXPECT_FALSE(zbp::sameFileContent(folder.text("big1").c_str(), folder.text("big3").c_str()));
    folder.file("short", std::string(65536, 'b'));
    EXPECT_FALSE(zbp::sameFileContent(folder.text("big1").c_str(), folder.text("short").c_str()));
    EXPECT_FALSE(zbp::sameFileContent(nullptr, folder.text("big1").c_str()));
    EXPECT_FALSE(zbp::sameFileContent(folder.text("big1").c_str(), nullptr));
    EXPECT_FALSE(zbp::sameFile(nullptr, folder.text("big1").c_str()));
    EXPECT_FALSE(zbp::sameFile(folder.text("big1").c_str(), nullptr));
    EXPECT_FALSE(zbp::isFolderLink(nullptr));
    EXPECT_FALSE(zbp::isFolderLink(""));
    EXPECT_EQ(zbp::removeFolderLink(folder.text("big1").c_str()), -1);
    EXPECT_TRUE(fs::exists(folder.path("big1")));

#if !defined(_WIN32)
    // Null paths fail with EINVAL, as the runtime's checked functions do.
    errno = 0;
    EXPECT_EQ(zbp::remove(nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(zbp::rename(nullptr, folder.text("a").c_str()), -1);
    EXPECT_EQ(zbp::rename(folder.text("big1").c_str(), nullptr), -1);
    EXPECT_EQ(zbp::_mkdir(nullptr), -1);
    EXPECT_EQ(zbp::_rmdir(nullptr), -1);
    EXPECT_FALSE(zbp::CreateDirectoryA(nullptr, nullptr));
    EXPECT_TRUE(fs::exists(folder.path("big1")));
#endif
}

#if defined(__linux__)
TEST(zbpFileOps, CopyReadsPastTheSizeTheSystemReports) {
    // Files of /proc say they hold 0 bytes and hold more: the copy takes what reading gives.
    Folder folder;
    const std::string expected = read("/proc/version");
    ASSERT_FALSE(expected.empty());
    EXPECT_TRUE(zbp::CopyFileA("/proc/version", folder.text("version").c_str(), FALSE));
    EXPECT_EQ(read(folder.path("version")), expected);
    EXPECT_TRUE(zbp::CopyFileA("\\proc\\version", folder.text("version2").c_str(), TRUE));
    EXPECT_EQ(read(folder.path("version2")), expected);
    // A device is written where it stands, never replaced by a file.
    EXPECT_TRUE(zbp::CopyFileA(folder.text("version").c_str(), "/dev/null", FALSE));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_FALSE(zbp::sameFile(folder.text("none").c_str(), folder.text("version").c_str()));
}
#endif

#if !defined(_WIN32)
TEST(zbpFind, BadHandlesAndTheRootFolder) {
    __finddata64_t data;
    errno = 0;
    EXPECT_EQ(zbp::_findfirst64(nullptr, &data), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(zbp::_findnext64(-1, &data), -1);
    EXPECT_EQ(zbp::_findnext64(0, &data), -1);
    EXPECT_EQ(zbp::_findclose(-1), -1);
    EXPECT_EQ(zbp::_findclose(0), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(zbp::FindClose(INVALID_HANDLE_VALUE));

    // The root lists no "." and "..", as a drive's root on Windows; a name in the root is found
    // with either separator.
    EXPECT_EQ(listing("\\tmp"), std::vector<std::string>{"tmp"});
    EXPECT_EQ(listing("/tmp"), std::vector<std::string>{"tmp"});
    std::vector<std::string> root = listing("\\*");
    EXPECT_NE(std::find(root.begin(), root.end(), "tmp"), root.end());
    EXPECT_EQ(std::find(root.begin(), root.end(), "."), root.end());
    EXPECT_EQ(std::find(root.begin(), root.end(), ".."), root.end());
    // A name without a folder is looked for in the current folder.
    Folder folder;
    folder.file("only.txt", "x");
    const fs::path saved = fs::current_path();
    fs::current_path(folder.path(""));
    const std::vector<std::string> here = listing("only.*");
    fs::current_path(saved);
    EXPECT_EQ(here, std::vector<std::string>{"only.txt"});
}
#endif
