// CzbFileMgrAdv: a list of the host's memory blocks stored in one binary file.
//
// File, all numbers little-endian, n blocks:
//     0    _zbFileMgrHeader (152 bytes): headerValue (float), 4 bytes gap, totalSize (u64),
//          blockCount (u64), 128 reserved bytes
//     152  size table: n sizes of 8 bytes
//     152 + 8n  the blocks, one after the other
// There is no magic number and no checksum. writeFile zeroes the gap and the reserved bytes.
//
// The object holds pointers and sizes only; the blocks stay the host's, alive and of the
// stated size while an operation uses them. readFile reads by the sizes of the list, never
// more than a block's registered size; editFile rewrites a file only when it holds exactly
// what its header says. Whole files are written beside their target and renamed into place.
//
// The class has no lock: an object belongs to one thread at a time.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <stdint.h>
#include <vector>

namespace zbBase {

// The first 152 bytes of the file. No constructor: its implicit assignments are plain copies.
struct ZB_API _zbFileMgrHeader {
    float headerValue;
    unsigned long long totalSize;
    unsigned long long blockCount;
    char reserved[128];
};

static_assert(sizeof(_zbFileMgrHeader) == 152, "the file header is 152 bytes");
static_assert(sizeof(unsigned long long) == 8, "sizes are 64 bits wide");

class ZB_API CzbFileMgrAdv {
public:
    // One of the host's blocks.
    struct _Block {
        void* data;
        unsigned long long size;
    };

    CzbFileMgrAdv() = default;
    CzbFileMgrAdv(const CzbFileMgrAdv& other) = default;
    CzbFileMgrAdv& operator=(const CzbFileMgrAdv& other) = default;
    ~CzbFileMgrAdv() = default;

    void addDataSize(void* data, unsigned long long size);
    // Replaces the entry at index; an index outside the list changes nothing.
    void setDataSize(int index, void* data, unsigned long long size);
    void clear();

    // Writes header, size table and blocks (binary) beside the file, and puts it in the
    // file's place only when every write, the flush and the close succeeded. false when the
    // file cannot be written or any of that failed; the old file then stays as it was. A
    // block without data is written as zero bytes.
    bool writeFile(char* path, float value);
    // Reads the header, skips the size table (withSizeTable false) or lets its bytes flow
    // into the first blocks (true), then fills entry i of the list with its registered size
    // for each i below both the file's blockCount and the list's length. A short file leaves
    // the rest of a block as it was. 1 when the file was opened, 0 when not.
    int readFile(char* path, bool withSizeTable);
    // The file's first 152 bytes; zero where the file has none (all zero when it cannot be
    // opened).
    _zbFileMgrHeader getFileHeaderInfo(char* path);
    // Replaces block `index` of the stored file by `size` bytes from `data`; the blocks behind
    // it move. The edited file is written beside the old one (the blocks copied across in
    // pieces, never held whole in memory) and takes its place only when complete. false, with
    // the file untouched, when it cannot be opened, `index` is out of range, the file does not
    // hold exactly what its header and size table say, or the edited file cannot be written
    // whole.
    bool editFile(char* path, int index, void* data, unsigned long long size);

    std::vector<_Block> m_blocks;
};

} // namespace zbBase
