// Faults on demand for the tests (POSIX only):
//   FileSizeLimit limit(4096);  // files stop growing at 4096 bytes: EFBIG, as on a full disk
//   SmallTmpfs disk(2 << 20);   // a 2 MiB tmpfs in a private mount namespace; ok() false and
//                               // why() says why where the machine does not allow it
//   asUnprivileged(fn)          // fn's result in a child run as user nobody (as the caller
//                               // when it is not root), or -1 if it could not run
#pragma once

#if !defined(_WIN32)

#include <errno.h>
#include <functional>
#include <grp.h>
#include <sched.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Present only with --coverage: __gcov_dump writes every module's counters, __gcov_exit ours.
extern "C" void __gcov_exit(void) __attribute__((weak));
extern "C" void __gcov_dump(void) __attribute__((weak));

namespace zbtest {

class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &m_saved);
        m_oldHandler = signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_saved;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_saved);
        signal(SIGXFSZ, m_oldHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_saved{};
    void (*m_oldHandler)(int) = SIG_DFL;
};

class SmallTmpfs {
public:
    explicit SmallTmpfs(size_t bytes) {
        if (geteuid() != 0) {
            m_why = "a tmpfs needs root";
            return;
        }
        // The mounts of this process stay its own and vanish with it.
        static const int unshared =
            unshare(CLONE_NEWNS) == 0 &&
                    mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
                ? 0
                : errno;
        char pattern[] = "/tmp/zbBase_tmpfs_XXXXXX";
        const std::string options = "size=" + std::to_string(bytes);
        if (unshared != 0) {
            m_why = std::string("no private mount namespace: ") + strerror(unshared);
        } else if (mkdtemp(pattern) == nullptr) {
            m_why = std::string("no folder for the mount: ") + strerror(errno);
        } else if (mount("tmpfs", pattern, "tmpfs", 0, options.c_str()) != 0) {
            m_why = std::string("tmpfs cannot be mounted: ") + strerror(errno);
            rmdir(pattern);
        } else {
            m_path = pattern;
            m_mounted = true;
        }
    }
    ~SmallTmpfs() {
        if (m_mounted) {
            umount2(m_path.c_str(), MNT_DETACH);
            rmdir(m_path.c_str());
        }
    }
    SmallTmpfs(const SmallTmpfs&) = delete;
    SmallTmpfs& operator=(const SmallTmpfs&) = delete;

    bool ok() const { return m_mounted; }
    const std::string& why() const { return m_why; }
    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
    std::string m_why;
    bool m_mounted = false;
};

inline int asUnprivileged(const std::function<int()>& body) {
    pid_t child = fork();
    if (child < 0) {
        return -1;
    }
    if (child == 0) {
        // With coverage the saved user stays root, taken back to write the counters at the end.
        const bool coverage = __gcov_exit != nullptr || __gcov_dump != nullptr;
        if (geteuid() == 0) {
            // nobody: no supplementary groups, no capabilities.
            if (setgroups(0, nullptr) != 0 || setgid(65534) != 0 ||
                setresuid(65534, 65534, coverage ? 0 : 65534) != 0) {
                _exit(125);
            }
        }
        // An escaping exception would run the remaining tests a second time in the child.
        int code = 126;
        try {
            code = body();
        } catch (...) {
        }
        if (coverage) {
            const int root = seteuid(0); // fails, harmlessly, where the child never was root
            (void)root;
            if (__gcov_dump != nullptr) {
                __gcov_dump();
            } else {
                __gcov_exit();
            }
        }
        _exit(code);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

} // namespace zbtest

#endif
