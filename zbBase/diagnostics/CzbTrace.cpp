#include "zbBase/diagnostics/CzbTrace.h"
#include "zbBase/diagnostics/detail/zbFormat.h"

#include "zbBase/diagnostics/CzbText.h"
#include "zbBase/platform/detail/zbpFileIO.h"
#include "zbBase/platform/detail/zbpThread.h"

#include <new>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>

namespace {

const int kMessageBytes = 512;
const DWORD kSpinCount = 4000;

// A heap copy of the text (malloc), or null when memory is short.
char* copyText(const char* text) {
    size_t length = strlen(text);
    char* copy = static_cast<char*>(malloc(length + 1));
    if (copy != nullptr) {
        memcpy(copy, text, length + 1);
    }
    return copy;
}

void freeAll(std::deque<char*>& queue) {
    for (char* text : queue) {
        free(text);
    }
    queue.clear();
}

// Deep copies of the queued texts; on a shortage of memory what was copied is released and
// the exception passes on.
std::deque<char*> copyQueue(const std::deque<char*>& source) {
    std::deque<char*> copy;
    try {
        for (const char* text : source) {
            char* element = copyText(text);
            if (element == nullptr) {
                throw std::bad_alloc();
            }
            try {
                copy.push_back(element);
            } catch (...) {
                free(element);
                throw;
            }
        }
    } catch (...) {
        freeAll(copy);
        throw;
    }
    return copy;
}

} // namespace

CzbTrace::CzbTrace() : m_mode(ModeFile), m_fileName(nullptr), m_file(nullptr) {
    zbp::InitializeCriticalSection(&m_lock);
    zbp::SetCriticalSectionSpinCount(&m_lock, kSpinCount);
}

CzbTrace::CzbTrace(const CzbTrace& other) : m_mode(ModeFile), m_fileName(nullptr), m_file(nullptr) {
    zbBase::zbCriticalSection* source = const_cast<zbBase::zbCriticalSection*>(&other.m_lock);
    {
        zbp::CriticalSectionGuard guard(source);
        m_queue = copyQueue(other.m_queue);
        if (other.m_fileName != nullptr) {
            m_fileName = copyText(other.m_fileName);
            if (m_fileName == nullptr) {
                freeAll(m_queue);
                throw std::bad_alloc();
            }
        }
        m_mode.store(other.m_mode.load());
    }
    zbp::InitializeCriticalSection(&m_lock);
    zbp::SetCriticalSectionSpinCount(&m_lock, kSpinCount);
}

CzbTrace::~CzbTrace() {
    zbp::DeleteCriticalSection(&m_lock);
    free(m_fileName);
    freeAll(m_queue);
}

CzbTrace& CzbTrace::operator=(const CzbTrace& other) {
    if (this == &other) {
        return *this;
    }
    // The source is copied under its own lock and the result put in place under ours, so
    // that no lock is taken under the other.
    std::deque<char*> queue;
    char* fileName = nullptr;
    Mode mode;
    {
        zbp::CriticalSectionGuard guard(const_cast<zbBase::zbCriticalSection*>(&other.m_lock));
        queue = copyQueue(other.m_queue);
        if (other.m_fileName != nullptr) {
            fileName = copyText(other.m_fileName);
            if (fileName == nullptr) {
                freeAll(queue);
                throw std::bad_alloc();
            }
        }
        mode = other.m_mode.load();
    }
    zbp::CriticalSectionGuard guard(&m_lock);
    m_queue.swap(queue);
    freeAll(queue);
    free(m_fileName);
    m_fileName = fileName;
    m_mode.store(mode);
    return *this;
}

void CzbTrace::setMode(Mode mode) {
    m_mode.store(mode);
}

void CzbTrace::setTrace(char* format, ...) {
    zbp::CriticalSectionGuard guard(&m_lock);
    char message[kMessageBytes] = {};
    va_list args;
    va_start(args, format);
    zbBase::detail::formatBounded(message, sizeof message, format, args);
    va_end(args);

    if (m_mode.load() == ModeFile) {
        if (m_fileName == nullptr) {
            return;
        }
        if (zbp::fopen_s(&m_file, m_fileName, "a") != 0 || m_file == nullptr) {
            m_file = nullptr;
            return;
        }
        fprintf(m_file, "%s\n", message);
        fclose(m_file);
        m_file = nullptr;
        return;
    }
    char* copy = copyText(message);
    if (copy == nullptr) {
        return;
    }
    try {
        m_queue.push_back(copy);
    } catch (...) {
        free(copy);
        throw;
    }
}

int CzbTrace::getTraceNum() {
    zbp::CriticalSectionGuard guard(&m_lock);
    return static_cast<int>(m_queue.size());
}

char* CzbTrace::getTraceFront() {
    zbp::CriticalSectionGuard guard(&m_lock);
    return m_queue.empty() ? nullptr : m_queue.front();
}

void CzbTrace::getTracePop(char* buffer) {
    zbp::CriticalSectionGuard guard(&m_lock);
    if (m_queue.empty()) {
        return;
    }
    char* front = m_queue.front();
    strcpy(buffer, front);
    free(front);
    m_queue.pop_front();
}

void CzbTrace::clear() {
    zbp::CriticalSectionGuard guard(&m_lock);
    freeAll(m_queue);
}

bool CzbTrace::setTraceFileName(char* name, bool truncate) {
    zbp::CriticalSectionGuard guard(&m_lock);
    FILE* file = nullptr;
    if (zbp::fopen_s(&file, name, truncate ? "w" : "a") != 0 || file == nullptr) {
        return false;
    }
    fclose(file);
    char* copy = copyText(name);
    if (copy == nullptr) {
        return false;
    }
    free(m_fileName);
    m_fileName = copy;
    return true;
}

void CzbTrace::setWriteFile(char* name, bool append) {
    zbp::CriticalSectionGuard guard(&m_lock);
    FILE* file = nullptr;
    if (zbp::fopen_s(&file, name, append ? "a" : "w") != 0 || file == nullptr) {
        return;
    }
    while (!m_queue.empty()) {
        char* front = m_queue.front();
        fprintf(file, "%s\n", front);
        free(front);
        m_queue.pop_front();
    }
    fclose(file);
}

CzbTrace* CzbTraceExt::getInstance() {
    return &m_Instance;
}

void CzbTraceExt::setTraceWithDateTime(char* format, ...) {
    char message[kMessageBytes] = {};
    va_list args;
    va_start(args, format);
    zbBase::detail::formatBounded(message, sizeof message, format, args);
    va_end(args);

    // The trace lock (re-entered by setTrace) is held from taking the two ring slots until
    // their texts are used, so stamping callers on other threads cannot overwrite them.
    zbp::CriticalSectionGuard guard(&m_Instance.m_lock);
    CzbText& ring = CzbTextExt::m_zbText;
    char* time = ring.getTime();
    char* date = ring.getDate();
    char stamped[] = "%s%s : %s";
    m_Instance.CzbTrace::setTrace(stamped, date, time, message);
}
