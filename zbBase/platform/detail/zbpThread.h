// Threads and re-entrant locks, under their Windows names, in namespace zbp.
#pragma once

#include "zbBase/platform/detail/zbpSystem.h"

#include <stdint.h>

#if defined(_WIN32)
#include <process.h>
#endif

namespace zbp {

#if defined(_WIN32)
using ::_beginthread;

// The system's record in the storage that the public headers give it.
inline CRITICAL_SECTION* systemLock(zbBase::zbCriticalSection* section) {
    return reinterpret_cast<CRITICAL_SECTION*>(section);
}
inline void InitializeCriticalSection(zbBase::zbCriticalSection* section) {
    ::InitializeCriticalSection(systemLock(section));
}
inline DWORD SetCriticalSectionSpinCount(zbBase::zbCriticalSection* section, DWORD spinCount) {
    return ::SetCriticalSectionSpinCount(systemLock(section), spinCount);
}
inline void EnterCriticalSection(zbBase::zbCriticalSection* section) {
    ::EnterCriticalSection(systemLock(section));
}
inline void LeaveCriticalSection(zbBase::zbCriticalSection* section) {
    ::LeaveCriticalSection(systemLock(section));
}
inline void DeleteCriticalSection(zbBase::zbCriticalSection* section) {
    ::DeleteCriticalSection(systemLock(section));
}
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

// True once the process has begun to end on Windows, while the system detaches the DLLs
// (ExitProcess, or a return from main): the system has then ended every other thread where
// it stood, so a wait for a thread of ours to say goodbye would never end. Static objects
// of a host's DLL are destroyed at that moment. Always false elsewhere, where threads run on
// until exit has destroyed the static objects.
bool processExiting();

// Holds a critical section for the life of a scope.
class CriticalSectionGuard {
public:
    explicit CriticalSectionGuard(zbBase::zbCriticalSection* section) : m_section(section) {
        EnterCriticalSection(m_section);
    }
    ~CriticalSectionGuard() { LeaveCriticalSection(m_section); }
    CriticalSectionGuard(const CriticalSectionGuard&) = delete;
    CriticalSectionGuard& operator=(const CriticalSectionGuard&) = delete;

private:
    zbBase::zbCriticalSection* m_section;
};

} // namespace zbp
