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

bool onlyStars(const char* p) {
    while (*p == '*') {
        ++p;
    }
    return *p == '\0';
}

// Upper case straight from the locale, for single matches outside a walk.
struct LocaleUpper {
    unsigned char operator()(char c) const {
        return static_cast<unsigned char>(toupper(static_cast<unsigned char>(c)));
    }
};

template <class Upper> bool matchWith(const char* pattern, const char* name, const Upper& upper) {
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

} // namespace

UpperCase::UpperCase() {
    for (int c = 0; c < 256; ++c) {
        m_map[c] = static_cast<unsigned char>(toupper(c));
    }
}

bool matchWildcard(const char* pattern, const char* name) {
    return matchWith(pattern, name, LocaleUpper());
}

bool matchWildcard(const char* pattern, const char* name, const UpperCase& upper) {
    return matchWith(pattern, name, upper);
}

bool listingBefore(const char* a, size_t aLength, const char* b, size_t bLength,
                   const UpperCase& upper) {
    size_t n = aLength < bLength ? aLength : bLength;
    for (size_t i = 0; i < n; ++i) {
        unsigned char x = upper(a[i]);
        unsigned char y = upper(b[i]);
        if (x != y) {
            return x < y;
        }
    }
    if (aLength != bLength) {
        return aLength < bLength;
    }
    return memcmp(a, b, n) < 0;
}

#if !defined(_WIN32)

namespace {

struct FindItem {
    std::string name;
    EntryRecord record;
};

struct FindHandle {
    std::vector<FindItem> items;
    size_t next;
};

void setRecord(const struct stat& st, bool folder, EntryRecord& record) {
    record.attrib = folder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
    if ((st.st_mode & S_IWUSR) == 0) {
        record.attrib |= FILE_ATTRIBUTE_READONLY;
    }
    record.size = folder || S_ISDIR(st.st_mode) ? 0 : static_cast<long long>(st.st_size);
    record.created = st.st_ctim;
    record.accessed = st.st_atim;
    record.written = st.st_mtim;
}

} // namespace

bool describeEntry(int folderFd, const char* name, const struct stat* own, EntryRecord& record) {
    struct stat st;
    if (own == nullptr) {
        if (fstatat(folderFd, name, &st, AT_SYMLINK_NOFOLLOW) != 0) {
            return false;
        }
        own = &st;
    }
    if (!S_ISLNK(own->st_mode)) {
        setRecord(*own, S_ISDIR(own->st_mode), record);
        return true;
    }
    // A link is a plain entry, never a folder to enter, with its target's record where it has
    // one.
    struct stat target;
    setRecord(fstatat(folderFd, name, &target, 0) == 0 ? target : *own, false, record);
    return true;
}

namespace {

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
    UpperCase upper;
    std::vector<std::string> names;
    bool root = folder == "/";
    if (!root && matchWildcard(mask.c_str(), ".", upper)) {
        names.push_back(".");
    }
    if (!root && matchWildcard(mask.c_str(), "..", upper)) {
        names.push_back("..");
    }
    size_t dots = names.size();
    while (struct dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (strcmp(name, ".") == 0 || strcmp(name, "..") == 0 || strlen(name) >= MAX_PATH) {
            continue;
        }
        if (matchWildcard(mask.c_str(), name, upper)) {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin() + static_cast<std::ptrdiff_t>(dots), names.end(),
              [&upper](const std::string& a, const std::string& b) {
                  return listingBefore(a.data(), a.size(), b.data(), b.size(), upper);
              });
    FindHandle* handle = new FindHandle();
    handle->next = 0;
    handle->items.reserve(names.size());
    int fd = dirfd(dir);
    for (const std::string& name : names) {
        FindItem item;
        item.name = name;
        if (describeEntry(fd, name.c_str(), nullptr, item.record)) {
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
    data->attrib = item.record.attrib;
    data->time_create = static_cast<__time64_t>(item.record.created.tv_sec);
    data->time_access = static_cast<__time64_t>(item.record.accessed.tv_sec);
    data->time_write = static_cast<__time64_t>(item.record.written.tv_sec);
    data->size = static_cast<decltype(data->size)>(item.record.size);
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
    data->dwFileAttributes = item.record.attrib;
    data->ftCreationTime = fileTime(item.record.created);
    data->ftLastAccessTime = fileTime(item.record.accessed);
    data->ftLastWriteTime = fileTime(item.record.written);
    unsigned long long size = static_cast<unsigned long long>(item.record.size);
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
