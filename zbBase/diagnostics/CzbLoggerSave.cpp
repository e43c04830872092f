// The save pass of CzbLogger: runs on the saving thread only.
//
// Records go out in runs: a run is a stretch of consecutive records bound for one file, copied
// out of the ring in chunks (a short hold of the ring lock each) straight into their lines in
// the run buffer, then written with one checked write. Only then does m_saveIndex move over
// the run, so a record counts as saved only once its whole line is in the file. Records of a
// run whose line did not reach the file whole (a full disk, a failed device) are marked like
// records whose file cannot be opened, and the pass goes on with the next run.
//
// A subclass may write records its own way through setLogDataToFile: for a subclass each
// record is a run of its own, written through a text stream and flushed before it counts.
#include "zbBase/diagnostics/CzbLogger.h"
#include "zbBase/diagnostics/detail/CzbLoggerLine.h"
#include "zbBase/diagnostics/detail/CzbLoggerShared.h"
#include "zbBase/diagnostics/detail/zbAppendFile.h"

#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpThread.h"

#include <new>
#include <string.h>
#include <typeinfo>

using zbBase::detail::LoggerRunRecord;

namespace {

const char kOpenFailMark[] = "(File Open Fail)";
// Records copied out of the ring under one hold of its lock.
const int kChunkRecords = 64;

// Appends the mark to a text block of `bytes` bytes, cutting the text to make room; a block
// too small for the whole mark gets what fits of it.
void appendOpenFailMark(char* text, int bytes) {
    size_t room = static_cast<size_t>(bytes - 1);
    size_t markLength = sizeof kOpenFailMark - 1;
    if (markLength >= room) {
        memcpy(text, kOpenFailMark, room);
        text[room] = '\0';
        return;
    }
    size_t length = strnlen(text, room);
    if (length + markLength > room) {
        length = room - markLength;
    }
    memcpy(text + length, kOpenFailMark, markLength + 1);
}

// Starts fetching the records of the next chunk, those after slot `last`, with their texts,
// before the lock is taken: the writers have just filled them on other cores, and the lock is
// then held for the copy alone rather than for the transfers as well. (The text pointers of a
// ring never change while its saver runs.)
void prefetchChunk(const CzbLogger& logger, int last) {
#if defined(__GNUC__)
    const int write = logger.m_writeIndex.load(std::memory_order_acquire);
    int slot = last;
    for (int k = 0; k < kChunkRecords && slot != write; ++k) {
        slot = slot >= 0 && slot + 1 < logger.m_bufferSize ? slot + 1 : 0;
        __builtin_prefetch(&logger.m_logData[slot]);
        __builtin_prefetch(logger.m_logData[slot].text);
    }
#else
    (void)logger;
    (void)last;
#endif
}

bool sameDay(const zbBase::zbSystemTime& a, const zbBase::zbSystemTime& b) {
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay;
}

// Marks the records of a run that did not reach the file, unless a reset came in between or
// a writer has already reused the slot.
void markUnsaved(CzbLogger& logger, const LoggerRunRecord* records, int count, int save) {
    if (count <= 0) {
        return;
    }
    zbp::CriticalSectionGuard guard(&logger.m_lock);
    if (logger.m_saveIndex.load(std::memory_order_relaxed) != save) {
        return;
    }
    for (int i = 0; i < count; ++i) {
        CzbLogger::_LoggerData& stored = logger.m_logData[records[i].slot];
        if (stored.number == records[i].number) {
            appendOpenFailMark(stored.text, logger.m_stringLen);
        }
    }
}

// The buffer of one pass: the logger's own run buffer, or one made for this pass where
// another pass holds that one.
class PassBuffer {
public:
    PassBuffer(zbBase::detail::LoggerShared& shared, int stringLen) : m_shared(shared) {
        using zbBase::detail::LoggerShared;
        if (shared.claimRun()) {
            m_claimed = true;
            if (shared.reserveRun(stringLen)) {
                m_buffer = shared.runBuffer();
                m_bytes = shared.runBytes();
                m_records = shared.runRecords();
            }
            return;
        }
        m_bytes = LoggerShared::runBufferBytes(stringLen);
        m_ownBuffer = new (std::nothrow) char[m_bytes];
        m_ownRecords = new (std::nothrow) LoggerRunRecord[LoggerShared::kRunRecords];
        if (m_ownBuffer != nullptr && m_ownRecords != nullptr) {
            m_buffer = m_ownBuffer;
            m_records = m_ownRecords;
        }
    }
    ~PassBuffer() {
        delete[] m_ownBuffer;
        delete[] m_ownRecords;
        if (m_claimed) {
            m_shared.releaseRun();
        }
    }
    PassBuffer(const PassBuffer&) = delete;
    PassBuffer& operator=(const PassBuffer&) = delete;

    bool ok() const { return m_buffer != nullptr; }
    char* buffer() const { return m_buffer; }
    size_t bytes() const { return m_bytes; }
    LoggerRunRecord* records() const { return m_records; }

private:
    zbBase::detail::LoggerShared& m_shared;
    bool m_claimed = false;
    char* m_buffer = nullptr;
    size_t m_bytes = 0;
    LoggerRunRecord* m_records = nullptr;
    char* m_ownBuffer = nullptr;
    LoggerRunRecord* m_ownRecords = nullptr;
};

} // namespace

bool CzbLogger::buildName(char* name, size_t bytes, const zbBase::zbSystemTime& t) const {
    int length;
    if (m_fileMode == 1) {
        length = snprintf(name, bytes, "%s\\%02d%02d%02d\\%s_%02d%02d%02d.log", m_folder, t.wYear,
                          t.wMonth, t.wDay, m_filePrefix, t.wYear, t.wMonth, t.wDay);
    } else {
        length = snprintf(name, bytes, "%s_%02d%02d%02d.log", m_filePrefix, t.wYear % 100, t.wMonth,
                          t.wDay);
    }
    // A name cut to fit would be another file: such a record counts as not openable. (A
    // negative length, an error of the formatter, converts to a size beyond any buffer.)
    return static_cast<size_t>(length) < bytes;
}

void CzbLogger::funcLogFileSave() {
    using namespace zbBase::detail;
    int save = m_saveIndex.load(std::memory_order_acquire);
    if (save == m_writeIndex.load(std::memory_order_acquire)) {
        return;
    }
    SYSTEMTIME now;
    zbp::GetLocalTime(&now);
    const zbBase::zbSystemTime pass = now;

    const size_t maxText = LoggerShared::maxSavedText(m_stringLen);
    LoggerShared& shared = LoggerShared::of(m_logData);
    PassBuffer runSpace(shared, m_stringLen);
    if (!runSpace.ok()) {
        return; // no memory for the run: the records wait for the next pass
    }
    char* const buffer = runSpace.buffer();
    const size_t capacity = runSpace.bytes();
    LoggerRunRecord* const run = runSpace.records();
    const bool ownLines = typeid(*this) == typeid(CzbLogger);

    char name[256];
    AppendFile file;
    zbBase::zbSystemTime fileDate = pass;
    LogLineFormatter format;
    _LoggerData single = {};
    for (;;) {
        // Gather a run: consecutive records of one file, while the buffer has room.
        int count = 0;
        size_t used = 0;
        int last = save;
        zbBase::zbSystemTime runDate = pass;
        bool reset = false;
        bool more = true;
        while (more) {
            prefetchChunk(*this, last);
            zbp::CriticalSectionGuard guard(&m_lock);
            if (m_saveIndex.load(std::memory_order_relaxed) != save) {
                reset = true;
                break;
            }
            const int write = m_writeIndex.load(std::memory_order_relaxed);
            for (int k = 0; k < kChunkRecords; ++k) {
                if (last == write || count == LoggerShared::kRunRecords ||
                    (!ownLines && count == 1)) {
                    more = false;
                    break;
                }
                const int slot = (last + 1) % m_bufferSize;
                const _LoggerData& record = m_logData[slot];
                const zbBase::zbSystemTime& day = m_fileMode == 1 ? pass : record.time;
                if (count == 0) {
                    runDate = day;
                } else if (!sameDay(day, runDate)) {
                    more = false;
                    break;
                }
                const size_t length = strnlen(record.text, maxText);
                if (ownLines) {
                    const size_t bound =
                        LogLineFormatter::kMaxHeader + 1 + textModeBound(length) + kTextEolLength;
                    if (used + bound > capacity) {
                        more = false;
                        break;
                    }
                    used += format.header(buffer + used, record.number, record.level, record.time);
                    used += copyAsTextMode(buffer + used, record.text, length);
                    memcpy(buffer + used, kTextEol, kTextEolLength);
                    used += kTextEolLength;
                } else {
                    single = record;
                    memcpy(buffer, record.text, length);
                    buffer[length] = '\0';
                    single.text = buffer;
                }
                run[count++] = LoggerRunRecord{slot, record.number, used};
                last = slot;
            }
        }
        if (reset || count == 0) {
            break;
        }

        if (!file.isOpen() || !sameDay(fileDate, runDate)) {
            if (file.isOpen()) {
                shared.remember(name, file.end());
                file.close();
            }
            if (buildName(name, sizeof name, runDate)) {
                file.open(name, ownLines, shared.endOf(name));
            }
            fileDate = runDate;
        }
        int saved = 0;
        if (ownLines) {
            const size_t written = file.isOpen() ? file.append(buffer, used) : 0;
            while (saved < count && run[saved].end <= written) {
                ++saved;
            }
        } else if (file.startRecord()) {
            setLogDataToFile(file.stream(), &single);
            saved = file.endRecord() ? 1 : 0;
        }
        markUnsaved(*this, run + saved, count - saved, save);
        if (!m_saveIndex.compare_exchange_strong(save, last)) {
            break;
        }
        save = last;
    }
    if (file.isOpen()) {
        shared.remember(name, file.end());
    }
}
