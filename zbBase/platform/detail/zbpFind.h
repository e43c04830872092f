// Wildcard listing of one folder and splitting of path text, under their Windows names, in
// namespace zbp.
//
// Every pattern may use either separator. The last component is the pattern; it is matched
// against the entries of the folder before it as Windows matches: '*' is any run of
// characters, '?' one character, letters match in either case, and a pattern ending in ".*"
// also matches names without a dot (so "*.*" matches every name). "." and ".." come first
// when they match, then the other entries in the order of the names compared in upper case.
// Folders carry the attribute 0x10 and other entries 0x20 (0x01 added when the owner may not
// write); a symbolic link is listed as a plain entry with the size and times of its target (size
// 0 for a folder, the link's own record when the target is missing), so that a walk through the
// listings never leaves the tree and never loops.
#pragma once

#include "zbBase/platform/detail/zbpSystem.h"

#include <stddef.h>
#include <stdint.h>

#if !defined(_WIN32)
#include <sys/stat.h>
#include <time.h>
#endif

#if defined(_WIN32)
#include <stdlib.h>
#include <string.h>
#endif

namespace zbp {

#if defined(_WIN32)
using ::_findclose;
using ::_findfirst64;
using ::_findfirst64i32;
using ::_findnext64;
using ::_findnext64i32;
using ::FindClose;
using ::FindFirstFileA;
using ::FindNextFileA;
using ::HANDLE;
using ::WIN32_FIND_DATAA;

// The runtime's split, given only what it can take: a null path, or one with a part longer
// than its buffer (_MAX_DIR and so on, terminator included), which would make the Visual C++
// runtime end the process, gives four empty parts instead.
inline void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext) {
    size_t length = path != nullptr ? strlen(path) : 0;
    size_t dirStart = length >= 2 && path[1] == ':' ? 2 : 0;
    size_t nameStart = dirStart;
    for (size_t i = dirStart; i < length; ++i) {
        if (path[i] == '\\' || path[i] == '/') {
            nameStart = i + 1;
        }
    }
    size_t dot = length;
    for (size_t i = length; i > nameStart; --i) {
        if (path[i - 1] == '.') {
            dot = i - 1;
            break;
        }
    }
    if (path != nullptr && nameStart - dirStart < _MAX_DIR && dot - nameStart < _MAX_FNAME &&
        length - dot < _MAX_EXT) {
        ::_splitpath(path, drive, dir, fname, ext);
        return;
    }
    char* parts[] = {drive, dir, fname, ext};
    for (char* part : parts) {
        if (part != nullptr) {
            part[0] = '\0';
        }
    }
}
#else
typedef void* HANDLE;
#define INVALID_HANDLE_VALUE ((zbp::HANDLE)(intptr_t)-1)
#define FILE_ATTRIBUTE_READONLY 0x01
#define FILE_ATTRIBUTE_DIRECTORY 0x10
#define FILE_ATTRIBUTE_ARCHIVE 0x20
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    char cFileName[MAX_PATH];
    char cAlternateFileName[14];
};

// Starts a listing: fills the first entry and returns a handle for _findnext64, or -1 with
// errno ENOENT when the folder is missing or nothing matches (another errno when the folder
// cannot be read). Times are seconds since the epoch; the change time stands for the
// creation time.
intptr_t _findfirst64(const char* pattern, struct __finddata64_t* data);
// Fills the next entry and returns 0, or returns -1 with errno ENOENT at the end.
int _findnext64(intptr_t handle, struct __finddata64_t* data);
// Ends a listing of either family; 0, or -1 with errno EINVAL for a bad handle.
int _findclose(intptr_t handle);
// The same listing with the size cut to 32 bits.
intptr_t _findfirst64i32(const char* pattern, struct _finddata64i32_t* data);
int _findnext64i32(intptr_t handle, struct _finddata64i32_t* data);

// The same listing with Windows file times (100 ns since 1601); INVALID_HANDLE_VALUE when
// nothing matches.
HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data);
BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data);
BOOL FindClose(HANDLE handle);

// Cuts a path into drive, directory (with its closing separator), file name and extension
// (with its dot); any of the four may be null. There are no drives on POSIX: the drive is
// always empty and "C:" is part of the directory or the name. Parts longer than their buffer
// (_MAX_DIR and so on, terminator included) are cut; callers that must not cut check the
// lengths first.
void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext);
#endif

// Upper case of every byte under the C library's current locale, taken once so that a long
// walk need not ask the locale for every character.
class UpperCase {
public:
    UpperCase();
    unsigned char operator()(char c) const { return m_map[static_cast<unsigned char>(c)]; }

private:
    unsigned char m_map[256];
};

// Windows matching of one name against a pattern of '*' and '?' (see above).
bool matchWildcard(const char* pattern, const char* name);
bool matchWildcard(const char* pattern, const char* name, const UpperCase& upper);

// The listing order of the POSIX side: names compared in upper case, a name before the longer
// names it begins, ties by their bytes.
bool listingBefore(const char* a, size_t aLength, const char* b, size_t bLength,
                   const UpperCase& upper);

#if !defined(_WIN32)
// What a listing tells of one entry, before the name and the time width of its record.
struct EntryRecord {
    unsigned attrib;
    struct timespec created;  // the status change time
    struct timespec accessed; // last access
    struct timespec written;  // last write
    long long size;
};

// Describes the entry `name` of the open folder `folderFd` as a listing gives it (attributes,
// links with the record of their target). `own` is the entry's own status (not following a
// link) when the caller has it already, else null. false when the entry cannot be read.
bool describeEntry(int folderFd, const char* name, const struct stat* own, EntryRecord& record);
#endif

} // namespace zbp
