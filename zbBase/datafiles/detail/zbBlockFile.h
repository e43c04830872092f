// The sized-block file of CzbFileMgrAdv as bytes: the reader behind readFile, the writer behind
// writeFile and the two steps of editFile, on any source and sink, so a buffer in memory is
// read and edited as a file is.
#pragma once

#include "zbBase/datafiles/CzbFileMgrAdv.h"
#include "zbBase/datafiles/detail/zbByteSink.h"
#include "zbBase/datafiles/detail/zbByteSource.h"

#include <vector>

namespace zbBase {
namespace detail {

const size_t kBlockHeaderSize = 152;

// The header and size table of a file that holds exactly what they say.
struct BlockFileLayout {
    unsigned char header[kBlockHeaderSize];
    std::vector<unsigned long long> sizes;
    unsigned long long dataBytes = 0;
};

// Fills the registered blocks from the source, as readFile does after opening the file.
void readBlocks(const std::vector<CzbFileMgrAdv::_Block>& blocks, ByteSource& source,
                bool withSizeTable);
// Header, size table and blocks; false at the first failed write.
bool writeBlocks(const std::vector<CzbFileMgrAdv::_Block>& blocks, float value, ByteSink& sink);
// Reads header and size table from a source of `length` bytes; false, with nothing allocated
// beyond what the length allows, unless the source holds exactly 152 + 8 n + the sum of the
// sizes bytes and totalSize is that sum. Memory exhaustion gives false as well.
bool readBlockLayout(ByteSource& source, unsigned long long length, BlockFileLayout& layout);
// Copies the rest of the source (the blocks) to the sink behind the header and table, with
// block `index` replaced by `size` bytes from `data` (zero bytes when data is null); false at
// the first read or write that fails. `index` must be a block of the layout.
bool writeEditedBlocks(ByteSource& source, const BlockFileLayout& layout, size_t index,
                       const void* data, unsigned long long size, ByteSink& sink);

} // namespace detail
} // namespace zbBase
