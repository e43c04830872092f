#include "datafiles/zbTempFolder.h"

#include <zbBase/datafiles/CzbFileMgrB.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

using zbBase::CzbFileMgrB;

namespace {

std::string block(void* data, size_t size) {
    return data != nullptr ? std::string(static_cast<const char*>(data), size) : "<null>";
}

} // namespace

TEST(CzbFileMgrB, HeadAndBodiesByteForByte) {
    TempFolder folder;
    std::string path = folder.file("hb.bin");
    CzbFileMgrB writer;
    writer.SetDataSize(8, 4);
    EXPECT_TRUE(writer.SetHead(T("HEAD-old")));
    EXPECT_TRUE(writer.SetHead(T("HEAD0123")));
    EXPECT_TRUE(writer.AddBody(T("b0b0")));
    EXPECT_TRUE(writer.AddBody(T("b1b1")));
    EXPECT_TRUE(writer.AddBody(T("b2b2")));
    writer.MakeFile(T(path));
    EXPECT_EQ(readBytes(path), "HEAD0123b0b0b1b1b2b2");
    writer.AddBody(T("b3b3"));
    writer.MakeFile(T(path));

    CzbFileMgrB reader;
    reader.SetDataSize(8, 4);
    EXPECT_EQ(reader.GetBodyData(), nullptr);
    ASSERT_TRUE(reader.OpenFile(T(path)));
    EXPECT_EQ(block(reader.GetHeadData(), 8), "HEAD0123");
    EXPECT_EQ(block(reader.GetBodyData(), 4), "b0b0");
    EXPECT_EQ(reader.MoveNext(), 1);
    EXPECT_EQ(reader.MoveNext(), 2);
    EXPECT_EQ(block(reader.GetBodyData(), 4), "b2b2");
    EXPECT_EQ(reader.MoveNext(), 3);
    EXPECT_EQ(reader.MoveNext(), 0);
    reader.MoveNext();
    ASSERT_TRUE(reader.OpenFile(T(path))); // a second read replaces the first
    EXPECT_EQ(block(reader.GetBodyData(), 4), "b0b0");

    // Other sizes give other records and no failure.
    reader.SetDataSize(4, 8);
    EXPECT_EQ(reader.GetHeadData(), nullptr);
    ASSERT_TRUE(reader.OpenFile(T(path)));
    EXPECT_EQ(block(reader.GetHeadData(), 4), "HEAD");
    EXPECT_EQ(block(reader.GetBodyData(), 8), "0123b0b0");
    EXPECT_EQ(reader.m_readBodies.size(), 2u); // the last 4 bytes are no whole body

    // Copies own their blocks: the copy outlives the source's read side.
    CzbFileMgrB copy(reader);
    reader.ClearReadBuffer();
    EXPECT_EQ(reader.GetHeadData(), nullptr);
    EXPECT_EQ(block(copy.GetHeadData(), 4), "HEAD");
    EXPECT_EQ(block(copy.m_readBodies[1], 8), "b1b1b2b2");
    CzbFileMgrB assigned;
    assigned = writer;
    const CzbFileMgrB& same = assigned;
    assigned = same;
    EXPECT_NE(assigned.m_writeHead, writer.m_writeHead);
    assigned.MakeFile(T(path));
    EXPECT_EQ(readBytes(path), "HEAD0123b0b0b1b1b2b2b3b3");
}

TEST(CzbFileMgrB, HeadSizeZeroNoBodiesAndMissingHead) {
    TempFolder folder;
    std::string path = folder.file("hb.bin");
    CzbFileMgrB mgr;
    mgr.SetDataSize(0, 3);
    EXPECT_FALSE(mgr.SetHead(T("xyz")));
    mgr.AddBody(T("abc"));
    mgr.AddBody(T("def"));
    mgr.MakeFile(T(path));
    EXPECT_EQ(readBytes(path), "abcdef");
    ASSERT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(block(mgr.GetBodyData(), 3), "abc");
    EXPECT_EQ(mgr.MoveNext(), 1);
    EXPECT_EQ(block(mgr.GetBodyData(), 3), "def");

    mgr.SetDataSize(5, 3);
    EXPECT_TRUE(mgr.m_writeBodies.empty());
    EXPECT_TRUE(mgr.m_readBodies.empty());
    mgr.MakeFile(T(path)); // no head set: five zero bytes
    EXPECT_EQ(readBytes(path), std::string(5, '\0'));
    ASSERT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(block(mgr.GetHeadData(), 5), std::string(5, '\0'));
    EXPECT_EQ(mgr.GetBodyData(), nullptr);
    EXPECT_EQ(mgr.MoveNext(), 0);
    EXPECT_EQ(mgr.MoveNext(), 0);

    // A file that cannot be opened: read side empty, write side kept.
    mgr.SetHead(T("head!"));
    EXPECT_FALSE(mgr.OpenFile(T(folder.file("missing.bin"))));
    EXPECT_EQ(mgr.GetHeadData(), nullptr);
    EXPECT_NE(mgr.m_writeHead, nullptr);
    mgr.MakeFile(T(folder.file("no/such/dir.bin"))); // nothing happens

    // Neither size: one byte is enough to tell a file from an empty one; the head is an empty
    // block and there are no bodies.
    mgr.SetDataSize(0, 0);
    EXPECT_TRUE(mgr.AddBody(nullptr)); // no byte to copy
    mgr.MakeFile(T(path));
    EXPECT_EQ(readBytes(path), "");
    EXPECT_FALSE(mgr.OpenFile(T(path)));
    writeBytes(path, "some bytes");
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_NE(mgr.GetHeadData(), nullptr);
    EXPECT_TRUE(mgr.m_readBodies.empty());
    CzbFileMgrB copyOfNothing(mgr);
    EXPECT_NE(copyOfNothing.GetHeadData(), nullptr);
    EXPECT_NE(copyOfNothing.GetHeadData(), mgr.GetHeadData());

    // Bodies of a head-and-body file with no head: the bytes before the first body are the
    // head (head size 4), a body size larger than the file gives no body and no failure.
    mgr.SetDataSize(4, 0);
    EXPECT_TRUE(mgr.AddBody(nullptr));
    mgr.SetHead(T("head"));
    mgr.MakeFile(T(path));
    EXPECT_EQ(readBytes(path), "head");
    mgr.SetDataSize(0, 100);
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_NE(mgr.GetHeadData(), nullptr);
    EXPECT_TRUE(mgr.m_readBodies.empty());
    EXPECT_EQ(mgr.GetBodyData(), nullptr);
}

TEST(CzbFileMgrB, MalformedFilesKeepWhatIsWhole) {
    TempFolder folder;
    std::string path = folder.file("bad.bin");
    CzbFileMgrB mgr;
    mgr.SetDataSize(8, 4);

    writeBytes(path, "short"); // shorter than the head
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(mgr.GetHeadData(), nullptr);
    EXPECT_EQ(mgr.GetBodyData(), nullptr);

    writeBytes(path, "HEAD0123b0b0b1"); // a partial last body
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(block(mgr.GetHeadData(), 8), "HEAD0123");
    EXPECT_EQ(mgr.m_readBodies.size(), 1u);

    mgr.SetDataSize(8, 0); // a body size of 0 ends at once
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(block(mgr.GetHeadData(), 8), "HEAD0123");
    EXPECT_TRUE(mgr.m_readBodies.empty());

    mgr.SetDataSize(0x7fffffffu, 0x7fffffffu); // sizes far beyond the file
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(mgr.GetHeadData(), nullptr);
    EXPECT_TRUE(mgr.m_readBodies.empty());

    // A folder is no file; a cursor that a host set to the largest int wraps to 0.
    std::filesystem::create_directory(folder.file("dir"));
    EXPECT_FALSE(mgr.OpenFile(T(folder.file("dir"))));
    mgr.m_cursor = 0x7fffffff;
    EXPECT_EQ(mgr.MoveNext(), 0);

    // A head far beyond the file (not a size that a 32-bit signed length could hold) and no
    // bodies: a non-empty file reads without a head.
    mgr.SetDataSize(0xffffffffu, 0);
    EXPECT_TRUE(mgr.OpenFile(T(path)));
    EXPECT_EQ(mgr.GetHeadData(), nullptr);

    // A cursor that a host set below 0 names no body and counts up as the documented walk
    // does; the walk wraps only at the end.
    mgr.SetDataSize(8, 2);
    ASSERT_TRUE(mgr.OpenFile(T(path)));
    ASSERT_EQ(mgr.m_readBodies.size(), 3u);
    mgr.m_cursor = -3;
    EXPECT_EQ(mgr.GetBodyData(), nullptr);
    EXPECT_EQ(mgr.MoveNext(), -2);
    EXPECT_EQ(mgr.MoveNext(), -1);
    EXPECT_EQ(mgr.MoveNext(), 0);
    EXPECT_EQ(block(mgr.GetBodyData(), 2), "b0");
}

#if !defined(_WIN32)
TEST(CzbFileMgrB, ADeviceWithoutEndGivesTheHeadAndNothingMore) {
    CzbFileMgrB mgr;
    mgr.SetDataSize(100000, 0);
    ASSERT_TRUE(mgr.OpenFile(T("/dev/zero")));
    EXPECT_EQ(block(mgr.GetHeadData(), 100000), std::string(100000, '\0'));
}

TEST(CzbFileMgrB, BytesFromAPipeAreReadAsTheyArrive) {
    // A pipe claims no length: the image grows with what really comes.
    TempFolder folder;
    std::string path = folder.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string bytes(300000, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i % 251);
    }
    std::thread writer([&] {
        FILE* file = std::fopen(path.c_str(), "wb");
        for (size_t done = 0; done < bytes.size(); done += 1000) {
            std::fwrite(bytes.data() + done, 1, 1000, file);
            std::fflush(file);
        }
        std::fclose(file);
    });
    CzbFileMgrB mgr;
    mgr.SetDataSize(10, 7);
    bool opened = mgr.OpenFile(T(path));
    writer.join();
    ASSERT_TRUE(opened);
    EXPECT_EQ(block(mgr.GetHeadData(), 10), bytes.substr(0, 10));
    ASSERT_EQ(mgr.m_readBodies.size(), (bytes.size() - 10) / 7);
    EXPECT_EQ(block(mgr.m_readBodies.back(), 7),
              bytes.substr(10 + 7 * (mgr.m_readBodies.size() - 1), 7));
}
#endif
