// Copies over an existing file on a full disk and into a folder the user may not write, and
// tree operations given a symbolic link: the old file survives, nothing half-written stays
// behind, and nothing behind a link is touched.
#include <zbBase/filesystem/CzbFileUtil.h>
#include <zbBase/filesystem/zbPathFileUtil.h>
#include <zbBase/platform/detail/zbpFileOps.h>

#include "filesystem/TempTree.h"
#include "support/zbFaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using zbBase::zbPathFileUtil;
using zbtest::Text;

namespace {

using fstest::lib;

// The names in a folder: a failed copy must leave no new file behind.
std::vector<std::string> listing(const fs::path& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Compares whole files without printing kilobytes of bytes on a failure.
::testing::AssertionResult holds(const fs::path& file, const std::string& bytes) {
    const std::string actual = zbtest::readBytes(file);
    if (actual == bytes) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << file << " holds " << actual.size()
                                         << " other bytes than the " << bytes.size() << " expected";
}

std::string pattern(size_t size, char seed) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(seed + i * 7 + i / 509);
    }
    return bytes;
}

bool copyFile(const fs::path& from, const fs::path& to) {
    return zbPathFileUtil::CopytoFile(Text(lib(from)), Text(lib(to)));
}

bool copyApi(const fs::path& from, const fs::path& to, BOOL failIfExists) {
    return zbp::CopyFileA(lib(from).c_str(), lib(to).c_str(), failIfExists);
}

} // namespace

TEST(FileSystemFault, CopyOverAFileKeepsItWhenTheCopyFails) {
    zbtest::TempFolder dir;
    const fs::path src = dir.path() / "src";
    const fs::path dst = dir.path() / "dst";
    const std::string fresh = pattern(100000, 'n');
    const std::string old = pattern(7000, 'o');
    zbtest::writeBytes(src / "data.bin", fresh);
    zbtest::writeBytes(dst / "data.bin", old);
    const std::vector<std::string> before = listing(dst);

    // Without a fault the copy replaces the file and leaves nothing beside it.
    EXPECT_TRUE(copyFile(src / "data.bin", dst / "x.bin"));
    EXPECT_TRUE(holds(dst / "x.bin", fresh));
    fs::remove(dst / "x.bin");

#if !defined(_WIN32)
    {
        zbtest::FileSizeLimit full(4096); // every file stops growing at 4096 bytes
        EXPECT_FALSE(copyFile(src / "data.bin", dst / "data.bin"));
        EXPECT_TRUE(holds(dst / "data.bin", old));
        EXPECT_EQ(listing(dst), before);

        EXPECT_FALSE(copyApi(src / "data.bin", dst / "data.bin", FALSE));
        EXPECT_TRUE(holds(dst / "data.bin", old));
        EXPECT_FALSE(copyApi(src / "data.bin", dst / "new.bin", TRUE));
        EXPECT_EQ(listing(dst), before);

        // A folder copy keeps its documented result; the old file stays whole.
        EXPECT_EQ(CzbFileUtil::CopyFolder(Text(lib(src)), Text(lib(dst)), false), 1);
        EXPECT_TRUE(holds(dst / "data.bin", old));
        EXPECT_EQ(listing(dst), before);

        // CopytoFolder reports the copy that failed after both files opened.
        EXPECT_FALSE(zbPathFileUtil::CopytoFolder(Text(lib(src / "*.bin")), Text(lib(dst))));
        EXPECT_TRUE(holds(dst / "data.bin", old));
        EXPECT_EQ(listing(dst), before);

        // The move copies nothing whole, so it deletes nothing.
        EXPECT_EQ(CzbFileUtil::MoveFolder(Text(lib(src)), Text(lib(dst)), false), 0);
        EXPECT_TRUE(holds(src / "data.bin", fresh));
        EXPECT_TRUE(holds(dst / "data.bin", old));
    }

    // A device is written where it stands, and a write it refuses is reported.
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(Text(lib(src / "data.bin")), Text("/dev/full")));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));

    zbtest::SmallTmpfs disk(128 * 1024);
    if (!disk.ok()) {
        GTEST_SKIP() << disk.why();
    }
    const fs::path small = disk.path();
    const std::string kept = old + old + old + old + old + old + old + old + old; // 63000 bytes
    zbtest::writeBytes(small / "data.bin", kept);
    // A file larger than the whole disk.
    const std::string huge = pattern(200000, 'h');
    zbtest::writeBytes(src / "huge.bin", huge);
    EXPECT_FALSE(copyFile(src / "huge.bin", small / "data.bin"));
    EXPECT_TRUE(holds(small / "data.bin", kept));
    EXPECT_FALSE(copyApi(src / "huge.bin", small / "data.bin", FALSE));
    EXPECT_TRUE(holds(small / "data.bin", kept));
    fs::copy_file(src / "huge.bin", src / "data.bin", fs::copy_options::overwrite_existing);
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(lib(src)), Text(lib(small)), false), 1);
    EXPECT_TRUE(holds(small / "data.bin", kept));
    EXPECT_EQ(listing(small), std::vector<std::string>{"data.bin"});
    // A file that would fit alone but not beside the old one: the copy is refused rather than
    // made in place, where a failure would cost the old file.
    zbtest::writeBytes(dir.path() / "fresh.bin", fresh); // 100000 bytes
    EXPECT_FALSE(copyFile(dir.path() / "fresh.bin", small / "data.bin"));
    EXPECT_TRUE(holds(small / "data.bin", kept));
    EXPECT_EQ(listing(small), std::vector<std::string>{"data.bin"});
#endif
}

#if !defined(_WIN32)

TEST(FileSystemFault, CopyIntoAFolderTheUserMayNotWrite) {
    zbtest::TempFolder dir;
    const fs::path src = dir.path() / "src";
    const fs::path locked = dir.path() / "locked";
    zbtest::writeBytes(src / "data.bin", pattern(20000, 'n'));
    zbtest::writeBytes(locked / "data.bin", "old content");
    // The folder is root's and closed to others; its file is open to everyone.
    fs::permissions(dir.path(),
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(src, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(src / "data.bin", fs::perms::owner_all | fs::perms::others_read);
    fs::permissions(locked, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(locked / "data.bin", fs::perms::all);

    const std::string from = lib(src / "data.bin");
    const std::string to = lib(locked / "data.bin");
    int rc = zbtest::asUnprivileged([&] {
        int failures = 0;
        // No new file can be made beside the target: the copy is refused, not done in place.
        failures |= zbPathFileUtil::CopytoFile(Text(from), Text(to)) ? 1 : 0;
        failures |= zbp::CopyFileA(from.c_str(), to.c_str(), FALSE) ? 2 : 0;
        failures |= zbPathFileUtil::CopytoFile(Text(from), Text(lib(locked / "new.bin"))) ? 4 : 0;
        // A file that does not open is skipped, as documented.
        failures |=
            zbPathFileUtil::CopytoFolder(Text(lib(src / "*.bin")), Text(lib(locked))) ? 0 : 8;
        failures |= CzbFileUtil::CopyFolder(Text(lib(src)), Text(lib(locked)), false) == 1 ? 0 : 16;
        // On a full disk as well, a failed copy cannot be cleaned up in this folder: it must
        // never begin there.
        zbtest::FileSizeLimit full(4096);
        failures |= zbPathFileUtil::CopytoFile(Text(from), Text(to)) ? 32 : 0;
        failures |= zbp::CopyFileA(from.c_str(), to.c_str(), FALSE) ? 64 : 0;
        return failures;
    });
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(zbtest::readBytes(locked / "data.bin"), "old content");
    EXPECT_EQ(listing(locked), std::vector<std::string>{"data.bin"});
    fs::permissions(dir.path(), fs::perms::owner_all);
}

TEST(FileSystemFault, ASourceThatFailsToReadLeavesTheTargetAlone) {
    // /proc/self/mem is a regular file that fails every read at its start (EIO).
    zbtest::TempFolder dir;
    const fs::path target = dir.path() / "data.bin";
    const std::string old = pattern(5000, 'o');
    zbtest::writeBytes(target, old);
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(Text("/proc/self/mem"), Text(lib(target))));
    EXPECT_TRUE(holds(target, old));
    EXPECT_FALSE(zbp::CopyFileA("/proc/self/mem", lib(target).c_str(), FALSE));
    EXPECT_TRUE(holds(target, old));
    EXPECT_FALSE(zbp::CopyFileA("/proc/self/mem", lib(dir.path() / "new.bin").c_str(), TRUE));
    EXPECT_EQ(listing(dir.path()), std::vector<std::string>{"data.bin"});
}

TEST(FileSystemFault, BatchOperationsOfAUserWhoMayNotTouchEveryFile) {
    zbtest::TempFolder dir;
    const fs::path src = dir.path() / "src";
    const fs::path dst = dir.path() / "dst";
    const fs::path locked = src / "locked";
    zbtest::writeBytes(src / "a.txt", "a");
    zbtest::writeBytes(src / "secret.txt", "root only");
    zbtest::writeBytes(locked / "fixed.txt", "stays");
    zbtest::writeBytes(dir.path() / "ro.txt", "read only");
    // Twins in the target that the user cannot compare: one source, one target unreadable.
    zbtest::writeBytes(dst / "secret.txt", "root only");
    zbtest::writeBytes(src / "b.txt", "b");
    zbtest::writeBytes(dst / "b.txt", "b");
    fs::permissions(dst, fs::perms::all);
    fs::permissions(dst / "b.txt", fs::perms::owner_read | fs::perms::owner_write);
    // A file open to everyone, in a folder open to everyone: the user may replace it, but
    // cannot give the new file root as its owner.
    zbtest::writeBytes(dir.path() / "shared.txt", "shared");
    fs::permissions(dir.path() / "shared.txt", fs::perms::all);
    fs::permissions(dir.path(), fs::perms::all);
    fs::permissions(src, fs::perms::all);
    fs::permissions(src / "secret.txt", fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(locked, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(dir.path() / "ro.txt", fs::perms::owner_read | fs::perms::others_read);

    const std::string from = lib(src);
    const std::string to = lib(dst);
    const std::string ro = lib(dir.path() / "ro.txt");
    const std::string fresh = lib(locked / "new.txt");
    const std::string shared = lib(dir.path() / "shared.txt");
    int rc = zbtest::asUnprivileged([&] {
        int failures = 0;
        // A file the user may not read is not copied, so the move keeps it.
        failures |= CzbFileUtil::MoveFolder(Text(from), Text(to), false) == 0 ? 0 : 1;
        // A file the user may not delete is not recorded as deleted.
        CzbFileUtil util;
        util.DeleteFiles(Text(from + "\\locked\\*.txt"), true);
        failures |= util.getFindData()->size() == 1 ? 0 : 2;
        failures |= util.getProcessData()->size() == 0 ? 0 : 4;
        // A read-only target is refused; no new file can be made in a folder closed to the user.
        failures |= zbPathFileUtil::CopytoFile(Text(from + "\\a.txt"), Text(ro)) ? 8 : 0;
        failures |= zbp::CopyFileA(ro.c_str(), fresh.c_str(), TRUE) ? 16 : 0;
        failures |= zbPathFileUtil::CopytoFile(Text(to + "\\a.txt"), Text(shared)) ? 0 : 32;
        return failures;
    });
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(zbtest::readBytes(src / "b.txt"), "b");
    EXPECT_EQ(zbtest::readBytes(dir.path() / "shared.txt"), "a");
    struct stat info;
    ASSERT_EQ(stat((dir.path() / "shared.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, geteuid() == 0 ? 65534u : geteuid());
    EXPECT_EQ(zbtest::readBytes(dst / "a.txt"), "a");
    EXPECT_FALSE(fs::exists(src / "a.txt"));
    EXPECT_EQ(zbtest::readBytes(src / "secret.txt"), "root only");
    EXPECT_EQ(zbtest::readBytes(dst / "secret.txt"), "root only");
    EXPECT_EQ(zbtest::readBytes(locked / "fixed.txt"), "stays");
    EXPECT_EQ(zbtest::readBytes(dst / "locked" / "fixed.txt"), "stays");
    EXPECT_EQ(zbtest::readBytes(dir.path() / "ro.txt"), "read only");
    EXPECT_FALSE(fs::exists(locked / "new.txt"));
}

TEST(FileSystemFault, TreeOperationsGivenALinkNeverReachBehindIt) {
    zbtest::TempFolder dir;
    const fs::path d = dir.path();
    const fs::path outside = d / "outside";
    zbtest::writeBytes(outside / "precious.txt", "keep");
    zbtest::writeBytes(outside / "sub" / "deep.txt", "keep too");
    auto survived = [&] {
        return zbtest::readBytes(outside / "precious.txt") == "keep" &&
               zbtest::readBytes(outside / "sub" / "deep.txt") == "keep too";
    };
    auto remove = [&](const std::string& name, const std::string& closing = "") {
        CzbFileUtil::DeleteFolder(Text(lib(d / name) + closing), false);
        return fs::is_symlink(d / name) || fs::exists(d / name);
    };
    auto move = [&](const std::string& from, const std::string& to) {
        return CzbFileUtil::MoveFolder(Text(lib(d / from)), Text(lib(d / to)), false);
    };
    // The link given as the folder, with and without a closing separator, goes alone; so
    // does a link inside the tree, and a dangling link. A link to a file is no folder and
    // stays, as a file would.
    fs::create_directory_symlink(outside, d / "link");
    EXPECT_FALSE(remove("link"));
    fs::create_directory_symlink(outside, d / "link");
    EXPECT_FALSE(remove("link", "\\"));
    zbtest::writeBytes(d / "tree" / "a.txt", "a");
    fs::create_directory_symlink(outside, d / "tree" / "inner");
    EXPECT_FALSE(remove("tree"));
    fs::create_directory_symlink(d / "nowhere", d / "dangling");
    EXPECT_FALSE(remove("dangling"));
    fs::create_symlink(outside / "precious.txt", d / "filelink");
    EXPECT_TRUE(remove("filelink"));
    EXPECT_TRUE(survived());

    // Copying from a link copies what it names; moving it moves the link: the copy is made and
    // the link goes once everything arrived, while the files behind it stay.
    fs::create_directory_symlink(outside, d / "link");
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(lib(d / "link")), Text(lib(d / "copy")), false), 1);
    EXPECT_EQ(zbtest::readBytes(d / "copy" / "sub" / "deep.txt"), "keep too");
    EXPECT_EQ(move("link", "moved"), 0);
    EXPECT_FALSE(fs::is_symlink(d / "link"));
    EXPECT_EQ(zbtest::readBytes(d / "moved" / "sub" / "deep.txt"), "keep too");
    EXPECT_TRUE(survived());
    // A move that cannot complete keeps the link, and so does a move of a link to nothing.
    fs::create_directory_symlink(d / "nowhere", d / "dangling");
    move("dangling", "m0");
    EXPECT_TRUE(fs::is_symlink(d / "dangling"));
    zbtest::writeBytes(outside / ".git" / "config", "not copied");
    fs::create_directory_symlink(outside, d / "link");
    move("link", "moved2");
    EXPECT_TRUE(fs::is_symlink(d / "link"));
    EXPECT_TRUE(survived());

    // A search through the link as its root finds what it names; renames there rename the
    // link itself, never its target.
    CzbFileUtil util;
    util.FindFile(Text(lib(d / "link") + "\\*.txt"), true);
    EXPECT_EQ(util.getFindData()->size(), 2u);
    util.RenameFile(Text(lib(d / "link*")), Text("link"), Text("renamed"), false);
    EXPECT_TRUE(fs::is_symlink(d / "renamed"));
    EXPECT_TRUE(fs::is_directory(outside));
    EXPECT_TRUE(survived());
}

#endif
