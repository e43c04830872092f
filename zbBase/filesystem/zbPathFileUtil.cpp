#include "zbBase/filesystem/zbPathFileUtil.h"

#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpFileIO.h"
#include "zbBase/platform/detail/zbpFileOps.h"
#include "zbBase/platform/detail/zbpFind.h"

#include <stdio.h>
#include <string.h>

namespace zbBase {

namespace {

const size_t kBlockSize = 4096;
const size_t kPathSize = 260;   // a built path, terminator included
const size_t kDriveSize = 16;   // parts of a split path
const size_t kPartSize = 256;   // directory, file name, extension
const size_t kFolderSize = 256; // working copy in CreateFolder

enum CopyResult { kNotOpened, kFailed, kCopied };

// CopytoFile's copy: the target is written beside itself and renamed into place only when every
// block was read and written, so a failed copy leaves the old target as it was.
CopyResult copyFile(const char* source, const char* target) {
    FILE* in = zbp::fopen(source, "rb");
    if (in == nullptr) {
        return kNotOpened;
    }
    if (zbp::sameFile(source, target)) {
        // The target already holds the bytes; writing it would only put them back.
        fclose(in);
        return kCopied;
    }
    zbp::AtomicFile out;
    if (!out.open(target, "wb")) {
        fclose(in);
        return kNotOpened;
    }
    char block[kBlockSize];
    size_t n;
    while ((n = fread(block, 1, sizeof block, in)) > 0) {
        if (fwrite(block, 1, n, out.stream()) != n) {
            out.fail();
            break;
        }
    }
    if (ferror(in) != 0) {
        out.fail(); // a read error: the copy would be short
    }
    const bool ok = out.commit();
    fclose(in);
    return ok ? kCopied : kFailed;
}

// "%s%s" of drive and directory of `pattern` into `folder` (kPathSize bytes); false when a
// part would not fit.
bool sourceFolder(const char* pattern, char* folder) {
    if (pattern == nullptr) {
        return false;
    }
    size_t nameStart = 0;
    size_t length = strlen(pattern);
    for (size_t i = 0; i < length; ++i) {
        if (pattern[i] == '\\' || pattern[i] == '/') {
            nameStart = i + 1;
        }
    }
    if (nameStart >= kPartSize || length - nameStart >= kPartSize) {
        return false;
    }
    char drive[kDriveSize];
    char dir[kPartSize];
    zbp::_splitpath(pattern, drive, dir, nullptr, nullptr);
    int n = snprintf(folder, kPathSize, "%s%s", drive, dir);
    return n >= 0 && static_cast<size_t>(n) < kPathSize;
}

bool buildPath(char* out, const char* format, const char* a, const char* b) {
    int n = snprintf(out, kPathSize, format, a, b);
    return n >= 0 && static_cast<size_t>(n) < kPathSize;
}

} // namespace

bool zbPathFileUtil::CopytoFile(char* source, char* target) {
    if (source == nullptr || target == nullptr) {
        return false;
    }
    return copyFile(source, target) == kCopied;
}

bool zbPathFileUtil::CopytoFolder(char* pattern, char* folder) {
    char from[kPathSize];
    if (folder == nullptr || !sourceFolder(pattern, from)) {
        return false;
    }
    _finddata64i32_t data;
    intptr_t handle = zbp::_findfirst64i32(pattern, &data);
    if (handle == -1) {
        return false;
    }
    bool allCopied = true;
    do {
        if ((data.attrib & _A_SUBDIR) != 0) {
            continue;
        }
        char source[kPathSize];
        char target[kPathSize];
        if (buildPath(source, "%s%s", from, data.name) &&
            buildPath(target, "%s/%s", folder, data.name) && copyFile(source, target) == kFailed) {
            allCopied = false;
        }
    } while (zbp::_findnext64i32(handle, &data) == 0);
    zbp::_findclose(handle);
    return allCopied;
}

bool zbPathFileUtil::RemoveFile(char* pattern) {
    char from[kPathSize];
    if (!sourceFolder(pattern, from)) {
        return false;
    }
    _finddata64i32_t data;
    intptr_t handle = zbp::_findfirst64i32(pattern, &data);
    if (handle == -1) {
        return false;
    }
    do {
        char source[kPathSize];
        if ((data.attrib & _A_SUBDIR) == 0 && buildPath(source, "%s%s", from, data.name)) {
            zbp::remove(source);
        }
    } while (zbp::_findnext64i32(handle, &data) == 0);
    zbp::_findclose(handle);
    return true;
}

void zbPathFileUtil::CreateFolder(char* path) {
    if (path == nullptr) {
        return;
    }
    size_t length = strnlen(path, kFolderSize);
    if (length >= kFolderSize) {
        return;
    }
    char copy[kFolderSize];
    memcpy(copy, path, length + 1);
    char* last = strrchr(copy, '\\');
    if (last != nullptr) {
        *last = '\0';
        CreateFolder(copy);
    }
    zbp::_mkdir(path);
}

} // namespace zbBase
