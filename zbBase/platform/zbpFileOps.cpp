#include "zbBase/platform/detail/zbpFileOps.h"
#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpPath.h"

#include <atomic>
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <string>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/sendfile.h>
#endif
#endif

namespace zbp {

#if defined(_WIN32)

namespace {

// A name for a new file in the folder of `target`: "<target>.~zbXXXXXXXX", or
// "~zbXXXXXXXX.tmp" beside it where the first would pass 259 characters.
std::string besideName(const std::string& target, unsigned long tag) {
    char suffix[16];
    snprintf(suffix, sizeof suffix, "%08lx", tag & 0xFFFFFFFFul);
    std::string name = target + ".~zb" + suffix;
    if (name.size() > 259) {
        size_t separator = target.find_last_of("\\/");
        name = (separator == std::string::npos ? std::string() : target.substr(0, separator + 1)) +
               "~zb" + suffix + ".tmp";
    }
    return name;
}

} // namespace

BOOL CopyFileA(const char* existingFile, const char* newFile, BOOL failIfExists) {
    if (existingFile == nullptr || newFile == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const DWORD attributes = GetFileAttributesA(newFile);
    if (failIfExists || attributes == INVALID_FILE_ATTRIBUTES ||
        (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return ::CopyFileA(existingFile, newFile, failIfExists); // no old file at stake
    }
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0 || sameFile(existingFile, newFile)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    static std::atomic<unsigned long> counter{0};
    const unsigned long seed = (GetCurrentProcessId() << 16) ^ GetTickCount();
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string beside = besideName(newFile, seed + counter.fetch_add(1) * 2654435761ul);
        if (::CopyFileA(existingFile, beside.c_str(), TRUE)) {
            if (MoveFileExA(beside.c_str(), newFile, MOVEFILE_REPLACE_EXISTING)) {
                return TRUE;
            }
            const DWORD error = GetLastError();
            DeleteFileA(beside.c_str());
            SetLastError(error);
            return FALSE;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) {
            // The name was free: whatever a failed copy left there is this call's own.
            DeleteFileA(beside.c_str());
            SetLastError(error);
            return FALSE;
        }
    }
    SetLastError(ERROR_FILE_EXISTS);
    return FALSE;
}

#else

namespace {

// A native path without closing separators (a lone root stays).
std::string nativeTrimmed(const char* path) {
    std::string native = toNativePath(path);
    while (native.size() > 1 && native.back() == '/') {
        native.pop_back();
    }
    return native;
}

bool writeAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        ssize_t n = write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

bool copyBytes(int in, int out, long long size) {
    long long done = 0;
#if defined(__linux__)
    // In-kernel copy: reflinks or server-side copy where the file system offers them.
    while (done < size) {
        ssize_t n = copy_file_range(in, nullptr, out, nullptr, static_cast<size_t>(size - done), 0);
        if (n <= 0) {
            break;
        }
        done += n;
    }
    while (done < size) {
        off_t offset = static_cast<off_t>(done);
        ssize_t n = sendfile(out, in, &offset, static_cast<size_t>(size - done));
        if (n <= 0) {
            break;
        }
        done += n;
    }
    if (done > 0 && lseek(in, static_cast<off_t>(done), SEEK_SET) < 0) {
        return false;
    }
#endif
    // Plain reads for whatever is left, and for files that grew while being copied.
    char buffer[65536];
    for (;;) {
        ssize_t n = read(in, buffer, sizeof buffer);
        if (n == 0) {
            return true;
        }
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (!writeAll(out, buffer, static_cast<size_t>(n))) {
            return false;
        }
    }
}

// The source's permissions and last write time on the copy, as Windows keeps them; a file
// system that keeps neither still gets the bytes.
void keepRecord(int out, const struct stat& from) {
    struct timespec times[2] = {from.st_atim, from.st_mtim};
    futimens(out, times);
    fchmod(out, from.st_mode & 07777);
}

// Copies the open regular file `in` into a new file made for the copy (O_EXCL): the name was
// free, so a failed copy removes only what it made itself.
BOOL copyToNewFile(int in, const struct stat& from, const std::string& target) {
    int out = open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, from.st_mode & 07777);
    if (out < 0) {
        return FALSE;
    }
    bool ok = copyBytes(in, out, static_cast<long long>(from.st_size));
    int error = errno;
    if (ok) {
        keepRecord(out, from);
    }
    ok = close(out) == 0 && ok;
    if (!ok) {
        unlink(target.c_str());
        errno = error != 0 ? error : EIO;
        return FALSE;
    }
    return TRUE;
}

} // namespace

BOOL CopyFileA(const char* existingFile, const char* newFile, BOOL failIfExists) {
    if (existingFile == nullptr || newFile == nullptr) {
        errno = EINVAL;
        return FALSE;
    }
    std::string source = toNativePath(existingFile);
    std::string target = toNativePath(newFile);
    // O_NONBLOCK: a pipe must not hold the open; it is refused below like any non-file.
    int in = open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (in < 0) {
        return FALSE;
    }
    struct stat from;
    if (fstat(in, &from) != 0 || !S_ISREG(from.st_mode)) {
        close(in);
        errno = EACCES;
        return FALSE;
    }
    struct stat to;
    const bool exists = stat(target.c_str(), &to) == 0;
    if (exists && (failIfExists || (to.st_dev == from.st_dev && to.st_ino == from.st_ino) ||
                   S_ISDIR(to.st_mode))) {
        close(in);
        errno = EEXIST;
        return FALSE;
    }
    BOOL result;
    if (failIfExists) {
        result = copyToNewFile(in, from, target);
    } else {
        // The copy is made beside the target and renamed over it only when it is complete:
        // a failed copy leaves the old file as it was and nothing else behind.
        AtomicFile out;
        bool ok = out.open(newFile, "wb");
        if (ok) {
            const int fd = out.descriptor();
            if (!copyBytes(in, fd, static_cast<long long>(from.st_size))) {
                out.fail();
            } else if (!out.temporaryPath().empty()) {
                keepRecord(fd, from); // not on a device written in place
            }
            ok = out.commit();
        }
        result = ok ? TRUE : FALSE;
    }
    int error = errno;
    close(in);
    errno = error;
    return result;
}

BOOL CreateDirectoryA(const char* path, void*) {
    return _mkdir(path) == 0 ? TRUE : FALSE;
}

int _mkdir(const char* path) {
    if (path == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return mkdir(toNativePath(path).c_str(), 0777);
}

int _rmdir(const char* path) {
    if (path == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return rmdir(toNativePath(path).c_str());
}

int remove(const char* path) {
    if (path == nullptr) {
        errno = EINVAL;
        return -1;
    }
    std::string native = toNativePath(path);
    struct stat st;
    if (lstat(native.c_str(), &st) != 0) {
        return -1;
    }
    if (S_ISDIR(st.st_mode)) {
        errno = EACCES;
        return -1;
    }
    return unlink(native.c_str());
}

int rename(const char* oldPath, const char* newPath) {
    if (oldPath == nullptr || newPath == nullptr) {
        errno = EINVAL;
        return -1;
    }
    std::string from = nativeTrimmed(oldPath);
    std::string to = nativeTrimmed(newPath);
#if defined(__linux__) && defined(RENAME_NOREPLACE)
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) {
        return -1;
    }
#endif
    struct stat st;
    if (lstat(from.c_str(), &st) != 0) {
        return -1;
    }
    if (!S_ISDIR(st.st_mode)) {
        // link() refuses an existing target atomically.
        if (link(from.c_str(), to.c_str()) == 0) {
            unlink(from.c_str());
            return 0;
        }
        if (errno == EEXIST) {
            return -1;
        }
    }
    struct stat existing;
    if (lstat(to.c_str(), &existing) == 0) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(from.c_str(), to.c_str());
}

#endif

namespace {

// The path without its closing separators; a text of separators only stays as it is.
std::string withoutClosingSeparators(const char* path) {
    std::string text = path;
    size_t end = text.find_last_not_of("\\/");
    if (end != std::string::npos) {
        text.resize(end + 1);
    }
    return text;
}

#if defined(_WIN32)
bool nativeSameFile(const std::string& a, const std::string& b, bool whenUnknown) {
    HANDLE ha = CreateFileA(a.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    HANDLE hb = CreateFileA(b.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    bool same = whenUnknown;
    BY_HANDLE_FILE_INFORMATION ia;
    BY_HANDLE_FILE_INFORMATION ib;
    if (ha != INVALID_HANDLE_VALUE && hb != INVALID_HANDLE_VALUE &&
        GetFileInformationByHandle(ha, &ia) && GetFileInformationByHandle(hb, &ib)) {
        same = ia.dwVolumeSerialNumber == ib.dwVolumeSerialNumber &&
               ia.nFileIndexHigh == ib.nFileIndexHigh && ia.nFileIndexLow == ib.nFileIndexLow;
    }
    if (ha != INVALID_HANDLE_VALUE) {
        CloseHandle(ha);
    }
    if (hb != INVALID_HANDLE_VALUE) {
        CloseHandle(hb);
    }
    return same;
}
#else
bool nativeSameFile(const std::string& a, const std::string& b, bool whenUnknown) {
    struct stat sa;
    struct stat sb;
    if (stat(a.c_str(), &sa) != 0 || stat(b.c_str(), &sb) != 0) {
        return whenUnknown;
    }
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}
#endif

} // namespace

#if defined(_WIN32)

bool isFolderLink(const char* path) {
    if (path == nullptr || path[0] == '\0' || strpbrk(path, "*?") != nullptr) {
        return false;
    }
    std::string trimmed = withoutClosingSeparators(path);
    if (trimmed.empty() || trimmed.back() == ':') {
        return false;
    }
    WIN32_FIND_DATAA data;
    HANDLE handle = FindFirstFileA(trimmed.c_str(), &data);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(handle);
    const DWORD wanted = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
    return (data.dwFileAttributes & wanted) == wanted &&
           (data.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            data.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

int removeFolderLink(const char* path) {
    if (!isFolderLink(path)) {
        errno = EINVAL;
        return -1;
    }
    // A folder link goes as a folder does, and only the link goes.
    if (!RemoveDirectoryA(withoutClosingSeparators(path).c_str())) {
        errno = EACCES;
        return -1;
    }
    return 0;
}

#else

bool isFolderLink(const char* path) {
    if (path == nullptr || path[0] == '\0') {
        return false;
    }
    std::string native = toNativePath(withoutClosingSeparators(path).c_str());
    struct stat own;
    if (lstat(native.c_str(), &own) != 0 || !S_ISLNK(own.st_mode)) {
        return false;
    }
    struct stat target;
    return stat(native.c_str(), &target) != 0 || S_ISDIR(target.st_mode);
}

int removeFolderLink(const char* path) {
    if (!isFolderLink(path)) {
        errno = EINVAL;
        return -1;
    }
    return unlink(toNativePath(withoutClosingSeparators(path).c_str()).c_str());
}

#endif

bool sameFile(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) {
        return false;
    }
    return nativeSameFile(toNativePath(a), toNativePath(b), false);
}

bool sameFileContent(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) {
        return false;
    }
    std::string pathA = toNativePath(a);
    std::string pathB = toNativePath(b);
    // When in doubt the two are taken for one file: nothing may be deleted on a guess.
    if (nativeSameFile(pathA, pathB, true)) {
        return false;
    }
    FILE* fa = fopen(pathA.c_str(), "rb");
    if (fa == nullptr) {
        return false;
    }
    FILE* fb = fopen(pathB.c_str(), "rb");
    if (fb == nullptr) {
        fclose(fa);
        return false;
    }
    static const size_t blockSize = 65536;
    std::string blockA(blockSize, '\0');
    std::string blockB(blockSize, '\0');
    bool same = true;
    for (;;) {
        size_t na = fread(&blockA[0], 1, blockSize, fa);
        size_t nb = fread(&blockB[0], 1, blockSize, fb);
        if (na != nb || memcmp(blockA.data(), blockB.data(), na) != 0) {
            same = false;
            break;
        }
        if (na < blockSize) {
            same = ferror(fa) == 0 && ferror(fb) == 0;
            break;
        }
    }
    fclose(fa);
    fclose(fb);
    return same;
}

} // namespace zbp
