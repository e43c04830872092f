#include "zbBase/diagnostics/detail/CzbLoggerShared.h"
#include "zbBase/diagnostics/detail/CzbLoggerLine.h"
#include "zbBase/diagnostics/detail/zbAppendFile.h"

#include <cstddef>
#include <new>
#include <string.h>

namespace zbBase {
namespace detail {

namespace {

// The records start this far behind the block, aligned for any type.
const size_t kFront = (sizeof(LoggerShared) + alignof(std::max_align_t) - 1) /
                      alignof(std::max_align_t) * alignof(std::max_align_t);

char* blockOf(CzbLogger::_LoggerData* ring) {
    return reinterpret_cast<char*>(ring) - kFront;
}

} // namespace

LoggerShared::~LoggerShared() {
    delete[] m_runBuffer;
    delete[] m_runRecords;
}

CzbLogger::_LoggerData* LoggerShared::makeRing(int count, int textBytes) {
    const size_t records = static_cast<size_t>(count);
    char* block =
        static_cast<char*>(::operator new(kFront + records * sizeof(CzbLogger::_LoggerData)));
    new (block) LoggerShared();
    CzbLogger::_LoggerData* ring = reinterpret_cast<CzbLogger::_LoggerData*>(block + kFront);
    for (size_t i = 0; i < records; ++i) {
        new (&ring[i]) CzbLogger::_LoggerData();
    }
    size_t made = 0;
    try {
        for (; made < records; ++made) {
            ring[made].text = new char[static_cast<size_t>(textBytes)]();
        }
    } catch (...) {
        for (size_t i = 0; i < made; ++i) {
            delete[] ring[i].text;
        }
        reinterpret_cast<LoggerShared*>(block)->~LoggerShared();
        ::operator delete(block);
        throw;
    }
    return ring;
}

void LoggerShared::freeRing(CzbLogger::_LoggerData* ring, int count) {
    for (int i = 0; i < count; ++i) {
        delete[] ring[i].text;
    }
    char* block = blockOf(ring);
    reinterpret_cast<LoggerShared*>(block)->~LoggerShared();
    ::operator delete(block);
}

LoggerShared& LoggerShared::of(CzbLogger::_LoggerData* ring) {
    return *reinterpret_cast<LoggerShared*>(blockOf(ring));
}

void LoggerShared::waitForPassEnd(int milliseconds) {
    std::unique_lock<std::mutex> lock(m_mutex);
    const unsigned seen = m_passes;
    m_passEnd.wait_for(lock, std::chrono::milliseconds(milliseconds),
                       [&] { return m_passes != seen; });
}

size_t LoggerShared::maxSavedText(int stringLen) {
    size_t length = stringLen > 1 ? static_cast<size_t>(stringLen - 1) : 0;
    return length < kMaxSavedText ? length : kMaxSavedText;
}

size_t LoggerShared::runBufferBytes(int stringLen) {
    return kRunBytes + LogLineFormatter::kMaxHeader + 1 + textModeBound(maxSavedText(stringLen)) +
           kTextEolLength;
}

bool LoggerShared::reserveRun(int stringLen) {
    const size_t bytes = runBufferBytes(stringLen);
    if (m_runBuffer != nullptr && m_runBytes >= bytes) {
        return true;
    }
    char* buffer = new (std::nothrow) char[bytes];
    if (buffer == nullptr) {
        return false;
    }
    if (m_runRecords == nullptr) {
        m_runRecords = new (std::nothrow) LoggerRunRecord[kRunRecords];
        if (m_runRecords == nullptr) {
            delete[] buffer;
            return false;
        }
    }
    delete[] m_runBuffer;
    m_runBuffer = buffer;
    m_runBytes = bytes;
    return true;
}

AppendFile::End LoggerShared::endOf(const char* name) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const FileEnd& known : m_ends) {
        if (known.end != AppendFile::End::Whole && strcmp(known.name, name) == 0) {
            return known.end;
        }
    }
    return AppendFile::End::Whole;
}

void LoggerShared::remember(const char* name, AppendFile::End end) {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (FileEnd& known : m_ends) {
        if (known.end != AppendFile::End::Whole && strcmp(known.name, name) == 0) {
            known.end = end;
            return;
        }
    }
    if (end == AppendFile::End::Whole) {
        return;
    }
    FileEnd& slot = m_ends[m_nextEnd];
    m_nextEnd = (m_nextEnd + 1) % kFileEnds;
    size_t length = strnlen(name, sizeof slot.name - 1);
    memcpy(slot.name, name, length);
    slot.name[length] = '\0';
    slot.end = end;
}

} // namespace detail
} // namespace zbBase
