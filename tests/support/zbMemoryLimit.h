// Memory that runs out on demand (POSIX only), in a child process with a limited address space:
//   rc = withAddressSpace(addressSpace() + (64 << 20), [&] { return call() ? 0 : 1; });
//   // the body's result; 125 if an exception left it, 126 if no limit, -1 if the child died
//   MemoryHog hog;  // inside such a child: every allocation fails until the hog goes
// Such tests begin with ZBTEST_SKIP_WHEN_SANITIZED(): a sanitizer's shadow memory does not fit.
// With coverage counters the child writes its counters before it ends.
#pragma once

#if !defined(_WIN32)

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZBTEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZBTEST_SANITIZED 1
#endif
#endif

#if defined(ZBTEST_SANITIZED)
#define ZBTEST_SKIP_WHEN_SANITIZED()                                                               \
    GTEST_SKIP() << "a sanitizer's shadow memory needs the address space"
#else
#define ZBTEST_SKIP_WHEN_SANITIZED()
#endif

#if defined(__GNUC__)
extern "C" void __gcov_init(void*) __attribute__((weak)); // present only with coverage counters
#endif

namespace zbtest {

// Ends a test's child without the exit handlers it shares with the parent, except with coverage
// counters, which the handlers write.
[[noreturn]] inline void endChild(int code) {
#if defined(__GNUC__)
    if (__gcov_init != nullptr) {
        std::exit(code);
    }
#endif
    _exit(code);
}

// Address space that the process holds now.
inline rlim_t addressSpace() {
    unsigned long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

inline int withAddressSpace(rlim_t bytes, const std::function<int()>& body) {
    std::fflush(nullptr); // nothing buffered is written twice
    pid_t child = fork();
    if (child < 0) {
        return -1;
    }
    if (child == 0) {
        rlimit limit{bytes, bytes};
        if (setrlimit(RLIMIT_AS, &limit) != 0) {
            endChild(126);
        }
        int result = 125;
        try {
            result = body();
        } catch (...) {
        }
        endChild(result);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

// Takes every block the allocator still gives, large to small, until it goes.
class MemoryHog {
public:
    MemoryHog() {
        for (size_t size = size_t(1) << 24; size >= 2048; size /= 2) {
            take(size);
        }
        for (size_t size = 2048; size >= sizeof(void*); size -= sizeof(void*)) {
            take(size);
        }
    }
    ~MemoryHog() {
        while (m_last != nullptr) {
            void* next = *static_cast<void**>(m_last);
            std::free(m_last);
            m_last = next;
        }
    }
    MemoryHog(const MemoryHog&) = delete;
    MemoryHog& operator=(const MemoryHog&) = delete;

private:
    void take(size_t size) {
        for (void* block; (block = std::malloc(size)) != nullptr;) {
            *static_cast<void**>(block) = m_last;
            m_last = block;
        }
    }
    void* m_last = nullptr;
};

} // namespace zbtest

#endif
