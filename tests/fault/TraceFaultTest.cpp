// The trace queue on a disk that fails: a message leaves the queue only once its whole line is
// in the file, a replaced file survives a failed write, and no line continues a cut one.
#include <zbBase/diagnostics/CzbTrace.h>

#include "support/zbDescriptorLimit.h"
#include "support/zbFaults.h"
#include "support/zbMemoryLimit.h"
#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#if !defined(_WIN32)

namespace fs = std::filesystem;
using zbtest::Text;

namespace {

std::string message(int i) {
    return "trace message " + std::to_string(1000 + i) + " " + std::string(40, 'm');
}

void queueMessages(CzbTrace& trace, int count) {
    trace.setMode(CzbTrace::ModeQueue);
    for (int i = 0; i < count; ++i) {
        trace.setTrace(Text("%s"), message(i).c_str());
    }
}

} // namespace

TEST(TraceFault, FileModeNeverContinuesACutLine) {
    zbtest::TempFolder dir;
    const std::string name = dir.file("trace.txt");
    CzbTrace trace;
    ASSERT_TRUE(trace.setTraceFileName(Text(name), true));
    {
        zbtest::FileSizeLimit limit(1000); // 16 whole lines and part of the 17th
        for (int i = 0; i < 30; ++i) {
            trace.setTrace(Text("%s"), message(i).c_str());
        }
    }
    trace.setTrace(Text("after"));
    std::vector<std::string> lines = zbtest::readLines(name);
    ASSERT_EQ(lines.size(), 18u);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(lines[i], message(i));
    }
    EXPECT_EQ(lines[16], message(16).substr(0, lines[16].size()));
    EXPECT_LT(lines[16].size(), message(16).size());
    EXPECT_EQ(lines[17], "after");
}

TEST(TraceFault, AQueueLeavesOnlyWhatReachedTheFile) {
    zbtest::TempFolder dir;
    const std::string name = dir.file("queue.txt");
    for (bool append : {true, false}) {
        const std::string old = append ? "old\n" : std::string(3000, 'o') + "\n";
        zbtest::writeBytes(name, old);
        CzbTrace trace;
        queueMessages(trace, 100);
        {
            zbtest::FileSizeLimit limit(2000);
            trace.setWriteFile(Text(name), append);
        }
        if (!append) {
            // A replaced file fails whole: the old file and the whole queue stay.
            EXPECT_EQ(zbtest::readBytes(name), old);
            EXPECT_EQ(trace.getTraceNum(), 100);
            EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()),
                      1);
            fs::create_symlink("/dev/full", dir.file("full.txt"));
            trace.setWriteFile(Text(dir.file("full.txt")), false);
            trace.setWriteFile(Text(dir.file("full.txt")), true);
            EXPECT_EQ(trace.getTraceNum(), 100);
            EXPECT_EQ(trace.getTraceFront(), message(0));
            trace.setWriteFile(Text(name), false);
            EXPECT_EQ(trace.getTraceNum(), 0);
            EXPECT_EQ(zbtest::readLines(name).size(), 100u);
            continue;
        }
        // "old", the whole lines, and the cut one (without its line end yet).
        std::vector<std::string> lines = zbtest::readLines(name);
        ASSERT_GE(lines.size(), 2u);
        const size_t whole = lines.size() - 2;
        EXPECT_EQ(lines[0], "old");
        for (size_t i = 0; i < whole; ++i) {
            EXPECT_EQ(lines[i + 1], message(static_cast<int>(i)));
        }
        EXPECT_NE(lines.back().find("<unterminated>"), std::string::npos);
        ASSERT_EQ(trace.getTraceNum(), static_cast<int>(100 - whole));
        EXPECT_EQ(trace.getTraceFront(), message(static_cast<int>(whole)));
        // Space is back: the rest follows, from a line of its own.
        trace.setWriteFile(Text(name), true);
        EXPECT_EQ(trace.getTraceNum(), 0);
        lines = zbtest::readLines(name);
        ASSERT_EQ(lines.size(), 1 + whole + 1 + (100 - whole));
        for (int i = static_cast<int>(whole); i < 100; ++i) {
            EXPECT_EQ(lines[2 + i], message(i));
        }
    }
}

TEST(TraceFault, ATextLongerThanARunLeavesTheQueueOnlyWhole) {
    zbtest::TempFolder dir;
    const std::string name = dir.file("long.txt");
    CzbTrace trace;
    const std::string huge(40000, 'h');
    char* block = static_cast<char*>(malloc(huge.size() + 1));
    ASSERT_NE(block, nullptr);
    memcpy(block, huge.c_str(), huge.size() + 1);
    trace.m_queue.push_back(block); // queued by the host: far longer than one write of the queue
    {
        zbtest::FileSizeLimit limit(20000); // a later piece of the text is cut
        trace.setWriteFile(Text(name), true);
    }
    EXPECT_EQ(trace.getTraceNum(), 1);
    EXPECT_EQ(zbtest::readBytes(name), huge.substr(0, 20000));
    {
        // Room for a line end and the whole text, not for the line end behind it.
        zbtest::FileSizeLimit limit(20000 + 1 + 40000);
        trace.setWriteFile(Text(name), true);
    }
    EXPECT_EQ(trace.getTraceNum(), 1);
    EXPECT_EQ(zbtest::readBytes(name), huge.substr(0, 20000) + "\n" + huge);
    trace.setWriteFile(Text(name), true);
    EXPECT_EQ(trace.getTraceNum(), 0);
    EXPECT_EQ(zbtest::readBytes(name), huge.substr(0, 20000) + "\n" + huge + "\n" + huge + "\n");
}

TEST(TraceFault, DevicesAreWrittenWhereTheyStand) {
    // A full device refuses every queue, whichever write meets the end of the stream's buffer:
    // the queue stays whole.
    for (size_t first = 0; first < 512; ++first) {
        CzbTrace trace;
        trace.setMode(CzbTrace::ModeQueue);
        trace.setTrace(Text("%s"), std::string(first, 'f').c_str());
        for (int i = 0; i < 10; ++i) {
            trace.setTrace(Text("%s"), std::string(511, static_cast<char>('0' + i)).c_str());
        }
        trace.setWriteFile(Text("/dev/full"), false);
        ASSERT_EQ(trace.getTraceNum(), 11) << first;
        ASSERT_EQ(strlen(trace.getTraceFront()), first);
    }
    EXPECT_TRUE(fs::is_character_file("/dev/full"));

    // The null device takes every line, and stays what it is.
    CzbTrace trace;
    ASSERT_TRUE(trace.setTraceFileName(Text("/dev/null"), true));
    trace.setTrace(Text("to nowhere"));
    queueMessages(trace, 3);
    trace.setWriteFile(Text("/dev/null"), false);
    EXPECT_EQ(trace.getTraceNum(), 0);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(TraceFault, AMessageWithoutMemoryIsDroppedAndTheLockReleased) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    int rc = zbtest::withAddressSpace(zbtest::addressSpace() + (32 << 20), [&] {
        CzbTrace trace;
        queueMessages(trace, 1);
        Text format("%s");
        const std::string dropped = message(1);
        {
            zbtest::MemoryHog hog;
            trace.setTrace(format, dropped.c_str());
        }
        if (trace.getTraceNum() != 1) {
            return 1;
        }
        // The lock is free again, for this thread and for any other.
        std::thread other([&] { trace.setTrace(Text("%s"), message(2).c_str()); });
        other.join();
        char text[512];
        trace.getTracePop(text);
        return trace.getTraceNum() == 1 && message(0) == text && message(2) == trace.getTraceFront()
                   ? 0
                   : 2;
    });
    EXPECT_EQ(rc, 0);
}

TEST(TraceFault, DescriptorsRunningOut) {
    ZBTEST_SKIP_WHEN_DESCRIPTORS_ARE_NEEDED();
    zbtest::TempFolder dir;
    const std::string name = dir.file("trace.txt");
    zbtest::writeBytes(name, "host text"); // ends inside a line
    CzbTrace trace;
    ASSERT_TRUE(trace.setTraceFileName(Text(name), false));
    Text other(dir.file("other.txt"));
    Text format("%s");
    {
        // No descriptor left: the message is lost, and no other file can be named.
        zbtest::DescriptorLimit limit(0);
        trace.setTrace(format, "lost");
        EXPECT_FALSE(trace.setTraceFileName(other, true));
    }
    EXPECT_EQ(zbtest::readBytes(name), "host text");
    EXPECT_FALSE(fs::exists(dir.file("other.txt")));
    {
        // One descriptor: the file opens, but its end cannot be looked at, and the file is
        // taken as it stands.
        zbtest::DescriptorLimit limit(1);
        trace.setTrace(format, "written");
    }
    trace.setTrace(format, "next");
    EXPECT_EQ(zbtest::readBytes(name), "host textwritten\nnext\n");
}

#endif
