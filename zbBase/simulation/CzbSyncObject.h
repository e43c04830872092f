// CzbSyncObject: a polling reader-writer gate for data that a host shares between threads.
//
// Any number of readers, or one writer, hold the gate. It uses no operating-system object: a
// waiter sleeps a millisecond, then looks again, with no time-out. Each test-and-change is
// one atomic step, so two writers never both hold the gate and no reader enters while a
// writer holds it. While two claims race, one of them may briefly see the other and step
// back: a try without waiting can then fail although the gate is free a moment later.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <atomic>

namespace zbBase {

class ZB_API CzbSyncObject {
public:
    CzbSyncObject();
    CzbSyncObject(const CzbSyncObject& other);
    CzbSyncObject& operator=(const CzbSyncObject& other);
    virtual ~CzbSyncObject();

    // A reader enters. With wait false it gives false, and does nothing, while a writer holds
    // the gate; with wait true it polls until no writer holds it. True once inside.
    bool SetRead(bool wait);
    // A reader leaves. Returns the count after that; a surplus release gives 0 and the count
    // never goes negative.
    int SetReadRelease();
    // A writer claims the gate when no writer and no reader hold it. With wait false it gives
    // false at once if it cannot; with wait true it polls until it can. True once claimed.
    bool SetWrite(bool wait);
    // Clears the writer's claim, whoever made it.
    void SetWriteRelease();
    int GetReadCount();
    bool GetWriteState();

    std::atomic<bool> m_writeState; // a writer holds the gate
    std::atomic<int> m_readCount;   // readers inside

private:
    bool tryEnterRead();
    bool tryClaimWrite();
    // Lowers the count by one if it is above 0; returns the count after that.
    int leaveRead();
};

} // namespace zbBase
