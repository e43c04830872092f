// CzbFileMgrB::OpenFile on arbitrary file bytes with sizes from the first two input bytes.
#include <zbBase/datafiles/CzbFileMgrB.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    unsigned headSize = data[0] % 32;
    unsigned bodySize = data[1] % 16;
    data += 2;
    size -= 2;
    char path[] = "records.bin";
    FILE* file = std::fopen(path, "wb");
    if (file == nullptr) {
        return 0;
    }
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    zbBase::CzbFileMgrB mgr;
    mgr.SetDataSize(headSize, bodySize);
    bool opened = mgr.OpenFile(path);
    if (opened != (size > 0)) {
        __builtin_trap();
    }
    // What is kept is what the file holds whole, byte for byte.
    if (mgr.GetHeadData() != nullptr && std::memcmp(mgr.GetHeadData(), data, headSize) != 0) {
        __builtin_trap();
    }
    size_t count = mgr.m_readBodies.size();
    if (bodySize > 0 && headSize <= size && count != (size - headSize) / bodySize) {
        __builtin_trap();
    }
    for (size_t i = 0; i < count; ++i) {
        if (std::memcmp(mgr.GetBodyData(), data + headSize + i * bodySize, bodySize) != 0) {
            __builtin_trap();
        }
        if (mgr.MoveNext() != static_cast<int>((i + 1) % count)) {
            __builtin_trap();
        }
    }
    zbBase::CzbFileMgrB copy(mgr);
    if (size >= headSize) {
        copy.SetHead(const_cast<uint8_t*>(data));
    }
    std::remove(path);
    return 0;
}
