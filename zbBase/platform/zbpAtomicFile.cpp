#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpPath.h"

#include <atomic>
#include <chrono>
#include <errno.h>
#include <string.h>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zbp {

namespace {

#if defined(_WIN32)
const char kSeparators[] = "\\/";
const size_t kMaxPath = 259;
#else
const char kSeparators[] = "/";
const size_t kMaxPath = PATH_MAX - 1;
#endif
const size_t kMaxName = 255;

// Six characters that differ between calls, threads and processes.
std::string uniqueSuffix() {
    static std::atomic<unsigned long long> counter{0};
    unsigned long long n = counter.fetch_add(1) * 0x9E3779B97F4A7C15ull;
#if defined(_WIN32)
    n ^= static_cast<unsigned long long>(_getpid()) << 20;
#else
    n ^= static_cast<unsigned long long>(getpid()) << 20;
#endif
    n ^= static_cast<unsigned long long>(
        std::chrono::steady_clock::now().time_since_epoch().count());
    static const char digits[] = "0123456789abcdefghijklmnopqrstuv";
    std::string text;
    for (int i = 0; i < 6; ++i) {
        text += digits[n % 32];
        n /= 32;
    }
    return text;
}

// A fresh name for the new file beside target: "<target>.~zbXXXXXX", or "<folder>~zbXXXXXX.tmp"
// where the long form would pass the system's limits on a path or on one name in it; empty,
// with ENAMETOOLONG, where neither fits.
std::string temporaryName(const std::string& target, size_t maxPath, size_t maxName) {
    const size_t separator = target.find_last_of(kSeparators);
    const size_t folderLength = separator == std::string::npos ? 0 : separator + 1;
    std::string candidate = target + ".~zb" + uniqueSuffix();
    if (candidate.size() <= maxPath && candidate.size() - folderLength <= maxName) {
        return candidate;
    }
    candidate = target.substr(0, folderLength) + "~zb" + uniqueSuffix() + ".tmp";
    if (candidate.size() <= maxPath) {
        return candidate;
    }
    errno = ENAMETOOLONG;
    return std::string();
}

#if defined(_WIN32)
bool isTextMode(const char* mode) {
    return strchr(mode, 'b') == nullptr;
}
#else
// The file a path finally names: symbolic links are followed, also to a file not there yet.
std::string resolveLinks(std::string path) {
    for (int depth = 0; depth < 40; ++depth) {
        struct stat info;
        if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) {
            return path;
        }
        char target[PATH_MAX];
        ssize_t n = readlink(path.c_str(), target, sizeof target - 1);
        if (n < 0) {
            return path;
        }
        target[n] = '\0';
        if (target[0] == '/') {
            path = target;
        } else {
            size_t slash = path.rfind('/');
            path =
                (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + target;
        }
    }
    errno = ELOOP;
    return std::string();
}
#endif

} // namespace

AtomicFile::~AtomicFile() {
    discard();
}

int AtomicFile::descriptor() const {
#if defined(_WIN32)
    return m_file != nullptr ? _fileno(m_file) : -1;
#else
    return m_file != nullptr ? fileno(m_file) : -1;
#endif
}

bool AtomicFile::good() const {
    return m_file != nullptr && !m_failed && ferror(m_file) == 0;
}

#if defined(_WIN32)

bool AtomicFile::open(const char* target, const char* mode) {
    discard();
    if (target == nullptr || mode == nullptr || target[0] == '\0') {
        errno = EINVAL;
        return false;
    }
    m_target = target;
    DWORD attributes = GetFileAttributesA(target);
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
        errno = EACCES;
        return false;
    }
    const bool text = isTextMode(mode);
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string candidate = temporaryName(m_target, kMaxPath, kMaxName);
        if (candidate.empty()) {
            return false;
        }
        int fd = _open(candidate.c_str(),
                       _O_CREAT | _O_EXCL | _O_WRONLY | _O_NOINHERIT | (text ? _O_TEXT : _O_BINARY),
                       _S_IREAD | _S_IWRITE);
        if (fd < 0) {
            if (errno == EEXIST) {
                continue;
            }
            return false;
        }
        m_file = _fdopen(fd, text ? "w" : "wb");
        if (m_file == nullptr) {
            int error = errno;
            _close(fd);
            ::remove(candidate.c_str());
            errno = error;
            return false;
        }
        m_temporary = candidate;
        m_failed = false;
        return true;
    }
    errno = EEXIST;
    return false;
}

bool AtomicFile::commit() {
    if (m_file == nullptr) {
        return false;
    }
    bool ok = !m_failed && fflush(m_file) == 0 && ferror(m_file) == 0;
    ok = fclose(m_file) == 0 && ok;
    m_file = nullptr;
    if (ok) {
        ok = MoveFileExA(m_temporary.c_str(), m_target.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
        if (!ok) {
            errno = EACCES;
        }
    }
    if (!ok) {
        int error = errno;
        ::remove(m_temporary.c_str());
        errno = error != 0 ? error : EIO;
    }
    m_temporary.clear();
    return ok;
}

void AtomicFile::discard() {
    if (m_file != nullptr) {
        fclose(m_file);
        m_file = nullptr;
        ::remove(m_temporary.c_str());
    }
    m_temporary.clear();
}

#else

bool AtomicFile::open(const char* target, const char* mode) {
    discard();
    if (target == nullptr || mode == nullptr || target[0] == '\0') {
        errno = EINVAL;
        return false;
    }
    m_target = resolveLinks(toNativePath(target));
    if (m_target.empty()) {
        return false;
    }
    struct stat existing;
    bool exists = stat(m_target.c_str(), &existing) == 0;
    if (exists) {
        if (S_ISDIR(existing.st_mode)) {
            errno = EACCES;
            return false;
        }
        if (faccessat(AT_FDCWD, m_target.c_str(), W_OK, AT_EACCESS) != 0) {
            return false;
        }
        if (!S_ISREG(existing.st_mode)) {
            // A device or a pipe is written in place: renaming over it would replace the node.
            m_file = ::fopen(m_target.c_str(), "wb");
            m_failed = false;
            return m_file != nullptr;
        }
    }
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string candidate = temporaryName(m_target, kMaxPath, kMaxName);
        if (candidate.empty()) {
            return false;
        }
        int fd = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0) {
            if (errno == EEXIST) {
                continue;
            }
            return false;
        }
        if (exists) {
            // The replacement keeps what the old file had; an owner the process may not give
            // stays the process's.
            fchmod(fd, existing.st_mode & 07777);
            if (existing.st_uid != geteuid() || existing.st_gid != getegid()) {
                if (fchown(fd, existing.st_uid, existing.st_gid) == 0) {
                    fchmod(fd, existing.st_mode & 07777);
                }
            }
        }
        m_file = fdopen(fd, "wb");
        if (m_file == nullptr) {
            int error = errno;
            close(fd);
            unlink(candidate.c_str());
            errno = error;
            return false;
        }
        m_temporary = candidate;
        m_failed = false;
        return true;
    }
    errno = EEXIST;
    return false;
}

bool AtomicFile::commit() {
    if (m_file == nullptr) {
        return false;
    }
    const bool inPlace = m_temporary.empty();
    bool ok = !m_failed && fflush(m_file) == 0 && ferror(m_file) == 0;
    int error = errno;
    ok = fclose(m_file) == 0 && ok;
    m_file = nullptr;
    if (ok && !inPlace) {
        ok = ::rename(m_temporary.c_str(), m_target.c_str()) == 0;
    }
    if (!ok) {
        error = errno != 0 ? errno : (error != 0 ? error : EIO);
        if (!inPlace) {
            unlink(m_temporary.c_str());
        }
        errno = error;
    }
    m_temporary.clear();
    return ok;
}

void AtomicFile::discard() {
    if (m_file != nullptr) {
        fclose(m_file);
        m_file = nullptr;
        if (!m_temporary.empty()) {
            unlink(m_temporary.c_str());
        }
    }
    m_temporary.clear();
}

#endif

} // namespace zbp
