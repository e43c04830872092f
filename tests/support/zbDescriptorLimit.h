// File descriptors that run out on demand (POSIX only):
//
//   zbtest::DescriptorLimit limit(1);   // from here on the process can open one more file;
//                                       // everything else is as it was once limit goes
//
// The other descriptors up to a lowered limit are taken by copies of /dev/null. No other thread
// of the process may open files meanwhile.
#pragma once

#if !defined(_WIN32)

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
