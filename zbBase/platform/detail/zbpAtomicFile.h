// A whole file written beside its target and moved into place only when it is complete.
//
// open() creates a new file in the target's folder ("<name>.~zbXXXXXX", or "~zbXXXXXX.tmp"
// where that would pass the system's limit on a path or on one name); the caller writes it
// through stream() or descriptor(). commit() flushes and closes it, checking both, and then
// renames it over the target in one step, so a reader sees either the old file or the whole
// new one, and a full disk, a failed write or a crash of the program before the rename leaves
// the old file as it was. Anything that failed makes commit() false and removes the new file;
// the destructor discards a file that was never committed.
//
// The bytes are not synced to the device: like the system's own copy and plain stdio they
// are left to the write-back, so whole-file writes cost what plain writes cost. A crash of
// the machine itself soon after a commit may, on file systems that do not order a rename
// after the data it replaces, leave the new name with less than the whole content.
//
// The target keeps the rules of opening it for writing: a folder or a read-only file is
// refused by open(). A symbolic link is followed: the file it points to is replaced and the
// link stays. An existing target's permissions carry over to the new file (and its owner,
// where the process may set it). Hard links to the old file keep the old content.
#pragma once

#include <stdio.h>
#include <string>

namespace zbp {

class AtomicFile {
public:
    AtomicFile() = default;
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    // mode is "w", "wt" or "wb" (text mode writes CR LF on Windows). false, with errno, when
    // the target cannot be written or the new file cannot be made.
    bool open(const char* target, const char* mode);
    FILE* stream() const { return m_file; }
    // The descriptor under stream(): write through one or the other, not both unflushed.
    int descriptor() const;
    // Marks the file as failed (a write the caller checked itself went wrong).
    void fail() { m_failed = true; }
    // True while no write has failed so far.
    bool good() const;
    // Completes the file and puts it in place of the target; false, with the target untouched
    // and the new file removed, when any write, the flush, the close or the rename
    // failed. Either way the object is closed afterwards.
    bool commit();
    // Closes and removes the new file; the target stays as it was.
    void discard();

    // The path of the new file while it is open (the platform's own form), for tests.
    const std::string& temporaryPath() const { return m_temporary; }

private:
    FILE* m_file = nullptr;
    bool m_failed = false;
    std::string m_target;    // the file that will be replaced, symbolic links resolved
    std::string m_temporary; // the new file beside it
};

} // namespace zbp
