// The head-and-body reader of CzbFileMgrB on arbitrary bytes, with sizes from the first two
// input bytes, read from memory through the reader behind OpenFile. What is kept is what the
// bytes hold whole; written back through the writer behind MakeFile it gives those bytes.
#include <zbBase/datafiles/CzbFileMgrB.h>
#include <zbBase/datafiles/detail/zbRecordImage.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

using namespace zbBase::detail;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) {
        return 0;
    }
    unsigned headSize = data[0] % 32;
    unsigned bodySize = data[1] % 16;
    data += 2;
    size -= 2;

    zbBase::CzbFileMgrB mgr;
    mgr.SetDataSize(headSize, bodySize);
    MemorySource source(data, size);
    // The hint says less than there is, or more: the image follows the bytes either way.
    bool opened = readRecordImage(mgr, source, size % 3 == 0 ? size : size / 2 + 7);
    if (opened != (size > 0)) {
        __builtin_trap();
    }
    if ((mgr.GetHeadData() != nullptr) != (headSize <= size) ||
        (mgr.GetHeadData() != nullptr && std::memcmp(mgr.GetHeadData(), data, headSize) != 0)) {
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
    if (copy.GetHeadData() != nullptr) {
        copy.SetHead(copy.GetHeadData());
    }
    for (char* body : copy.m_readBodies) {
        copy.AddBody(body);
    }
    StringSink sink;
    writeRecords(copy, sink);
    const size_t kept = mgr.GetHeadData() != nullptr ? headSize + count * bodySize : 0;
    if (mgr.GetHeadData() != nullptr &&
        (sink.bytes().size() != kept || std::memcmp(sink.bytes().data(), data, kept) != 0)) {
        __builtin_trap();
    }
    return 0;
}
