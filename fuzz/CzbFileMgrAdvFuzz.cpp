// CzbFileMgrAdv::readFile, editFile and getFileHeaderInfo on arbitrary file bytes. The first
// input byte gives the number of registered buffers, the next ones their sizes; buffers are
// exactly that large, so any write past them is caught.
#include <zbBase/datafiles/CzbFileMgrAdv.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {
std::string readAll(const char* path) {
    std::string bytes;
    FILE* file = std::fopen(path, "rb");
    if (file != nullptr) {
        char chunk[4096];
        size_t n;
        while ((n = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
            bytes.append(chunk, n);
        }
        std::fclose(file);
    }
    return bytes;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    size_t count = data[0] % 8;
    int editIndex = static_cast<int>(data[1] % 8) - 1;
    data += 2;
    size -= 2;
    if (size < count) {
        return 0;
    }
    std::vector<std::unique_ptr<uint8_t[]>> buffers;
    zbBase::CzbFileMgrAdv mgr;
    for (size_t i = 0; i < count; ++i) {
        size_t length = data[i];
        buffers.emplace_back(new uint8_t[length > 0 ? length : 1]);
        mgr.addDataSize(buffers.back().get(), length);
    }
    data += count;
    size -= count;

    char path[] = "blocks.bin";
    FILE* file = std::fopen(path, "wb");
    if (file == nullptr) {
        return 0;
    }
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    if (mgr.readFile(path, false) != 1 || mgr.readFile(path, true) != 1) {
        __builtin_trap();
    }
    mgr.getFileHeaderInfo(path);
    std::string before(reinterpret_cast<const char*>(data), size);
    uint8_t replacement[3] = {1, 2, 3};
    if (!mgr.editFile(path, editIndex, replacement, sizeof replacement) &&
        readAll(path) != before) {
        __builtin_trap();
    }
    std::remove(path);
    return 0;
}
