#include "filesystem/TempTree.h"

#include <zbBase/filesystem/CzbFileUtil.h>

#include <cerrno>
#include <ctime>

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

// Exposes the split of a search path.
class Splitter : public CzbFileUtil {
public:
    std::pair<std::string, std::string> split(const std::string& path) {
        char folder[512];
        char pattern[256];
        makeAbPathWildcard(Text(path), folder, sizeof folder, pattern, sizeof pattern);
        return {folder, pattern};
    }
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
