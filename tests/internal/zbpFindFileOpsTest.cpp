// The listing, splitting and file operations of the platform layer.
#include <zbBase/platform/detail/zbpFileOps.h>
#include <zbBase/platform/detail/zbpFind.h>

#include "filesystem/TempTree.h"

#include <cerrno>
#include <chrono>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

using fstest::readFile;
using fstest::TempTree;
namespace fs = std::filesystem;

namespace {

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

TEST(zbpFind, WindowsWildcardsAndSplits) {
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
        EXPECT_EQ(zbp::matchWildcard(c.pattern, c.name), c.match) << c.pattern << " " << c.name;
    }
    // The runtime's split: the extension from the last dot of the name on.
    char drive[_MAX_DRIVE], dir[_MAX_DIR], fname[_MAX_FNAME], ext[_MAX_EXT];
    zbp::_splitpath("x/y\\name.tar.gz", drive, dir, fname, ext);
    EXPECT_EQ(std::string(drive) + "|" + dir + "|" + fname + "|" + ext, "|x/y\\|name.tar|.gz");
    zbp::_splitpath("d.x\\noext", nullptr, dir, fname, ext);
    EXPECT_EQ(std::string(dir) + "|" + fname + "|" + ext, "d.x\\|noext|");
}

#if !defined(_WIN32)
TEST(zbpFind, BadHandlesTheRootFolderAndFolderLinks) {
    __finddata64_t data;
    errno = 0;
    EXPECT_EQ(zbp::_findfirst64(nullptr, &data), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(zbp::_findnext64(-1, &data) + zbp::_findnext64(0, &data) + zbp::_findclose(-1) +
                  zbp::_findclose(0),
              -4);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(zbp::FindClose(INVALID_HANDLE_VALUE));
    // The root lists no "." and "..", as a drive's root on Windows; either separator names it.
    EXPECT_EQ(listing("\\tmp"), std::vector<std::string>{"tmp"});
    EXPECT_EQ(listing("/tmp"), std::vector<std::string>{"tmp"});
    std::vector<std::string> root = listing("\\*");
    EXPECT_NE(std::find(root.begin(), root.end(), "tmp"), root.end());
    EXPECT_EQ(std::find(root.begin(), root.end(), "."), root.end());
    EXPECT_EQ(std::find(root.begin(), root.end(), ".."), root.end());
    // A name without a folder is looked for in the current folder; below the root "." and ".."
    // come first.
    TempTree tree;
    tree.file("only.txt", "x");
    tree.enter();
    EXPECT_EQ(listing("*"), (std::vector<std::string>{".", "..", "only.txt"}));
    // Links to folders (dangling ones too) are what DeleteFolder takes away instead of entering.
    tree.dir("dir");
    fs::create_directory_symlink(tree.path("dir"), tree.path("to_dir"));
    fs::create_symlink(tree.path("only.txt"), tree.path("to_file"));
    fs::create_symlink(tree.path("none"), tree.path("to_none"));
    EXPECT_TRUE(zbp::isFolderLink(tree.text("to_dir").c_str()) &&
                zbp::isFolderLink((tree.text("to_dir") + "\\").c_str()) &&
                zbp::isFolderLink(tree.text("to_none").c_str()));
    EXPECT_FALSE(zbp::isFolderLink(tree.text("to_file").c_str()) ||
                 zbp::isFolderLink(tree.text("dir").c_str()) || zbp::isFolderLink(nullptr) ||
                 zbp::isFolderLink(""));
    EXPECT_EQ(zbp::removeFolderLink(tree.text("to_file").c_str()) +
                  zbp::removeFolderLink(tree.text("only.txt").c_str()),
              -2);
    EXPECT_EQ(zbp::removeFolderLink((tree.text("to_dir") + "\\").c_str()), 0);
    EXPECT_EQ(tree.contents(), (fstest::Names{"dir/", "only.txt=x", "to_file@", "to_none@"}));
}
#endif

TEST(zbpFileOps, RemoveFoldersAndTheCopyRules) {
    TempTree tree;
    tree.file("b.txt", "b");
    tree.file("c.txt", "c");
    tree.dir("dir2");
    auto copy = [&](const std::string& from, const std::string& to, BOOL failIfExists) {
        return zbp::CopyFileA(tree.text(from).c_str(), tree.text(to).c_str(), failIfExists);
    };
    EXPECT_EQ(zbp::remove(tree.text("dir2").c_str()), -1);
    EXPECT_EQ(zbp::remove(tree.text("c.txt").c_str()), 0);
    EXPECT_EQ(zbp::remove(tree.text("c.txt").c_str()), -1);
    EXPECT_TRUE(copy("b.txt", "d.txt", FALSE));
    tree.file("e.txt", "eee");
    EXPECT_FALSE(copy("e.txt", "d.txt", TRUE));
    EXPECT_EQ(readFile(tree.path("d.txt")), "b");
    EXPECT_TRUE(copy("e.txt", "d.txt", FALSE));
    EXPECT_FALSE(copy("d.txt", "d.txt", FALSE) || copy("dir2", "f", FALSE) ||
                 copy("b.txt", "no\\new.bin", TRUE) || copy("none", "x.bin", FALSE) ||
                 zbp::CopyFileA(nullptr, tree.text("x.bin").c_str(), FALSE) ||
                 zbp::CopyFileA(tree.text("b.txt").c_str(), nullptr, FALSE));
    EXPECT_EQ(zbp::_mkdir(tree.text("m").c_str()), 0);
    EXPECT_EQ(zbp::_mkdir(tree.text("m").c_str()), -1);
    EXPECT_TRUE(zbp::CreateDirectoryA(tree.text("n").c_str(), nullptr));
    EXPECT_FALSE(zbp::CreateDirectoryA(tree.text("x\\y").c_str(), nullptr));
    EXPECT_EQ(zbp::_rmdir((tree.text("m") + "\\").c_str()), 0);
    EXPECT_EQ(tree.contents(), (fstest::Names{"b.txt=b", "d.txt=eee", "dir2/", "e.txt=eee", "n/"}));
#if !defined(_WIN32)
    // Null paths fail with EINVAL, as the runtime's checked functions do.
    errno = 0;
    EXPECT_EQ(zbp::remove(nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(zbp::rename(nullptr, tree.text("a").c_str()), -1);
    EXPECT_EQ(zbp::rename(tree.text("b.txt").c_str(), nullptr), -1);
    EXPECT_EQ(zbp::_mkdir(nullptr) + zbp::_rmdir(nullptr), -2);
    EXPECT_FALSE(zbp::CreateDirectoryA(nullptr, nullptr));
#endif
}

TEST(zbpFileOps, ContentsAreComparedBlockByBlock) {
    TempTree tree;
    std::string big(200000, 'b');
    tree.file("big1", big);
    tree.file("big2", big);
    big[150000] = 'c';
    tree.file("big3", big);
    tree.file("short", std::string(65536, 'b'));
    const std::string big1Path = tree.text("big1");
    const char* big1 = big1Path.c_str();
    auto same = [&](const char* a, const char* b) {
        return zbp::sameFileContent(tree.text(a).c_str(), tree.text(b).c_str());
    };
    EXPECT_TRUE(same("big1", "big2"));
    EXPECT_FALSE(same("big1", "big3") || same("big1", "short") || same("big1", "none") ||
                 zbp::sameFileContent(nullptr, big1) || zbp::sameFileContent(big1, nullptr));
    EXPECT_FALSE(same("big1", "big1")); // one file under two names is no copy
    EXPECT_TRUE(zbp::sameFile(big1, tree.text("big1").c_str()));
    EXPECT_FALSE(zbp::sameFile(big1, tree.text("no").c_str()) ||
                 zbp::sameFile(tree.text("none").c_str(), big1) || zbp::sameFile(nullptr, big1) ||
                 zbp::sameFile(big1, nullptr));
}

TEST(zbpFileOps, CopyOverAFileGoesBesideItAndKeepsTheRecord) {
    TempTree tree;
    const std::string bytes(70000, 's');
    tree.file("src.bin", bytes);
    tree.file("dst.bin", "old");
    const fs::file_time_type written =
        fs::last_write_time(tree.path("src.bin")) - std::chrono::hours(50);
    fs::last_write_time(tree.path("src.bin"), written);
    auto copy = [&](const std::string& from, const std::string& to, BOOL failIfExists) {
        return zbp::CopyFileA(tree.text(from).c_str(), tree.text(to).c_str(), failIfExists);
    };
#if !defined(_WIN32)
    const fs::perms mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(tree.path("src.bin"), mode);
#endif
    // Over a file and to a new name alike the copy takes the source's time (and mode).
    EXPECT_TRUE(copy("src.bin", "dst.bin", FALSE));
    EXPECT_TRUE(copy("src.bin", "new.bin", TRUE));
    for (const char* name : {"dst.bin", "new.bin"}) {
        EXPECT_EQ(readFile(tree.path(name)), bytes);
        EXPECT_EQ(fs::last_write_time(tree.path(name)), written);
#if !defined(_WIN32)
        EXPECT_EQ(fs::status(tree.path(name)).permissions(), mode);
#endif
    }
    // A read-only target is refused, as the system refuses it, and keeps its bytes.
    tree.file("ro.bin", "read only");
    fs::permissions(tree.path("ro.bin"),
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
#if defined(_WIN32)
    EXPECT_FALSE(copy("src.bin", "ro.bin", FALSE));
    EXPECT_EQ(readFile(tree.path("ro.bin")), "read only");
#endif
    fs::permissions(tree.path("ro.bin"), fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(std::distance(fs::directory_iterator(tree.root()), fs::directory_iterator()), 4);
#if !defined(_WIN32)
    // The target name gets a new file: a hard link to the old one keeps the old bytes.
    fs::create_hard_link(tree.path("ro.bin"), tree.path("twin.bin"));
    EXPECT_TRUE(copy("src.bin", "ro.bin", FALSE));
    EXPECT_EQ(readFile(tree.path("twin.bin")), "read only");
    EXPECT_EQ(readFile(tree.path("ro.bin")), bytes);
    // A pipe as the source is no file to copy: refused at once, never waited on.
    ASSERT_EQ(mkfifo(tree.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(copy("pipe", "dst.bin", FALSE));
    EXPECT_EQ(readFile(tree.path("dst.bin")), bytes);
#endif
#if defined(__linux__)
    // Files of /proc say they hold 0 bytes and hold more: the copy takes what reading gives.
    const std::string version = readFile("/proc/version");
    ASSERT_FALSE(version.empty());
    EXPECT_TRUE(zbp::CopyFileA("/proc/version", tree.text("version").c_str(), FALSE));
    EXPECT_TRUE(zbp::CopyFileA("\\proc\\version", tree.text("version2").c_str(), TRUE));
    EXPECT_EQ(readFile(tree.path("version")) + readFile(tree.path("version2")), version + version);
    // A device is written where it stands, never replaced by a file.
    EXPECT_TRUE(zbp::CopyFileA(tree.text("version").c_str(), "/dev/null", FALSE));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
#endif
}
