// File descriptors that run out on demand (POSIX only): while a DescriptorLimit(n) is in scope
// the process can open n more files (no other thread may open any). Tests that use it begin
// with ZBTEST_SKIP_WHEN_DESCRIPTORS_ARE_NEEDED(): the address sanitizer needs some of its own.
#pragma once

#if !defined(_WIN32)

#if defined(__SANITIZE_ADDRESS__)
#define ZBTEST_DESCRIPTORS_NEEDED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZBTEST_DESCRIPTORS_NEEDED 1
#endif
#endif

#if defined(ZBTEST_DESCRIPTORS_NEEDED)
#define ZBTEST_SKIP_WHEN_DESCRIPTORS_ARE_NEEDED()                                                  \
    GTEST_SKIP() << "the sanitizer checks memory through descriptors of its own"
#else
#define ZBTEST_SKIP_WHEN_DESCRIPTORS_ARE_NEEDED()
#endif

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace zbtest {

class DescriptorLimit {
public:
    explicit DescriptorLimit(int left) {
        getrlimit(RLIMIT_NOFILE, &m_saved);
        rlimit lowered = m_saved;
        if (lowered.rlim_cur > kLimit) {
            lowered.rlim_cur = kLimit;
        }
        setrlimit(RLIMIT_NOFILE, &lowered);
        m_taken.reserve(kLimit);
        for (int fd; (fd = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
            m_taken.push_back(fd);
        }
        for (int i = 0; i < left && !m_taken.empty(); ++i) {
            close(m_taken.back());
            m_taken.pop_back();
        }
    }
    ~DescriptorLimit() {
        for (int fd : m_taken) {
            close(fd);
        }
        setrlimit(RLIMIT_NOFILE, &m_saved);
    }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    static const rlim_t kLimit = 256;
    rlimit m_saved{};
    std::vector<int> m_taken;
};

} // namespace zbtest

#endif
