#include "zbBase/diagnostics/CzbTrace.h"

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <regex>
#include <thread>

using zbtest::kEol;
using zbtest::TempFolder;
using zbtest::Text;

TEST(CzbTrace, QueueModeKeepsMessagesInOrderAndCopiesOwnTheirQueue) {
    CzbTrace trace;
    trace.setTrace(Text("lost %d"), 1); // file mode without a file
    EXPECT_EQ(trace.getTraceNum(), 0);
    EXPECT_EQ(trace.getTraceFront(), nullptr);

    trace.setMode(static_cast<CzbTrace::Mode>(7)); // any mode but 1 queues
    trace.setTrace(Text("one %d"), 1);
    trace.setTrace(Text("two"));
    EXPECT_EQ(trace.getTraceNum(), 2);
    EXPECT_STREQ(trace.getTraceFront(), "one 1");
    char buffer[512];
    trace.getTracePop(buffer);
    EXPECT_STREQ(buffer, "one 1");
    EXPECT_STREQ(trace.getTraceFront(), "two");

    // Turning back to file mode leaves the queue as it is.
    trace.setMode(CzbTrace::ModeFile);
    EXPECT_EQ(trace.getTraceNum(), 1);
    trace.clear();
    EXPECT_EQ(trace.getTraceNum(), 0);
    std::memset(buffer, 'q', sizeof buffer);
    trace.getTracePop(buffer);
    EXPECT_EQ(buffer[0], 'q');

    // A message longer than 511 characters is cut.
    trace.setMode(CzbTrace::ModeQueue);
    trace.setTrace(Text("%s"), std::string(800, 'L').c_str());
    EXPECT_EQ(std::strlen(trace.getTraceFront()), 511u);

    // Copies own their queue's storage; assignment gives up the old queue.
    CzbTrace copy(trace);
    CzbTrace assigned;
    assigned.setMode(CzbTrace::ModeQueue);
    assigned.setTrace(Text("dropped"));
    assigned = copy;
    CzbTrace& alias = assigned;
    assigned = alias;
    trace.setTrace(Text("source only"));
    EXPECT_NE(copy.getTraceFront(), trace.getTraceFront());
    trace.clear();
    EXPECT_EQ(copy.getTraceNum(), 1);
    EXPECT_EQ(assigned.getTraceNum(), 1);
    EXPECT_EQ(assigned.m_mode.load(), CzbTrace::ModeQueue);
    assigned.getTracePop(buffer);
    EXPECT_EQ(std::strlen(buffer), 511u);

    // The process-wide trace, with the date and time in front.
    CzbTrace* instance = CzbTraceExt::getInstance();
    EXPECT_EQ(instance, &CzbTraceExt::m_Instance);
    instance->setMode(CzbTrace::ModeQueue);
    CzbTraceExt::setTraceWithDateTime(Text("value %d"), 42);
    ASSERT_EQ(instance->getTraceNum(), 1);
    EXPECT_TRUE(std::regex_match(std::string(instance->getTraceFront()),
                                 std::regex("^\\d{14} : value 42$")))
        << instance->getTraceFront();
    instance->clear();
    instance->setMode(CzbTrace::ModeFile);
}

TEST(CzbTrace, WriteFileAppendsOrReplacesAQueueOfAnyLength) {
    TempFolder folder;
    std::string name = folder.file("queue.txt");
    zbtest::writeBytes(name, "old" + kEol);
    CzbTrace trace;
    trace.setMode(CzbTrace::ModeQueue);
    trace.setTrace(Text("a"));
    trace.setTrace(Text("b %s"), "c");
    trace.setWriteFile(Text(name), false);
    EXPECT_EQ(trace.getTraceNum(), 0);
    EXPECT_EQ(zbtest::readBytes(name), "a" + kEol + "b c" + kEol);
    trace.setWriteFile(Text(name), false);
    EXPECT_EQ(zbtest::readBytes(name), "");

    // A file that cannot be opened leaves the queue as it was.
    trace.setTrace(Text("kept"));
    for (bool append : {true, false}) {
        trace.setWriteFile(Text(folder.file("none/x.txt")), append);
        EXPECT_EQ(trace.getTraceNum(), 1);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "none"));
    trace.clear();

    zbtest::writeBytes(name, "old" + kEol);
    std::string expected = "old" + kEol;
    for (int i = 0; i < 100; ++i) {
        std::string text = std::to_string(i) + std::string(500, static_cast<char>('a' + i % 26));
        trace.setTrace(Text("%s"), text.c_str());
        expected += text + kEol;
    }
    // A text far longer than a message, queued by the host itself, with a line end inside.
    std::string huge(40000, 'h');
    huge[20000] = '\n';
    char* block = static_cast<char*>(std::malloc(huge.size() + 1));
    ASSERT_NE(block, nullptr);
    std::memcpy(block, huge.c_str(), huge.size() + 1);
    trace.m_queue.push_back(block);
    huge.replace(20000, 1, kEol);
    expected += huge + kEol + "last" + kEol;
    trace.setTrace(Text("last"));
    trace.setWriteFile(Text(name), true);
    EXPECT_EQ(trace.getTraceNum(), 0);
    EXPECT_TRUE(zbtest::readBytes(name) == expected);
}

TEST(CzbTrace, FileModeWritesOneLineEach) {
    TempFolder folder;
    std::string first = folder.file("first.txt");
    std::string second = folder.file("second.txt");
    zbtest::writeBytes(first, "earlier" + kEol);
    zbtest::writeBytes(second, "keep" + kEol);

    CzbTrace trace;
    EXPECT_TRUE(trace.setTraceFileName(Text(first), true));
    EXPECT_EQ(zbtest::readBytes(first), "");
    trace.setTrace(Text("x=%d"), 5);
    EXPECT_FALSE(trace.setTraceFileName(Text(folder.file("none/t.txt")), true));
    trace.setTrace(Text("y"));
    EXPECT_EQ(zbtest::readBytes(first), "x=5" + kEol + "y" + kEol);

    EXPECT_TRUE(trace.setTraceFileName(Text(second), false));
    EXPECT_EQ(zbtest::readBytes(second), "keep" + kEol);
    EXPECT_TRUE(trace.setTraceFileName(Text(folder.file("new.txt")), false));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "new.txt"));
    EXPECT_EQ(trace.getTraceNum(), 0);

    // Copies hold their own file name.
    CzbTrace copy(trace);
    EXPECT_NE(copy.m_fileName, trace.m_fileName);
    copy.setTrace(Text("from copy"));
    CzbTrace assigned;
    assigned = trace;
    EXPECT_NE(assigned.m_fileName, trace.m_fileName);
    assigned.setTrace(Text("from assigned"));
    EXPECT_EQ(zbtest::readBytes(folder.path() / "new.txt"),
              "from copy" + kEol + "from assigned" + kEol);

    // A trace file that cannot be opened any more loses the message; the next one tries again.
    std::string inFolder = folder.file("sub/trace.txt");
    std::filesystem::create_directory(folder.path() / "sub");
    ASSERT_TRUE(trace.setTraceFileName(Text(inFolder), true));
    std::filesystem::remove_all(folder.path() / "sub");
    trace.setTrace(Text("lost"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "sub"));
    std::filesystem::create_directory(folder.path() / "sub");
    trace.setTrace(Text("back"));
    EXPECT_EQ(zbtest::readBytes(inFolder), "back" + kEol);
}

TEST(CzbTrace, ThreadsWriteWholeLines) {
    TempFolder folder;
    std::string name = folder.file("threads.txt");
    CzbTrace trace;
    ASSERT_TRUE(trace.setTraceFileName(Text(name), true));
    const int perThread = 150;
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t) {
        workers.emplace_back([&trace, t] {
            for (int i = 0; i < perThread; ++i) {
                trace.setTrace(Text("thread %d line %03d"), t, i);
            }
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    auto lines = zbtest::readLines(name);
    ASSERT_EQ(lines.size(), static_cast<size_t>(4 * perThread));
    std::map<int, int> next;
    const std::regex form("^thread (\\d) line (\\d{3})$");
    for (const auto& line : lines) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, form)) << line;
        EXPECT_EQ(std::stoi(match[2]), next[std::stoi(match[1])]++);
    }
}
