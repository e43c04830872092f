// Threads and re-entrant locks, under their Windows names, in namespace zbp.
#pragma once

#include "zbBase/platform/zbPlatformTypes.h"

#include <stdint.h>

#if defined(_WIN32)
#include <process.h>
#endif

namespace zbp {

#if defined(_WIN32)
using ::_beginthread;
using ::DeleteCriticalSection;
using ::EnterCriticalSection;
using ::InitializeCriticalSection;
using ::LeaveCriticalSection;
using ::SetCriticalSectionSpinCount;
#else
// Starts a detached thread running start(arg). Returns (uintptr_t)-1 when the thread cannot
// be started; never throws.
uintptr_t _beginthread(void (*start)(void*), unsigned stackSize, void* arg);

void InitializeCriticalSection(CRITICAL_SECTION* section);
// Returns the previous spin count.
DWORD SetCriticalSectionSpinCount(CRITICAL_SECTION* section, DWORD spinCount);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);
#endif

// Holds a critical section for the life of a scope.
class CriticalSectionGuard {
public:
    explicit CriticalSectionGuard(CRITICAL_SECTION* section) : m_section(section) {
        EnterCriticalSection(m_section);
    }
    ~CriticalSectionGuard() { LeaveCriticalSection(m_section); }
    CriticalSectionGuard(const CriticalSectionGuard&) = delete;
    CriticalSectionGuard& operator=(const CriticalSectionGuard&) = delete;

private:
    CRITICAL_SECTION* m_section;
};

} // namespace zbp
