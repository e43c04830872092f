// Path text helpers and wildcard matching on arbitrary bytes: no read or write outside the
// text, results inside the argument, normalising never lengthens.
#include <zbBase/filesystem/CzbFileUtil.h>
#include <zbBase/platform/detail/zbpFind.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<char> text(data, data + size);
    text.push_back('\0');
    char* path = text.data();
    size_t length = std::strlen(path);
    char* end = path + length;

    for (char* result : {CzbFileUtil::getFileExt(path), CzbFileUtil::getFileName(path),
                         CzbFileUtil::getLastPath(path)}) {
        if (result < path || result > end) {
            std::abort();
        }
    }
    std::vector<char> buffer(length + 1);
    int index = CzbFileUtil::getLastPath(buffer.data(), static_cast<int>(buffer.size()), path);
    if (index < -1 || index > static_cast<int>(length) || buffer.back() != '\0') {
        std::abort();
    }
    CzbFileUtil::getPath(buffer.data(), static_cast<int>(buffer.size()), path);
    if (std::strlen(buffer.data()) > length) {
        std::abort();
    }
    // A buffer too small is cleared, never overrun.
    char small[4];
    CzbFileUtil::getPath(small, sizeof small, path);
    CzbFileUtil::getLastPath(small, sizeof small, path);
    int network = CzbFileUtil::isNetworkPath(path);
    if (network == 0 || network > static_cast<int>(length)) {
        std::abort();
    }
    CzbFileUtil::changeAbsolutePath(path);
    if (std::strlen(path) > length) {
        std::abort();
    }

    // The bytes after the first NUL are matched as a name against the text as a pattern.
    const char* name = size > length ? reinterpret_cast<const char*>(text.data()) + length + 1 : "";
    zbp::matchWildcard(path, name);
    return 0;
}
