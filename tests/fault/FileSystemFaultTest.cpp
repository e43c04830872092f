// Copies on a full disk or for a user who may not write, tree operations given a link.
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

using fstest::contents;
using fstest::lib;
using fstest::Names;

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

// The folders are compared whole with EXPECT_TRUE: a failure would print kilobytes of bytes.
TEST(FileSystemFault, CopyOverAFileKeepsItWhenTheCopyFails) {
    zbtest::TempFolder dir;
    const fs::path src = dir.path() / "src";
    const fs::path dst = dir.path() / "dst";
    const std::string fresh = pattern(100000, 'n');
    const std::string old = pattern(7000, 'o');
    zbtest::writeBytes(src / "data.bin", fresh);
    zbtest::writeBytes(dst / "data.bin", old);
    const Names before = contents(dst);

#if !defined(_WIN32)
    {
        zbtest::FileSizeLimit full(4096); // every file stops growing at 4096 bytes
        EXPECT_FALSE(copyFile(src / "data.bin", dst / "data.bin") ||
                     copyApi(src / "data.bin", dst / "data.bin", FALSE) ||
                     copyApi(src / "data.bin", dst / "new.bin", TRUE));
        // CopyFolder keeps its documented 1; the move copies nothing whole, so deletes nothing.
        EXPECT_EQ(CzbFileUtil::CopyFolder(Text(lib(src)), Text(lib(dst)), false), 1);
        EXPECT_FALSE(zbPathFileUtil::CopytoFolder(Text(lib(src / "*.bin")), Text(lib(dst))));
        EXPECT_EQ(CzbFileUtil::MoveFolder(Text(lib(src)), Text(lib(dst)), false), 0);
        EXPECT_TRUE(contents(dst) == before);
        EXPECT_TRUE(zbtest::readBytes(src / "data.bin") == fresh);
    }
    // A device is written where it stands, and a write it refuses is reported.
    EXPECT_FALSE(zbPathFileUtil::CopytoFile(Text(lib(src / "data.bin")), Text("/dev/full")));
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    // /proc/self/mem is a regular file that fails every read at its start (EIO).
    EXPECT_FALSE(copyFile("/proc/self/mem", dst / "data.bin") ||
                 copyApi("/proc/self/mem", dst / "data.bin", FALSE) ||
                 copyApi("/proc/self/mem", dst / "new.bin", TRUE));
    EXPECT_TRUE(contents(dst) == before);
    zbtest::SmallTmpfs disk(128 * 1024);
    if (!disk.ok()) {
        GTEST_SKIP() << disk.why();
    }
    const fs::path small = disk.path();
    zbtest::writeBytes(small / "data.bin", pattern(63000, 'k'));
    const Names kept = contents(small);
    zbtest::writeBytes(src / "huge.bin", pattern(200000, 'h')); // larger than the whole disk
    EXPECT_FALSE(copyFile(src / "huge.bin", small / "data.bin") ||
                 copyApi(src / "huge.bin", small / "data.bin", FALSE));
    fs::copy_file(src / "huge.bin", src / "data.bin", fs::copy_options::overwrite_existing);
    EXPECT_EQ(CzbFileUtil::CopyFolder(Text(lib(src)), Text(lib(small)), false), 1);
    EXPECT_TRUE(contents(small) == kept);
    // Room for the copy alone but not beside the old file: refused, never made in place.
    zbtest::writeBytes(dir.path() / "fresh.bin", fresh); // 100000 bytes
    EXPECT_FALSE(copyFile(dir.path() / "fresh.bin", small / "data.bin"));
    EXPECT_TRUE(contents(small) == kept);
#endif
}

#if !defined(_WIN32)

TEST(FileSystemFault, CopiesAndBatchesOfAUserWhoMayNotTouchEveryFile) {
    zbtest::TempFolder dir;
    const fs::path d = dir.path(), src = d / "src", dst = d / "dst", locked = src / "locked";
    for (const char* name : {"src/b.txt", "dst/b.txt", "src/secret.txt", "dst/secret.txt",
                             "src/locked/fixed.txt", "ro.txt", "shared.txt"}) {
        zbtest::writeBytes(d / name, fs::path(name).filename().string());
    }
    const std::string big = pattern(20000, 'a');
    zbtest::writeBytes(src / "a.txt", big);
    // Unreadable twins, a closed folder with an open file, an open file the user may replace
    // (but cannot give root as the new file's owner).
    const fs::perms all = fs::perms::all, mine = fs::perms::owner_read | fs::perms::owner_write;
    for (const fs::path& open : {d, src, dst, d / "shared.txt", locked / "fixed.txt"}) {
        fs::permissions(open, all);
    }
    fs::permissions(dst / "b.txt", mine);
    fs::permissions(src / "secret.txt", mine);
    fs::permissions(locked, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(d / "ro.txt", fs::perms::owner_read | fs::perms::others_read);
    const std::string from = lib(src), to = lib(dst), ro = lib(d / "ro.txt");
    const std::string a = lib(src / "a.txt"), fixed = lib(locked / "fixed.txt");
    int rc = zbtest::asUnprivileged([&] {
        int failures = 0;
        // No new file beside the target: refused, not done in place, on a full disk too.
        failures |= zbPathFileUtil::CopytoFile(Text(a), Text(fixed)) ? 1 : 0;
        failures |= zbp::CopyFileA(a.c_str(), fixed.c_str(), FALSE) ? 1 : 0;
        failures |= zbp::CopyFileA(ro.c_str(), lib(locked / "new.txt").c_str(), TRUE) ? 2 : 0;
        failures |= zbPathFileUtil::CopytoFolder(Text(from + "\\a.txt"), Text(lib(locked))) ? 0 : 4;
        failures |= CzbFileUtil::CopyFolder(Text(from), Text(lib(locked)), false) == 1 ? 0 : 4;
        {
            zbtest::FileSizeLimit full(4096);
            failures |= zbPathFileUtil::CopytoFile(Text(a), Text(fixed)) ? 8 : 0;
            failures |= zbp::CopyFileA(a.c_str(), fixed.c_str(), FALSE) ? 8 : 0;
        }
        // A file the user may not read is not copied, so the move keeps it.
        failures |= CzbFileUtil::MoveFolder(Text(from), Text(to), false) == 0 ? 0 : 16;
        // A file the user may not delete is not recorded as deleted.
        CzbFileUtil util;
        util.DeleteFiles(Text(from + "\\locked\\*.txt"), true);
        failures |= util.getFindData()->size() == 1 && util.getProcessData()->empty() ? 0 : 32;
        // A read-only target is refused.
        failures |= zbPathFileUtil::CopytoFile(Text(from + "\\a.txt"), Text(ro)) ? 64 : 0;
        failures |=
            zbPathFileUtil::CopytoFile(Text(to + "\\a.txt"), Text(lib(d / "shared.txt"))) ? 0 : 128;
        return failures;
    });
    EXPECT_EQ(rc, 0);
    struct stat info;
    ASSERT_EQ(stat((d / "shared.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, geteuid() == 0 ? 65534u : geteuid());
    fs::permissions(locked, all);
    EXPECT_EQ(contents(d),
              (Names{"dst/", "dst/a.txt=" + big, "dst/b.txt=b.txt", "dst/locked/",
                     "dst/locked/fixed.txt=fixed.txt", "dst/secret.txt=secret.txt", "ro.txt=ro.txt",
                     "shared.txt=" + big, "src/", "src/b.txt=b.txt", "src/locked/",
                     "src/locked/fixed.txt=fixed.txt", "src/secret.txt=secret.txt"}));
}

TEST(FileSystemFault, TreeOperationsGivenALinkNeverReachBehindIt) {
    zbtest::TempFolder dir;
    const fs::path d = dir.path();
    const fs::path outside = d / "outside";
    zbtest::writeBytes(outside / "precious.txt", "keep");
    zbtest::writeBytes(outside / "sub" / "deep.txt", "keep too");
    auto survived = [&] { // the files behind the links
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
    // A folder link (given, inside, dangling) goes alone; a link to a file stays, as a file.
    for (const char* closing : {"", "\\"}) {
        fs::create_directory_symlink(outside, d / "link");
        EXPECT_FALSE(remove("link", closing));
    }
    zbtest::writeBytes(d / "tree" / "a.txt", "a");
    fs::create_directory_symlink(outside, d / "tree" / "inner");
    EXPECT_FALSE(remove("tree"));
    fs::create_directory_symlink(d / "nowhere", d / "dangling");
    EXPECT_FALSE(remove("dangling"));
    fs::create_symlink(outside / "precious.txt", d / "filelink");
    EXPECT_TRUE(remove("filelink"));
    EXPECT_TRUE(survived());
    // A copy from a link copies what it names; a move ends by removing the link alone.
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
    // A search through a link finds what it names; a rename renames the link, not its target.
    CzbFileUtil util;
    util.FindFile(Text(lib(d / "link") + "\\*.txt"), true);
    EXPECT_EQ(util.getFindData()->size(), 2u);
    util.RenameFile(Text(lib(d / "link*")), Text("link"), Text("renamed"), false);
    EXPECT_TRUE(fs::is_symlink(d / "renamed"));
    EXPECT_TRUE(fs::is_directory(outside));
    EXPECT_TRUE(survived());
}

#endif
