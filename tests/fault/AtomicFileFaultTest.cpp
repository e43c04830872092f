// The file written beside its target: the old file survives every failure.
#include <zbBase/platform/detail/zbpAtomicFile.h>

#include "filesystem/TempTree.h"
#include "support/zbFaults.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

bool writeText(zbp::AtomicFile& file, const std::string& text) {
    return fwrite(text.data(), 1, text.size(), file.stream()) == text.size();
}

} // namespace

#if !defined(_WIN32)

TEST(AtomicFile, FullDiskDeviceAndReadOnlyTargetsFailAndKeepTheOldFile) {
    zbtest::TempFolder dir;
    const std::string target = dir.file("data.bin");
    const std::string old(10000, 'o');
    zbtest::writeBytes(target, old);
    {
        zbtest::FileSizeLimit limit(4096);
        zbp::AtomicFile file;
        ASSERT_TRUE(file.open(target.c_str(), "wb"));
        writeText(file, std::string(20000, 'n'));
        EXPECT_FALSE(file.commit());
    }
    EXPECT_EQ(zbtest::readBytes(target), old);
    EXPECT_EQ(fstest::contents(dir.path()), fstest::Names{"data.bin=" + old});
    // A device is written where it stands: /dev/full refuses every byte.
    zbp::AtomicFile device;
    ASSERT_TRUE(device.open("/dev/full", "wb"));
    EXPECT_TRUE(device.temporaryPath().empty());
    EXPECT_TRUE(device.good());
    EXPECT_FALSE(writeText(device, std::string(100000, 'x'))); // more than the stream holds back
    EXPECT_FALSE(device.good());
    EXPECT_FALSE(device.commit());
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    // Permissions carry over; a read-only file or folder stops an unprivileged writer.
    fs::permissions(target, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    zbp::AtomicFile asRoot;
    ASSERT_TRUE(asRoot.open(target.c_str(), "wb") || geteuid() != 0);
    asRoot.discard();
    fs::permissions(dir.path(), fs::perms::all);
    int rc = zbtest::asUnprivileged([&] {
        zbp::AtomicFile file;
        if (file.open(target.c_str(), "wb")) {
            return 1;
        }
        return file.open(dir.file("new.bin").c_str(), "wb") && file.commit() ? 0 : 2;
    });
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(zbtest::readBytes(target), old);
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    zbtest::SmallTmpfs disk(64 * 1024);
    if (!disk.ok()) {
        GTEST_SKIP() << disk.why();
    }
    const std::string small = disk.file("small.bin");
    zbtest::writeBytes(small, std::string(40000, 's'));
    zbp::AtomicFile file;
    ASSERT_TRUE(file.open(small.c_str(), "wb"));
    writeText(file, std::string(40000, 'n')); // both copies do not fit at once
    EXPECT_FALSE(file.commit());
    EXPECT_EQ(zbtest::readBytes(small), std::string(40000, 's'));
    EXPECT_EQ(fstest::contents(disk.path()).size(), 1u);
}

#endif
