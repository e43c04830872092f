// The checks that every host program of this folder runs, each in its own configuration of
// <windows.h> (see the including file). ZB_HOST names the configuration; it becomes the
// suite name of the tests. Included after the library's headers and <windows.h>.
#pragma once

#ifndef ZB_HOST
#error "define ZB_HOST before including HostChecks.h"
#endif

namespace {

// The records of the public headers have the layout of the system's, as the host sees both.
static_assert(sizeof(CzbLogger::_LoggerData::time) == sizeof(SYSTEMTIME),
              "the record time of the logger is a SYSTEMTIME");
static_assert(offsetof(CzbLogger::_LoggerData, time) == 6 && sizeof(CzbLogger::_LoggerData) == 32,
              "the record keeps its layout");
static_assert(sizeof(CzbLogger::m_lock) == sizeof(CRITICAL_SECTION) &&
                  alignof(decltype(CzbLogger::m_lock)) == alignof(CRITICAL_SECTION),
              "the locks are CRITICAL_SECTIONs");
static_assert(sizeof(CzbTrace::m_lock) == sizeof(CRITICAL_SECTION), "");
static_assert(sizeof(CzbFileDB::m_lock) == sizeof(CRITICAL_SECTION), "");
static_assert(std::is_same<decltype(CzbFileUtil::m_findData), std::vector<__finddata64_t>>::value,
              "the search lists hold the runtime's own record");

} // namespace

TEST(ZB_HOST, GetFullPathNameLinksWhateverTheMacroSays) {
    // Under <windows.h> the call below reads GetFullPathNameA or GetFullPathNameW, by UNICODE.
    char out[64] = {};
    char base[] = "dir/sub/a.cfg";
    EXPECT_TRUE(zbBase::CzbString::GetFullPathName(out, sizeof out, base, "./b.dat"));
    EXPECT_STREQ(out, "dir/sub/b.dat");
    char small[8] = {};
    EXPECT_FALSE(zbBase::CzbString::GetFullPathName(small, sizeof small, base, "b.dat"));
    // The system's function of that name is still there for the host.
    TCHAR full[MAX_PATH] = {};
    EXPECT_GT(GetFullPathName(TEXT("x.txt"), MAX_PATH, full, nullptr), 0u);
}

TEST(ZB_HOST, LoggerRecordsConvertToAndFromSystemtime) {
    CzbLogger logger(4, 64);
    char format[] = "value %d";
    logger.setLog(format, 7);
    CzbLogger::_LoggerData* record = logger.GetLogData(0);
    ASSERT_NE(record, nullptr);
    SYSTEMTIME now;
    GetLocalTime(&now);
    const SYSTEMTIME logged = record->time;
    EXPECT_GE(logged.wYear, 2024);
    EXPECT_LE(logged.wYear, now.wYear);
    EXPECT_EQ(std::memcmp(&logged, &record->time, sizeof logged), 0);

    char text[] = "hello";
    CzbLogger::_LoggerData made{42, 0, {2026, 11, 4, 19, 9, 5, 7, 123}, text};

    zbtest::TempFolder folder;
    const std::string name = folder.file("one.log");
    FILE* file = std::fopen(name.c_str(), "a");
    ASSERT_NE(file, nullptr);
    logger.setLogDataToFile(file, &made);
    std::fclose(file);
    EXPECT_EQ(zbtest::readBytes(name), "00000042   26/11/19 09:05:07.123   L[00] hello\r\n");
}

TEST(ZB_HOST, LocksLiveInTheirOwnStorage) {
    // The storage holds the system's record: a host that must may reach it. (The locks under
    // threads are the datafiles and diagnostics suites' part, which run here too.)
    CzbFileDB db;
    db.setWriteEnter();
    db.setWriteEnter(); // re-entrant on the holding thread
    CRITICAL_SECTION* lock = reinterpret_cast<CRITICAL_SECTION*>(&db.m_lock);
    auto freeForOthers = [lock] {
        bool got = false;
        std::thread([&] {
            if ((got = TryEnterCriticalSection(lock))) {
                LeaveCriticalSection(lock);
            }
        }).join();
        return got;
    };
    EXPECT_FALSE(freeForOthers());
    db.setWriteRelease();
    EXPECT_FALSE(freeForOthers());
    db.setWriteRelease();
    EXPECT_TRUE(freeForOthers());
}
