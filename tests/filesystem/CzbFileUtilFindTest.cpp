#include "filesystem/TempTree.h"

#include <zbBase/filesystem/CzbFileUtil.h>

#include <algorithm>
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

using fstest::TempTree;
using fstest::Text;
namespace fs = std::filesystem;

namespace {

// root: a.txt  b.log  .hidden.txt  m.txt/inner.txt  sub/c.txt  sub/deep/d.txt  .dot/e.txt
void buildTree(const TempTree& tree) {
    tree.file("a.txt", "12345");
    tree.file("b.log");
    tree.file(".hidden.txt");
    tree.file("m.txt/inner.txt");
    tree.file("sub/c.txt");
    tree.file("sub/deep/d.txt");
    tree.file(".dot/e.txt");
}

// Exposes the split of a search path and the recursion steps.
class Splitter : public CzbFileUtil {
public:
    std::pair<std::string, std::string> split(const std::string& path, int folderSize = 512,
                                              int patternSize = 256) {
        char folder[512] = "x";
        char pattern[256] = "x";
        makeAbPathWildcard(Text(path), folder, folderSize, pattern, patternSize);
        return {folder, pattern};
    }
    std::pair<std::string, std::string> splitFolder(const std::string& path) {
        char folder[512];
        char pattern[256];
        makeAbPathWildcardFolder(Text(path), folder, sizeof folder, pattern, sizeof pattern);
        return {folder, pattern};
    }
    using CzbFileUtil::FindFileSubDir;
    using CzbFileUtil::FindFolderSubDir;
    using CzbFileUtil::makeAbPathWildcard;
};

} // namespace

TEST(CzbFileUtilFind, FilesInOneFolderAndInTheTree) {
    TempTree tree;
    buildTree(tree);
    CzbFileUtil util;
    EXPECT_EQ(util.getLastError(), 1);
    EXPECT_EQ(util.getFindSubDirCount(), 0);

    util.FindFile(Text(tree.text("*.txt")), false);
    fstest::expectListed(fstest::names(util.m_findData),
                         {tree.text(".hidden.txt"), tree.text("a.txt")});
    EXPECT_EQ(util.getFindSubDirCount(), 1);
    EXPECT_EQ(util.getLastError(), ENOENT);
    EXPECT_EQ(std::string(util.getProcessPath()), tree.text() + "\\");

    __finddata64_t* a = util.getFindData(Text("a.txt"));
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->size, 5);
    EXPECT_EQ(a->attrib & _A_SUBDIR, 0u);
    EXPECT_LE(std::llabs(static_cast<long long>(a->time_write - std::time(nullptr))), 3600);
    EXPECT_EQ(util.getFindData(Text("A.txt")), nullptr);
    EXPECT_EQ(util.getFindData(Text("m.txt")), nullptr); // a folder matching the pattern

    // Depth first: the matches of a folder, then its subtrees; ".dot" is never entered.
    util.FindFile(Text(tree.text("*.txt")), true);
    fstest::expectListed(fstest::names(util.m_findData),
                         {tree.text(".hidden.txt"), tree.text("a.txt"),
                          tree.text("m.txt\\inner.txt"), tree.text("sub\\c.txt"),
                          tree.text("sub\\deep\\d.txt")});
    EXPECT_EQ(util.getFindSubDirCount(), 4);
    EXPECT_EQ(util.getLastError(), ENOENT);

    // No match at the top, matches below.
    util.FindFile(Text(tree.text("d.txt")), true);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("sub\\deep\\d.txt")});
    EXPECT_EQ(util.getFindSubDirCount(), 3);

    util.FindFile(Text(tree.text("*.zzz")), false);
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getFindSubDirCount(), 0);
    EXPECT_EQ(util.getLastError(), ENOENT);

    // '?' is one character; letters match in either case.
    util.FindFile(Text(tree.text("?.TXT")), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("a.txt")});
    util.FindFile(Text(tree.text("*.*")), false);
    EXPECT_EQ(util.getFindData()->size(), 3u);

    CzbFileUtil copy(util);
    util.clear();
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getFindSubDirCount(), 0);
    EXPECT_EQ(util.getLastError(), 1);
    EXPECT_EQ(copy.getFindData()->size(), 3u);
    EXPECT_EQ(copy.getLastError(), ENOENT);
    util = copy;
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_NE(util.getFindData(), copy.getFindData());
}

TEST(CzbFileUtilFind, Folders) {
    TempTree tree;
    buildTree(tree);
    CzbFileUtil util;
    util.FindFile(Text(tree.text("sub\\*.txt")), false);
    std::string processPath = util.getProcessPath();

    util.FindFolder(Text(tree.text("*")), true);
    fstest::expectListed(fstest::names(util.m_findData),
                         {tree.text("m.txt"), tree.text("sub"), tree.text("sub\\deep")});
    EXPECT_EQ(util.getFindSubDirCount(), 4);
    for (const __finddata64_t& entry : util.m_findData) {
        EXPECT_NE(entry.attrib & _A_SUBDIR, 0u);
    }
    ASSERT_NE(util.getFindData(Text("deep")), nullptr);
    EXPECT_EQ(std::string(util.getFindData(Text("deep"))->name), tree.text("sub\\deep"));
    EXPECT_EQ(processPath, util.getProcessPath());

    // Without wildcards the last component names the one folder.
    util.FindFolder(Text(tree.text("sub")), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("sub")});
    util.FindFolder(Text(tree.text(".dot")), false);
    EXPECT_TRUE(util.m_findData.empty());
}

TEST(CzbFileUtilFind, RelativePathsAndSeparators) {
    TempTree tree;
    buildTree(tree);
    CzbFileUtil util;
    tree.enter("sub");
    util.FindFile(Text("..\\sub\\.\\*.txt"), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("sub\\c.txt")});
    util.FindFile(Text("c.txt"), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("sub\\c.txt")});
    util.FindFile(Text("../m.txt/*"), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("m.txt\\inner.txt")});

    std::string forward = tree.root().generic_string() + "/sub/deep/*.txt";
    util.FindFile(Text(forward), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("sub\\deep\\d.txt")});
    EXPECT_EQ(std::string(util.getProcessPath()), tree.text("sub\\deep") + "\\");

    Splitter splitter;
    EXPECT_EQ(splitter.split("x/../y/*.c"),
              std::make_pair(tree.text("sub\\y") + "\\", std::string("*.c")));
    // A network path by address is kept as it stands.
    EXPECT_EQ(splitter.split("\\\\10.1.2.3\\share\\*.txt"),
              std::make_pair(std::string("\\\\10.1.2.3\\share\\"), std::string("*.txt")));
#if defined(_WIN32)
    // A drive followed by a name: the name stands in the current folder of that drive.
    std::string drive = tree.text().substr(0, 2);
    EXPECT_EQ(splitter.split(drive + "name"),
              std::make_pair(tree.text("sub") + "\\", std::string("name")));
#else
    // No drives here: "C:name" is a relative name.
    EXPECT_EQ(splitter.split("C:name"),
              std::make_pair(tree.text("sub") + "\\", std::string("C:name")));
#endif
}

TEST(CzbFileUtilFind, RecursionStepsAddToTheLists) {
    TempTree tree;
    buildTree(tree);
    tree.dir("sub/empty");
    tree.file("sub/.dot/f.txt");
    Splitter util;
    util.FindFile(Text(tree.text("a.txt")), false);
    ASSERT_EQ(util.getFindData()->size(), 1u);
    ASSERT_EQ(util.getFindSubDirCount(), 1);

    // A step counts its folder whether or not it holds a match, appends what it finds below
    // the entries already listed, and leaves the error of the last search alone.
    util.FindFileSubDir(Text(tree.text("sub") + "\\"), Text("*.txt"));
    fstest::expectListed(
        fstest::names(util.m_findData),
        {tree.text("a.txt"), tree.text("sub\\c.txt"), tree.text("sub\\deep\\d.txt")});
    EXPECT_EQ(util.getFindSubDirCount(), 1 + 3); // sub, sub\deep, sub\empty
    EXPECT_EQ(util.getLastError(), ENOENT);
    util.FindFileSubDir(Text(tree.text("sub\\empty") + "\\"), Text("*.txt"));
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_EQ(util.getFindSubDirCount(), 5);

    util.clear();
    util.FindFolderSubDir(tree.text("sub\\").c_str(), "*");
    fstest::expectListed(fstest::names(util.m_findData),
                         {tree.text("sub\\deep"), tree.text("sub\\empty")});
    EXPECT_EQ(util.getFindSubDirCount(), 3);
    EXPECT_EQ(util.getLastError(), 1);

    // The folder is plain text put in front of each name: an empty one is the current folder.
    tree.enter();
    util.clear();
    util.FindFileSubDir(Text(""), Text("a.txt"));
    fstest::expectListed(fstest::names(util.m_findData), {"a.txt"});
    EXPECT_EQ(util.splitFolder("sub\\*.c"), util.split("sub\\*.c"));
    EXPECT_EQ(util.splitFolder("sub\\*.c"),
              std::make_pair(tree.text("sub") + "\\", std::string("*.c")));
}

TEST(CzbFileUtilFind, BadInputGivesEmptyLists) {
    TempTree tree;
    buildTree(tree);
    tree.enter();
    CzbFileUtil util;
    const std::string cases[] = {tree.text("missing\\*.txt"), tree.text() + "\\", "", "\\", "/"};
    for (const std::string& path : cases) {
        SCOPED_TRACE(path);
        // A lone separator names a root here: no walk through the whole disk.
        bool below = path.size() > 1;
        util.FindFile(Text(path), below);
        EXPECT_TRUE(util.m_findData.empty());
        EXPECT_EQ(util.getLastError(), ENOENT);
        util.FindFolder(Text(path), false);
        EXPECT_TRUE(util.m_findData.empty());
    }
    util.FindFile(nullptr, true);
    EXPECT_TRUE(util.m_findData.empty());
    EXPECT_EQ(util.getLastError(), EINVAL);
    util.FindFolder(nullptr, true);
    EXPECT_EQ(util.getLastError(), EINVAL);
    // A file where the folder should stand (the error number is the platform's).
    util.FindFile(Text(tree.text("a.txt\\*")), true);
    EXPECT_TRUE(util.m_findData.empty());
    EXPECT_EQ(util.getFindSubDirCount(), 0);
#if !defined(_WIN32)
    EXPECT_EQ(util.getLastError(), ENOENT);
#endif
    // Buffers that cannot take the parts get empty texts, never a part of one.
    Splitter splitter;
    const std::pair<std::string, std::string> none("", "");
    EXPECT_EQ(splitter.split(tree.text("a.txt"), 8, 256), none);
    EXPECT_EQ(splitter.split(tree.text("a.txt"), 512, 5), none);
    EXPECT_EQ(splitter.split(tree.text("a.txt"), 512, 0),
              std::make_pair(std::string(""), std::string("x")));
    EXPECT_EQ(splitter.split(tree.text("a.txt"), -1, 256),
              std::make_pair(std::string("x"), std::string("")));
    char folder[16] = "x";
    splitter.makeAbPathWildcard(Text("a.txt"), folder, sizeof folder, nullptr, 256);
    EXPECT_STREQ(folder, "");
    splitter.makeAbPathWildcard(nullptr, folder, sizeof folder, nullptr, 0);
    EXPECT_STREQ(folder, "");
    // Over the limits nothing is searched.
    std::string longFolder = tree.text() + "\\" + std::string(300, 'f') + "\\*.txt";
    std::string longPattern = tree.text() + "\\" + std::string(256, 'p');
    std::string longPath = tree.text() + "\\" + std::string(200, 'f') + "\\" +
                           std::string(200, 'g') + "\\" + std::string(200, 'h');
    for (const std::string& path : {longFolder, longPattern, longPath}) {
        util.FindFile(Text(path), true);
        EXPECT_TRUE(util.m_findData.empty());
        EXPECT_EQ(util.getFindSubDirCount(), 0);
        EXPECT_EQ(util.getLastError(), ENAMETOOLONG);
    }
}

#if !defined(_WIN32)
TEST(CzbFileUtilFind, SymbolicLinksAreNeverEntered) {
    TempTree tree;
    tree.file("outside/precious.txt", "keep");
    tree.file("walk/a.txt");
    fs::create_directory_symlink(tree.path("walk"), tree.path("walk/loop"));
    fs::create_directory_symlink(tree.path("outside"), tree.path("walk/out"));
    CzbFileUtil util;
    util.FindFile(Text(tree.text("walk\\*")), true);
    fstest::expectListed(
        fstest::names(util.m_findData),
        {tree.text("walk\\a.txt"), tree.text("walk\\loop"), tree.text("walk\\out")});
    EXPECT_EQ(util.getFindSubDirCount(), 1);
    // Deleting the tree takes the links, not what they point to.
    CzbFileUtil::DeleteFolder(Text(tree.text("walk")), false);
    EXPECT_FALSE(fs::exists(tree.path("walk")));
    EXPECT_EQ(fstest::readFile(tree.path("outside/precious.txt")), "keep");
}
#endif

TEST(CzbFileUtilFind, EntriesNearThePathLimits) {
    TempTree tree;
    // A folder whose path with its closing backslash is 254 characters: a name of 5 characters
    // makes a stored path of exactly 259, one of 6 passes the limit and is left out.
    const size_t rootLength = tree.text().size();
    ASSERT_LT(rootLength, 200u);
    const std::string folder(252 - rootLength, 'd');
    tree.file(folder + "/a.txt", "fits");
    tree.file(folder + "/ab.txt", "too long");
    tree.file(folder + "/c.txt", "fits");
    CzbFileUtil util;
    util.FindFile(Text(tree.text("*.txt")), true);
    ASSERT_EQ(util.getFindData()->size(), 2u);
    EXPECT_EQ(std::string(util.m_findData[0].name), tree.text(folder + "\\a.txt"));
    EXPECT_EQ(strlen(util.m_findData[0].name), 259u);
    EXPECT_EQ(std::string(util.m_findData[1].name), tree.text(folder + "\\c.txt"));
    EXPECT_EQ(util.getFindSubDirCount(), 1);
#if !defined(_WIN32)
    // Folders are entered up to a path of 511 characters with the closing backslash; what lies
    // deeper is not walked. Nothing there fits a stored path, so the count tells.
    const std::string a(200, 'a');
    const std::string b(200, 'b');
    const size_t below = rootLength + 1 + 5 + 201 + 201; // root\deep\a...\b...\ .
    const size_t rest = 511 - below - 1;
    tree.dir("deep/" + a + "/" + b + "/" + std::string(rest - 5, 'c') + "/x");
    tree.dir("deep/" + a + "/" + b + "/" + std::string(rest, 'e') + "/x");
    tree.dir("deep/" + a + "/" + b + "/" + std::string(rest + 1, 'f') + "/x");
    util.FindFolder(Text(tree.text("deep\\*")), true);
    // The start (it lists a), a, a\b, a\b\c..., a\b\c...\x, a\b\e... (511 exactly); neither
    // f... (512) nor e...\x is entered.
    EXPECT_EQ(util.getFindSubDirCount(), 1 + 5);
    // Only a fits a stored path.
    EXPECT_EQ(fstest::names(util.m_findData), std::vector<std::string>{tree.text("deep\\" + a)});
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

size_t openDescriptors() {
    size_t n = 0;
    for (auto it = fs::directory_iterator("/proc/self/fd"); it != fs::directory_iterator(); ++it) {
        ++n;
    }
    return n;
}

} // namespace

TEST(CzbFileUtilFind, ListingOrderAndTheRecordsOfFilesFoldersAndLinks) {
    TempTree tree;
    // Names in upper-case byte order, ties by their bytes; a leading dot sorts first.
    const std::vector<std::string> order = {".a.txt", "a-b.txt", "A.txt", "a.txt",  "a0.txt",
                                            "b.txt",  "Z.txt",   "[.txt", "_u.txt", "\xc3\xa9.txt"};
    std::vector<std::string> created = order;
    std::reverse(created.begin(), created.end());
    long long second = 1500000000;
    for (const std::string& name : created) {
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
    std::vector<std::string> expected;
    for (const std::string& name : order) {
        expected.push_back(tree.text(name));
    }
    // The links sort between b.txt and Z.txt; the subfolder's matches come last.
    expected.insert(expected.begin() + 6,
                    {tree.text("to_b.txt"), tree.text("to_gone.txt"), tree.text("to_sub.txt")});
    expected.push_back(tree.text("sub\\inner.txt"));
    EXPECT_EQ(fstest::names(util.m_findData), expected);
    EXPECT_EQ(util.getFindSubDirCount(), 2);

    struct Record {
        unsigned attrib;
        long long size;
        long long written;
        long long created;
    };
    auto record = [&](const std::string& name) {
        __finddata64_t* entry = util.getFindData(Text(name));
        EXPECT_NE(entry, nullptr) << name;
        if (entry == nullptr) {
            return Record{0, -1, -1, -1};
        }
        EXPECT_EQ(entry->time_access + 1, entry->time_write) << name;
        return Record{entry->attrib, entry->size, entry->time_write, entry->time_create};
    };
    Record a = record("a.txt");
    EXPECT_EQ(a.attrib, 0x20u);
    EXPECT_EQ(a.size, 5);
    EXPECT_EQ(a.written, 1500000000 + 100 * 7 + 1);
    EXPECT_EQ(a.created, changed(tree.path("a.txt")));
    Record b = record("b.txt");
    EXPECT_EQ(b.attrib, 0x21u); // the owner may not write
    // Links: the record of the target; of a folder with size 0; of the link itself if there is
    // no target. None has the folder bit, none is entered.
    Record toB = record("to_b.txt");
    EXPECT_EQ(toB.attrib, 0x21u);
    EXPECT_EQ(toB.size, 5);
    EXPECT_EQ(toB.written, b.written);
    Record toSub = record("to_sub.txt");
    EXPECT_EQ(toSub.attrib, 0x20u);
    EXPECT_EQ(toSub.size, 0);
    EXPECT_EQ(toSub.written, 1600000001);
    Record toGone = record("to_gone.txt");
    EXPECT_EQ(toGone.attrib, 0x20u);
    EXPECT_EQ(toGone.size, static_cast<long long>(tree.path("gone").string().size()));
    EXPECT_EQ(toGone.written, 1700000201);

    // Folders: the folder bit, size 0, their own times; read-only ones carry 0x01.
    tree.dir("ro");
    stamp(tree.path("ro"), 1650000000);
    chmod(tree.path("ro").c_str(), 0555);
    util.FindFolder(Text(tree.text("*")), false);
    EXPECT_EQ(fstest::names(util.m_findData),
              (std::vector<std::string>{tree.text("ro"), tree.text("sub")}));
    EXPECT_EQ(util.m_findData[0].attrib, 0x11u);
    EXPECT_EQ(util.m_findData[0].size, 0);
    EXPECT_EQ(util.m_findData[0].time_write, 1650000001);
    EXPECT_EQ(util.m_findData[1].attrib, 0x10u);
    chmod(tree.path("ro").c_str(), 0755);

    // Devices are plain entries of size 0.
    util.FindFile(Text("\\dev\\null"), false);
    ASSERT_EQ(fstest::names(util.m_findData), std::vector<std::string>{"\\dev\\null"});
    EXPECT_EQ(util.m_findData[0].attrib, 0x20u);
    EXPECT_EQ(util.m_findData[0].size, 0);

    // A folder of many entries (several reads of the folder) comes out whole and in order.
    tree.dir("many");
    std::vector<std::string> many;
    for (int i = 2999; i >= 0; --i) {
        char name[80];
        snprintf(name, sizeof name, "F%04d_%s.dat", i, std::string(50, i % 2 ? 'x' : 'X').c_str());
        tree.file(std::string("many/") + name, "");
        many.insert(many.begin(), tree.text(std::string("many\\") + name));
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
        int failures = util.getFindData()->size() == 2 ? 0 : 1;
        failures |= util.getFindSubDirCount() == 3 ? 0 : 2; // the locked folder counts
        failures |= util.getLastError() == ENOENT ? 0 : 4;
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
    // A current folder of more than 511 characters: a relative search finds nothing (its
    // folder would pass the limit), an absolute one is not affected.
    const std::string deep =
        std::string(200, 'a') + "/" + std::string(200, 'b') + "/" + std::string(200, 'c');
    tree.file(deep + "/x.txt");
    tree.enter(deep);
    CzbFileUtil util;
    util.FindFile(Text("*.txt"), true);
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getFindSubDirCount(), 0);
    EXPECT_EQ(util.getLastError(), ENAMETOOLONG);
    util.FindFile(Text(tree.text("*.txt")), false);
    fstest::expectListed(fstest::names(util.m_findData), {tree.text("a.txt")});
    // The current folder fits, but not with the relative folder behind it.
    tree.enter(std::string(200, 'a') + "/" + std::string(200, 'b'));
    util.FindFile(Text(std::string(100, 'c') + "\\*.txt"), false);
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getLastError(), ENAMETOOLONG);
    util.FindFile(Text(std::string(10, 'c') + "\\*.txt"), false);
    EXPECT_EQ(util.getLastError(), ENOENT);

    // A current folder that was removed has no name: nothing is found, for the reason the
    // system gives.
    tree.dir("gone");
    tree.enter("gone");
    fs::remove(tree.path("gone"));
    util.FindFile(Text("*.txt"), true);
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getLastError(), ENOENT);
    util.FindFolder(Text("*"), true);
    EXPECT_TRUE(util.getFindData()->empty());
    EXPECT_EQ(util.getLastError(), ENOENT);

    // A directory part of 256 or 257 characters (255 after a drive on Windows) is refused
    // whole rather than cut.
    for (size_t length : {254u, 255u}) {
        util.FindFile(Text("/" + std::string(length, 'd') + "/*.txt"), false);
        EXPECT_EQ(util.getLastError(), ENAMETOOLONG) << length;
    }
    util.FindFile(Text("/" + std::string(253, 'd') + "/*.txt"), false);
    EXPECT_EQ(util.getLastError(), ENOENT);
}

TEST(CzbFileUtilFind, AWalkOutOfDescriptorsGoesOnByPath) {
    TempTree tree;
    std::string deep;
    for (int level = 0; level < 24; ++level) {
        deep += "level" + std::to_string(level) + "/";
        tree.file(deep + "f.txt", std::to_string(level));
        tree.file(deep + "side" + std::to_string(level) + "/g.txt");
    }
    CzbFileUtil util;
    util.FindFile(Text(tree.text("*.txt")), true);
    const std::vector<std::string> whole = fstest::names(util.m_findData);
    const int folders = util.getFindSubDirCount();
    ASSERT_EQ(whole.size(), 48u);
    ASSERT_EQ(folders, 48);

    // Two free descriptors: the walk cannot hold one per level. The limit caps the numbers
    // of new descriptors, so it is counted from the lowest free one (descriptors inherited
    // from the parent may stand far above it, with free ones between).
    const size_t before = openDescriptors();
    const int lowest = open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(lowest, 0);
    close(lowest);
    struct rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &saved), 0);
    struct rlimit tight = saved;
    tight.rlim_cur = static_cast<rlim_t>(lowest + 2);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);
    util.FindFile(Text(tree.text("*.txt")), true);
    std::vector<std::string> found = fstest::names(util.m_findData);
    int count = util.getFindSubDirCount();
    util.FindFolder(Text(tree.text("side*")), true);
    size_t sides = util.getFindData()->size();
    setrlimit(RLIMIT_NOFILE, &saved);
    EXPECT_EQ(found, whole);
    EXPECT_EQ(count, folders);
    EXPECT_EQ(sides, 24u);
    EXPECT_EQ(openDescriptors(), before); // every folder closed again
}

#endif
