#include "filesystem/TempTree.h"

#include <zbBase/filesystem/CzbFileUtil.h>

using fstest::Names;
using fstest::TempTree;
using fstest::Text;
namespace fs = std::filesystem;

TEST(CzbFileUtilBatch, RenameFilesAndFolders) {
    TempTree tree;
    tree.file("a_old.txt", "old");
    tree.file("b.txt", "b");
    tree.file("old_old.txt", "o");
    tree.file("atxt.txt", "t");
    tree.file("old1/old2/f.txt", "f");
    tree.file("keep/x.txt", "x");
    CzbFileUtil util;
    auto rename = [&](const char* path, const char* find, const char* replace) {
        Text f(find ? find : ""), r(replace ? replace : "");
        util.RenameFile(Text(tree.text(path)), find ? static_cast<char*>(f) : nullptr,
                        replace ? static_cast<char*>(r) : nullptr, false);
        return util.getFindData()->size() * 10 + util.getProcessData()->size();
    };
    EXPECT_EQ(rename("*.txt", "old", "new"), 42u);
    fstest::expectListed(fstest::names(util.m_processData),
                         {tree.text("a_new.txt"), tree.text("new_old.txt")});
    EXPECT_EQ(util.m_processData[0].size, 3);
    EXPECT_NE(util.getFindData(Text("a_old.txt")), nullptr); // the search keeps the old paths
    EXPECT_EQ(rename("*.txt", "txt", "bak"), 44u);
    EXPECT_EQ(rename("b.bak", "", "x_"), 11u);
    // A star in the texts is an ordinary character; missing texts rename nothing.
    EXPECT_EQ(rename("*.bak", "*", "y") + rename("*.bak", nullptr, "y"), 60u);
    EXPECT_EQ(rename("*.bak", "b", nullptr), 30u);
    util.RenameFile(Text(tree.text("*.bak")), nullptr, false);
    EXPECT_TRUE(util.getProcessData()->empty());
    util.RenameFolder(Text(tree.text("old*")), Text("old"), nullptr, false);
    EXPECT_TRUE(util.getProcessData()->empty());
    util.RenameFolder(Text(tree.text("old*")), nullptr, false);
    EXPECT_EQ(util.getFindData()->size() * 10 + util.getProcessData()->size(), 10u);
    // Folders parents first: the inner one has moved with its parent and is skipped.
    util.RenameFolder(Text(tree.text("old*")), Text("old"), Text("new"), true);
    fstest::expectListed(fstest::names(util.m_findData),
                         {tree.text("old1"), tree.text("old1\\old2")});
    fstest::expectListed(fstest::names(util.m_processData), {tree.text("new1")});
    util.RenameFolder(Text(tree.text("keep")), Text("kept"), false);
    ASSERT_EQ(util.getProcessData()->size(), 1u);
    EXPECT_EQ(std::string(util.m_processData[0].name), tree.text("kept") + "\\");
    EXPECT_NE(util.m_processData[0].attrib & _A_SUBDIR, 0u);
    util.RenameFolder(Text(tree.text("kept")), Text("new1"), false); // an existing target stays
    EXPECT_TRUE(util.getProcessData()->empty());
    EXPECT_EQ(tree.contents(),
              (Names{"a_new.bak=old", "abak.txt=t", "kept/", "kept/x.txt=x", "new1/", "new1/old2/",
                     "new1/old2/f.txt=f", "new_old.bak=o", "x_b.bak=b"}));
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
    // Exactly one of the two files of the top folder was renamed; the other stays.
    const Names after = tree.contents();
    EXPECT_TRUE(after == (Names{"all.dat=1", "sub/", "sub/all.dat=3", "two.txt=2"}) ||
                after == (Names{"all.dat=2", "one.txt=1", "sub/", "sub/all.dat=3"}));
    // A new path over 259 characters is refused, never cut.
    util.RenameFile(Text(tree.text("all.dat")), Text(std::string(255, 'n').c_str()), false);
    EXPECT_EQ(util.getFindData()->size(), 1u);
    EXPECT_TRUE(util.getProcessData()->empty());
    EXPECT_EQ(tree.contents(), after);
}

TEST(CzbFileUtilBatch, DeleteFilesLeavesFolders) {
    TempTree tree;
    for (const char* name : {"a.txt", "b.log", "sub/c.txt", "sub/.d.txt", "e.txt/f.log"}) {
        tree.file(name, "x");
    }
    CzbFileUtil util;
    util.DeleteFiles(Text(tree.text("*.txt")), true);
    EXPECT_EQ(util.getFindData()->size(), 3u);
    EXPECT_EQ(fstest::names(util.m_processData), fstest::names(util.m_findData));
    EXPECT_EQ(tree.contents(), (Names{"b.log=x", "e.txt/", "e.txt/f.log=x", "sub/"}));
    util.DeleteFiles(Text(tree.text("*.txt")), true);
    EXPECT_TRUE(util.getProcessData()->empty());
}

TEST(CzbFileUtilBatch, CopyAndMoveFolderNeverLoseAFile) {
    TempTree tree;
    std::string big(300000, '\0');
    for (size_t i = 0; i < big.size(); ++i) {
        big[i] = static_cast<char>(i * 7 + i / 251);
    }
    // The copy: byte for byte, dot files but no dot folders, over what the target holds.
    tree.file("c/big.bin", big);
    tree.file("c/.profile", "dot file");
    tree.file("c/a/b.txt", "deep");
    tree.file("c/.git/config", "dot folder");
    tree.file("cd/big.bin", "old content that is replaced");
    tree.file("cd/other.txt", "stays");
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("c")), Text(tree.text("cd")), false), 1);
    EXPECT_TRUE(fstest::readFile(tree.path("cd/big.bin")) == big);
    fs::remove_all(tree.path("c"));
    fs::remove(tree.path("cd/big.bin"));
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("missing")), Text(tree.text("new")), true), 0);
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(""), Text(tree.text("x")), false) +
                  CzbFileUtil::CopyFolder(Text(tree.text(std::string(260, 'l'))),
                                          Text(tree.text("y")), false),
              0);
    // The move: a folder where a file should go makes that one copy fail, and it stays.
    tree.file("src/a.txt", "a");
    tree.file("src/sub/b.txt", "b");
    tree.file("src/blocked.txt", "must survive");
    tree.file("src/.hidden/h.txt", "h");
    tree.dir("dst/blocked.txt");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(tree.text("dst")), false), 0);
    // Onto itself nothing is lost either; a complete move leaves no source.
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(tree.text("src")), false), 0);
    tree.file("whole/s/t.txt", "t");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("whole")), Text(tree.text("moved")), false),
              0);
    EXPECT_EQ(tree.contents(),
              (Names{"cd/", "cd/.profile=dot file", "cd/a/", "cd/a/b.txt=deep",
                     "cd/other.txt=stays", "dst/", "dst/a.txt=a", "dst/blocked.txt/", "dst/sub/",
                     "dst/sub/b.txt=b", "moved/", "moved/s/", "moved/s/t.txt=t", "new/", "src/",
                     "src/.hidden/", "src/.hidden/h.txt=h", "src/blocked.txt=must survive"}));
}

TEST(CzbFileUtilBatch, DeleteFolderAndMakeDirectory) {
    TempTree tree;
    for (const char* name : {"plain/a.txt", "plain/.b", "plain/x/y/z.txt", "dotted/a.txt",
                             "dotted/x/.keep/k.txt", "dotted/y/b.txt"}) {
        tree.file(name, "k");
    }
    CzbFileUtil::DeleteFolder(Text(tree.text("plain")), false);
    CzbFileUtil::DeleteFolder(Text(tree.text("dotted")), true);
    CzbFileUtil::DeleteFolder(Text(""), false); // the root is never listed from an empty text
    CzbFileUtil::DeleteFolder(Text(tree.text("missing")), false);
    EXPECT_EQ(tree.contents(),
              (Names{"dotted/", "dotted/x/", "dotted/x/.keep/", "dotted/x/.keep/k.txt=k"}));
    CzbFileUtil::MakeDirectory(Text(tree.text("m\\n\\o")));
    CzbFileUtil::MakeDirectory(Text(tree.text("m\\n\\o") + "\\"));
    // Only the backslash divides: with slashes only the whole path is tried.
    CzbFileUtil::MakeDirectory(Text(tree.root().generic_string() + "/p/q"));
    CzbFileUtil::MakeDirectory(Text(tree.text("r\\" + std::string(250, 's'))));
    EXPECT_EQ(tree.contents("m"), (Names{"n/", "n/o/"}));
    EXPECT_FALSE(fs::exists(tree.path("p")) || fs::exists(tree.path("r")));
}

TEST(CzbFileUtilBatch, TreeOperationsAtThePathLimits) {
    TempTree tree;
    const size_t root = tree.text().size();
    ASSERT_LT(root, 90u);
    // A deeper target: a name whose path there passes 259 is not copied and stays in the source.
    const std::string target(249 - root, 't'); // its path has 250 characters
    tree.file("src/a.txt", "a");
    tree.file("src/s/b.txt", "b");
    tree.file("src/long_name.txt", "stays");
    EXPECT_EQ(CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(tree.text(target)), false), 0);
    // s/b.txt has 258 characters there.
    EXPECT_EQ(tree.contents(target), (Names{"a.txt=a", "s/", "s/b.txt=b"}));
    EXPECT_EQ(tree.contents("src"), (Names{"long_name.txt=stays"}));
    // A target over 259 characters, and missing arguments: 0, nothing made, nothing moved.
    const std::string over = tree.text(target + "\\" + std::string(9, 'x'));
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(tree.text("src")), Text(over), false) +
                  CzbFileUtil::CopyFolder(nullptr, Text(tree.text("n1")), false) +
                  CzbFileUtil::CopyFolder(Text(tree.text("src")), nullptr, false) +
                  CzbFileUtil::CopyFolder(Text(tree.text("src")), Text(""), false) +
                  CzbFileUtil::MoveFolder(Text(tree.text("src")), Text(""), false) +
                  CzbFileUtil::MoveFolder(nullptr, Text(tree.text("n2")), false) +
                  CzbFileUtil::MoveFolder(Text(""), Text(tree.text("n3")), false),
              0);
    CzbFileUtil::DeleteFolder(nullptr, false);
    CzbFileUtil::MakeDirectory(nullptr);
    EXPECT_EQ(tree.contents().size(), 6u); // src, its file, the target and its three entries
#if !defined(_WIN32)
    // A source whose listing would pass 259 is not copied, so the move deletes nothing.
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
    EXPECT_EQ(tree.contents("m"), (Names{"a.txt=a"}));
    EXPECT_EQ(tree.contents(deepSource), (Names{"long_name.txt=stays"}));
    // DeleteFolder skips an entry whose path passes 511, and a folder whose listing would.
    const std::string deep =
        std::string(200, 'a') + "/" + std::string(200, 'b') + "/" + std::string(97 - root, 'c');
    ASSERT_EQ(tree.text(deep).size(), 500u);
    tree.file(deep + "/x", "x");
    tree.file(deep + "/name_too_long", "kept");                 // 514 characters
    tree.file(deep + "/" + std::string(7, 'd') + "/y", "kept"); // the folder's listing is 512
    CzbFileUtil::DeleteFolder(Text(tree.text(deep)), false);
    EXPECT_EQ(tree.contents(deep), (Names{"ddddddd/", "ddddddd/y=kept", "name_too_long=kept"}));
    // "k:\" is taken for a drive's root: here no folder "k:" is made, so nothing below it.
    CzbFileUtil::MakeDirectory(Text(tree.text("k:\\l")));
    EXPECT_FALSE(fs::exists(tree.path("k:")));
#endif
}
