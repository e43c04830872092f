// zbPathFileUtil: static file operations on plain paths: copy one file, copy or delete the
// files that match a pattern in one folder, create a folder with its parents.
//
// A pattern is a path whose last part may hold '*' and '?'; only the one folder of the
// pattern is looked at, and folders in it are left alone. Either separator is accepted.
// Copies go through a block of 4096 bytes and a new file beside the target (a copy needs the
// right to create files in the target's folder). Built paths hold at most 259 characters, the
// directory part of a pattern at most 255 and the path of CreateFolder at most 255: a path
// over a limit is refused (nothing done, false where there is a result), never cut.
// No state, no lock; buffers are local and of fixed size (a copy allocates only the name of
// its new file).
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API zbPathFileUtil {
public:
    zbPathFileUtil() = default;
    zbPathFileUtil(const zbPathFileUtil&) = default;
    zbPathFileUtil& operator=(const zbPathFileUtil&) = default;
    ~zbPathFileUtil() = default;

    // Copies `source` onto `target` (replaced if it exists). The copy is written beside the
    // target and renamed over it only when complete, so a failed copy leaves the old target as
    // it was. True when both files could be opened and every read, write and the rename
    // succeeded; a missing source leaves the target alone.
    static bool CopytoFile(char* source, char* target);
    // Copies each file matching `pattern` into the existing folder `folder` (as folder "/"
    // name), each as CopytoFile does. True if the pattern matched anything, except that a copy
    // that failed after both files opened makes it false; a file that does not open is skipped.
    static bool CopytoFolder(char* pattern, char* folder);
    // Deletes each file matching `pattern`. True if the pattern matched anything.
    static bool RemoveFile(char* pattern);
    // Creates the folder and each missing parent, splitting at '\' only.
    static void CreateFolder(char* path);
};

} // namespace zbBase
