#include "filesystem/TempTree.h"

#include <zbBase/filesystem/zbPathFileUtil.h>

using fstest::TempTree;
using fstest::Text;
using zbBase::zbPathFileUtil;
namespace fs = std::filesystem;

TEST(zbPathFileUtil, CopytoFileAcrossTheBlockSize) {
    TempTree tree;
    for (size_t size : {0u, 4096u, 4097u, 10000u}) {
        SCOPED_TRACE(size);
        std::string content(size, '\0');
        for (size_t i = 0; i < size; ++i) {
            content[i] = static_cast<char>(i % 253);
        }
        fs::path source = tree.file("in.bin", content);
        EXPECT_TRUE(
            zbPathFileUtil::CopytoFile(Text(tree.text("in.bin")), Text(tree.text("out.bin"))));
        EXPECT_EQ(fstest::readFile(tree.path("out.bin")), content);
    }
    // An existing longer target keeps only the new content.
    tree.file("long.bin", std::string(9000, 'L'));
    tree.file("short.bin", "short");
    EXPECT_TRUE(
        zbPathFileUtil::CopytoFile(Text(tree.text("short.bin")), Text(tree.text("long.bin"))));
    EXPECT_EQ(fstest::readFile(tree.path("long.bin")), "short");
    // Onto itself the file keeps its bytes.
    EXPECT_TRUE(
        zbPathFileUtil::CopytoFile(Text(tree.text("short.bin")), Text(tree.text("short.bin"))));
    EXPECT_EQ(fstest::readFile(tree.path("short.bin")), "short");

    EXPECT_FALSE(
        zbPathFileUtil::CopytoFile(Text(tree.text("missing")), Text(tree.text("long.bin"))));
    EXPECT_EQ(fstest::readFile(tree.path("long.bin")), "short");
    // A folder is no file to copy from: the target keeps its bytes.
    fs::create_directory(tree.path("folder"));
    EXPECT_FALSE(
        zbPathFileUtil::CopytoFile(Text(tree.text("folder")), Text(tree.text("long.bin"))));
    EXPECT_EQ(fstest::readFile(tree.path("long.bin")), "short");
    EXPECT_FALSE(
        zbPathFileUtil::CopytoFile(Text(tree.text("short.bin")), Text(tree.text("no\\x.bin"))));
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(Text(""), Text("")));
}

TEST(zbPathFileUtil, CopytoFolderAndRemoveFile) {
    TempTree tree;
    tree.file("src/a.txt", "a");
    tree.file("src/b.txt", "b");
    tree.file("src/c.txt", "c");
    tree.file("src/d.log", "d");
    tree.file("src/fold.txt/inner.txt", "folder");
    tree.dir("dst");
    EXPECT_TRUE(
        zbPathFileUtil::CopytoFolder(Text(tree.text("src\\*.txt")), Text(tree.text("dst"))));
    EXPECT_EQ(fstest::readFile(tree.path("dst/a.txt")), "a");
    EXPECT_EQ(fstest::readFile(tree.path("dst/c.txt")), "c");
    EXPECT_FALSE(fs::exists(tree.path("dst/d.log")));
    EXPECT_FALSE(fs::exists(tree.path("dst/fold.txt")));
    EXPECT_FALSE(
        zbPathFileUtil::CopytoFolder(Text(tree.text("src\\*.zzz")), Text(tree.text("dst"))));
    EXPECT_TRUE(
        zbPathFileUtil::CopytoFolder(Text(tree.text("src\\*.log")), Text(tree.text("none"))));
    EXPECT_FALSE(fs::exists(tree.path("none")));

    EXPECT_TRUE(zbPathFileUtil::RemoveFile(Text(tree.root().generic_string() + "/src/?.txt")));
    EXPECT_FALSE(fs::exists(tree.path("src/a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("src/b.txt")));
    EXPECT_FALSE(fs::exists(tree.path("src/c.txt")));
    EXPECT_TRUE(fs::exists(tree.path("src/d.log")));
    EXPECT_FALSE(zbPathFileUtil::RemoveFile(Text(tree.text("src\\?.txt"))));
    // A pattern that matches only a folder finds something and leaves it alone.
    EXPECT_TRUE(zbPathFileUtil::RemoveFile(Text(tree.text("src\\fold.txt"))));
    EXPECT_TRUE(fs::exists(tree.path("src/fold.txt/inner.txt")));

    // Over-long folder parts are refused.
    std::string deep = tree.text(std::string(256, 'd')) + "\\*.txt";
    EXPECT_FALSE(zbPathFileUtil::RemoveFile(Text(deep)));
    EXPECT_FALSE(zbPathFileUtil::CopytoFolder(Text(deep), Text(tree.text("dst"))));
    EXPECT_FALSE(zbPathFileUtil::RemoveFile(Text("")));
}

TEST(zbPathFileUtil, CreateFolderFromTheTopDown) {
    TempTree tree;
    tree.enter();
    zbPathFileUtil::CreateFolder(Text("a\\b\\c"));
    EXPECT_TRUE(fs::is_directory(tree.path("a/b/c")));
    zbPathFileUtil::CreateFolder(Text("a\\b\\c"));
    EXPECT_TRUE(fs::is_directory(tree.path("a/b/c")));
    zbPathFileUtil::CreateFolder(Text("x\\y\\"));
    EXPECT_TRUE(fs::is_directory(tree.path("x/y")));
    zbPathFileUtil::CreateFolder(Text(tree.text("abs\\olute")));
    EXPECT_TRUE(fs::is_directory(tree.path("abs/olute")));
    // '/' does not divide: one single call, which needs the parent.
    zbPathFileUtil::CreateFolder(Text("p/q"));
    EXPECT_FALSE(fs::exists(tree.path("p")));
    // 256 characters pass the working copy: nothing is created.
    zbPathFileUtil::CreateFolder(Text("r\\" + std::string(254, 's')));
    EXPECT_FALSE(fs::exists(tree.path("r")));
    zbPathFileUtil::CreateFolder(Text(""));
}

TEST(zbPathFileUtil, NullArgumentsAndBuiltPathsOverTheLimit) {
    TempTree tree;
    tree.file("src/a.txt", "a");
    tree.file("src/" + std::string(20, 'n') + ".txt", "n");
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(nullptr, Text(tree.text("x"))));
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(Text(tree.text("src\\a.txt")), nullptr));
    EXPECT_FALSE(zbPathFileUtil::CopytoFolder(nullptr, Text(tree.text("src"))));
    EXPECT_FALSE(zbPathFileUtil::CopytoFolder(Text(tree.text("src\\*.txt")), nullptr));
    EXPECT_FALSE(zbPathFileUtil::RemoveFile(nullptr));
    zbPathFileUtil::CreateFolder(nullptr);
    // A pattern of 256 characters is refused.
    EXPECT_FALSE(zbPathFileUtil::RemoveFile(Text(tree.text("src\\" + std::string(256, '?')))));
    EXPECT_TRUE(fs::exists(tree.path("src/a.txt")));

    // A target path over 259 characters cannot be built: that entry is skipped, the others
    // are copied.
    const size_t root = tree.text().size();
    ASSERT_LT(root, 200u);
    const std::string target(239 - root, 't'); // 240 characters with the root
    tree.dir(target);
    EXPECT_TRUE(
        zbPathFileUtil::CopytoFolder(Text(tree.text("src\\*.txt")), Text(tree.text(target))));
    EXPECT_EQ(fstest::readFile(tree.path(target + "/a.txt")), "a");
    EXPECT_FALSE(fs::exists(tree.path(target + "/" + std::string(20, 'n') + ".txt")));
#if !defined(_WIN32)
    // The same for a source path: neither copied nor removed.
    const std::string source = target + "/s";
    tree.file(source + "/b.txt", "b");
    tree.file(source + "/" + std::string(20, 'n') + ".txt", "n");
    EXPECT_TRUE(
        zbPathFileUtil::CopytoFolder(Text(tree.text(source + "\\*.txt")), Text(tree.text("src"))));
    EXPECT_EQ(fstest::readFile(tree.path("src/b.txt")), "b");
    EXPECT_TRUE(zbPathFileUtil::RemoveFile(Text(tree.text(source + "\\*.txt"))));
    EXPECT_FALSE(fs::exists(tree.path(source + "/b.txt")));
    EXPECT_EQ(fstest::readFile(tree.path(source + "/" + std::string(20, 'n') + ".txt")), "n");
#endif
}
