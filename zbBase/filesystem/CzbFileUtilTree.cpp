// Static tree operations of CzbFileUtil: copy, move, delete and create folders.
#include "zbBase/filesystem/CzbFileUtil.h"

#include "zbBase/platform/detail/zbpFileOps.h"
#include "zbBase/platform/detail/zbpFind.h"

#include <string.h>
#include <string>

namespace {

const size_t kCopyLimit = 259;      // a path built while copying
const size_t kDeleteLimit = 511;    // a path built while deleting
const size_t kDirectoryLimit = 255; // the argument of MakeDirectory

bool isEmpty(const char* path) {
    return path == nullptr || path[0] == '\0';
}

// Calls visit(name, isFolder) for each entry of `folder` but the folders whose names begin
// with a dot ("." and ".." among them). false, with nothing done, when the search text
// would pass `limit`: such a folder is refused whole.
template <typename Visit> bool forEachEntry(const std::string& folder, size_t limit, Visit visit) {
    std::string search = folder + "\\*.*";
    if (search.size() > limit) {
        return false;
    }
    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(search.c_str(), &data);
    if (handle == -1) {
        return true;
    }
    do {
        bool isFolder = (data.attrib & _A_SUBDIR) != 0;
        if (!(isFolder && data.name[0] == '.')) {
            visit(data.name, isFolder);
        }
    } while (zbp::_findnext64(handle, &data) == 0);
    zbp::_findclose(handle);
    return true;
}

// Whether every file below `source` has a complete, byte-identical twin in `target` and
// nothing below was left out of the copy (a folder whose name begins with a dot).
bool wholeTreeCopied(const std::string& source, const std::string& target) {
    std::string search = source + "\\*.*";
    if (search.size() > kCopyLimit) {
        return false;
    }
    __finddata64_t data;
    intptr_t handle = zbp::_findfirst64(search.c_str(), &data);
    if (handle == -1) {
        return false; // nothing behind it could be listed, so nothing was copied
    }
    bool whole = true;
    do {
        const bool isFolder = (data.attrib & _A_SUBDIR) != 0;
        if (isFolder && (strcmp(data.name, ".") == 0 || strcmp(data.name, "..") == 0)) {
            continue;
        }
        std::string from = source + "\\" + data.name;
        std::string to = target + "\\" + data.name;
        if (isFolder && data.name[0] == '.') {
            whole = false;
        } else if (from.size() > kCopyLimit || to.size() > kCopyLimit) {
            whole = false;
        } else if (isFolder) {
            whole = wholeTreeCopied(from, to);
        } else {
            whole = zbp::sameFileContent(from.c_str(), to.c_str());
        }
    } while (whole && zbp::_findnext64(handle, &data) == 0); // the first gap ends the look
    zbp::_findclose(handle);
    return whole;
}

// Deletes from `source` each file whose twin in `target` is complete and byte-identical,
// then each folder left empty. Folders whose names begin with a dot were not copied and
// are not entered. A link given as the source, or met as a folder on the way, is removed as
// a link once everything behind it has its twin: the files it points to stay where they are.
void removeCopied(const std::string& source, const std::string& target) {
    if (zbp::isFolderLink(source.c_str())) {
        if (wholeTreeCopied(source, target)) {
            zbp::removeFolderLink(source.c_str());
        }
        return;
    }
    const bool listed = forEachEntry(source, kCopyLimit, [&](const char* name, bool isFolder) {
        std::string from = source + "\\" + name;
        std::string to = target + "\\" + name;
        if (from.size() > kCopyLimit || to.size() > kCopyLimit) {
            return;
        }
        if (isFolder) {
            removeCopied(from, to);
        } else if (zbp::sameFileContent(from.c_str(), to.c_str())) {
            zbp::remove(from.c_str());
        }
    });
    if (listed) {
        zbp::_rmdir((source + "\\").c_str());
    }
}

} // namespace

int CzbFileUtil::CopyFolder(char* source, char* target, bool flag) {
    // An empty text would list the root folder.
    if (isEmpty(source) || isEmpty(target)) {
        return 0;
    }
    std::string from = source;
    std::string to = target;
    std::string search = from + "\\*.*";
    if (search.size() > kCopyLimit || to.size() > kCopyLimit) {
        return 0;
    }
    zbp::CreateDirectoryA(target, nullptr);
    zbp::WIN32_FIND_DATAA data;
    zbp::HANDLE handle = zbp::FindFirstFileA(search.c_str(), &data);
    if (handle == INVALID_HANDLE_VALUE) {
        return 0;
    }
    do {
        std::string fromEntry = from + "\\" + data.cFileName;
        std::string toEntry = to + "\\" + data.cFileName;
        if (fromEntry.size() > kCopyLimit || toEntry.size() > kCopyLimit) {
            continue;
        }
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            zbp::CopyFileA(fromEntry.c_str(), toEntry.c_str(), FALSE);
        } else if (data.cFileName[0] != '.') {
            char fromText[kCopyLimit + 1];
            char toText[kCopyLimit + 1];
            memcpy(fromText, fromEntry.c_str(), fromEntry.size() + 1);
            memcpy(toText, toEntry.c_str(), toEntry.size() + 1);
            CopyFolder(fromText, toText, flag);
        }
    } while (zbp::FindNextFileA(handle, &data));
    zbp::FindClose(handle);
    return 1;
}

int CzbFileUtil::MoveFolder(char* source, char* target, bool flag) {
    CopyFolder(source, target, flag);
    // Only what arrived whole leaves the source, so a failed copy never costs a file.
    if (!isEmpty(source) && !isEmpty(target)) {
        removeCopied(source, target);
    }
    return 0;
}

void CzbFileUtil::DeleteFolder(char* path, bool flag) {
    // An empty text would name the root folder.
    if (isEmpty(path)) {
        return;
    }
    // A link given as the folder (or met as one on the way, where the platform lists links as
    // folders) goes as a link: the files it points to are never touched.
    if (zbp::isFolderLink(path)) {
        zbp::removeFolderLink(path);
        return;
    }
    std::string folder = path;
    const bool listed = forEachEntry(folder, kDeleteLimit, [&](const char* name, bool isFolder) {
        std::string entry = folder + "\\" + name;
        if (entry.size() > kDeleteLimit) {
            return;
        }
        if (isFolder) {
            char text[kDeleteLimit + 1];
            memcpy(text, entry.c_str(), entry.size() + 1);
            DeleteFolder(text, flag);
        } else {
            zbp::remove(entry.c_str());
        }
    });
    if (listed) {
        zbp::_rmdir((folder + "\\").c_str());
    }
}

void CzbFileUtil::MakeDirectory(char* path) {
    if (path == nullptr) {
        return;
    }
    size_t length = strnlen(path, kDirectoryLimit + 1);
    if (length > kDirectoryLimit) {
        return;
    }
    char text[kDirectoryLimit + 1];
    memcpy(text, path, length + 1);
    for (size_t i = 1; i < length; ++i) {
        if (text[i] == '\\' && text[i - 1] != ':') {
            text[i] = '\0';
            zbp::CreateDirectoryA(text, nullptr);
            text[i] = '\\';
        }
    }
    zbp::CreateDirectoryA(path, nullptr);
}
