// The file written beside its target: which file a path finally names, what the replacement
// keeps of the old file, and the state of the object around a commit.
#include <zbBase/platform/detail/zbpAtomicFile.h>

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#if !defined(_WIN32)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

bool write(zbp::AtomicFile& file, const std::string& text) {
    return fwrite(text.data(), 1, text.size(), file.stream()) == text.size();
}

size_t entries(const fs::path& folder) {
    size_t n = 0;
    for (auto it = fs::directory_iterator(folder); it != fs::directory_iterator(); ++it) {
        ++n;
    }
    return n;
}

} // namespace

TEST(zbpAtomicFile, StateAroundACommit) {
    zbtest::TempFolder dir;
    const std::string target = dir.file("data.bin");
    zbp::AtomicFile file;
    EXPECT_EQ(file.descriptor(), -1);
    EXPECT_FALSE(file.good());
    EXPECT_FALSE(file.commit()); // nothing open
    ASSERT_TRUE(file.open(target.c_str(), "wb"));
    EXPECT_TRUE(file.good());
    EXPECT_GE(file.descriptor(), 0);
    EXPECT_FALSE(file.temporaryPath().empty());
    ASSERT_TRUE(write(file, "one"));
    EXPECT_TRUE(file.commit());
    EXPECT_FALSE(file.commit()); // closed by the first
    EXPECT_EQ(file.descriptor(), -1);
    EXPECT_EQ(zbtest::readBytes(target), "one");

    // A failure the caller saw itself gives false with an error number, even where the
    // system had none to give.
    ASSERT_TRUE(file.open(target.c_str(), "wb"));
    write(file, "two");
    file.fail();
    EXPECT_FALSE(file.good());
    errno = 0;
    EXPECT_FALSE(file.commit());
    EXPECT_NE(errno, 0);
    EXPECT_EQ(zbtest::readBytes(target), "one");
    EXPECT_EQ(entries(dir.path()), 1u);
    EXPECT_FALSE(file.open(target.c_str(), nullptr));
}

#if !defined(_WIN32)

TEST(zbpAtomicFile, LinksLeadToTheFileTheyName) {
    zbtest::TempFolder dir;
    const fs::path root = dir.path();
    fs::create_directory(root / "sub");
    zbtest::writeBytes(root / "sub" / "data.txt", "old");
    // Relative links are taken from the folder of the link: a chain of two, the second in
    // another folder.
    fs::create_symlink("sub/hop", root / "first");
    fs::create_symlink("data.txt", root / "sub" / "hop");
    zbp::AtomicFile file;
    ASSERT_TRUE(file.open((root / "first").c_str(), "wb"));
    write(file, "new");
    ASSERT_TRUE(file.commit());
    EXPECT_EQ(zbtest::readBytes(root / "sub" / "data.txt"), "new");
    EXPECT_TRUE(fs::is_symlink(root / "first"));
    EXPECT_TRUE(fs::is_symlink(root / "sub" / "hop"));
    EXPECT_EQ(entries(root / "sub"), 2u);

    // A link to a file not there yet makes that file.
    fs::create_symlink("made.txt", root / "sub" / "ahead");
    ASSERT_TRUE(file.open((root / "sub" / "ahead").c_str(), "wb"));
    write(file, "made");
    ASSERT_TRUE(file.commit());
    EXPECT_EQ(zbtest::readBytes(root / "sub" / "made.txt"), "made");
    EXPECT_TRUE(fs::is_symlink(root / "sub" / "ahead"));

    // Links that lead round in a circle name no file: refused, and nothing is made.
    fs::create_symlink("ring2", root / "ring1");
    fs::create_symlink("ring1", root / "ring2");
    errno = 0;
    EXPECT_FALSE(file.open((root / "ring1").c_str(), "wb"));
    EXPECT_EQ(errno, ELOOP);
    fs::create_symlink("self", root / "self");
    EXPECT_FALSE(file.open((root / "self").c_str(), "wb"));
    EXPECT_EQ(entries(root), 5u); // sub, first, ring1, ring2, self

    // A link named without any folder, in the current folder.
    const fs::path saved = fs::current_path();
    fs::current_path(root / "sub");
    const bool opened = file.open("hop", "wb");
    if (opened) {
        write(file, "here");
    }
    const bool committed = opened && file.commit();
    fs::current_path(saved);
    EXPECT_TRUE(committed);
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
    EXPECT_EQ(entries(dir.path()), 1u);
    // A name the system refuses anyway stays refused, and leaves nothing behind.
    const std::string tooLong = dir.file(std::string(256, 'n'));
    if (file.open(tooLong.c_str(), "wb")) {
        write(file, "never");
        EXPECT_FALSE(file.commit());
    }
    EXPECT_EQ(entries(dir.path()), 1u);
}

TEST(zbpAtomicFile, ADeviceThatRefusesWritesIsNoLongerGood) {
    zbp::AtomicFile device;
    ASSERT_TRUE(device.open("/dev/full", "wb"));
    EXPECT_TRUE(device.temporaryPath().empty()); // written in place
    EXPECT_TRUE(device.good());
    const std::string block(100000, 'x'); // more than the stream holds back
    EXPECT_FALSE(write(device, block));
    EXPECT_FALSE(device.good());
    EXPECT_FALSE(device.commit());
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
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
    zbp::AtomicFile file;
    ASSERT_TRUE(file.open(target.c_str(), "wb"));
    write(file, "new");
    ASSERT_TRUE(file.commit());
    struct stat info;
    ASSERT_EQ(stat(target.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 65534u);
    EXPECT_EQ(info.st_gid, 65534u);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(zbtest::readBytes(target), "new");
}

#endif
