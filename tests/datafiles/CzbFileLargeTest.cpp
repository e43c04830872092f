// Binary files of more than 2 GiB: their length is taken in 64 bits on every platform (on
// Windows the runtime's _filelength would give a 32-bit value). The files are sparse: the
// bytes beyond the written ones cost no disk space.
#include <zbBase/datafiles/CzbFileMgrAdv.h>
#include <zbBase/datafiles/CzbFileMgrB.h>

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

const unsigned long long kLength = 3ull << 30; // 3 GiB

// A sized-block file of one 8-byte block, grown to kLength bytes without writing them; false
// where the file system cannot hold such a file.
bool makeLargeFile(const std::string& name) {
    zbBase::CzbFileMgrAdv writer;
    char block[] = "ABCDEFGH";
    writer.addDataSize(block, 8);
    if (!writer.writeFile(const_cast<char*>(name.c_str()), 2.5f)) {
        return false;
    }
    std::error_code error;
    fs::resize_file(name, kLength, error);
    return !error && fs::file_size(name) == kLength;
}

} // namespace

TEST(CzbFileLarge, ReadersOfFilesOver2GiB) {
    zbtest::TempFolder folder;
    std::string name = folder.file("large.bin");
    if (!makeLargeFile(name)) {
        GTEST_SKIP() << "the file system here holds no sparse file of 3 GiB";
    }
    char* path = &name[0];

    // The head-and-body format describes at most 2^31-1 bytes: such a file is refused whole,
    // at once, with an empty read side.
    zbBase::CzbFileMgrB records;
    records.SetDataSize(152, 0);
    EXPECT_FALSE(records.OpenFile(path));
    EXPECT_EQ(records.GetHeadData(), nullptr);
    EXPECT_EQ(records.GetBodyData(), nullptr);
    EXPECT_EQ(records.MoveNext(), 0);

    // The sized-block header is read from the front of the file as ever.
    zbBase::CzbFileMgrAdv blocks;
    const zbBase::_zbFileMgrHeader header = blocks.getFileHeaderInfo(path);
    EXPECT_EQ(header.headerValue, 2.5f);
    EXPECT_EQ(header.blockCount, 1u);
    EXPECT_EQ(header.totalSize, 8u);

    // The sized-block reader reads its registered block as ever; the edit refuses a file
    // whose length is not what its header and table say, and leaves it as it was.
    char block[9] = {};
    blocks.addDataSize(block, 8);
    EXPECT_EQ(blocks.readFile(path, false), 1);
    EXPECT_STREQ(block, "ABCDEFGH");
    char replacement[] = "WXYZ";
    EXPECT_FALSE(blocks.editFile(path, 0, replacement, 4));
    EXPECT_EQ(fs::file_size(name), kLength);
    EXPECT_EQ(blocks.getFileHeaderInfo(path).totalSize, 8u);
}
