#include "filesystem/TempTree.h"

#include <zbBase/filesystem/zbPathFileUtil.h>

using fstest::Names;
using fstest::readFile;
using fstest::TempTree;
using fstest::Text;
using zbBase::zbPathFileUtil;
namespace fs = std::filesystem;

namespace {

// The operations on paths below the tree's root.
struct Ops {
    const TempTree& tree;
    bool copy(const std::string& from, const std::string& to) const {
        return zbPathFileUtil::CopytoFile(Text(tree.text(from)), Text(tree.text(to)));
    }
    bool copyTo(const std::string& pattern, const std::string& folder) const {
        return zbPathFileUtil::CopytoFolder(Text(tree.text(pattern)), Text(tree.text(folder)));
    }
    bool remove(const std::string& pattern) const {
        return zbPathFileUtil::RemoveFile(Text(tree.text(pattern)));
    }
};

} // namespace

TEST(zbPathFileUtil, CopytoFileAcrossTheBlockSize) {
    TempTree tree;
    Ops ops{tree};
    for (size_t size : {0u, 4096u, 4097u, 10000u}) {
        std::string content(size, '\0');
        for (size_t i = 0; i < size; ++i) {
            content[i] = static_cast<char>(i % 253);
        }
        tree.file("in.bin", content);
        EXPECT_TRUE(ops.copy("in.bin", "out.bin")) << size;
        EXPECT_EQ(readFile(tree.path("out.bin")), content) << size;
    }
    // An existing longer target keeps only the new content; onto itself a file keeps its bytes.
    tree.file("long.bin", std::string(9000, 'L'));
    tree.file("short.bin", "short");
    EXPECT_TRUE(ops.copy("short.bin", "long.bin"));
    EXPECT_TRUE(ops.copy("short.bin", "short.bin"));
    // A missing source and a folder are no files to copy from: the target keeps its bytes.
    tree.dir("folder");
    EXPECT_FALSE(ops.copy("missing", "long.bin") || ops.copy("folder", "long.bin") ||
                 ops.copy("short.bin", "no\\x.bin") ||
                 zbPathFileUtil::CopytoFile(Text(""), Text("")));
    EXPECT_EQ(readFile(tree.path("long.bin")) + readFile(tree.path("short.bin")), "shortshort");
    EXPECT_FALSE(fs::exists(tree.path("no")));
}

TEST(zbPathFileUtil, CopytoFolderAndRemoveFile) {
    TempTree tree;
    Ops ops{tree};
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.log", "fold.txt/inner.txt"}) {
        tree.file(std::string("src/") + name, name);
    }
    tree.dir("dst");
    EXPECT_TRUE(ops.copyTo("src\\*.txt", "dst"));
    EXPECT_EQ(tree.contents("dst"), (Names{"a.txt=a.txt", "b.txt=b.txt", "c.txt=c.txt"}));
    EXPECT_FALSE(ops.copyTo("src\\*.zzz", "dst"));
    EXPECT_TRUE(ops.copyTo("src\\*.log", "none"));
    EXPECT_FALSE(fs::exists(tree.path("none")));
    EXPECT_TRUE(zbPathFileUtil::RemoveFile(Text(tree.root().generic_string() + "/src/?.txt")));
    EXPECT_FALSE(ops.remove("src\\?.txt"));
    // A pattern that matches only a folder finds something and leaves it alone.
    EXPECT_TRUE(ops.remove("src\\fold.txt"));
    EXPECT_EQ(tree.contents("src"),
              (Names{"d.log=d.log", "fold.txt/", "fold.txt/inner.txt=fold.txt/inner.txt"}));
    // Over-long folder parts are refused.
    const std::string deep = std::string(256, 'd') + "\\*.txt";
    EXPECT_FALSE(ops.remove(deep) || ops.copyTo(deep, "dst") ||
                 zbPathFileUtil::RemoveFile(Text("")));
}

TEST(zbPathFileUtil, CreateFolderFromTheTopDown) {
    TempTree tree;
    tree.enter();
    for (const char* path : {"a\\b\\c", "a\\b\\c", "x\\y\\", "p/q", ""}) {
        zbPathFileUtil::CreateFolder(Text(path));
    }
    zbPathFileUtil::CreateFolder(Text(tree.text("abs\\olute")));
    // 256 characters pass the working copy: nothing is created.
    zbPathFileUtil::CreateFolder(Text("r\\" + std::string(254, 's')));
    // '/' does not divide: one single call, which needs the parent.
    EXPECT_EQ(tree.contents(), (Names{"a/", "a/b/", "a/b/c/", "abs/", "abs/olute/", "x/", "x/y/"}));
}

TEST(zbPathFileUtil, NullArgumentsAndBuiltPathsOverTheLimit) {
    TempTree tree;
    Ops ops{tree};
    const std::string longName = std::string(20, 'n') + ".txt";
    tree.file("src/a.txt", "a");
    tree.file("src/" + longName, "n");
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(nullptr, Text(tree.text("x"))) ||
                 zbPathFileUtil::CopytoFile(Text(tree.text("src\\a.txt")), nullptr) ||
                 zbPathFileUtil::CopytoFolder(nullptr, Text(tree.text("src"))) ||
                 zbPathFileUtil::CopytoFolder(Text(tree.text("src\\*.txt")), nullptr) ||
                 zbPathFileUtil::RemoveFile(nullptr));
    zbPathFileUtil::CreateFolder(nullptr);
    EXPECT_FALSE(ops.remove("src\\" + std::string(256, '?'))); // a pattern of 256 characters
    EXPECT_TRUE(fs::exists(tree.path("src/a.txt")));
    // A target path over 259 characters cannot be built: that entry is skipped, the others
    // are copied.
    const size_t root = tree.text().size();
    ASSERT_LT(root, 200u);
    const std::string target(239 - root, 't'); // 240 characters with the root
    tree.dir(target);
    EXPECT_TRUE(ops.copyTo("src\\*.txt", target));
    EXPECT_EQ(tree.contents(target), Names{"a.txt=a"});
#if !defined(_WIN32)
    // The same for a source path: neither copied nor removed.
    const std::string source = target + "/s";
    tree.file(source + "/b.txt", "b");
    tree.file(source + "/" + longName, "n");
    EXPECT_TRUE(ops.copyTo(source + "\\*.txt", "src"));
    EXPECT_EQ(readFile(tree.path("src/b.txt")), "b");
    EXPECT_TRUE(ops.remove(source + "\\*.txt"));
    EXPECT_EQ(tree.contents(source), Names{longName + "=n"});
#endif
}
