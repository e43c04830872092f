#include "zbBase/simulation/CzbSyncObject.h"

#include "zbBase/platform/detail/zbpClock.h"

namespace zbBase {

static_assert(sizeof(std::atomic<bool>) == sizeof(bool) && std::atomic<bool>::is_always_lock_free,
              "the writer flag must be a lock-free atomic of its own width");
static_assert(sizeof(std::atomic<int>) == sizeof(int) && std::atomic<int>::is_always_lock_free,
              "the reader count must be a lock-free atomic of its own width");

// Readers announce themselves by raising the count and then look for a writer; a writer
// claims the flag and then looks for readers. With sequentially consistent operations at
// least one of two racing sides sees the other and steps back, so both never get in.

CzbSyncObject::CzbSyncObject() : m_writeState(false), m_readCount(0) {}

CzbSyncObject::CzbSyncObject(const CzbSyncObject& other)
    : m_writeState(other.m_writeState.load()), m_readCount(other.m_readCount.load()) {}

CzbSyncObject& CzbSyncObject::operator=(const CzbSyncObject& other) {
    m_writeState = other.m_writeState.load();
    m_readCount = other.m_readCount.load();
    return *this;
}

CzbSyncObject::~CzbSyncObject() {}

bool CzbSyncObject::tryEnterRead() {
    if (m_writeState.load()) {
        return false;
    }
    m_readCount.fetch_add(1);
    if (!m_writeState.load()) {
        return true;
    }
    leaveRead();
    return false;
}

bool CzbSyncObject::tryClaimWrite() {
    if (m_readCount.load() != 0) {
        return false;
    }
    bool expected = false;
    if (!m_writeState.compare_exchange_strong(expected, true)) {
        return false;
    }
    if (m_readCount.load() == 0) {
        return true;
    }
    m_writeState = false;
    return false;
}

int CzbSyncObject::leaveRead() {
    int count = m_readCount.load();
    while (count > 0) {
        if (m_readCount.compare_exchange_weak(count, count - 1)) {
            return count - 1;
        }
    }
    return count;
}

bool CzbSyncObject::SetRead(bool wait) {
    if (tryEnterRead()) {
        return true;
    }
    if (!wait) {
        return false;
    }
    do {
        zbp::Sleep(1);
    } while (!tryEnterRead());
    return true;
}

int CzbSyncObject::SetReadRelease() {
    return leaveRead();
}

bool CzbSyncObject::SetWrite(bool wait) {
    if (tryClaimWrite()) {
        return true;
    }
    if (!wait) {
        return false;
    }
    do {
        zbp::Sleep(1);
    } while (!tryClaimWrite());
    return true;
}

void CzbSyncObject::SetWriteRelease() {
    m_writeState = false;
}

int CzbSyncObject::GetReadCount() {
    return m_readCount.load();
}

bool CzbSyncObject::GetWriteState() {
    return m_writeState.load();
}

} // namespace zbBase
