#include "zbBase/platform/detail/zbpFind.h"

#include <ctype.h>
#include <string.h>

#if !defined(_WIN32)
#include "zbBase/platform/detail/zbpPath.h"

#include <algorithm>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <vector>
#endif

namespace zbp {

namespace {

unsigned char upper(char c) {
    return static_cast<unsigned char>(toupper(static_cast<unsigned char>(c)));
}

bool onlyStars(const char* p) {
    while (*p == '*') {
        ++p;
    }
    return *p == '\0';
}

} // namespace

bool matchWildcard(const char* pattern, const char* name) {
    if (pattern == nullptr || name == nullptr || *pattern == '\0') {
        return false;
    }
    // Greedy match with one back-tracking point: the last star seen. Quadratic at worst.
    const char* p = pattern;
    const char* n = name;
    const char* starP = nullptr;
    const char* starN = nullptr;
    for (;;) {
        if (*n == '\0') {
            // The rest of the pattern may still match nothing: stars, a closing ".*" or a
            // closing dot.
            while (*p == '*') {
                ++p;
            }
            if (*p == '\0' || (p[0] == '.' && onlyStars(p + 1))) {
                return true;
            }
        } else if (*p == '*') {
            starP = ++p;
            starN = n;
            continue;
        } else if (*p != '\0' && (*p == '?' || upper(*p) == upper(*n))) {
            ++p;
            ++n;
            continue;
        }
        if (starP == nullptr || *starN == '\0') {
            return false;
        }
        p = starP;
        n = ++starN;
    }
}

#if !defined(_WIN32)

namespace {

struct FindItem {
    std::string name;
    unsigned attrib;
    struct timespec created;
    struct timespec accessed;
    struct timespec written;
    long long size;
};

struct FindHandle {
    std::vector<FindItem> items;
    size_t next;
};

// Order of NTFS listings: names compared in upper case, ties by their bytes.
bool listingBefore(const std::string& a, const std::string& b) {
    size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        unsigned char x = upper(a[i]);
        unsigned char y = upper(b[i]);
        if (x != y) {
            return x < y;
        }
    }
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    return a < b;
}

bool describe(int dirFd, const std::string& name, FindItem& item) {
    struct stat st;
    if (fstatat(dirFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    item.name = name;
    if (S_ISLNK(st.st_mode)) {
        struct stat target;
        if (fstatat(dirFd, name.c_str(), &target, 0) == 0 && !S_ISDIR(target.st_mode)) {
            st = target;
        }
        item.attrib = FILE_ATTRIBUTE_ARCHIVE;
        item.size = S_ISDIR(st.st_mode) ? 0 : static_cast<long long>(st.st_size);
    } else if (S_ISDIR(st.st_mode)) {
        item.attrib = FILE_ATTRIBUTE_DIRECTORY;
        item.size = 0;
    } else {
        item.attrib = FILE_ATTRIBUTE_ARCHIVE;
        item.size = static_cast<long long>(st.st_size);
    }
    if ((st.st_mode & S_IWUSR) == 0) {
        item.attrib |= FILE_ATTRIBUTE_READONLY;
    }
    item.created = st.st_ctim;
    item.accessed = st.st_atim;
    item.written = st.st_mtim;
    return true;
}

// Lists the entries of the folder of `pattern` that match its last component. Null with
// errno set when there is none.
FindHandle* openListing(const char* pattern) {
    if (pattern == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    std::string native = toNativePath(pattern);
    size_t cut = native.rfind('/');
    std::string folder;
    std::string mask;
    if (cut == std::string::npos) {
        folder = ".";
        mask = native;
    } else {
        folder = cut == 0 ? std::string("/") : native.substr(0, cut);
        mask = native.substr(cut + 1);
    }
    if (mask.empty()) {
        errno = ENOENT;
        return nullptr;
    }
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) {
        if (errno == ENOTDIR) {
            errno = ENOENT;
        }
        return nullptr;
    }
    std::vector<std::string> names;
    bool root = folder == "/";
    if (!root && matchWildcard(mask.c_str(), ".")) {
        names.push_back(".");
    }
    if (!root && matchWildcard(mask.c_str(), "..")) {
        names.push_back("..");
    }
    size_t dots = names.size();
    while (struct dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (strcmp(name, ".") == 0 || strcmp(name, "..") == 0 || strlen(name) >= MAX_PATH) {
            continue;
        }
        if (matchWildcard(mask.c_str(), name)) {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin() + static_cast<std::ptrdiff_t>(dots), names.end(), listingBefore);
    FindHandle* handle = new FindHandle();
    handle->next = 0;
    handle->items.reserve(names.size());
    int fd = dirfd(dir);
    for (const std::string& name : names) {
        FindItem item;
        if (describe(fd, name, item)) {
            handle->items.push_back(std::move(item));
        }
    }
    closedir(dir);
    if (handle->items.empty()) {
        delete handle;
        errno = ENOENT;
        return nullptr;
    }
    return handle;
}

const FindItem* nextItem(intptr_t value) {
    if (value == -1 || value == 0) {
        errno = EINVAL;
        return nullptr;
    }
    FindHandle* handle = reinterpret_cast<FindHandle*>(value);
    if (handle->next >= handle->items.size()) {
        errno = ENOENT;
        return nullptr;
    }
    return &handle->items[handle->next++];
}

template <class Data> void fill(const FindItem& item, Data* data) {
    data->attrib = item.attrib;
    data->time_create = static_cast<__time64_t>(item.created.tv_sec);
    data->time_access = static_cast<__time64_t>(item.accessed.tv_sec);
    data->time_write = static_cast<__time64_t>(item.written.tv_sec);
    data->size = static_cast<decltype(data->size)>(item.size);
    memcpy(data->name, item.name.c_str(), item.name.size() + 1);
}

FILETIME fileTime(const struct timespec& t) {
    // 100 ns steps since 1601-01-01.
    unsigned long long ticks =
        (static_cast<unsigned long long>(t.tv_sec) + 11644473600ULL) * 10000000ULL +
        static_cast<unsigned long long>(t.tv_nsec) / 100ULL;
    FILETIME ft;
    ft.dwLowDateTime = static_cast<DWORD>(ticks & 0xFFFFFFFFULL);
    ft.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    return ft;
}

void fillWin32(const FindItem& item, WIN32_FIND_DATAA* data) {
    memset(data, 0, sizeof *data);
    data->dwFileAttributes = item.attrib;
    data->ftCreationTime = fileTime(item.created);
    data->ftLastAccessTime = fileTime(item.accessed);
    data->ftLastWriteTime = fileTime(item.written);
    unsigned long long size = static_cast<unsigned long long>(item.size);
    data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFFULL);
    memcpy(data->cFileName, item.name.c_str(), item.name.size() + 1);
}

template <class Data> intptr_t findFirst(const char* pattern, Data* data) {
    FindHandle* handle = openListing(pattern);
    if (handle == nullptr) {
        return -1;
    }
    intptr_t value = reinterpret_cast<intptr_t>(handle);
    fill(*nextItem(value), data);
    return value;
}

template <class Data> int findNext(intptr_t handle, Data* data) {
    const FindItem* item = nextItem(handle);
    if (item == nullptr) {
        return -1;
    }
    fill(*item, data);
    return 0;
}

} // namespace

intptr_t _findfirst64(const char* pattern, struct __finddata64_t* data) {
    return findFirst(pattern, data);
}

int _findnext64(intptr_t handle, struct __finddata64_t* data) {
    return findNext(handle, data);
}

intptr_t _findfirst64i32(const char* pattern, struct _finddata64i32_t* data) {
    return findFirst(pattern, data);
}

int _findnext64i32(intptr_t handle, struct _finddata64i32_t* data) {
    return findNext(handle, data);
}

int _findclose(intptr_t handle) {
    if (handle == -1 || handle == 0) {
        errno = EINVAL;
        return -1;
    }
    delete reinterpret_cast<FindHandle*>(handle);
    return 0;
}

HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data) {
    FindHandle* handle = openListing(pattern);
    if (handle == nullptr) {
        return INVALID_HANDLE_VALUE;
    }
    intptr_t value = reinterpret_cast<intptr_t>(handle);
    fillWin32(*nextItem(value), data);
    return reinterpret_cast<HANDLE>(value);
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data) {
    const FindItem* item = nextItem(reinterpret_cast<intptr_t>(handle));
    if (item == nullptr) {
        return FALSE;
    }
    fillWin32(*item, data);
    return TRUE;
}

BOOL FindClose(HANDLE handle) {
    return _findclose(reinterpret_cast<intptr_t>(handle)) == 0 ? TRUE : FALSE;
}

namespace {

void copyPart(char* out, size_t size, const char* begin, const char* end) {
    if (out == nullptr) {
        return;
    }
    size_t n = static_cast<size_t>(end - begin);
    if (n > size - 1) {
        n = size - 1;
    }
    memcpy(out, begin, n);
    out[n] = '\0';
}

} // namespace

void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext) {
    if (path == nullptr) {
        path = "";
    }
    const char* end = path + strlen(path);
    const char* nameStart = path;
    for (const char* c = path; c < end; ++c) {
        if (*c == '/' || *c == '\\') {
            nameStart = c + 1;
        }
    }
    const char* dot = end;
    for (const char* c = end; c > nameStart;) {
        --c;
        if (*c == '.') {
            dot = c;
            break;
        }
    }
    copyPart(drive, _MAX_DRIVE, path, path);
    copyPart(dir, _MAX_DIR, path, nameStart);
    copyPart(fname, _MAX_FNAME, nameStart, dot);
    copyPart(ext, _MAX_EXT, dot, end);
}

#endif

} // namespace zbp
