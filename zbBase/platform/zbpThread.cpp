#include "zbBase/platform/detail/zbpThread.h"

#if defined(_WIN32)

#include <atomic>
#include <string.h>

namespace zbp {

namespace {

typedef BOOLEAN(WINAPI* ShutdownQuery)();

// Found once; a constant-initialised atomic needs no guard of the runtime, which may be the
// last thing to count on while the process ends.
std::atomic<ShutdownQuery> s_shutdownQuery{nullptr};

} // namespace

bool processExiting() {
    // ntdll's own flag: set when an ending process begins to detach its DLLs, after the
    // system has ended the other threads. Windows has had it since XP.
    ShutdownQuery query = s_shutdownQuery.load(std::memory_order_relaxed);
    if (query == nullptr) {
        HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
        FARPROC address =
            ntdll != nullptr ? GetProcAddress(ntdll, "RtlDllShutdownInProgress") : nullptr;
        static_assert(sizeof query == sizeof address, "function pointers of one size");
        memcpy(&query, &address, sizeof query);
        s_shutdownQuery.store(query, std::memory_order_relaxed);
    }
    return query != nullptr && query() != 0;
}

} // namespace zbp

#else

#include <thread>

namespace zbp {

namespace {
// A type of this file's own keeps std::thread's instantiations out of the exported names.
struct ThreadStart {
    void (*start)(void*);
    void* arg;
    void operator()() const { start(arg); }
};
} // namespace

uintptr_t _beginthread(void (*start)(void*), unsigned, void* arg) {
    try {
        std::thread(ThreadStart{start, arg}).detach();
        return 1;
    } catch (...) {
        return static_cast<uintptr_t>(-1);
    }
}

void InitializeCriticalSection(CRITICAL_SECTION* section) {
    pthread_mutexattr_t attr;
    pthread_mutexattr_init(&attr);
    pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&section->Mutex, &attr);
    pthread_mutexattr_destroy(&attr);
    section->SpinCount = 0;
}

DWORD SetCriticalSectionSpinCount(CRITICAL_SECTION* section, DWORD spinCount) {
    DWORD previous = section->SpinCount;
    section->SpinCount = spinCount;
    return previous;
}

void EnterCriticalSection(CRITICAL_SECTION* section) {
    // A short wait is cheaper spent spinning than in the kernel; past the spin count block.
    for (DWORD i = 0; i < section->SpinCount; ++i) {
        if (pthread_mutex_trylock(&section->Mutex) == 0) {
            return;
        }
    }
    pthread_mutex_lock(&section->Mutex);
}

void LeaveCriticalSection(CRITICAL_SECTION* section) {
    pthread_mutex_unlock(&section->Mutex);
}

void DeleteCriticalSection(CRITICAL_SECTION* section) {
    pthread_mutex_destroy(&section->Mutex);
}

bool processExiting() {
    return false;
}

} // namespace zbp

#endif
