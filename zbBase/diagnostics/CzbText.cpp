#include "zbBase/diagnostics/CzbText.h"
#include "zbBase/diagnostics/detail/zbFormat.h"

#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpPath.h"

#include <new>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

namespace {

// The capacity array is the tail of one allocation whose head counts the objects (a ring
// and its copies) that hold the arrays and blocks; the last one to let go frees them.
struct SharedHead {
    std::atomic<int> holders;
};
constexpr size_t kHeadBytes = 16;
static_assert(sizeof(SharedHead) <= kHeadBytes, "head must fit before the capacities");

SharedHead* headOf(int* sizes) {
    return reinterpret_cast<SharedHead*>(reinterpret_cast<char*>(sizes) - kHeadBytes);
}

int* newSharedSizes(int count) {
    char* raw = static_cast<char*>(::operator new(kHeadBytes + sizeof(int) * size_t(count)));
    new (raw) SharedHead{{1}};
    int* sizes = reinterpret_cast<int*>(raw + kHeadBytes);
    memset(sizes, 0, sizeof(int) * size_t(count));
    return sizes;
}

void freeSharedSizes(int* sizes) {
    SharedHead* head = headOf(sizes);
    head->~SharedHead();
    ::operator delete(static_cast<void*>(head));
}

struct tm localNow() {
    __time64_t now = zbp::_time64(nullptr);
    struct tm* local = zbp::_localtime64(&now);
    struct tm result;
    if (local != nullptr) {
        result = *local;
    } else {
        memset(&result, 0, sizeof result);
        result.tm_mday = 1;
    }
    return result;
}

const int kDateTimeBytes = 64;
const int kPathBytes = 260;
const int kFormatBytes = 512;

} // namespace

CzbText::CzbText() : m_buffers(nullptr), m_bufferSizes(nullptr), m_bufferNum(8), m_current(-1) {
    int* sizes = newSharedSizes(m_bufferNum);
    try {
        m_buffers = new char*[m_bufferNum]();
    } catch (...) {
        freeSharedSizes(sizes);
        throw;
    }
    m_bufferSizes = sizes;
}

CzbText::CzbText(const CzbText& other)
    : m_buffers(other.m_buffers), m_bufferSizes(other.m_bufferSizes),
      m_bufferNum(other.m_bufferNum), m_current(other.m_current.load()) {
    if (m_bufferSizes != nullptr) {
        headOf(m_bufferSizes)->holders.fetch_add(1);
    }
}

CzbText::~CzbText() {
    release();
}

CzbText& CzbText::operator=(const CzbText& other) {
    if (this == &other) {
        return *this;
    }
    if (other.m_bufferSizes != nullptr) {
        headOf(other.m_bufferSizes)->holders.fetch_add(1);
    }
    release();
    m_buffers = other.m_buffers;
    m_bufferSizes = other.m_bufferSizes;
    m_bufferNum = other.m_bufferNum;
    m_current.store(other.m_current.load());
    return *this;
}

void CzbText::release() {
    if (m_bufferSizes == nullptr) {
        return;
    }
    if (headOf(m_bufferSizes)->holders.fetch_sub(1) == 1) {
        for (int i = 0; i < m_bufferNum; ++i) {
            delete[] m_buffers[i];
        }
        delete[] m_buffers;
        freeSharedSizes(m_bufferSizes);
    }
    m_buffers = nullptr;
    m_bufferSizes = nullptr;
}

char* CzbText::getBuffer(int index) {
    return m_buffers[index];
}

int CzbText::getBufferNum() {
    return m_bufferNum;
}

int CzbText::getBufferSize(int index) {
    return m_bufferSizes[index];
}

char* CzbText::getBufferNew(int size) {
    const int count = m_bufferNum;
    // The slot is claimed before anything of it is read, so no other caller can be growing
    // the same slot at the same time.
    int current = m_current.load();
    int slot;
    do {
        slot = (current + 1) % count;
        if (slot < 0) {
            slot += count;
        }
    } while (!m_current.compare_exchange_weak(current, slot));
    if (size > m_bufferSizes[slot]) {
        char* grown;
        try {
            grown = new char[size];
        } catch (...) {
            // Give the slot back, unless another caller has moved on from it meanwhile.
            int claimed = slot;
            m_current.compare_exchange_strong(claimed, current);
            throw;
        }
        delete[] m_buffers[slot];
        m_buffers[slot] = grown;
        m_bufferSizes[slot] = size;
    }
    publish();
    return m_buffers[slot];
}

void CzbText::publish() {
    // A release on the cursor after a slot's block or text is written: the caller that the
    // ring later brings back to this slot acquires the cursor, and so sees these writes.
    m_current.fetch_add(0, std::memory_order_acq_rel);
}

void CzbText::setBufferSize(int count) {
    if (count < 1 || count == m_bufferNum) {
        return;
    }
    int* sizes = newSharedSizes(count);
    char** buffers;
    try {
        buffers = new char*[count]();
    } catch (...) {
        freeSharedSizes(sizes);
        throw;
    }
    release();
    m_buffers = buffers;
    m_bufferSizes = sizes;
    m_bufferNum = count;
}

char* CzbText::getFormat(char* format, ...) {
    char* block = getBufferNew(kFormatBytes);
    va_list args;
    va_start(args, format);
    zbBase::detail::formatBounded(block, kFormatBytes, format, args);
    va_end(args);
    publish();
    return block;
}

char* CzbText::getDate() {
    char empty[] = "";
    return getDate(empty, empty, empty);
}

char* CzbText::getDate(char* separator) {
    char empty[] = "";
    return getDate(separator, separator, empty);
}

char* CzbText::getDate(char* first, char* second, char* third) {
    struct tm now = localNow();
    return getStamp("%04d%s%02d%s%02d%s", now.tm_year + 1900, first, now.tm_mon + 1, second,
                    now.tm_mday, third);
}

char* CzbText::getStamp(const char* format, int a, char* first, int b, char* second, int c,
                        char* third) {
    char* block = getBufferNew(kDateTimeBytes);
    // Caller's texts too long for the block are cut.
    (void)!snprintf(block, kDateTimeBytes, format, a, first, b, second, c, third);
    publish();
    return block;
}

char* CzbText::getTime() {
    char empty[] = "";
    return getTime(empty, empty, empty);
}

char* CzbText::getTime(char* separator) {
    char empty[] = "";
    return getTime(separator, separator, empty);
}

char* CzbText::getTime(char* first, char* second, char* third) {
    struct tm now = localNow();
    return getStamp("%02d%s%02d%s%02d%s", now.tm_hour, first, now.tm_min, second, now.tm_sec,
                    third);
}

char* CzbText::getCurrentDirectory() {
    char* block = getBufferNew(kPathBytes);
    block[0] = '\0';
    zbp::GetCurrentDirectoryA(kPathBytes, block);
    block[kPathBytes - 1] = '\0';
    publish();
    return block;
}

char* CzbText::getModuleFileName() {
    char* block = getBufferNew(kPathBytes);
    block[0] = '\0';
    zbp::GetModuleFileNameA(nullptr, block, kPathBytes);
    block[kPathBytes - 1] = '\0';
    publish();
    return block;
}

CzbText* CzbTextExt::getInstance() {
    return &m_zbText;
}
