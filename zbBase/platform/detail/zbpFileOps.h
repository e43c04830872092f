// File and folder operations, under their Windows names, in namespace zbp.
//
// Every path may use either separator. The POSIX side keeps the Windows rules the library
// relies on: remove deletes files only, rename never replaces an existing target, CopyFileA
// copies regular files only and never onto the source itself.
#pragma once

#include "zbBase/platform/detail/zbpSystem.h"

#include <stdio.h>

#if defined(_WIN32)
#include <direct.h>
#endif

namespace zbp {

#if defined(_WIN32)
using ::_mkdir;
using ::_rmdir;
using ::CreateDirectoryA;
using ::GetFullPathNameA;
using ::remove;
using ::rename;
// The system's copy, except that an existing target is never written in place: the system's
// copy empties the target before it writes, so a copy that failed would cost the old file.
// Over an existing file the copy goes to a new file beside it (the system's copy, which keeps
// times and attributes) and is moved over the target when complete. A read-only target and
// the source itself are refused, as the system refuses them (ERROR_ACCESS_DENIED).
BOOL CopyFileA(const char* existingFile, const char* newFile, BOOL failIfExists);
#else
// Copies a regular file, with its permissions and its last write time; the kernel copies the
// bytes where it can. With failIfExists FALSE an existing target is replaced: the copy is made
// beside it and renamed over it when complete (zbp::AtomicFile), so a failed copy leaves the old
// file and nothing else; a read-only target, or a folder where no new file can be made, is
// refused. With failIfExists TRUE the new file is removed again when the copy fails. A target
// that is the source itself is refused.
BOOL CopyFileA(const char* existingFile, const char* newFile, BOOL failIfExists);
// Creates one folder (the security argument is ignored). FALSE if it exists or its parent
// is missing.
BOOL CreateDirectoryA(const char* path, void* security);
// Creates one folder: 0, or -1 with errno.
int _mkdir(const char* path);
// Removes one empty folder: 0, or -1 with errno.
int _rmdir(const char* path);
// Deletes a file (a symbolic link itself, not its target): 0, or -1 with errno; a folder is
// refused with EACCES.
int remove(const char* path);
// Renames a file or folder, on Linux atomically without replacing (renameat2 with
// RENAME_NOREPLACE); where the file system lacks that, a file is linked and unlinked, and a
// folder is renamed after a check that the target does not exist. 0, or -1 with errno
// (EEXIST when the target exists).
int rename(const char* oldPath, const char* newPath);
#endif

// True when `path`, closing separators left aside, is a symbolic link (on Windows also a
// junction) that points to a folder or to nothing: a link a tree operation must not follow.
bool isFolderLink(const char* path);
// Removes such a link itself, never what it points to: 0, or -1 with errno.
int removeFolderLink(const char* path);

// True when both paths name one existing file (the same path, or a hard link).
bool sameFile(const char* a, const char* b);
// True when both paths name distinct regular files of the same size and the same bytes.
// Two names of one file (the same path, or a hard link) give false.
bool sameFileContent(const char* a, const char* b);

} // namespace zbp
