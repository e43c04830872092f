// CzbLogger: a fixed ring of log records filled from any thread, saved in the background.
//
// setLog formats a message (cut to 511 characters, and to the record's text block), reads
// the local time and stores the record under a short lock; it never allocates, never
// touches the disk and never waits for the saver. A full ring overwrites its oldest record,
// saved or not. After setWriteFileMode or setWriteFileMode2 one saving thread appends the
// new records every `period` milliseconds, one line each:
//   "%08d   %02d/%02d/%02d %02d:%02d:%02d.%03d   L[%02d] %s\n"
//   (number, yy/mm/dd hh:mm:ss.mmm of the record, level, text), in text mode,
// to "<prefix>_yymmdd.log" with the record's own date (mode 0), or to
// "<folder>\yyyymmdd\<prefix>_yyyymmdd.log" with the date of the save pass (mode 1). The
// logger creates no folder: a record whose file cannot be opened, or whose line does not reach
// the file whole (a full disk, a failed device), gets "(File Open Fail)" at the end of its text
// in the ring (the text is cut to make room) and is not tried again. A line that a failed write
// left unfinished is never continued: the next record starts on a line of its own.
//
// Threads: a save pass copies runs of records out of the ring in short holds of the lock, so it
// never sees a record half-filled, writes each run with one checked write, and publishes
// m_saveIndex over a run only then: resetLogCount(1) returns once every stored record is in
// its file (or marked). The saver sleeps its period but starts a pass at once when half the
// ring waits to be saved, when resetLogCount(1) waits for it, and when it is stopped. The
// destructor stops the saver and waits for it; records stored after its last pass stay unsaved
// unless the host calls resetLogCount(1) first. GetLogData points into the ring unguarded: a
// reader that needs a stable record stops the writers itself.
//
// A copy (or an assigned logger) gets its own ring with the same content, its own lock and
// no saving thread; assignment first stops the target's own saver.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include <atomic>
#include <stdio.h>

class ZB_API CzbLogger {
public:
    struct _LoggerData {
        int number;
        char level;
        zbBase::zbSystemTime time; // SYSTEMTIME, or a record of its fields (zbPlatformTypes.h)
        char* text;
    };

    // A ring size or text size below 1 is raised to 1.
    CzbLogger(int bufferSize = 200, int stringLen = 512);
    CzbLogger(const CzbLogger& other);
    virtual ~CzbLogger();
    CzbLogger& operator=(const CzbLogger& other);

    // Start the saving thread; call one of them once. Texts longer than 255 are cut.
    virtual void setWriteFileMode(char* prefix, int period);
    virtual void setWriteFileMode2(char* folder, char* prefix, int period);
    virtual void setLog(char* format, ...);
    // "yy/mm/dd" into date (9 bytes) and "hh:mm:ss.mmm" into time (13 bytes).
    virtual void getDateTime(char* date, char* time);
    virtual void setLogDataToFile(FILE* file, _LoggerData* data);

    // Record index counted from the oldest that the ring holds (0 to GetLogDataNum() - 1,
    // not checked).
    _LoggerData* GetLogData(int index);
    int GetLogDataNum();
    int getBufferSize();
    int getLogStringLen();
    // Empties the ring (the running number starts again at 0); with wait not 0 and the
    // saver running, first waits until every stored record has had its save pass.
    void resetLogCount(int wait);

protected:
    // One save pass: every record stored since the last pass, in ring order.
    virtual void funcLogFileSave();
    static void threadLogFileSave(void* logger);

public:
    std::atomic<int> m_threadState;
    int m_bufferSize;
    int m_stringLen;
    _LoggerData* m_logData;
    std::atomic<int> m_logCount;
    std::atomic<int> m_writeIndex;
    std::atomic<int> m_saveIndex;
    int m_fileMode;
    char m_folder[256];
    char m_filePrefix[256];
    int m_savePeriod;
    zbBase::zbCriticalSection m_lock;

private:
    void startSaver();
    void stopSaver();
    void copyRingFrom(const CzbLogger& other);
    // The log file name of a record dated t; false when it does not fit.
    bool buildName(char* name, size_t bytes, const zbBase::zbSystemTime& t) const;
};

static_assert(sizeof(std::atomic<int>) == sizeof(int), "shared counters keep an int's width");
static_assert(std::atomic<int>::is_always_lock_free, "shared counters must be lock-free");
