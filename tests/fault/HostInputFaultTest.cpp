// Host input that the Visual C++ runtime would answer by ending the process (its
// invalid-parameter handler): null paths, modes and formats never reach the runtime. Each
// operation gives its documented failure result instead, on every platform.
#include <zbBase/zbBase.h>

#include <zbBase/platform/detail/zbpFileIO.h>
#include <zbBase/platform/detail/zbpFind.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

TEST(HostInputFault, NullPathsFailAsFilesThatCannotBeOpened) {
    zbBase::CzbFileMgrB records;
    records.SetDataSize(4, 4);
    EXPECT_FALSE(records.OpenFile(nullptr));
    records.MakeFile(nullptr);
    zbBase::CzbFileMgrAdv blocks;
    char block[8] = "1234567";
    blocks.addDataSize(block, sizeof block);
    EXPECT_FALSE(blocks.writeFile(nullptr, 1.0f));
    EXPECT_EQ(blocks.readFile(nullptr, false), 0);
    EXPECT_FALSE(blocks.editFile(nullptr, 0, block, sizeof block));
    EXPECT_EQ(blocks.getFileHeaderInfo(nullptr).blockCount, 0u);
    zbBase::CzbFileMgr sections;
    EXPECT_FALSE(sections.OpenFile(nullptr));
    CzbFileDB items;
    EXPECT_FALSE(items.savefile(nullptr));
    EXPECT_FALSE(items.openfile(nullptr));
    CzbTrace trace;
    EXPECT_FALSE(trace.setTraceFileName(nullptr, true));
    trace.setMode(CzbTrace::ModeQueue);
    char message[] = "kept";
    trace.setTrace(message);
    trace.setWriteFile(nullptr, false);
    EXPECT_EQ(trace.getTraceNum(), 1); // the queue stays as it was
}

TEST(HostInputFault, NullFormatsGiveTheEmptyText) {
    CzbLogger logger(4, 64);
    logger.setLog(nullptr);
    ASSERT_EQ(logger.GetLogDataNum(), 1);
    EXPECT_STREQ(logger.GetLogData(0)->text, "");
    CzbTrace trace;
    trace.setMode(CzbTrace::ModeQueue);
    trace.setTrace(nullptr);
    ASSERT_EQ(trace.getTraceNum(), 1);
    EXPECT_STREQ(trace.getTraceFront(), "");
    CzbText text;
    EXPECT_STREQ(text.getFormat(nullptr), "");
    zbBase::CzbStringT value("before");
    value.Format(nullptr);
    EXPECT_EQ(value.GetLength(), 0);
}

TEST(HostInputFault, NullTextsStreamsAndDescriptorsAreCheckedFirst) {
    zbBase::CzbString::MakeLower(nullptr);
    zbBase::CzbString::MakeUpper(nullptr);
    errno = 0;
    EXPECT_EQ(zbp::fopen("x", ""), nullptr);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(zbp::fopen(nullptr, "rb"), nullptr);
    EXPECT_EQ(zbp::fopen("x", nullptr), nullptr);
    FILE* stream = stdout; // set to null on failure
    EXPECT_EQ(zbp::fopen_s(&stream, nullptr, "rb"), EINVAL);
    EXPECT_EQ(stream, nullptr);
    stream = stdout;
    EXPECT_EQ(zbp::fopen_s(&stream, "x", nullptr) + zbp::fopen_s(nullptr, "x", "rb"), 2 * EINVAL);
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(zbp::_read(-1, nullptr, 4) + zbp::_filelengthi64(-1), -2);
#if !defined(_WIN32)
    EXPECT_EQ(zbp::_fileno(nullptr), -1);
#endif
}

TEST(HostInputFault, PathsWithPartsTooLongForTheRuntime) {
    // A folder part of 256 characters (one more than the runtime's split takes) finds nothing.
    CzbFileUtil util;
    std::string path = std::string(256, 'd') + "\\*.txt";
    util.FindFile(&path[0], false);
    EXPECT_EQ(util.getFindData()->size() + util.getLastError(), 0u + ENAMETOOLONG);
    char drive[_MAX_DRIVE] = "x", dir[_MAX_DIR] = "x", name[_MAX_FNAME] = "x", ext[_MAX_EXT] = "x";
    zbp::_splitpath(nullptr, drive, dir, name, ext);
    EXPECT_EQ(std::string(dir) + name, "");
#if defined(_WIN32)
    // Where the runtime splits, a part that would not fit gives empty parts.
    zbp::_splitpath(path.c_str(), drive, dir, name, ext);
    EXPECT_EQ(std::string(drive) + dir + name + ext, "");
    zbp::_splitpath("C:\\a\\b.txt", drive, dir, name, ext);
    EXPECT_EQ(std::string(drive) + "|" + dir + "|" + name + "|" + ext, "C:|\\a\\|b|.txt");
#endif
}
