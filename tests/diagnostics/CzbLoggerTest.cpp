#include "zbBase/diagnostics/CzbLogger.h"

#include "support/zbLoggerSaver.h"
#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstring>
#include <ctime>
#include <map>
#include <regex>
#include <set>
#include <thread>

#if defined(_WIN32)
#include <windows.h> // SYSTEMTIME, which the records convert to and from
#endif

using zbtest::kEol;
using zbtest::readBytes;
using zbtest::readLines;
using zbtest::TempFolder;
using zbtest::Text;
using zbtest::writeBytes;

namespace {

// The flat mode's file of a record.
std::string fileOf(const std::string& prefix, const CzbLogger::_LoggerData& r) {
    char day[16];
    std::snprintf(day, sizeof day, "%02d%02d%02d", r.time.wYear % 100, r.time.wMonth, r.time.wDay);
    return prefix + "_" + day + ".log";
}

std::string expectedLine(const CzbLogger::_LoggerData& r) {
    char line[700];
    std::snprintf(line, sizeof line, "%08d   %02d/%02d/%02d %02d:%02d:%02d.%03d   L[%02d] %s",
                  r.number, r.time.wYear % 100, r.time.wMonth, r.time.wDay, r.time.wHour,
                  r.time.wMinute, r.time.wSecond, r.time.wMilliseconds, r.level, r.text);
    return line;
}

// Every line of every file in the folder.
std::vector<std::string> linesIn(const std::filesystem::path& folder) {
    std::vector<std::string> lines;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        for (auto& line : readLines(entry.path())) {
            lines.push_back(line);
        }
    }
    return lines;
}

// A subclass that also runs save passes from threads of its own; it stops the saver before
// its own part is destroyed.
class PassingLogger : public CzbLogger {
public:
    PassingLogger(int records, int bytes) : CzbLogger(records, bytes) {}
    ~PassingLogger() override { zbtest::stopSaver(*this); }
    void savePass() { funcLogFileSave(); }
};
const std::regex kLine("^(\\d{8})   \\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}   "
                       "L\\[00\\] (.*)$");

} // namespace

TEST(CzbLogger, RingKeepsTheNewestRecordsInOrder) {
    CzbLogger defaults;
    EXPECT_EQ(defaults.getBufferSize(), 200);
    EXPECT_EQ(defaults.getLogStringLen(), 512);
    defaults.setLog(Text("first %d"), 7);
    EXPECT_STREQ(defaults.GetLogData(0)->text, "first 7");

    CzbLogger ring(3, 64);
    for (int i = 0; i < 5; ++i) {
        ring.setLog(Text("m%d"), i);
    }
    EXPECT_EQ(ring.GetLogDataNum(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ring.GetLogData(i)->number, i + 2);
    }
    EXPECT_STREQ(ring.GetLogData(2)->text, "m4");
    EXPECT_EQ(ring.GetLogData(3), nullptr);
    EXPECT_EQ(ring.GetLogData(-1), nullptr);
    ring.resetLogCount(0);
    EXPECT_EQ(ring.GetLogDataNum(), 0);
    ring.setLog(Text("again"));
    EXPECT_EQ(ring.GetLogData(0), &ring.m_logData[0]);
    EXPECT_EQ(ring.GetLogData(0)->number, 0);

    // Messages are cut to the text block, and sizes below 1 are raised to 1.
    CzbLogger small(0, 6), wide(1, 2000), tiny(1, -4);
    EXPECT_EQ(small.getBufferSize(), 1);
    EXPECT_EQ(tiny.getLogStringLen(), 1);
    small.setLog(Text("abcdefghij"));
    wide.setLog(Text("%s"), std::string(900, 'h').c_str());
    tiny.setLog(Text("x"));
    EXPECT_STREQ(small.GetLogData(0)->text, "abcde");
    EXPECT_EQ(std::strlen(wide.GetLogData(0)->text), 511u);
    EXPECT_STREQ(tiny.GetLogData(0)->text, "");

    char date[9], time[13];
    defaults.getDateTime(date, time);
    EXPECT_TRUE(
        std::regex_match(std::string(date) + " " + time,
                         std::regex("^\\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}$")));
}

TEST(CzbLogger, FlatFileHoldsExactLines) {
    TempFolder folder;
    std::string prefix = folder.file("Run");
    {
        CzbLogger logger(16, 128);
        logger.setWriteFileMode(Text(prefix), 5);
        // A second start while the saver runs changes nothing.
        logger.setWriteFileMode(Text(folder.file("Other")), 1);
        logger.setWriteFileMode2(Text(folder.path().string()), Text("Other"), 1);
        logger.setLog(Text("value %d of %s"), 2, "five");
        logger.resetLogCount(1);
        EXPECT_EQ(readBytes(fileOf(prefix, logger.m_logData[0])),
                  expectedLine(logger.m_logData[0]) + kEol);
        // A period of 0 saves without waiting between passes.
        CzbLogger busy(64, 64);
        busy.setWriteFileMode(Text(folder.file("Busy")), 0);
        busy.setLog(Text("busy"));
        busy.resetLogCount(1);
        EXPECT_EQ(busy.GetLogDataNum(), 0);
        // One record written by hand: the line of the 43rd message of a run.
        SYSTEMTIME t{2026, 11, 4, 19, 9, 5, 7, 123};
        char text[] = "hello";
        CzbLogger::_LoggerData record{42, 0, t, text};
        std::string single = folder.file("single.log");
        FILE* file = std::fopen(single.c_str(), "a");
        ASSERT_NE(file, nullptr);
        logger.setLogDataToFile(file, &record);
        std::fclose(file);
        EXPECT_EQ(readBytes(single), "00000042   26/11/19 09:05:07.123   L[00] hello" + kEol);
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_EQ(entry.path().extension(), ".log"); // no temporary file, nothing for "Other"
        EXPECT_NE(entry.path().filename().string().rfind("Other", 0), 0u);
    }
}

TEST(CzbLogger, DatedFolderMode) {
    TempFolder folder;
    // The pass's date decides the folder: make today's and tomorrow's.
    std::vector<std::string> days;
    std::time_t now = std::time(nullptr);
    for (std::time_t t : {now, now + 86400}) {
        std::tm local = *std::localtime(&t);
        char day[40];
        std::snprintf(day, sizeof day, "%04d%02d%02d", local.tm_year + 1900, local.tm_mon + 1,
                      local.tm_mday);
        days.push_back(day);
        std::filesystem::create_directory(folder.path() / day);
    }
    // A null prefix is the empty text: the file name starts with the underscore.
    for (const char* prefix : {"Run", static_cast<const char*>(nullptr)}) {
        CzbLogger logger;
        logger.setWriteFileMode2(Text(folder.path().string()),
                                 prefix != nullptr ? static_cast<char*>(Text(prefix)) : nullptr, 1);
        logger.setLog(Text("dated"));
        logger.resetLogCount(1);
        int found = 0;
        for (const auto& day : days) {
            auto file = folder.path() / day / ((prefix ? prefix : "") + ("_" + day + ".log"));
            if (std::filesystem::exists(file)) {
                EXPECT_EQ(readBytes(file), expectedLine(logger.m_logData[0]) + kEol);
                ++found;
            }
        }
        EXPECT_EQ(found, 1);
    }
}

TEST(CzbLogger, UnopenableFileMarksTheRecord) {
    TempFolder folder;
    std::string prefix = folder.file("missing") + "/Run";
    // The mark always fits its block: the text is cut to make room.
    struct Case {
        int bytes;
        const char* texts[2];
        const char* marked[2];
    };
    for (const Case& c :
         {Case{
              20, {"short", "exactly nineteen ch"}, {"sho(File Open Fail)", "exa(File Open Fail)"}},
          Case{10, {"x", nullptr}, {"(File Ope", nullptr}}}) {
        CzbLogger logger(8, c.bytes);
        logger.setWriteFileMode(Text(prefix), 1);
        for (int i = 0; i < 2 && c.texts[i] != nullptr; ++i) {
            logger.setLog(Text(c.texts[i]));
        }
        ASSERT_TRUE(zbtest::waitSaved(logger));
        for (int i = 0; i < 2 && c.texts[i] != nullptr; ++i) {
            EXPECT_STREQ(logger.GetLogData(i)->text, c.marked[i]);
        }
    }
    // A file name beyond 255 characters cannot be opened, and no shorter name is tried.
    std::string longPrefix = folder.file(std::string(249 - folder.path().string().size(), 'p'));
    ASSERT_EQ(longPrefix.size(), 250u);
    CzbLogger longName(4, 64);
    longName.setWriteFileMode(Text(longPrefix), 1);
    longName.setLog(Text("long"));
    ASSERT_TRUE(zbtest::waitSaved(longName));
    EXPECT_STREQ(longName.GetLogData(0)->text, "long(File Open Fail)");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(CzbLogger, EightWritersEveryRecordOnceInOrder) {
    TempFolder folder;
    const int writers = 8, perWriter = 1500;
    {
        // One slot more than messages: however far the saver lags, no record is overwritten
        // and the ring never looks empty to it.
        CzbLogger logger(writers * perWriter + 1, 96);
        logger.setWriteFileMode(Text(folder.file("Load")), 1);
        std::vector<std::thread> threads;
        for (int t = 0; t < writers; ++t) {
            threads.emplace_back([&logger, t] {
                for (int i = 0; i < perWriter; ++i) {
                    logger.setLog(Text("writer %d item %05d"), t, i);
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        logger.resetLogCount(1);
    }
    // Each file in ascending numbers, each writer's items in its own order, every record once.
    std::vector<int> seen(writers * perWriter, 0);
    const std::regex body("^writer (\\d) item (\\d{5})$");
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        int lastNumber = -1, lastItem[writers] = {-1, -1, -1, -1, -1, -1, -1, -1};
        for (const auto& line : readLines(entry.path())) {
            std::smatch match, parts;
            std::string text;
            ASSERT_TRUE(std::regex_match(line, match, kLine) &&
                        std::regex_match(text = match[2], parts, body))
                << line;
            const int number = std::stoi(match[1]), writer = std::stoi(parts[1]);
            ASSERT_TRUE(number > lastNumber && number < writers * perWriter) << line;
            EXPECT_GT(std::stoi(parts[2]), lastItem[writer]);
            lastNumber = number;
            lastItem[writer] = std::stoi(parts[2]);
            ++seen[number];
        }
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), writers * perWriter);
}

TEST(CzbLogger, CopiesOwnTheirRing) {
    CzbLogger source(4, 32);
    for (int i = 0; i < 6; ++i) {
        source.setLog(Text("s%d"), i);
    }
    CzbLogger copy(source);
    ASSERT_EQ(copy.GetLogDataNum(), 4);
    EXPECT_NE(copy.GetLogData(3)->text, source.GetLogData(3)->text);
    source.setLog(Text("later"));
    CzbLogger& same = copy;
    copy = same; // assigning a logger to itself changes nothing
    EXPECT_EQ(copy.GetLogDataNum(), 4);
    EXPECT_STREQ(copy.GetLogData(3)->text, "s5");

    TempFolder folder;
    CzbLogger running(8, 32);
    running.setWriteFileMode(Text(folder.file("Copy")), 1);
    running.setLog(Text("r"));
    CzbLogger assigned(2, 8);
    assigned = running; // no saver comes with the copy
    EXPECT_EQ(assigned.m_threadState.load(), 0);
    EXPECT_STREQ(assigned.GetLogData(0)->text, "r");
    // Assigning to a logger with a saver stops that saver first.
    running = source;
    EXPECT_EQ(running.m_threadState.load(), 0);
    EXPECT_STREQ(running.GetLogData(3)->text, "later");
}

TEST(CzbLogger, EachRecordKeepsItsPrintfBytesInTheFileOfItsOwnDay) {
    TempFolder folder;
    std::string prefix = folder.file("Odd");
    // Records changed by hand before the saver starts: widths beyond the usual ones, and the
    // days of one pass (a message of 23:59:59.900 saved after midnight) in several files.
    const int count = 3000;
    CzbLogger logger(count + 1, 600);
    std::string text(511, 'x');
    for (int i = 0; i < count; ++i) {
        text[0] = static_cast<char>('a' + i % 26);
        logger.setLog(Text("%s"), text.c_str());
    }
    CzbLogger::_LoggerData* r = logger.m_logData;
    for (int i = 0; i < count; ++i) {
        r[i].time = {2026, 11, 4, 19, 23, 59, 59, 950};
    }
    r[1].number = 123456789;
    r[2].number = -5;
    r[3].level = -3;
    r[4].level = 100;
    r[5].time.wMilliseconds = 5000;
    r[6].time.wSecond = 61;
    r[7].number = INT_MIN;
    r[10].time.wHour = 100;
    r[11].time.wMinute = 100;
    r[12].time.wSecond = 100;
    std::strcpy(r[8].text, "two\nlines");
    r[9].text[0] = '\0';
    const std::pair<SYSTEMTIME, const char*> days[] = {
        {{2026, 11, 0, 20, 0, 0, 0, 100}, "261120"}, {{2026, 12, 0, 20, 1, 1, 0, 0}, "261220"},
        {{2027, 12, 0, 20, 1, 1, 0, 0}, "271220"},   {{2126, 11, 0, 19, 8, 0, 0, 0}, "261119"},
        {{2026, 100, 0, 19, 8, 0, 0, 0}, "2610019"}, // fields beyond two digits are printed whole
        {{2026, 11, 0, 100, 8, 0, 0, 0}, "2611100"},
    };
    std::map<std::string, std::string> expected;
    for (int i = 0; i < count; ++i) {
        const bool moved = i >= 13 && i < 19;
        if (moved) {
            r[i].time = days[i - 13].first;
        }
        expected[moved ? days[i - 13].second : "261119"] += expectedLine(r[i]) + kEol;
    }
    // A text-mode stream writes the line end inside a text as a line end too.
    expected["261119"].replace(expected["261119"].find("two\nlines"), 9, "two" + kEol + "lines");

    logger.setWriteFileMode(Text(prefix), 1);
    logger.resetLogCount(1);
    auto entries = std::filesystem::directory_iterator(folder.path());
    EXPECT_EQ(static_cast<size_t>(std::distance(begin(entries), end(entries))), expected.size());
    for (const auto& file : expected) {
        EXPECT_TRUE(readBytes(prefix + "_" + file.first + ".log") == file.second) << file.first;
    }

    // The running number wraps past the largest int; the ring then counts as full.
    CzbLogger wrap(4, 16);
    wrap.m_logCount.store(INT_MAX);
    wrap.setLog(Text("max"));
    wrap.setLog(Text("min"));
    EXPECT_EQ(wrap.m_logData[0].number, INT_MAX);
    EXPECT_EQ(wrap.m_logData[1].number, INT_MIN);
    EXPECT_EQ(wrap.GetLogDataNum(), 4);
    EXPECT_STREQ(wrap.GetLogData(3)->text, "min");
}

TEST(CzbLogger, TextsAtTheLimitsOfTheirBlocksAndExistingFiles) {
    TempFolder folder;
    // A text that the host wrote into a large block itself is saved up to 64 KiB.
    std::string widePrefix = folder.file("Wide");
    CzbLogger wide(2, 100000);
    wide.setLog(Text("short"));
    std::memset(wide.m_logData[0].text, 'w', 70000);
    wide.m_logData[0].text[70000] = '\0';
    wide.setWriteFileMode(Text(widePrefix), 1);
    wide.resetLogCount(1);
    std::vector<std::string> lines = readLines(fileOf(widePrefix, wide.m_logData[0]));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].substr(41), std::string(65536, 'w'));

    // What the host left in a file is its own: only lines the logger cut get a line end.
    std::string prefix = folder.file("Part");
    CzbLogger logger(8, 64);
    logger.setLog(Text("own line"));
    std::string name = fileOf(prefix, logger.m_logData[0]);
    writeBytes(name, "host text");
    logger.setWriteFileMode(Text(prefix), 1);
    logger.resetLogCount(1);
    EXPECT_EQ(readBytes(name), "host text" + expectedLine(logger.m_logData[0]) + kEol);
}

TEST(CzbLogger, SaverWakesForAHalfFullRingAndForAWaitingReset) {
    TempFolder folder;
    auto started = std::chrono::steady_clock::now();
    {
        // A period far longer than the test: after the first pass only a wake-up can make
        // another one.
        CzbLogger logger(100, 64);
        logger.setLog(Text("first"));
        logger.setWriteFileMode(Text(folder.file("Wake")), 600000);
        ASSERT_TRUE(zbtest::waitSaved(logger));
        std::this_thread::sleep_for(std::chrono::milliseconds(200)); // the first pass ends
        for (int i = 1; i < 50; ++i) {
            logger.setLog(Text("early %d"), i);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(logger.m_saveIndex.load(), 0); // less than half waits: no pass yet
        logger.setLog(Text("half"));
        ASSERT_TRUE(zbtest::waitSaved(logger));
        logger.setLog(Text("one more"));
        logger.resetLogCount(1);
        EXPECT_EQ(linesIn(folder.path()).size(), 52u);
    } // and the destructor does not wait out the period
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(60));
}

#if !defined(_WIN32)
// POSIX appends are atomic per write. On Windows the runtime seeks to the end and then writes,
// so overlapping passes are the subclass's own risk there.
TEST(CzbLogger, PassesOnSeveralThreadsWriteWholeLines) {
    TempFolder folder;
    const int count = 3000;
    {
        PassingLogger logger(count + 1, 64);
        logger.setWriteFileMode(Text(folder.file("Many")), 1);
        std::atomic<bool> writing{true};
        std::vector<std::thread> passes;
        for (int t = 0; t < 2; ++t) {
            passes.emplace_back([&] {
                while (writing.load()) {
                    logger.savePass();
                }
            });
        }
        for (int i = 0; i < count; ++i) {
            logger.setLog(Text("record %05d"), i);
        }
        logger.resetLogCount(1);
        writing.store(false);
        for (auto& thread : passes) {
            thread.join();
        }
    }
    // Passes that overlap may both write a record; every line stays whole.
    std::set<int> seen;
    for (const auto& line : linesIn(folder.path())) {
        std::smatch match;
        ASSERT_TRUE(std::regex_match(line, match, kLine)) << line;
        ASSERT_EQ(match[2].str(), "record " + match[1].str().substr(3));
        seen.insert(std::stoi(match[1]));
    }
    EXPECT_EQ(seen.size(), static_cast<size_t>(count));
}
#endif
