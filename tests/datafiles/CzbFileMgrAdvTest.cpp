#include "datafiles/zbTempFolder.h"

#include <zbBase/datafiles/CzbFileMgrAdv.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

using zbBase::_zbFileMgrHeader;
using zbBase::CzbFileMgrAdv;

namespace {

std::string le64(uint64_t v) {
    std::string s;
    for (int i = 0; i < 8; ++i) {
        s += static_cast<char>((v >> (8 * i)) & 0xff);
    }
    return s;
}

// A file of three blocks of 10, 0 and 6 bytes with header value 1.5.
std::string writeThree(const TempFolder& folder, char* a, char* c) {
    std::string path = folder.file("blocks.bin");
    CzbFileMgrAdv mgr;
    mgr.addDataSize(a, 10);
    mgr.addDataSize(nullptr, 0);
    mgr.addDataSize(c, 6);
    EXPECT_TRUE(mgr.writeFile(T(path), 1.5f));
    return path;
}

} // namespace

static_assert(sizeof(_zbFileMgrHeader) == 152 && offsetof(_zbFileMgrHeader, headerValue) == 0 &&
                  offsetof(_zbFileMgrHeader, totalSize) == 8 &&
                  offsetof(_zbFileMgrHeader, blockCount) == 16 &&
                  offsetof(_zbFileMgrHeader, reserved) == 24 && sizeof(CzbFileMgrAdv::_Block) == 16,
              "the header and block entry layouts that hosts read");

// The bytes of a sized-block file: header value, total, count, 128 reserved bytes, the table.
std::string fileBytes(const std::string& value, uint64_t total, const std::string& table,
                      const std::string& data) {
    return value + std::string(4, '\0') + le64(total) + le64(table.size() / 8) +
           std::string(128, '\0') + table + data;
}

TEST(CzbFileMgrAdv, EmptyListAndThreeBlocksByteForByte) {
    TempFolder folder;
    std::string empty = folder.file("empty.bin");
    CzbFileMgrAdv mgr;
    char a[] = "0123456789", c[] = "abcdef";
    mgr.addDataSize(a, 10);
    mgr.clear();
    ASSERT_TRUE(mgr.writeFile(T(empty), -2.0f));
    EXPECT_EQ(readBytes(empty), fileBytes(std::string("\x00\x00\x00\xc0", 4), 0, "", ""));
    EXPECT_EQ(mgr.readFile(T(empty), false), 1);

    std::string path = writeThree(folder, a, c);
    const std::string table = le64(10) + le64(0) + le64(6);
    EXPECT_EQ(readBytes(path),
              fileBytes(std::string("\x00\x00\xc0\x3f", 4), 16, table, "0123456789abcdef"));
    _zbFileMgrHeader header = mgr.getFileHeaderInfo(T(path));
    EXPECT_TRUE(header.headerValue == 1.5f && header.totalSize == 16 && header.blockCount == 3);

    char ra[11] = {}, rc[7] = {};
    CzbFileMgrAdv reader;
    reader.addDataSize(ra, 10);
    reader.addDataSize(nullptr, 0);
    reader.addDataSize(rc, 6);
    EXPECT_EQ(reader.readFile(T(path), false), 1);
    EXPECT_EQ(std::string(ra) + rc, "0123456789abcdef");

    // With the size table: its 24 bytes flow into the first buffer.
    char raw[24];
    CzbFileMgrAdv withTable;
    withTable.addDataSize(raw, 24);
    EXPECT_EQ(withTable.readFile(T(path), true), 1);
    EXPECT_EQ(std::string(raw, 24), table);

    EXPECT_EQ(reader.readFile(T(folder.file("missing.bin")), false), 0);
    header = reader.getFileHeaderInfo(T(folder.file("missing.bin")));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(&header), sizeof header), std::string(152, '\0'));
    EXPECT_FALSE(reader.writeFile(T(folder.file("no/such/dir.bin")), 0));
}

TEST(CzbFileMgrAdv, EditFileGrowsAndShrinks) {
    TempFolder folder;
    char a[] = "0123456789", c[] = "abcdef";
    std::string path = writeThree(folder, a, c);
    std::string original = readBytes(path);
    original[30] = 'R'; // reserved bytes of a stored file are carried over
    writeBytes(path, original);

    CzbFileMgrAdv mgr;
    EXPECT_TRUE(mgr.editFile(T(path), 1, T("WXYZ"), 4));
    std::string expected =
        fileBytes(original.substr(0, 4), 20, le64(10) + le64(4) + le64(6), "0123456789WXYZabcdef");
    expected[30] = 'R';
    EXPECT_EQ(readBytes(path), expected);
    EXPECT_TRUE(mgr.editFile(T(path), 0, T("k"), 1));
    expected = fileBytes(original.substr(0, 4), 11, le64(1) + le64(4) + le64(6), "kWXYZabcdef");
    expected[30] = 'R';
    EXPECT_EQ(readBytes(path), expected);

    EXPECT_FALSE(mgr.editFile(T(path), 3, T("x"), 1));
    EXPECT_FALSE(mgr.editFile(T(path), -1, T("x"), 1));
    EXPECT_FALSE(mgr.editFile(T(folder.file("missing.bin")), 0, T("x"), 1));
    EXPECT_EQ(readBytes(path), expected);
}

TEST(CzbFileMgrAdv, LyingHeadersAndShortLists) {
    TempFolder folder;
    char a[] = "0123456789", c[] = "abcdef";
    std::string path = writeThree(folder, a, c);
    const std::string good = readBytes(path);
    CzbFileMgrAdv mgr;

    // Files that do not hold what their header says are never rewritten.
    auto refused = [&](const std::string& bytes) {
        writeBytes(path, bytes);
        bool edited = mgr.editFile(T(path), 0, T("x"), 1);
        return !edited && readBytes(path) == bytes;
    };
    EXPECT_TRUE(refused(good.substr(0, 191))); // truncated block
    EXPECT_TRUE(refused(good.substr(0, 160))); // truncated table
    EXPECT_TRUE(refused(good.substr(0, 100))); // truncated header
    EXPECT_TRUE(refused(""));                  // empty
    EXPECT_TRUE(refused(good + "tail"));       // more than it says
    EXPECT_TRUE(refused(good.substr(0, 16) + le64(1ull << 60) + good.substr(24))); // count
    EXPECT_TRUE(refused(good.substr(0, 8) + le64(999) + good.substr(16)));         // total
    EXPECT_TRUE(refused(good.substr(0, 152) + le64(~0ull) + good.substr(160)));    // size

    // readFile trusts the header but touches nothing beyond the registered buffers.
    char buffers[3][12];
    std::memset(buffers, '#', sizeof buffers);
    CzbFileMgrAdv reader;
    reader.addDataSize(buffers[0], 10);
    writeBytes(path, good.substr(0, 16) + le64(1ull << 60) + good.substr(24));
    EXPECT_EQ(reader.readFile(T(path), false), 1);
    EXPECT_EQ(std::string(buffers[0] + 10, 2), "##");
    EXPECT_EQ(reader.readFile(T(path), true), 1);
    EXPECT_EQ(std::string(buffers[0] + 10, 2), "##");

    writeBytes(path, good.substr(0, 180)); // the first block cut short
    reader.addDataSize(buffers[1], 12);
    EXPECT_EQ(reader.readFile(T(path), false), 1);
    EXPECT_EQ(std::string(buffers[0], 4), "0123");
    EXPECT_EQ(std::string(buffers[1], 12), std::string(12, '#'));

    // A list longer than the file's block count: the entries behind it are left alone.
    writeBytes(path, good);
    std::memset(buffers, '#', sizeof buffers);
    CzbFileMgrAdv longer;
    longer.addDataSize(buffers[0], 10);
    longer.addDataSize(buffers[1], 0);
    longer.addDataSize(buffers[2], 6);
    longer.addDataSize(buffers[1], 12);
    longer.addDataSize(buffers[1], 12);
    EXPECT_EQ(longer.readFile(T(path), false), 1);
    EXPECT_EQ(std::string(buffers[2], 6), "abcdef");
    EXPECT_EQ(std::string(buffers[1], 12), std::string(12, '#'));

    writeBytes(path, good.substr(0, 16)); // no count, no reserved bytes
    _zbFileMgrHeader header = mgr.getFileHeaderInfo(T(path));
    EXPECT_EQ(header.totalSize, 16u);
    EXPECT_EQ(header.blockCount, 0u);
}
