// The logger on a disk that fails: a record counts as saved only when its whole line is in
// the file; every other record carries "(File Open Fail)" in the ring, resetLogCount(1) still
// returns, and the next record after a failed write starts on a line of its own.
#include <zbBase/diagnostics/CzbLogger.h>
#include <zbBase/platform/detail/zbpThread.h>

#include "support/zbFaults.h"
#include "support/zbLoggerSaver.h"
#include "support/zbMemoryLimit.h"
#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#if !defined(_WIN32)

#include <cstring>
#include <ctime>
#include <new>
#include <pthread.h>
#include <stdio.h>
#include <unistd.h>

namespace fs = std::filesystem;
using zbtest::Text;
using zbtest::waitSaved;

namespace {

const std::string kMark = "(File Open Fail)";

std::string lineOf(int number, const SYSTEMTIME& t, const std::string& text) {
    char head[64];
    snprintf(head, sizeof head, "%08d   %02d/%02d/%02d %02d:%02d:%02d.%03d   L[00] ", number,
             t.wYear % 100, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds);
    return head + text;
}

bool marked(const CzbLogger::_LoggerData& record) {
    const std::string text = record.text;
    return text.size() >= kMark.size() && text.substr(text.size() - kMark.size()) == kMark;
}

// Every line of every log file in the folder.
std::vector<std::string> linesIn(const fs::path& folder) {
    std::vector<std::string> lines;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".log") {
            auto more = zbtest::readLines(entry.path());
            lines.insert(lines.end(), more.begin(), more.end());
        }
    }
    return lines;
}

// The text of message i of a test.
std::string textOf(int i) {
    return "record " + std::to_string(10000 + i).substr(1) + " " +
           std::string(60, static_cast<char>('a' + i % 26));
}

// Records 0..count-1 (stored with textOf) are each either one whole line of `lines` or marked
// in the ring, never both; any other line (at most `cuts`) starts a marked record's line.
// Returns the number of records saved.
int checkSavedOrMarked(CzbLogger& logger, int count, const std::vector<std::string>& lines,
                       int cuts) {
    std::multiset<std::string> left(lines.begin(), lines.end());
    int saved = 0;
    std::vector<std::string> markedLines;
    for (int i = 0; i < count; ++i) {
        const std::string line = lineOf(i, logger.m_logData[i].time, textOf(i));
        const size_t times = left.count(line);
        EXPECT_LE(times, 1u) << line;
        EXPECT_NE(times == 1, marked(logger.m_logData[i])) << "record " << i;
        saved += static_cast<int>(times);
        left.erase(line);
        if (times == 0) {
            markedLines.push_back(line);
        }
    }
    for (const std::string& cut : left) { // the last line of a file may still lack its line end
        const std::string part = cut.substr(0, cut.find("<unterminated>"));
        EXPECT_TRUE(!part.empty() && std::any_of(markedLines.begin(), markedLines.end(),
                                                 [&](const std::string& line) {
                                                     return line.compare(0, part.size(), part) == 0;
                                                 }))
            << "a line that is no record: " << cut;
    }
    EXPECT_LE(left.size(), static_cast<size_t>(cuts));
    return saved;
}

// A subclass that writes each record its own way, through the stream it is given.
class TaggedLogger : public CzbLogger {
public:
    TaggedLogger(int records, int bytes) : CzbLogger(records, bytes) {}
    // The saver calls this class's operation: it stops before this part is destroyed.
    ~TaggedLogger() override { zbtest::stopSaver(*this); }
    void setLogDataToFile(FILE* file, _LoggerData* data) override {
        fprintf(file, "tag %d %s\n", data->number, data->text);
    }
};

std::vector<std::string> dayStamps() {
    std::vector<std::string> days;
    std::time_t now = std::time(nullptr);
    for (std::time_t t : {now, now + 86400}) {
        std::tm local = *std::localtime(&t);
        char day[40];
        snprintf(day, sizeof day, "%02d%02d%02d", local.tm_year % 100, local.tm_mon + 1,
                 local.tm_mday);
        days.push_back(day);
    }
    return days;
}

} // namespace

TEST(LoggerFault, ASubclassOnAFullDiskKeepsEveryRecordSavedOrMarked) {
    // The logger's own lines on a full disk: EveryFileThatTheDiskCutGetsItsLineEnded.
    zbtest::TempFolder other;
    TaggedLogger tagged(64, 128);
    tagged.setWriteFileMode(Text(other.file("Tag")), 5);
    {
        zbtest::FileSizeLimit limit(1000);
        for (int i = 0; i < 40; ++i) {
            tagged.setLog(Text("%s"), textOf(i).c_str());
        }
        tagged.resetLogCount(1);
    }
    tagged.setLog(Text("later"));
    tagged.resetLogCount(1);
    std::vector<std::string> tags = linesIn(other.path());
    ASSERT_FALSE(tags.empty());
    EXPECT_EQ(tags.back(), "tag 0 later");
    int whole = 0;
    for (int i = 0; i < 40; ++i) {
        const std::string line = "tag " + std::to_string(i) + " " + textOf(i);
        const bool inFile = std::count(tags.begin(), tags.end(), line) == 1;
        EXPECT_NE(inFile, marked(tagged.m_logData[i])) << i;
        whole += inFile ? 1 : 0;
    }
    EXPECT_GT(whole, 5);
    EXPECT_LT(whole, 40);
}

TEST(LoggerFault, EveryFileThatTheDiskCutGetsItsLineEnded) {
    // One pass over records of two days fills both days' files; each file's next record
    // starts on a line of its own, whichever file the saver wrote last.
    zbtest::TempFolder dir;
    const std::string prefix = dir.file("Days");
    CzbLogger logger(64, 128);
    const SYSTEMTIME days[2] = {{2026, 11, 4, 19, 10, 0, 0, 0}, {2026, 11, 5, 20, 10, 0, 0, 0}};
    const std::string names[2] = {prefix + "_261119.log", prefix + "_261120.log"};
    for (int i = 0; i < 20; ++i) {
        logger.setLog(Text("%s"), textOf(i).c_str());
        logger.m_logData[i].time = days[i / 10];
    }
    {
        zbtest::FileSizeLimit limit(1000); // 8 lines of 114 bytes, and part of the ninth
        // A period that never ends by itself: after the first pass, passes come from
        // resetLogCount(1) only.
        logger.setWriteFileMode(Text(prefix), 600000);
        logger.resetLogCount(1);
    }
    std::string lines[2];
    for (int i = 0; i < 20; ++i) {
        const CzbLogger::_LoggerData& record = logger.m_logData[i];
        EXPECT_EQ(marked(record), i % 10 >= 8) << i;
        if (i % 10 < 8) {
            lines[i / 10] += lineOf(i, record.time, textOf(i)) + "\n";
        }
    }
    for (int day = 0; day < 2; ++day) {
        const std::string bytes = zbtest::readBytes(names[day]);
        ASSERT_EQ(bytes.size(), 1000u);
        EXPECT_EQ(bytes.substr(0, lines[day].size()), lines[day]);
    }

    // Space is back: a record for each day, dated under the ring's lock so that no pass sees
    // them before.
    {
        zbp::CriticalSectionGuard guard(&logger.m_lock);
        logger.setLog(Text("first day again"));
        logger.setLog(Text("second day again"));
        logger.m_logData[0].time = days[0];
        logger.m_logData[1].time = days[1];
    }
    logger.resetLogCount(1);
    for (int day = 0; day < 2; ++day) {
        std::vector<std::string> inFile = zbtest::readLines(names[day]);
        ASSERT_EQ(inFile.size(), 10u);
        EXPECT_EQ(inFile[9],
                  lineOf(day, days[day], day == 0 ? "first day again" : "second day again"));
        EXPECT_EQ(inFile[8], lineOf(10 * day + 8, days[day], textOf(10 * day + 8))
                                 .substr(0, 1000 - lines[day].size()));
    }
}

TEST(LoggerFault, FullDeviceMarksEveryRecord) {
    zbtest::TempFolder dir;
    for (const std::string& day : dayStamps()) {
        fs::create_symlink("/dev/full", dir.file("Dev_" + day + ".log"));
    }
    CzbLogger logger(256, 64);
    logger.setWriteFileMode(Text(dir.file("Dev")), 1000);
    for (int i = 0; i < 200; ++i) {
        logger.setLog(Text("to a full device %d"), i);
    }
    logger.resetLogCount(1);
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(logger.m_logData[i].text, "to a full device " + std::to_string(i) + kMark);
    }
    EXPECT_TRUE(fs::is_character_file("/dev/full"));

    TaggedLogger tagged(16, 8192);
    tagged.setLog(Text("tagged"));
    // A record longer than the stream's buffer fails inside its write, not at its flush.
    tagged.setLog(Text("x"));
    std::memset(tagged.m_logData[1].text, 'l', 6000);
    tagged.m_logData[1].text[6000] = '\0';
    tagged.setWriteFileMode(Text(dir.file("Dev")), 1000);
    tagged.resetLogCount(1);
    EXPECT_EQ(tagged.m_logData[0].text, "tagged" + kMark);
    EXPECT_EQ(tagged.m_logData[1].text, std::string(6000, 'l') + kMark);
}

TEST(LoggerFault, SmallDiskThatFillsAndGetsSpaceBack) {
    zbtest::SmallTmpfs disk(256 * 1024);
    if (!disk.ok()) {
        GTEST_SKIP() << disk.why();
    }
    CzbLogger logger(512, 256);
    logger.setWriteFileMode(Text(disk.file("Log")), 2);
    for (int i = 0; i < 10; ++i) {
        logger.setLog(Text("%s"), textOf(i).c_str());
    }
    ASSERT_TRUE(waitSaved(logger));
    ASSERT_EQ(checkSavedOrMarked(logger, 10, linesIn(disk.path()), 0), 10);

    // The rest of the disk taken: the log file keeps only what is left of its last page.
    {
        FILE* filler = fopen(disk.file("filler").c_str(), "wb");
        ASSERT_NE(filler, nullptr);
        setvbuf(filler, nullptr, _IONBF, 0);
        const std::string block(4096, 'f');
        while (fwrite(block.data(), 1, block.size(), filler) == block.size()) {
        }
        fclose(filler);
    }
    const int count = 200;
    for (int i = 10; i < count; ++i) {
        logger.setLog(Text("%s"), textOf(i).c_str());
    }
    ASSERT_TRUE(waitSaved(logger));
    int saved = checkSavedOrMarked(logger, count, linesIn(disk.path()), 1);
    EXPECT_GE(saved, 10);
    EXPECT_LT(saved, 100);

    fs::remove(disk.file("filler"));
    logger.setLog(Text("space is back"));
    ASSERT_TRUE(waitSaved(logger));
    std::vector<std::string> lines = linesIn(disk.path());
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), lineOf(count, logger.m_logData[count].time, "space is back"));
    EXPECT_EQ(checkSavedOrMarked(logger, count,
                                 std::vector<std::string>(lines.begin(), lines.end() - 1), 1),
              saved);
}

TEST(LoggerFault, ReadOnlyFolderAndFileForAnUnprivilegedUser) {
    zbtest::TempFolder dir;
    fs::create_directory(dir.file("ro"));
    fs::permissions(dir.file("ro"), fs::perms::owner_all | fs::perms::group_read |
                                        fs::perms::group_exec | fs::perms::others_read |
                                        fs::perms::others_exec);
    fs::permissions(dir.path(), fs::perms::all);
    for (const std::string& day : dayStamps()) {
        zbtest::writeBytes(dir.file("Locked_" + day + ".log"), "kept\n");
        fs::permissions(dir.file("Locked_" + day + ".log"),
                        fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    }
    const std::string inFolder = dir.file("ro") + "/Run";
    const std::string locked = dir.file("Locked");
    int rc = zbtest::asUnprivileged([&] {
        int failures = 0;
        for (const std::string& prefix : {inFolder, locked}) {
            CzbLogger logger(8, 64);
            logger.setWriteFileMode(Text(prefix), 1000);
            logger.setLog(Text("first"));
            logger.setLog(Text("second"));
            logger.resetLogCount(1);
            failures += std::string(logger.m_logData[0].text) == "first" + kMark ? 0 : 1;
            failures += std::string(logger.m_logData[1].text) == "second" + kMark ? 0 : 1;
        }
        return failures;
    });
    EXPECT_EQ(rc, 0);
    EXPECT_TRUE(fs::is_empty(dir.file("ro")));
    for (const std::string& day : dayStamps()) {
        EXPECT_EQ(zbtest::readBytes(dir.file("Locked_" + day + ".log")), "kept\n");
    }
}

TEST(LoggerFault, NoSaverRunsWithoutMemoryForItsBufferOrItsThread) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    zbtest::TempFolder dir;
    const std::string prefix = dir.file("Memory");
    int rc = zbtest::withAddressSpace(zbtest::addressSpace() + (64 << 20), [&] {
        // A ring that does not fit: the allocator's exception reaches the caller.
        try {
            CzbLogger huge(1000, 1 << 20);
            return 1;
        } catch (const std::bad_alloc&) {
        }
        // No memory for the saver's buffer: no saver, and the logger keeps its records.
        CzbLogger logger(8, 64);
        Text name(prefix);
        {
            zbtest::MemoryHog hog;
            logger.setWriteFileMode(name, 1);
        }
        if (logger.m_threadState.load() != 0) {
            return 2;
        }
        logger.setLog(Text("in memory"));
        logger.resetLogCount(1); // nobody to wait for
        // No room for a thread's stack: the thread cannot start, and the same holds.
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, size_t(1) << 30);
        if (pthread_setattr_default_np(&attributes) != 0) {
            return 3;
        }
        CzbLogger unstarted(8, 64);
        unstarted.setWriteFileMode(Text(prefix), 1);
        if (unstarted.m_threadState.load() != 0) {
            return 4;
        }
        unstarted.setLog(Text("kept"));
        unstarted.resetLogCount(1);
        return std::string(unstarted.m_logData[0].text) == "kept" ? 0 : 5;
    });
    EXPECT_EQ(rc, 0);
    EXPECT_TRUE(fs::is_empty(dir.path()));
}

#endif
