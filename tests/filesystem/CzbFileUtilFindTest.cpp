#include "filesystem/TempTree.h"

#include <zbBase/filesystem/CzbFileUtil.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#if !defined(_WIN32)
#include "support/zbFaults.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using fstest::expectListed;
using fstest::Names;
using fstest::TempTree;
using fstest::Text;
namespace fs = std::filesystem;

namespace {

// root: a.txt  b.log  .hidden.txt  m.txt/inner.txt  sub/c.txt  sub/deep/d.txt  .dot/e.txt
void buildTree(const TempTree& tree) {
    for (const char* name :
         {"b.log", ".hidden.txt", "m.txt/inner.txt", "sub/c.txt", "sub/deep/d.txt", ".dot/e.txt"}) {
        tree.file(name);
    }
    tree.file("a.txt", "12345");
}

// The split of a search path, the recursion steps, and the names found below the tree.
class Splitter : public CzbFileUtil {
public:
    using Split = std::pair<std::string, std::string>;
    Split split(const std::string& path, int folderSize = 512, int patternSize = 256) {
        char folder[512] = "x";
        char pattern[256] = "x";
        makeAbPathWildcard(Text(path), folder, folderSize, pattern, patternSize);
        return {folder, pattern};
    }
    Split splitFolder(const std::string& path) {
        char folder[512];
        char pattern[256];
        makeAbPathWildcardFolder(Text(path), folder, sizeof folder, pattern, sizeof pattern);
        return {folder, pattern};
    }
    Names below(const TempTree& tree) const {
        Names out = fstest::names(m_findData);
        for (std::string& name : out) {
            EXPECT_EQ(name.compare(0, tree.text().size() + 1, tree.text() + "\\"), 0) << name;
            name.erase(0, tree.text().size() + 1);
        }
        return out;
    }
    Names files(const TempTree& tree, const std::string& path, bool subDir) {
        FindFile(Text(tree.text(path)), subDir);
        return below(tree);
    }
    Names folders(const TempTree& tree, const std::string& path, bool subDir) {
        FindFolder(Text(tree.text(path)), subDir);
        return below(tree);
    }
    // Entries found × 1000 + folders entered × 100 + the error number.
    size_t code(const std::string& path, bool subDir, bool folders = false) {
        folders ? FindFolder(Text(path), subDir) : FindFile(Text(path), subDir);
        return m_findData.size() * 1000 + getFindSubDirCount() * 100 + getLastError();
    }
    using CzbFileUtil::FindFileSubDir;
    using CzbFileUtil::FindFolderSubDir;
    using CzbFileUtil::makeAbPathWildcard;
};

} // namespace

TEST(CzbFileUtilFind, FilesAndFoldersInOneFolderAndInTheTree) {
    TempTree tree;
    buildTree(tree);
    Splitter util;
    EXPECT_EQ(util.getLastError(), 1);
    EXPECT_EQ(util.getFindSubDirCount(), 0);
    expectListed(util.files(tree, "*.txt", false), {".hidden.txt", "a.txt"});
    EXPECT_EQ(util.getFindSubDirCount(), 1);
    EXPECT_EQ(util.getLastError(), ENOENT);
    __finddata64_t* a = util.getFindData(Text("a.txt"));
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->size, 5);
    EXPECT_EQ(a->attrib & _A_SUBDIR, 0u);
    EXPECT_LE(std::llabs(static_cast<long long>(a->time_write - std::time(nullptr))), 3600);
    EXPECT_EQ(util.getFindData(Text("A.txt")), nullptr);
    EXPECT_EQ(util.getFindData(Text("m.txt")), nullptr); // a folder matching the pattern
    EXPECT_EQ(util.getFindData(nullptr), nullptr);
    // Depth first: the matches of a folder, then its subtrees; ".dot" is never entered.
    expectListed(util.files(tree, "*.txt", true),
                 {".hidden.txt", "a.txt", "m.txt\\inner.txt", "sub\\c.txt", "sub\\deep\\d.txt"});
    EXPECT_EQ(util.getFindSubDirCount(), 4);
    // No match at the top, matches below.
    expectListed(util.files(tree, "d.txt", true), {"sub\\deep\\d.txt"});
    EXPECT_EQ(util.getFindSubDirCount(), 3);
    EXPECT_TRUE(util.files(tree, "*.zzz", false).empty());
    EXPECT_EQ(util.getFindSubDirCount() + util.getLastError(), ENOENT);
    // '?' is one character; letters match in either case.
    expectListed(util.files(tree, "?.TXT", false), {"a.txt"});
    EXPECT_EQ(util.files(tree, "*.*", false).size(), 3u);
    CzbFileUtil& base = util;
    CzbFileUtil copy(util);
    util.clear();
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getFindSubDirCount() + util.getLastError(), 1);
    base = copy;
    base = base; // assigned to itself, it keeps its lists
    EXPECT_EQ(util.getFindData()->size() + copy.getFindData()->size(), 6u);
    EXPECT_NE(util.getFindData(), copy.getFindData());
    EXPECT_EQ(copy.getLastError(), ENOENT);
    // Folders: the folder bit on each; without wildcards the last component names the one.
    expectListed(util.folders(tree, "*", true), {"m.txt", "sub", "sub\\deep"});
    EXPECT_EQ(util.getFindSubDirCount(), 4);
    EXPECT_EQ(util.m_findData[1].attrib & _A_SUBDIR, unsigned(_A_SUBDIR));
    ASSERT_NE(util.getFindData(Text("deep")), nullptr);
    EXPECT_EQ(std::string(util.getFindData(Text("deep"))->name), tree.text("sub\\deep"));
    EXPECT_EQ(std::string(util.getProcessPath()), tree.text() + "\\");
    expectListed(util.folders(tree, "sub", false), {"sub"});
    EXPECT_TRUE(util.folders(tree, ".dot", false).empty());
}

TEST(CzbFileUtilFind, RelativePathsAndSeparators) {
    TempTree tree;
    buildTree(tree);
    Splitter util;
    tree.enter("sub");
    const char* cases[][2] = {{"..\\sub\\.\\*.txt", "sub\\c.txt"},
                              {"c.txt", "sub\\c.txt"},
                              {"../m.txt/*", "m.txt\\inner.txt"}};
    for (const auto& c : cases) {
        util.FindFile(Text(c[0]), false);
        EXPECT_EQ(util.below(tree), Names{c[1]}) << c[0];
    }
    util.FindFile(Text(tree.root().generic_string() + "/sub/deep/*.txt"), false);
    EXPECT_EQ(util.below(tree), Names{"sub\\deep\\d.txt"});
    EXPECT_EQ(std::string(util.getProcessPath()), tree.text("sub\\deep") + "\\");
    EXPECT_EQ(util.split("x/../y/*.c"), Splitter::Split(tree.text("sub\\y") + "\\", "*.c"));
    // A network path by address is kept as it stands.
    EXPECT_EQ(util.split("\\\\10.1.2.3\\share\\*.txt"),
              Splitter::Split("\\\\10.1.2.3\\share\\", "*.txt"));
#if defined(_WIN32)
    // A drive followed by a name: the name stands in the current folder of that drive.
    const std::string drive = tree.text().substr(0, 2);
    EXPECT_EQ(util.split(drive + "name"), Splitter::Split(tree.text("sub") + "\\", "name"));
#else
    // No drives here: "C:name" is a relative name.
    EXPECT_EQ(util.split("C:name"), Splitter::Split(tree.text("sub") + "\\", "C:name"));
#endif
}

TEST(CzbFileUtilFind, RecursionStepsAddToTheLists) {
    TempTree tree;
    buildTree(tree);
    tree.dir("sub/empty");
    tree.file("sub/.dot/f.txt");
    Splitter util;
    ASSERT_EQ(util.files(tree, "a.txt", false).size(), 1u);
    ASSERT_EQ(util.getFindSubDirCount(), 1);
    // A step counts its folder, appends its finds and leaves the last search's error alone.
    util.FindFileSubDir(Text(tree.text("sub") + "\\"), Text("*.txt"));
    expectListed(util.below(tree), {"a.txt", "sub\\c.txt", "sub\\deep\\d.txt"});
    EXPECT_EQ(util.getFindSubDirCount(), 1 + 3); // sub, sub\deep, sub\empty
    EXPECT_EQ(util.getLastError(), ENOENT);
    util.FindFileSubDir(Text(tree.text("sub\\empty") + "\\"), Text("*.txt"));
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_EQ(util.getFindSubDirCount(), 5);
    util.clear();
    util.FindFolderSubDir(tree.text("sub\\").c_str(), "*");
    expectListed(util.below(tree), {"sub\\deep", "sub\\empty"});
    EXPECT_EQ(util.getFindSubDirCount(), 3);
    EXPECT_EQ(util.getLastError(), 1);
    // The folder is plain text put in front of each name: an empty one is the current folder.
    tree.enter();
    util.clear();
    util.FindFileSubDir(Text(""), Text("a.txt"));
    EXPECT_EQ(fstest::names(util.m_findData), Names{"a.txt"});
    EXPECT_EQ(util.splitFolder("sub\\*.c"), util.split("sub\\*.c"));
    EXPECT_EQ(util.splitFolder("sub\\*.c"), Splitter::Split(tree.text("sub") + "\\", "*.c"));
}

TEST(CzbFileUtilFind, BadInputGivesEmptyLists) {
    TempTree tree;
    buildTree(tree);
    tree.enter();
    Splitter util;
    // A lone separator names a root here: no walk through the whole disk.
    for (const std::string& path : {tree.text("missing\\*.txt"), tree.text() + "\\", std::string(),
                                    std::string("\\"), std::string("/")}) {
        EXPECT_EQ(util.code(path, path.size() > 1) % 100 + util.m_findData.size(), 0u + ENOENT)
            << path;
        EXPECT_EQ(util.code(path, false, true) / 100, 0u) << path;
    }
    EXPECT_EQ((util.FindFile(nullptr, true), util.getLastError()), EINVAL);
    EXPECT_EQ((util.FindFolder(nullptr, true), util.getLastError()), EINVAL);
    // A file where the folder should stand (the error number is the platform's).
    EXPECT_EQ(util.code(tree.text("a.txt\\*"), true) / 100, 0u);
#if !defined(_WIN32)
    EXPECT_EQ(util.getLastError(), ENOENT);
#endif
    // Buffers that cannot take the parts get empty texts, never a part of one.
    EXPECT_EQ(util.split(tree.text("a.txt"), 8, 256), Splitter::Split("", ""));
    EXPECT_EQ(util.split(tree.text("a.txt"), 512, 5), Splitter::Split("", ""));
    EXPECT_EQ(util.split(tree.text("a.txt"), 512, 0), Splitter::Split("", "x"));
    EXPECT_EQ(util.split(tree.text("a.txt"), -1, 256), Splitter::Split("x", ""));
    char folder[16] = "x";
    util.makeAbPathWildcard(Text("a.txt"), folder, sizeof folder, nullptr, 256);
    EXPECT_STREQ(folder, "");
    util.makeAbPathWildcard(nullptr, folder, sizeof folder, nullptr, 0);
    EXPECT_STREQ(folder, "");
    // Over the limits nothing is searched.
    const std::string longFolder = std::string(300, 'f') + "\\*.txt";
    const std::string longPath =
        std::string(200, 'f') + "\\" + std::string(200, 'g') + "\\" + std::string(200, 'h');
    for (const std::string& path : {longFolder, std::string(256, 'p'), longPath}) {
        EXPECT_EQ(util.code(tree.text(path), true), 0u + ENAMETOOLONG);
    }
}

TEST(CzbFileUtilFind, EntriesNearThePathLimits) {
    TempTree tree;
    // A folder path of 254 with its backslash: names of 5 make 259 and fit, 6 are left out.
    const size_t rootLength = tree.text().size();
    ASSERT_LT(rootLength, 200u);
    const std::string folder(252 - rootLength, 'd');
    tree.file(folder + "/a.txt", "fits");
    tree.file(folder + "/ab.txt", "too long");
    tree.file(folder + "/c.txt", "fits");
    Splitter util;
    EXPECT_EQ(util.files(tree, "*.txt", true), (Names{folder + "\\a.txt", folder + "\\c.txt"}));
    EXPECT_EQ(strlen(util.m_findData.at(0).name), 259u);
    EXPECT_EQ(util.getFindSubDirCount(), 1);
#if !defined(_WIN32)
    // Folders are entered up to a path of 511 with the backslash; the count tells.
    const std::string ab = std::string(200, 'a') + "/" + std::string(200, 'b');
    const size_t rest = 511 - (rootLength + 1 + 5 + 201 + 201) - 1; // below root\deep\a...\b...\ .
    for (const std::string& last :
         {std::string(rest - 5, 'c'), std::string(rest, 'e'), std::string(rest + 1, 'f')}) {
        tree.dir("deep/" + ab + "/" + last + "/x");
    }
    // Start, a, a\b, a\b\c, a\b\c\x, a\b\e (511); not f (512) nor e\x. Only a is stored.
    EXPECT_EQ(util.folders(tree, "deep\\*", true), Names{"deep\\" + std::string(200, 'a')});
    EXPECT_EQ(util.getFindSubDirCount(), 1 + 5);
#endif
}

#if !defined(_WIN32)

namespace {

void stamp(const fs::path& path, long long seconds) {
    struct timespec times[2] = {{seconds, 0}, {seconds + 1, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

long long changed(const fs::path& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 ? static_cast<long long>(info.st_ctime) : -1;
}

} // namespace

TEST(CzbFileUtilFind, ListingOrderAndTheRecordsOfFilesFoldersAndLinks) {
    TempTree tree;
    // Names in upper-case byte order, ties by their bytes; a leading dot sorts first.
    const Names order = {".a.txt", "a-b.txt", "A.txt", "a.txt",  "a0.txt",
                         "b.txt",  "Z.txt",   "[.txt", "_u.txt", "\xc3\xa9.txt"};
    long long second = 1500000000;
    for (const std::string& name : Names(order.rbegin(), order.rend())) {
        tree.file(name, std::string(name.size(), 'x'));
        stamp(tree.path(name), second += 100);
    }
    chmod(tree.path("b.txt").c_str(), 0444);
    tree.file("sub/inner.txt", "123");
    fs::create_directory_symlink(tree.path("sub"), tree.path("to_sub.txt"));
    fs::create_symlink(tree.path("b.txt"), tree.path("to_b.txt"));
    fs::create_symlink(tree.path("gone"), tree.path("to_gone.txt"));
    stamp(tree.path("sub"), 1600000000);
    stamp(tree.path("to_sub.txt"), 1700000000);
    stamp(tree.path("to_b.txt"), 1700000100);
    stamp(tree.path("to_gone.txt"), 1700000200);
    CzbFileUtil util;
    util.FindFile(Text(tree.text("*.txt")), true);
    Names expected;
    for (const std::string& name : order) {
        expected.push_back(tree.text(name));
    }
    // The links sort between b.txt and Z.txt; the subfolder's matches come last.
    expected.insert(expected.begin() + 6,
                    {tree.text("to_b.txt"), tree.text("to_gone.txt"), tree.text("to_sub.txt")});
    expected.push_back(tree.text("sub\\inner.txt"));
    EXPECT_EQ(fstest::names(util.m_findData), expected);
    EXPECT_EQ(util.getFindSubDirCount(), 2);
    // Links give the target's record (a folder's with size 0), or their own if dangling.
    auto record = [&](const char* name) { // attributes, size, written, written - accessed
        const __finddata64_t* e = util.getFindData(Text(name));
        return e ? std::to_string(e->attrib) + " " + std::to_string(e->size) + " " +
                       std::to_string(e->time_write) + " " +
                       std::to_string(e->time_write - e->time_access)
                 : "none";
    };
    EXPECT_EQ(record("a.txt"), "32 5 1500000701 1");
    EXPECT_EQ(record("b.txt"), "33 5 1500000501 1"); // the owner may not write
    EXPECT_EQ(record("to_b.txt"), "33 5 1500000501 1");
    EXPECT_EQ(record("to_sub.txt"), "32 0 1600000001 1");
    EXPECT_EQ(record("to_gone.txt"),
              "32 " + std::to_string(tree.path("gone").string().size()) + " 1700000201 1");
    EXPECT_EQ(util.getFindData(Text("a.txt"))->time_create, changed(tree.path("a.txt")));
    // Folders: the folder bit, size 0, their own times; read-only ones carry 0x01.
    tree.dir("ro");
    stamp(tree.path("ro"), 1650000000);
    chmod(tree.path("ro").c_str(), 0555);
    util.FindFolder(Text(tree.text("*")), false);
    ASSERT_EQ(fstest::names(util.m_findData), (Names{tree.text("ro"), tree.text("sub")}));
    EXPECT_EQ(util.m_findData[0].attrib, 0x11u); // read-only folder
    EXPECT_EQ(util.m_findData[1].attrib, 0x10u);
    EXPECT_EQ(util.m_findData[0].size, 0);
    EXPECT_EQ(util.m_findData[0].time_write, 1650000001);
    chmod(tree.path("ro").c_str(), 0755);
    // Devices are plain entries of size 0.
    util.FindFile(Text("\\dev\\null"), false);
    ASSERT_EQ(fstest::names(util.m_findData), Names{"\\dev\\null"});
    EXPECT_EQ(util.m_findData[0].attrib + util.m_findData[0].size, 0x20u);
    // A folder of many entries (several reads of the folder) comes out whole and in order.
    Names many;
    for (int i = 0; i < 3000; ++i) {
        many.push_back(tree.text("many\\F" + std::to_string(10000 + i) + std::string(50, 'x')));
        tree.file("many/" + many.back().substr(tree.text("many").size() + 1), "");
    }
    util.FindFile(Text(tree.text("many\\*")), false);
    EXPECT_EQ(fstest::names(util.m_findData), many);
}

TEST(CzbFileUtilFind, AFolderThatCannotBeReadEndsNothing) {
    TempTree tree;
    tree.file("a/1.txt");
    tree.file("a/locked/2.txt");
    tree.file("a/z/3.txt");
    fs::permissions(tree.root(),
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(tree.path("a/locked"), fs::perms::owner_all);
    const std::string all = tree.text("a\\*.txt");
    const std::string locked = tree.text("a\\locked\\*.txt");
    int rc = zbtest::asUnprivileged([&] {
        CzbFileUtil util;
        util.FindFile(Text(all), true);
        // The locked folder counts as entered.
        int failures = util.getFindData()->size() == 2 && util.getFindSubDirCount() == 3 &&
                               util.getLastError() == ENOENT
                           ? 0
                           : 1;
        util.FindFile(Text(locked), false);
        failures |= util.getFindData()->empty() && util.getLastError() == EACCES ? 0 : 8;
        util.FindFolder(Text(tree.text("a\\*")), true);
        failures |= util.getFindData()->size() == 2 ? 0 : 16;
        return failures;
    });
    EXPECT_EQ(rc, 0);
    fs::permissions(tree.path("a/locked"), fs::perms::owner_all);
}

TEST(CzbFileUtilFind, ACurrentFolderThatCannotBeNamed) {
    TempTree tree;
    tree.file("a.txt");
    const std::string ab = std::string(200, 'a') + "/" + std::string(200, 'b');
    tree.file(ab + "/" + std::string(200, 'c') + "/x.txt");
    Splitter util;
    // A current folder over 511: a relative search finds nothing, an absolute one is as ever.
    tree.enter(ab + "/" + std::string(200, 'c'));
    EXPECT_EQ(util.code("*.txt", true), 0u + ENAMETOOLONG);
    EXPECT_EQ(util.code(tree.text("*.txt"), false), 1100u + ENOENT);
    // The current folder fits, but not with the relative folder behind it.
    tree.enter(ab);
    EXPECT_EQ(util.code(std::string(100, 'c') + "\\*.txt", false), 0u + ENAMETOOLONG);
    EXPECT_EQ(util.code(std::string(10, 'c') + "\\*.txt", false), 0u + ENOENT);
    // A directory part of 256 or 257 (255 after a drive on Windows) is refused, not cut.
    EXPECT_EQ(util.code("/" + std::string(253, 'd') + "/*.txt", false), 0u + ENOENT);
    EXPECT_EQ(util.code("/" + std::string(254, 'd') + "/*.txt", false), 0u + ENAMETOOLONG);
    EXPECT_EQ(util.code("/" + std::string(255, 'd') + "/*.txt", false), 0u + ENAMETOOLONG);
    // A removed current folder has no name: nothing is found, for the system's reason.
    tree.dir("gone");
    tree.enter("gone");
    fs::remove(tree.path("gone"));
    EXPECT_EQ(util.code("*.txt", true), 0u + ENOENT);
    EXPECT_EQ(util.code("*", true, true), 0u + ENOENT);
}

TEST(CzbFileUtilFind, AWalkOutOfDescriptorsGoesOnByPath) {
    TempTree tree;
    std::string deep;
    for (int level = 0; level < 24; ++level) {
        deep += "level" + std::to_string(level) + "/";
        tree.file(deep + "f.txt");
        tree.file(deep + "side" + std::to_string(level) + "/g.txt");
    }
    CzbFileUtil util;
    util.FindFile(Text(tree.text("*.txt")), true);
    const Names whole = fstest::names(util.m_findData);
    ASSERT_EQ(whole.size(), 48u);
    ASSERT_EQ(util.getFindSubDirCount(), 48);
    // Two free descriptors (counted from the lowest free one, free again if all were closed).
    const int lowest = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(lowest);
    struct rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &saved), 0);
    struct rlimit tight = saved;
    tight.rlim_cur = static_cast<rlim_t>(lowest + 2);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);
    util.FindFile(Text(tree.text("*.txt")), true);
    const int count = util.getFindSubDirCount();
    const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
    setrlimit(RLIMIT_NOFILE, &saved);
    close(next);
    EXPECT_EQ(fstest::names(util.m_findData), whole);
    EXPECT_EQ(count, 48);
    EXPECT_EQ(next, lowest);
}

#endif
