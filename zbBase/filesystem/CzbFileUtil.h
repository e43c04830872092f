// CzbFileUtil: wildcard search of files and folders, batch operations on what a search
// finds, and path text helpers.
//
// A search takes a path whose last component is a pattern of '*' and '?' and whose folder
// part is plain text (relative paths are resolved against the current folder, ".." and "."
// are taken out). Each entry found keeps the platform's record with the absolute folder in
// front of the name; result paths always use the backslash, arguments may use either
// separator. With recursion the walk is depth first: the matches of a folder in listing
// order, then the subtrees of its subfolders; folders whose names begin with a dot are never
// entered.
//
// The member batch operations search first and keep in m_processData the entries that the
// disk operation really handled; the static ones walk a tree by themselves. None stops at a
// failure. Renames never replace an existing file.
//
// Limits: a search text of 511 characters, a folder of 511, a pattern of 255, a stored full
// path of 259. A path over a limit is refused (nothing is done with it), never cut.
//
// The text helpers treat '/' and '\' as separators and look at the text only.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include <vector>

class ZB_API CzbFileUtil {
public:
    CzbFileUtil();
    CzbFileUtil(const CzbFileUtil& other);
    virtual ~CzbFileUtil();
    CzbFileUtil& operator=(const CzbFileUtil& other);

    // ---- search ----
    // Lists the files (entries without the sub-directory bit, leading dots included) that
    // match `path`, with `subDir` also in every folder below. Sets m_processPath.
    void FindFile(char* path, bool subDir);
    // Lists the folders that match `path` (never "." and "..", nor any name beginning with a
    // dot), with `subDir` also in every folder below. m_processPath is left as it was.
    void FindFolder(char* path, bool subDir);

    // The object's own list of the last search; never null.
    std::vector<__finddata64_t>* getFindData();
    // The first entry whose file name (for a folder, its last component) equals `name`
    // exactly, case included; null if there is none.
    __finddata64_t* getFindData(char* name);
    // The entries that the last batch operation really handled; never null.
    std::vector<__finddata64_t>* getProcessData();
    // The absolute folder of the last FindFile, ending in a backslash.
    char* getProcessPath();
    // Folders looked at by the last search (the start folder counts when it held a match).
    int getFindSubDirCount();
    // 1 before any search and after clear(); otherwise errno at the end of the last search
    // (ENOENT after a normal one, ENAMETOOLONG for a path over a limit).
    int getLastError();
    void clear();

    // ---- batch operations ----
    // Copies the tree `source` into `target` (created if missing, its parent must exist),
    // replacing files of the same name; folders whose names begin with a dot are left out.
    // A file is replaced only by a complete copy: a failed copy keeps the old file. 1 if
    // `source` could be listed, else 0, whatever the copies did. The flag has no effect.
    static int CopyFolder(char* source, char* target, bool flag);
    // Copies, then deletes from `source` each file whose copy is complete and byte-identical,
    // and each folder left empty. What could not be copied stays. A symbolic link given as
    // `source` is removed itself once everything behind it arrived. Always 0.
    static int MoveFolder(char* source, char* target, bool flag);
    // Deletes the tree `path` and the folder itself; a folder whose name begins with a dot is
    // not entered, so it and its parents stay. A symbolic link to a folder given as `path`
    // (closing separator or not) is removed as a link: what it points to is never touched.
    // The flag has no effect.
    static void DeleteFolder(char* path, bool flag);
    // Creates `path` (backslash-separated, at most 255 characters) and every missing folder
    // above it.
    static void MakeDirectory(char* path);

    // Deletes each file that FindFile(path, subDir) finds.
    void DeleteFiles(char* path, bool subDir);
    // Replaces the leftmost occurrence of `find` (case counts) in the name of each file found;
    // a name without it is left out.
    void RenameFile(char* path, char* find, char* replace, bool subDir);
    // Gives each file found the name `newName`.
    void RenameFile(char* path, char* newName, bool subDir);
    // As RenameFile, for the folders that FindFolder finds.
    void RenameFolder(char* path, char* find, char* replace, bool subDir);
    // Gives each folder found the name `newName`; the new path ends in a backslash.
    void RenameFolder(char* path, char* newName, bool subDir);

    // ---- path text helpers (no disk access) ----
    // The text behind the last dot of the last component; the terminator when that component
    // has no dot; the whole text when there is neither dot nor separator.
    static char* getFileExt(char* path);
    // The text behind the last separator; without a separator the whole text if it holds a
    // dot, else the terminator.
    static char* getFileName(char* path);
    // The last component with its closing separators; the terminator for a text of one
    // component.
    static char* getLastPath(char* path);
    // Clears `size` bytes of `buffer` and copies the last component without its closing
    // separators into it; returns the component's index in `path`, or -1 (buffer left
    // cleared) when no separator stands left of it.
    static int getLastPath(char* buffer, int size, char* path);
    // Clears `size` bytes of `buffer`, then copies the folder part: up to the last separator
    // if the last component holds a dot, else the whole text. Nothing is copied when it would
    // not fit into `size` bytes.
    static void getPath(char* buffer, int size, const char* path);
    // The index behind the host of a network path given by a dotted address, or -1.
    static int isNetworkPath(char* path);
    // Normalises `path` in place: backslashes only, ".", ".." and doubled separators taken
    // out. A text of more than 511 characters is left as it stands.
    static void changeAbsolutePath(char* path);

protected:
    void FindFileSubDir(char* folder, char* pattern);
    void FindFolderSubDir(const char* folder, const char* pattern);
    // Splits `path` into an absolute folder ending in a backslash and a pattern. Both come
    // back empty when a part would pass its buffer or a limit.
    void makeAbPathWildcard(char* path, char* folder, int folderSize, char* pattern,
                            int patternSize);
    void makeAbPathWildcardFolder(char* path, char* folder, int folderSize, char* pattern,
                                  int patternSize);

public:
    char m_processPath[512];
    std::vector<__finddata64_t> m_findData;
    std::vector<__finddata64_t> m_processData;
    int m_lastError;
    int m_subDirCount;
};
