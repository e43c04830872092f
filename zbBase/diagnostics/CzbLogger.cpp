#include "zbBase/diagnostics/CzbLogger.h"
#include "zbBase/diagnostics/detail/CzbLoggerLine.h"
#include "zbBase/diagnostics/detail/CzbLoggerMessage.h"
#include "zbBase/diagnostics/detail/CzbLoggerShared.h"
#include "zbBase/diagnostics/detail/zbFormat.h"

#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpThread.h"

#include <stdarg.h>
#include <string.h>

namespace {

const int kMessageBytes = 512;
const DWORD kSpinCount = 4000;

void copyName(char (&dst)[256], const char* text) {
    if (text == nullptr) {
        dst[0] = '\0';
        return;
    }
    size_t n = strnlen(text, sizeof dst - 1);
    memcpy(dst, text, n);
    dst[n] = '\0';
}

// Copies text into dst of `bytes` bytes, cut and terminated.
void copyCut(char* dst, size_t bytes, const char* text) {
    size_t n = strnlen(text, bytes - 1);
    memcpy(dst, text, n);
    dst[n] = '\0';
}

// The slot after `index` in a ring of `size`: (index + 1) modulo size, without a division for
// an index in the ring.
inline int nextSlot(int index, int size) {
    int slot = index + 1;
    return slot >= 0 && slot < size ? slot : slot % size;
}

using zbBase::detail::LoggerShared;

} // namespace

CzbLogger::CzbLogger(int bufferSize, int stringLen)
    : m_threadState(0), m_bufferSize(bufferSize < 1 ? 1 : bufferSize),
      m_stringLen(stringLen < 1 ? 1 : stringLen), m_logData(nullptr), m_logCount(0),
      m_writeIndex(m_bufferSize - 1), m_saveIndex(m_bufferSize - 1), m_fileMode(0), m_folder(),
      m_filePrefix(), m_savePeriod(0) {
    m_logData = LoggerShared::makeRing(m_bufferSize, m_stringLen);
    zbp::InitializeCriticalSection(&m_lock);
    zbp::SetCriticalSectionSpinCount(&m_lock, kSpinCount);
}

CzbLogger::CzbLogger(const CzbLogger& other)
    : m_threadState(0), m_bufferSize(other.m_bufferSize), m_stringLen(other.m_stringLen),
      m_logData(nullptr), m_logCount(0), m_writeIndex(0), m_saveIndex(0),
      m_fileMode(other.m_fileMode), m_folder(), m_filePrefix(), m_savePeriod(other.m_savePeriod) {
    memcpy(m_folder, other.m_folder, sizeof m_folder);
    memcpy(m_filePrefix, other.m_filePrefix, sizeof m_filePrefix);
    m_logData = LoggerShared::makeRing(m_bufferSize, m_stringLen);
    copyRingFrom(other);
    zbp::InitializeCriticalSection(&m_lock);
    zbp::SetCriticalSectionSpinCount(&m_lock, kSpinCount);
}

CzbLogger::~CzbLogger() {
    if (zbp::processExiting()) {
        // A static logger of a host's DLL at the end of the process: the system has ended the
        // saver and every other thread where they stood, perhaps inside the lock or the
        // allocator. Nothing here may wait for them; the ring goes with the process.
        return;
    }
    stopSaver();
    zbp::EnterCriticalSection(&m_lock);
    LoggerShared::freeRing(m_logData, m_bufferSize);
    m_logData = nullptr;
    zbp::LeaveCriticalSection(&m_lock);
    zbp::DeleteCriticalSection(&m_lock);
}

CzbLogger& CzbLogger::operator=(const CzbLogger& other) {
    if (this == &other) {
        return *this;
    }
    stopSaver();
    // The new ring is filled under the source's lock and put in place under ours, so that no
    // lock is taken under the other.
    CzbLogger copy(other);
    zbp::CriticalSectionGuard guard(&m_lock);
    _LoggerData* oldRing = m_logData;
    int oldSize = m_bufferSize;
    m_bufferSize = copy.m_bufferSize;
    m_stringLen = copy.m_stringLen;
    m_logData = copy.m_logData;
    copy.m_logData = oldRing;
    copy.m_bufferSize = oldSize;
    m_logCount.store(copy.m_logCount.load());
    m_writeIndex.store(copy.m_writeIndex.load());
    m_saveIndex.store(copy.m_saveIndex.load());
    m_fileMode = copy.m_fileMode;
    memcpy(m_folder, copy.m_folder, sizeof m_folder);
    memcpy(m_filePrefix, copy.m_filePrefix, sizeof m_filePrefix);
    m_savePeriod = copy.m_savePeriod;
    return *this;
}

void CzbLogger::copyRingFrom(const CzbLogger& other) {
    zbp::CriticalSectionGuard guard(const_cast<zbBase::zbCriticalSection*>(&other.m_lock));
    for (int i = 0; i < m_bufferSize; ++i) {
        char* text = m_logData[i].text;
        m_logData[i] = other.m_logData[i];
        m_logData[i].text = text;
        memcpy(text, other.m_logData[i].text, static_cast<size_t>(m_stringLen));
    }
    m_logCount.store(other.m_logCount.load());
    m_writeIndex.store(other.m_writeIndex.load());
    m_saveIndex.store(other.m_saveIndex.load());
}

void CzbLogger::startSaver() {
    // The saver's buffer is made before the thread: a saver that runs never lacks it.
    LoggerShared& shared = LoggerShared::of(m_logData);
    if (shared.claimRun()) {
        bool reserved = shared.reserveRun(m_stringLen);
        shared.releaseRun();
        if (!reserved) {
            return;
        }
    }
    m_threadState.store(1);
    if (zbp::_beginthread(&CzbLogger::threadLogFileSave, 0, this) == static_cast<uintptr_t>(-1)) {
        m_threadState.store(0);
    }
}

void CzbLogger::stopSaver() {
    int running = 1;
    if (!m_threadState.compare_exchange_strong(running, 2)) {
        return;
    }
    LoggerShared::of(m_logData).wakeNow();
    while (m_threadState.load() != 0) {
        zbp::Sleep(1);
    }
}

void CzbLogger::setWriteFileMode(char* prefix, int period) {
    // A saver already running keeps the settings it was started with.
    if (m_threadState.load() != 0) {
        return;
    }
    copyName(m_filePrefix, prefix);
    m_savePeriod = period;
    m_fileMode = 0;
    startSaver();
}

void CzbLogger::setWriteFileMode2(char* folder, char* prefix, int period) {
    if (m_threadState.load() != 0) {
        return;
    }
    copyName(m_folder, folder);
    copyName(m_filePrefix, prefix);
    m_savePeriod = period;
    m_fileMode = 1;
    startSaver();
}

void CzbLogger::setLog(char* format, ...) {
    char message[kMessageBytes];
    size_t length = 0;
    va_list args;
    va_start(args, format);
    bool done =
        zbBase::detail::LogMessageFormatter::format(message, sizeof message, format, args, &length);
    va_end(args);
    if (!done) {
        va_start(args, format);
        zbBase::detail::formatBounded(message, sizeof message, format, args);
        va_end(args);
        length = strnlen(message, sizeof message - 1);
    }
    if (length > static_cast<size_t>(m_stringLen - 1)) {
        length = static_cast<size_t>(m_stringLen - 1);
    }
    SYSTEMTIME now;
    zbp::GetLocalTime(&now);

    bool wakeSaver;
    {
        zbp::CriticalSectionGuard guard(&m_lock);
        int slot = nextSlot(m_writeIndex.load(std::memory_order_relaxed), m_bufferSize);
        _LoggerData& record = m_logData[slot];
        int number = m_logCount.load(std::memory_order_relaxed);
        record.number = number;
        record.level = 0;
        record.time = now;
        memcpy(record.text, message, length);
        record.text[length] = '\0';
        // The running number wraps past the largest int instead of overflowing.
        m_logCount.store(static_cast<int>(static_cast<unsigned>(number) + 1u),
                         std::memory_order_release);
        m_writeIndex.store(slot, std::memory_order_release);
        int waiting = slot - m_saveIndex.load(std::memory_order_relaxed);
        if (waiting < 0) {
            waiting += m_bufferSize;
        }
        wakeSaver = 2 * waiting >= m_bufferSize;
    }
    // Half the ring waits to be saved: the saver starts its pass now rather than at the end of
    // its period, so that a burst does not overrun the ring while the saver sleeps.
    if (wakeSaver && m_threadState.load(std::memory_order_relaxed) == 1) {
        LoggerShared::of(m_logData).requestPass();
    }
}

void CzbLogger::getDateTime(char* date, char* time) {
    SYSTEMTIME now;
    zbp::GetLocalTime(&now);
    char text[64];
    snprintf(text, sizeof text, "%02d/%02d/%02d", now.wYear % 100, now.wMonth, now.wDay);
    copyCut(date, 9, text);
    snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", now.wHour, now.wMinute, now.wSecond,
             now.wMilliseconds);
    copyCut(time, 13, text);
}

void CzbLogger::setLogDataToFile(FILE* file, _LoggerData* data) {
    char header[zbBase::detail::LogLineFormatter::kMaxHeader + 1];
    zbBase::detail::LogLineFormatter format;
    size_t length = format.header(header, data->number, data->level, data->time);
    fwrite(header, 1, length, file);
    fputs(data->text, file);
    fputc('\n', file);
}

CzbLogger::_LoggerData* CzbLogger::GetLogData(int index) {
    if (index < 0 || index >= m_bufferSize) {
        return nullptr;
    }
    int count = m_logCount.load();
    if (count >= 0 && count < m_bufferSize) {
        return &m_logData[index];
    }
    return &m_logData[(m_writeIndex.load() + index + 1) % m_bufferSize];
}

int CzbLogger::GetLogDataNum() {
    int count = m_logCount.load();
    // A count past the largest int has wrapped: the ring is full.
    return count >= 0 && count < m_bufferSize ? count : m_bufferSize;
}

int CzbLogger::getBufferSize() {
    return m_bufferSize;
}

int CzbLogger::getLogStringLen() {
    return m_stringLen;
}

void CzbLogger::resetLogCount(int wait) {
    if (wait != 0) {
        LoggerShared& shared = LoggerShared::of(m_logData);
        // At the end of the process the saver may be gone without a word: see the destructor.
        while (m_threadState.load() == 1 && m_saveIndex.load() != m_writeIndex.load() &&
               !zbp::processExiting()) {
            // The saver is asked for its pass now instead of at the end of its period.
            shared.wakeNow();
            shared.waitForPassEnd(1);
        }
    }
    zbp::CriticalSectionGuard guard(&m_lock);
    m_logCount.store(0);
    m_writeIndex.store(m_bufferSize - 1);
    m_saveIndex.store(m_bufferSize - 1);
}

void CzbLogger::threadLogFileSave(void* logger) {
    CzbLogger* self = static_cast<CzbLogger*>(logger);
    LoggerShared& shared = LoggerShared::of(self->m_logData);
    while (self->m_threadState.load() == 1) {
        self->funcLogFileSave();
        shared.passEnded();
        if (self->m_savePeriod > 0) {
            shared.waitForPass(self->m_savePeriod,
                               [self] { return self->m_threadState.load() == 1; });
        }
    }
    // The object may be gone as soon as this store is seen.
    self->m_threadState.store(0);
}
