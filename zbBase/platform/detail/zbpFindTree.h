// Depth-first search of a tree of folders, as the searches of CzbFileUtil walk it, in
// namespace zbp.
//
// A folder gives first its entries that match the pattern, in listing order (zbpFind.h), then
// the subtrees of its subfolders in listing order. A folder whose name begins with a dot is
// never entered, and neither is a symbolic link. The records are those of the listings.
//
// On POSIX each folder is read once, relative to its open parent (no path is looked up again
// from the root), an entry is looked at only when its name matches or its type is not known
// from the folder itself, and no path text is built for an entry that is not stored. The walk
// holds one open folder for each level below the start; when the process runs out of
// descriptors it goes on by full paths, giving up its own descriptors level by level. On
// Windows the walk lists each folder through the runtime, once for the pattern and once for
// the subfolders.
#pragma once

#include "zbBase/platform/zbPlatformTypes.h"

#include <vector>

namespace zbp {

struct TreeSearch {
    bool folders;    // store the folders whose names do not begin with a dot; else the entries
                     // without the folder bit
    bool recurse;    // enter the subfolders
    bool countStart; // the start folder counts as looked at even when nothing matches there
};

// Searches `folder` (library path text, normally absolute and ending in a backslash) for the
// entries that match `pattern` and appends them to `found`, each with `folder` and the path
// below it in front of its name. An entry whose path would pass 259 characters is left out,
// and a subfolder whose path with its closing backslash would pass 511 is not entered.
// `folderCount` grows by 1 for every subfolder entered (listed or not), and for the start
// folder when its listing of `pattern` finds anything ("." and ".." included) or countStart
// is set. Returns the errno that ends the listing of the start folder: ENOENT when the folder
// was read or nothing matched, else why it could not be read.
int searchTree(const char* folder, const char* pattern, const TreeSearch& how,
               std::vector<__finddata64_t>& found, int& folderCount);

} // namespace zbp
