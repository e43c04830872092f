// Waiting on a logger's saver thread from a test: until it has handled every stored record,
// and until it has stopped (for subclasses whose overrides it calls, before their part goes).
#pragma once

#include <zbBase/diagnostics/CzbLogger.h>

#include <chrono>
#include <thread>

namespace zbtest {

// Waits, without a reset, up to 20 s until the saver has had its pass over every stored
// record; whether it has.
inline bool waitSaved(CzbLogger& logger) {
    for (int i = 0; i < 20000 && logger.m_saveIndex.load() != logger.m_writeIndex.load(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return logger.m_saveIndex.load() == logger.m_writeIndex.load();
}

// Asks a running saver to stop and waits until it has.
inline void stopSaver(CzbLogger& logger) {
    int running = 1;
    if (logger.m_threadState.compare_exchange_strong(running, 2)) {
        while (logger.m_threadState.load() != 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
}

} // namespace zbtest
