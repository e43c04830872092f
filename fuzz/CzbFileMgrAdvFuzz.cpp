// The sized-block reader and editor of CzbFileMgrAdv on arbitrary bytes, from memory through
// the code behind readFile and editFile. The first input byte gives the number of registered
// buffers, the next ones their sizes; buffers are exactly that large, so any write past them
// is caught. An accepted edit must give a file that holds exactly the edited blocks; a file
// written from the buffers must be accepted and read back.
#include <zbBase/datafiles/CzbFileMgrAdv.h>
#include <zbBase/datafiles/detail/zbBlockFile.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace zbBase::detail;

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
        buffers.emplace_back(new uint8_t[length > 0 ? length : 1]());
        mgr.addDataSize(buffers.back().get(), length);
    }
    data += count;
    size -= count;

    MemorySource withoutTable(data, size);
    readBlocks(mgr.m_blocks, withoutTable, false);
    MemorySource withTable(data, size);
    readBlocks(mgr.m_blocks, withTable, true);

    // The edit: accepted only for a file that holds what it says, and then exact.
    MemorySource original(data, size);
    BlockFileLayout layout;
    if (readBlockLayout(original, size, layout) && editIndex >= 0 &&
        static_cast<size_t>(editIndex) < layout.sizes.size()) {
        const uint8_t replacement[3] = {1, 2, 3};
        StringSink edited;
        if (!writeEditedBlocks(original, layout, static_cast<size_t>(editIndex), replacement,
                               sizeof replacement, edited)) {
            __builtin_trap();
        }
        MemorySource again(edited.bytes().data(), edited.bytes().size());
        BlockFileLayout result;
        if (!readBlockLayout(again, edited.bytes().size(), result) ||
            result.sizes.size() != layout.sizes.size() ||
            std::memcmp(result.header + 16, layout.header + 16, kBlockHeaderSize - 16) != 0) {
            __builtin_trap();
        }
        std::string blocks(reinterpret_cast<const char*>(data) + size - layout.dataBytes,
                           layout.dataBytes);
        size_t offset = 0;
        for (int i = 0; i < editIndex; ++i) {
            offset += layout.sizes[i];
        }
        blocks.replace(offset, layout.sizes[editIndex], "\1\2\3", 3);
        if (edited.bytes().substr(edited.bytes().size() - blocks.size()) != blocks) {
            __builtin_trap();
        }
    }

    // What writeFile makes from the buffers is a valid file that reads back into them.
    StringSink written;
    if (!writeBlocks(mgr.m_blocks, 0.5f, written)) {
        __builtin_trap();
    }
    MemorySource check(written.bytes().data(), written.bytes().size());
    if (!readBlockLayout(check, written.bytes().size(), layout) || layout.sizes.size() != count) {
        __builtin_trap();
    }
    std::vector<std::unique_ptr<uint8_t[]>> copies;
    zbBase::CzbFileMgrAdv reader;
    for (size_t i = 0; i < count; ++i) {
        copies.emplace_back(new uint8_t[mgr.m_blocks[i].size + 1]);
        reader.addDataSize(copies.back().get(), mgr.m_blocks[i].size);
    }
    MemorySource back(written.bytes().data(), written.bytes().size());
    readBlocks(reader.m_blocks, back, false);
    for (size_t i = 0; i < count; ++i) {
        if (std::memcmp(copies[i].get(), buffers[i].get(), mgr.m_blocks[i].size) != 0) {
            __builtin_trap();
        }
    }
    return 0;
}
