#include "zbBase/platform/detail/zbpStdio.h"

#if !defined(_WIN32)

#include "zbBase/platform/detail/zbpPath.h"

#include <errno.h>

namespace zbp {

FILE* fopen(const char* path, const char* mode) {
    if (path == nullptr || mode == nullptr) {
        return nullptr;
    }
    return ::fopen(toNativePath(path).c_str(), mode);
}

int fopen_s(FILE** file, const char* path, const char* mode) {
    if (file == nullptr) {
        return EINVAL;
    }
    *file = zbp::fopen(path, mode);
    if (*file == nullptr) {
        return errno != 0 ? errno : EINVAL;
    }
    return 0;
}

} // namespace zbp

#endif
