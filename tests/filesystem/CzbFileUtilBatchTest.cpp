#include "filesystem/TempTree.h"

#include <zbBase/filesystem/CzbFileUtil.h>

using fstest::TempTree;
using fstest::Text;
namespace fs = std::filesystem;

TEST(CzbFileUtilBatch, RenameFileReplacesTheFirstOccurrence) {
    TempTree tree;
    tree.file("a_old.txt", "old");
    tree.file("b.txt");
    tree.file("old_old.txt");
    tree.file("atxt.txt");
    CzbFileUtil util;
    util.RenameFile(Text(tree.text("*.txt")), Text("old"), Text("new"), false);
    EXPECT_EQ(util.getFindData()->size(), 4u);
    fstest::expectListed(fstest::names(util.m_processData),
                         {tree.text("a_new.txt"), tree.text("new_old.txt")});
    EXPECT_EQ(util.m_processData[0].size, 3);
    EXPECT_EQ(fstest::readFile(tree.path("a_new.txt")), "old");
    EXPECT_TRUE(fs::exists(tree.path("b.txt")));
    // The list of the search keeps the old paths.
    EXPECT_NE(util.getFindData(Text("a_old.txt")), nullptr);

    util.RenameFile(Text(tree.text("*.txt")), Text("txt"), Text("bak"), false);
    EXPECT_TRUE(fs::exists(tree.path("abak.txt")));
    EXPECT_TRUE(fs::exists(tree.path("b.bak")));
    util.RenameFile(Text(tree.text("b.bak")), Text(""), Text("x_"), false);
    EXPECT_TRUE(fs::exists(tree.path("x_b.bak")));
    // A star in the texts is an ordinary character.
    util.RenameFile(Text(tree.text("*.bak")), Text("*"), Text("y"), false);
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_TRUE(util.getProcessData()->empty());

    // Missing texts: the search runs, nothing is renamed.
    tree.dir("dir_old");
    util.RenameFile(Text(tree.text("*.bak")), nullptr, Text("y"), false);
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_TRUE(util.getProcessData()->empty());
    util.RenameFile(Text(tree.text("*.bak")), Text("b"), nullptr, false);
    util.RenameFile(Text(tree.text("*.bak")), nullptr, false);
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_TRUE(util.getProcessData()->empty());
    util.RenameFolder(Text(tree.text("dir_*")), Text("old"), nullptr, false);
    util.RenameFolder(Text(tree.text("dir_*")), nullptr, false);
    EXPECT_EQ(util.getFindData()->size(), 1u);
    EXPECT_TRUE(util.getProcessData()->empty());
    EXPECT_TRUE(fs::is_directory(tree.path("dir_old")));
    EXPECT_EQ(util.getFindData(nullptr), nullptr);
    EXPECT_TRUE(fs::exists(tree.path("x_b.bak")));

    // A copy assigned to itself keeps its lists.
    CzbFileUtil& same = util;
    util = same;
    EXPECT_EQ(util.getFindData()->size(), 1u);
    EXPECT_NE(util.getFindData(Text("dir_old")), nullptr);
}

TEST(CzbFileUtilBatch, RenameFileToOneNameNeverOverwrites) {
    TempTree tree;
    tree.file("one.txt", "1");
    tree.file("two.txt", "2");
    tree.file("sub/three.txt", "3");
    CzbFileUtil util;
    util.RenameFile(Text(tree.text("*.txt")), Text("all.dat"), true);
    EXPECT_EQ(util.getFindData()->size(), 3u);
    ASSERT_EQ(util.getProcessData()->size(), 2u);
    EXPECT_EQ(std::string(util.m_processData[1].name), tree.text("sub\\all.dat"));
    EXPECT_EQ(fstest::readFile(tree.path("sub/all.dat")), "3");
    // Exactly one of the two files of the top folder was renamed; the other stays.
    EXPECT_EQ(fs::exists(tree.path("one.txt")) + fs::exists(tree.path("two.txt")), 1);
    std::string kept = fstest::readFile(tree.path("all.dat"));
    EXPECT_TRUE(kept == "1" || kept == "2");

    // A new path over 259 characters is refused, never cut.
    util.RenameFile(Text(tree.text("all.dat")), Text(std::string(255, 'n').c_str()), false);
    EXPECT_EQ(util.getFindData()->size(), 1u);
    EXPECT_TRUE(util.getProcessData()->empty());
    EXPECT_TRUE(fs::exists(tree.path("all.dat")));
}

TEST(CzbFileUtilBatch, RenameFolderParentsFirst) {
    TempTree tree;
    tree.file("old1/old2/f.txt", "f");
    tree.file("keep/x.txt");
    CzbFileUtil util;
    util.RenameFolder(Text(tree.text("old*")), Text("old"), Text("new"), true);
    fstest::expectListed(fstest::names(util.m_findData),
                         {tree.text("old1"), tree.text("old1\\old2")});
    // The inner folder has moved with its parent before its own turn: it is skipped.
    fstest::expectListed(fstest::names(util.m_processData), {tree.text("new1")});
    EXPECT_EQ(fstest::readFile(tree.path("new1/old2/f.txt")), "f");

    util.RenameFolder(Text(tree.text("keep")), Text("kept"), false);
    ASSERT_EQ(util.getProcessData()->size(), 1u);
    EXPECT_EQ(std::string(util.m_processData[0].name), tree.text("kept") + "\\");
    EXPECT_NE(util.m_processData[0].attrib & _A_SUBDIR, 0u);
    EXPECT_TRUE(fs::exists(tree.path("kept/x.txt")));
    // An existing target is not replaced.
    util.RenameFolder(Text(tree.text("kept")), Text("new1"), false);
    EXPECT_TRUE(util.getProcessData()->empty());
    EXPECT_TRUE(fs::exists(tree.path("kept/x.txt")));
}

TEST(CzbFileUtilBatch, DeleteFilesLeavesFolders) {
    TempTree tree;
    tree.file("a.txt");
    tree.file("b.log");
    tree.file("sub/c.txt");
    tree.file("sub/.d.txt");
    tree.dir("e.txt");
    CzbFileUtil util;
    util.DeleteFiles(Text(tree.text("*.txt")), true);
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_EQ(fstest::names(util.m_processData), fstest::names(util.m_findData));
    EXPECT_FALSE(fs::exists(tree.path("a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("sub/c.txt")));
    EXPECT_FALSE(fs::exists(tree.path("sub/.d.txt")));
    EXPECT_TRUE(fs::exists(tree.path("b.log")));
    EXPECT_TRUE(fs::is_directory(tree.path("sub")));
    EXPECT_TRUE(fs::is_directory(tree.path("e.txt")));
    util.DeleteFiles(Text(tree.text("*.txt")), true);
    EXPECT_TRUE(util.getProcessData()->empty());
}

TEST(CzbFileUtilBatch, CopyFolderIsByteIdentical) {
    TempTree tree;
    std::string big(300000, '\0');
    for (size_t i = 0; i < big.size(); ++i) {
        big[i] = static_cast<char>(i * 7 + i / 251);
    }
    tree.file("src/big.bin", big);
    tree.file("src/.profile", "dot file");
    tree.file("src/a/b/c.txt", "deep");
    tree.file("src/.git/config", "dot folder");
    tree.file("dst/big.bin", "old content that is replaced");
    tree.file("dst/other.txt", "stays");
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("src")), Text(tree.text("dst")), false), 1);
    EXPECT_EQ(fstest::readFile(tree.path("dst/big.bin")), big);
    EXPECT_EQ(fstest::readFile(tree.path("dst/.profile")), "dot file");
    EXPECT_EQ(fstest::readFile(tree.path("dst/a/b/c.txt")), "deep");
    EXPECT_EQ(fstest::readFile(tree.path("dst/other.txt")), "stays");
    EXPECT_FALSE(fs::exists(tree.path("dst/.git")));

    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("missing")), Text(tree.text("new")), true), 0);
    EXPECT_TRUE(fs::exists(tree.path("new")));
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(""), Text(tree.text("x")), false), 0);
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text(std::string(260, 'l'))), Text(tree.text("y")),
                                      false),
              0);
    EXPECT_FALSE(fs::exists(tree.path("x")));
    EXPECT_FALSE(fs::exists(tree.path("y")));
}

TEST(CzbFileUtilBatch, MoveFolderNeverLosesAFile) {
    TempTree tree;
    tree.file("src/a.txt", "a");
    tree.file("src/sub/b.txt", "b");
    tree.file("src/blocked.txt", "must survive");
    tree.file("src/.hidden/h.txt", "h");
    // A folder in the target where a file should go makes that one copy fail.
    tree.dir("dst/blocked.txt");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(tree.text("dst")), false), 0);
    EXPECT_EQ(fstest::readFile(tree.path("dst/a.txt")), "a");
    EXPECT_EQ(fstest::readFile(tree.path("dst/sub/b.txt")), "b");
    EXPECT_FALSE(fs::exists(tree.path("src/a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("src/sub")));
    EXPECT_EQ(fstest::readFile(tree.path("src/blocked.txt")), "must survive");
    EXPECT_EQ(fstest::readFile(tree.path("src/.hidden/h.txt")), "h");

    // Onto itself nothing is lost either.
    tree.file("self/x.txt", "x");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("self")), Text(tree.text("self")), false), 0);
    EXPECT_EQ(fstest::readFile(tree.path("self/x.txt")), "x");

    tree.file("whole/s/t.txt", "t");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("whole")), Text(tree.text("moved")), false),
              0);
    EXPECT_FALSE(fs::exists(tree.path("whole")));
    EXPECT_EQ(fstest::readFile(tree.path("moved/s/t.txt")), "t");
}

TEST(CzbFileUtilBatch, DeleteFolderAndMakeDirectory) {
    TempTree tree;
    tree.file("plain/a.txt");
    tree.file("plain/.b");
    tree.file("plain/x/y/z.txt");
    CzbFileUtil::DeleteFolder(Text(tree.text("plain")), false);
    EXPECT_FALSE(fs::exists(tree.path("plain")));

    tree.file("dotted/a.txt");
    tree.file("dotted/x/.keep/k.txt");
    tree.file("dotted/y/b.txt");
    CzbFileUtil::DeleteFolder(Text(tree.text("dotted")), true);
    EXPECT_TRUE(fs::exists(tree.path("dotted/x/.keep/k.txt")));
    EXPECT_FALSE(fs::exists(tree.path("dotted/a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("dotted/y")));
    CzbFileUtil::DeleteFolder(Text(""), false); // the root is never listed from an empty text
    CzbFileUtil::DeleteFolder(Text(tree.text("missing")), false);

    CzbFileUtil::MakeDirectory(Text(tree.text("m\\n\\o")));
    EXPECT_TRUE(fs::is_directory(tree.path("m/n/o")));
    CzbFileUtil::MakeDirectory(Text(tree.text("m\\n\\o") + "\\"));
    EXPECT_TRUE(fs::is_directory(tree.path("m/n/o")));
    // Only the backslash divides: with slashes only the whole path is tried.
    CzbFileUtil::MakeDirectory(Text(tree.root().generic_string() + "/p/q"));
    EXPECT_FALSE(fs::exists(tree.path("p")));
    CzbFileUtil::MakeDirectory(Text(tree.text("r\\" + std::string(250, 's'))));
    EXPECT_FALSE(fs::exists(tree.path("r")));
}

TEST(CzbFileUtilBatch, TreeOperationsAtThePathLimits) {
    TempTree tree;
    const size_t root = tree.text().size();
    ASSERT_LT(root, 90u);
    // A target deeper than the source: a name whose path there would pass 259 characters is not
    // copied, and the move leaves it in the source.
    const std::string target(249 - root, 't'); // its path has 250 characters
    tree.file("src/a.txt", "a");
    tree.file("src/s/b.txt", "b");
    tree.file("src/long_name.txt", "stays");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(tree.text(target)), false), 0);
    EXPECT_EQ(fstest::readFile(tree.path(target + "/a.txt")), "a");
    EXPECT_EQ(fstest::readFile(tree.path(target + "/s/b.txt")), "b"); // 258 characters
    EXPECT_FALSE(fs::exists(tree.path(target + "/long_name.txt")));
    EXPECT_EQ(fstest::readFile(tree.path("src/long_name.txt")), "stays");
    EXPECT_FALSE(fs::exists(tree.path("src/a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("src/s")));

    // A target over 259 characters, and missing arguments: 0, nothing made, nothing moved.
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("src")),
                                      Text(tree.text(target + "\\" + std::string(9, 'x'))), false),
              0);
    EXPECT_FALSE(fs::exists(tree.path(target + "/" + std::string(9, 'x'))));
    EXPECT_EQ(CzbFileUtil::CopyFolder(nullptr, Text(tree.text("n1")), false), 0);
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("src")), nullptr, false), 0);
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("src")), Text(""), false), 0);
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(""), false), 0);
    EXPECT_EQ(CzbFileUtil::MoveFolder(nullptr, Text(tree.text("n2")), false), 0);
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(""), Text(tree.text("n3")), false), 0);
    CzbFileUtil::DeleteFolder(nullptr, false);
    CzbFileUtil::MakeDirectory(nullptr);
    EXPECT_EQ(fstest::readFile(tree.path("src/long_name.txt")), "stays");
    EXPECT_FALSE(fs::exists(tree.path("n1")));
    EXPECT_FALSE(fs::exists(tree.path("n2")));

#if !defined(_WIN32)
    // A source whose listing would pass 259 characters is not copied, so nothing of it is
    // deleted by a move.
    const std::string longSource = std::string(200, 'q') + "/" + std::string(255 - root - 201, 'r');
    tree.file(longSource + "/f.txt", "f");
    ASSERT_EQ(tree.text(longSource).size(), 256u);
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text(longSource)), Text(tree.text("m")), false), 0);
    EXPECT_EQ(fstest::readFile(tree.path(longSource + "/f.txt")), "f");
    EXPECT_FALSE(fs::exists(tree.path("m")));
    // A source deeper than the target: the same for a source path over 259.
    const std::string deepSource(249 - root, 'u');
    tree.file(deepSource + "/a.txt", "a");
    tree.file(deepSource + "/long_name.txt", "stays");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text(deepSource)), Text(tree.text("m")), false), 0);
    EXPECT_EQ(fstest::readFile(tree.path("m/a.txt")), "a");
    EXPECT_FALSE(fs::exists(tree.path("m/long_name.txt")));
    EXPECT_EQ(fstest::readFile(tree.path(deepSource + "/long_name.txt")), "stays");
    EXPECT_FALSE(fs::exists(tree.path(deepSource + "/a.txt")));

    // DeleteFolder skips an entry whose path would pass 511 characters, and refuses whole a
    // folder whose listing text would.
    const std::string deep =
        std::string(200, 'a') + "/" + std::string(200, 'b') + "/" + std::string(97 - root, 'c');
    ASSERT_EQ(tree.text(deep).size(), 500u);
    tree.file(deep + "/x", "x");
    tree.file(deep + "/name_too_long", "kept");                 // 514 characters
    tree.file(deep + "/" + std::string(7, 'd') + "/y", "kept"); // the folder's listing is 512
    CzbFileUtil::DeleteFolder(Text(tree.text(deep)), false);
    EXPECT_FALSE(fs::exists(tree.path(deep + "/x")));
    EXPECT_EQ(fstest::readFile(tree.path(deep + "/name_too_long")), "kept");
    EXPECT_EQ(fstest::readFile(tree.path(deep + "/" + std::string(7, 'd') + "/y")), "kept");

    // MakeDirectory takes a backslash right behind a colon for a drive's root: here "k:" is an
    // ordinary name, it is not made, and so nothing below it can be.
    CzbFileUtil::MakeDirectory(Text(tree.text("k:\\l")));
    EXPECT_FALSE(fs::exists(tree.path("k:")));
#endif
}
