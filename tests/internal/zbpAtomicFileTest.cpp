// The file written beside its target: which file a path finally names, what the replacement
// keeps of the old file, and the state of the object around a commit.
#include <zbBase/platform/detail/zbpAtomicFile.h>

#include "filesystem/TempTree.h"

#include <cerrno>

#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

bool write(zbp::AtomicFile& file, const std::string& text) {
    return fwrite(text.data(), 1, text.size(), file.stream()) == text.size();
}

} // namespace

TEST(zbpAtomicFile, CommitReplacesDiscardAndFailureKeep) {
    zbtest::TempFolder dir;
    const std::string target = dir.file("data.txt");
    zbtest::writeBytes(target, "old");
    zbp::AtomicFile file;
    EXPECT_EQ(file.descriptor(), -1);
    EXPECT_FALSE(file.good() || file.commit()); // nothing open
    ASSERT_TRUE(file.open(target.c_str(), "w"));
    EXPECT_TRUE(file.good() && file.descriptor() >= 0 && !file.temporaryPath().empty());
    ASSERT_TRUE(write(file, "new\n"));
    EXPECT_EQ(zbtest::readBytes(target), "old"); // nothing visible before the commit
    EXPECT_EQ(fstest::contents(dir.path()).size(), 2u);
    EXPECT_TRUE(file.commit());
    EXPECT_FALSE(file.commit()); // closed by the first
    EXPECT_EQ(file.descriptor(), -1);
    ASSERT_TRUE(file.open(target.c_str(), "wb"));
    write(file, "abandoned");
    file.discard();
    // A failure the caller saw gives false with an error number, even if the system had none.
    ASSERT_TRUE(file.open(dir.file("fresh.bin").c_str(), "wb"));
    write(file, "two");
    file.fail();
    EXPECT_FALSE(file.good());
    errno = 0;
    EXPECT_FALSE(file.commit());
    EXPECT_NE(errno, 0);
    {
        zbp::AtomicFile dropped; // destroyed uncommitted
        ASSERT_TRUE(dropped.open(dir.file("fresh.bin").c_str(), "wb"));
        write(dropped, "never committed");
    }
    EXPECT_EQ(fstest::contents(dir.path()), fstest::Names{"data.txt=new" + zbtest::kEol});
    // A folder is no file to replace.
    fs::create_directory(dir.file("folder"));
    EXPECT_FALSE(file.open(dir.file("folder").c_str(), "w"));
    EXPECT_FALSE(file.open("", "w"));
    EXPECT_FALSE(file.open(nullptr, "w"));
    EXPECT_FALSE(file.open(target.c_str(), nullptr));
}

#if !defined(_WIN32)

namespace {
// Opens, writes and commits in one.
bool replace(const fs::path& path, const std::string& text) {
    zbp::AtomicFile file;
    return file.open(path.c_str(), "wb") && write(file, text) && file.commit();
}
} // namespace

TEST(zbpAtomicFile, LinksLeadToTheFileTheyName) {
    zbtest::TempFolder dir;
    const fs::path root = dir.path();
    zbtest::writeBytes(root / "sub" / "data.txt", "old");
    // Relative links are taken from the folder of the link: a chain of two, the second in
    // another folder; a link to a file not there yet makes that file.
    fs::create_symlink("sub/hop", root / "first");
    fs::create_symlink("data.txt", root / "sub" / "hop");
    fs::create_symlink("made.txt", root / "sub" / "ahead");
    EXPECT_TRUE(replace(root / "first", "new") && replace(root / "sub" / "ahead", "made"));
    EXPECT_EQ(fstest::contents(root),
              (fstest::Names{"first@", "sub/", "sub/ahead@", "sub/data.txt=new", "sub/hop@",
                             "sub/made.txt=made"}));
    // Links that lead round in a circle name no file: refused, and nothing is made.
    fs::create_symlink("ring2", root / "ring1");
    fs::create_symlink("ring1", root / "ring2");
    fs::create_symlink("self", root / "self");
    zbp::AtomicFile file;
    errno = 0;
    EXPECT_FALSE(file.open((root / "ring1").c_str(), "wb"));
    EXPECT_EQ(errno, ELOOP);
    EXPECT_FALSE(file.open((root / "self").c_str(), "wb"));
    EXPECT_EQ(fstest::contents(root).size(), 9u); // ring1, ring2 and self added
    // A link named without any folder, in the current folder.
    const fs::path saved = fs::current_path();
    fs::current_path(root / "sub");
    const bool replaced = replace("hop", "here");
    fs::current_path(saved);
    EXPECT_TRUE(replaced);
    EXPECT_EQ(zbtest::readBytes(root / "sub" / "data.txt"), "here");
    EXPECT_TRUE(fs::is_symlink(root / "sub" / "hop"));
}

TEST(zbpAtomicFile, ANameAtTheSystemsLimitIsWrittenThroughAShortNewName) {
    zbtest::TempFolder dir;
    const std::string target = dir.file(std::string(255, 'n'));
    zbtest::writeBytes(target, "old");
    zbp::AtomicFile file;
    ASSERT_TRUE(file.open(target.c_str(), "wb"));
    // The new file stands in the same folder under a short name.
    EXPECT_EQ(fs::path(file.temporaryPath()).parent_path(), dir.path());
    EXPECT_EQ(fs::path(file.temporaryPath()).filename().string().size(), 13u);
    ASSERT_TRUE(write(file, "new"));
    ASSERT_TRUE(file.commit());
    EXPECT_EQ(zbtest::readBytes(target), "new");
    // A name the system refuses anyway stays refused, and leaves nothing behind.
    EXPECT_FALSE(replace(dir.file(std::string(256, 'n')), "never"));
    EXPECT_EQ(fstest::contents(dir.path()).size(), 1u);
}

TEST(zbpAtomicFile, TheReplacementKeepsOwnerAndPermissions) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "giving a file to another owner needs root";
    }
    zbtest::TempFolder dir;
    const std::string target = dir.file("owned.bin");
    zbtest::writeBytes(target, "old");
    ASSERT_EQ(chown(target.c_str(), 65534, 65534), 0);
    ASSERT_EQ(chmod(target.c_str(), 0640), 0);
    ASSERT_TRUE(replace(target, "new"));
    struct stat info;
    ASSERT_EQ(stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid + info.st_gid, 2 * 65534u);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(zbtest::readBytes(target), "new");
}

#endif
