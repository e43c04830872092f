#include "zbBase/diagnostics/CzbTrace.h"
#include "zbBase/diagnostics/detail/zbAppendFile.h"
#include "zbBase/diagnostics/detail/zbFormat.h"

#include "zbBase/diagnostics/CzbText.h"
#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpFileIO.h"
#include "zbBase/platform/detail/zbpThread.h"

#include <new>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>

namespace {

using zbBase::detail::AppendFile;
using zbBase::detail::copyAsTextMode;
using zbBase::detail::kTextEol;
using zbBase::detail::kTextEolLength;
using zbBase::detail::textModeBound;
using zbBase::detail::textModeSize;

const int kMessageBytes = 512;
const DWORD kSpinCount = 4000;
// Lines of the queue gathered before one write of setWriteFile.
const size_t kRunBytes = 16 * 1024;

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

// Appends the waiting messages to an open file, oldest first, a run of lines at a time, and
// removes each one only once its whole line is in the file. A failed write ends the work: the
// message it cut and those behind it stay in the queue.
void appendQueue(AppendFile& file, std::deque<char*>& queue) {
    char run[kRunBytes];
    while (!queue.empty()) {
        size_t used = 0;
        size_t lines = 0;
        for (; lines < queue.size(); ++lines) {
            const char* text = queue[lines];
            const size_t length = strlen(text);
            if (used + textModeBound(length) + kTextEolLength > sizeof run) {
                break;
            }
            used += copyAsTextMode(run + used, text, length);
            memcpy(run + used, kTextEol, kTextEolLength);
            used += kTextEolLength;
        }
        if (lines == 0) {
            // A message longer than a run (one the host queued itself) goes out in pieces.
            // Only the first piece may need a line end in front of it; the others continue
            // the line that it began.
            const char* text = queue.front();
            size_t length = strlen(text);
            const size_t piece = (sizeof run - kTextEolLength) / kTextEolLength;
            bool first = true;
            while (length > 0) {
                size_t part = length < piece ? length : piece;
                size_t bytes = copyAsTextMode(run, text, part);
                size_t written = first ? file.append(run, bytes) : file.continueLine(run, bytes);
                if (written != bytes) {
                    return;
                }
                first = false;
                text += part;
                length -= part;
            }
            if (file.continueLine(kTextEol, kTextEolLength) != kTextEolLength) {
                return;
            }
            free(queue.front());
            queue.pop_front();
            continue;
        }
        const size_t written = file.append(run, used);
        size_t end = 0;
        for (size_t i = 0; i < lines; ++i) {
            const char* text = queue.front();
            end += textModeSize(text, strlen(text)) + kTextEolLength;
            if (end > written) {
                return;
            }
            free(queue.front());
            queue.pop_front();
        }
    }
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
        // A message whose line does not reach the file whole is lost like one whose file
        // cannot be opened; the next one starts on a line of its own.
        AppendFile file;
        if (!file.open(m_fileName, true, AppendFile::End::Unknown)) {
            return;
        }
        m_file = file.stream();
        char line[textModeBound(kMessageBytes - 1) + kTextEolLength];
        size_t length = copyAsTextMode(line, message, strnlen(message, kMessageBytes - 1));
        memcpy(line + length, kTextEol, kTextEolLength);
        file.append(line, length + kTextEolLength);
        file.close();
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
    // fopen_s gives 0 with a stream, and an error code without one.
    if (zbp::fopen_s(&file, name, truncate ? "w" : "a") != 0) {
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
    if (append) {
        AppendFile file;
        if (file.open(name, true, AppendFile::End::Unknown)) {
            appendQueue(file, m_queue);
        }
        return;
    }
    // A new file is written beside the old one and takes its place only when it is whole: on
    // any failure the old file and the queue stay as they were.
    zbp::AtomicFile file;
    if (!file.open(name, "w")) {
        return;
    }
    for (const char* text : m_queue) {
        if (fputs(text, file.stream()) < 0 || fputc('\n', file.stream()) == EOF) {
            file.discard();
            return;
        }
    }
    if (file.commit()) {
        freeAll(m_queue);
    }
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
