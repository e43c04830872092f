// What a CzbLogger keeps beside its public members: it lives in one allocation with the ring,
// just in front of the record array, so the class layout stays as declared.
//
// - The saver's wake-up: the saving thread waits out its period on a condition, and wakes
//   early when the logger is destroyed, when resetLogCount waits for it, or when setLog finds
//   half the ring waiting to be saved (so that a burst does not overrun the ring while the
//   saver sleeps). It still looks at m_threadState at least every 10 ms.
// - The end of each save pass, for resetLogCount to wait on.
// - The saver's run buffer, made when the saver starts.
// - What the saver's writes left at the end of its files: a few files whose last write stopped
//   inside a line (or failed without telling how much went out); every other file counts as
//   ending with a whole line.
#pragma once

#include "zbBase/diagnostics/CzbLogger.h"
#include "zbBase/diagnostics/detail/zbAppendFile.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stddef.h>

namespace zbBase {
namespace detail {

struct LoggerRunRecord {
    int slot;
    int number;
    size_t end; // offset just past the record's line in the run buffer
};

class LoggerShared {
public:
    LoggerShared() = default;
    ~LoggerShared();
    LoggerShared(const LoggerShared&) = delete;
    LoggerShared& operator=(const LoggerShared&) = delete;

    // The ring of `count` records, each with a zeroed text block of `textBytes`, behind a
    // LoggerShared; the allocator's exception passes on with nothing left allocated.
    static CzbLogger::_LoggerData* makeRing(int count, int textBytes);
    // Releases a ring that makeRing made (never null: a logger always holds its ring).
    static void freeRing(CzbLogger::_LoggerData* ring, int count);
    static LoggerShared& of(CzbLogger::_LoggerData* ring);

    // Asks the saver for a pass now. Cheap while a request is pending.
    void requestPass() {
        if (!m_passRequested.load(std::memory_order_relaxed) &&
            !m_passRequested.exchange(true, std::memory_order_acq_rel)) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_wake.notify_all();
        }
    }
    // Wakes the saver now, also when a request is already pending.
    void wakeNow() {
        m_passRequested.store(true);
        std::lock_guard<std::mutex> lock(m_mutex);
        m_wake.notify_all();
    }
    // Waits up to `milliseconds` (at most 10 ms at a time while keepWaiting() stays true) or
    // until a pass is requested; clears the request.
    template <class KeepWaiting> void waitForPass(int milliseconds, KeepWaiting keepWaiting);
    // Tells the waiters of waitForPassEnd that a pass ended.
    void passEnded() {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_passes;
        m_passEnd.notify_all();
    }
    // Waits for the end of a pass, at most `milliseconds`.
    void waitForPassEnd(int milliseconds);

    // Makes the saver's run buffer for texts of blocks of `stringLen` bytes: room for
    // kRunBytes of lines and at least one longest line, and kRunRecords record entries. False
    // when memory is short.
    bool reserveRun(int stringLen);
    // The longest text saved from a block of `stringLen` bytes.
    static size_t maxSavedText(int stringLen);
    // Bytes of a run buffer for texts of blocks of `stringLen` bytes.
    static size_t runBufferBytes(int stringLen);
    // The run buffer belongs to one pass at a time: a pass that finds it taken (a subclass
    // running passes on a thread of its own besides the saver) makes a buffer of its own.
    bool claimRun() { return !m_runClaimed.exchange(true, std::memory_order_acquire); }
    void releaseRun() { m_runClaimed.store(false, std::memory_order_release); }
    char* runBuffer() const { return m_runBuffer; }
    size_t runBytes() const { return m_runBytes; }
    LoggerRunRecord* runRecords() const { return m_runRecords; }
    static const int kRunRecords = 4096;
    static const size_t kRunBytes = 128 * 1024;
    // A text the host wrote into its block beyond what setLog stores is saved up to this.
    static const size_t kMaxSavedText = 64 * 1024;

    // What is known of the end of the log file `name` (at most 255 characters).
    AppendFile::End endOf(const char* name);
    void remember(const char* name, AppendFile::End end);

private:
    struct FileEnd {
        char name[256];
        AppendFile::End end;
    };
    static const int kFileEnds = 4;

    std::mutex m_mutex;
    FileEnd m_ends[kFileEnds] = {};
    int m_nextEnd = 0;
    std::condition_variable m_wake;
    std::condition_variable m_passEnd;
    std::atomic<bool> m_passRequested{false};
    std::atomic<bool> m_runClaimed{false};
    unsigned m_passes = 0;
    char* m_runBuffer = nullptr;
    size_t m_runBytes = 0;
    LoggerRunRecord* m_runRecords = nullptr;
};

template <class KeepWaiting>
void LoggerShared::waitForPass(int milliseconds, KeepWaiting keepWaiting) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_passRequested.load() && keepWaiting()) {
        const auto now = Clock::now();
        if (now >= deadline) {
            break;
        }
        const auto slice = now + std::chrono::milliseconds(10);
        m_wake.wait_until(lock, slice < deadline ? slice : deadline);
    }
    m_passRequested.store(false);
}

} // namespace detail
} // namespace zbBase
