#include "zbBase/datafiles/CzbFileMgrAdv.h"

#include "zbBase/datafiles/detail/zbBlockFile.h"
#include "zbBase/datafiles/detail/zbLittleEndian.h"
#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstring>
#include <new>

using namespace zbBase::detail;

namespace zbBase {

namespace {

const size_t kHeaderSize = kBlockHeaderSize;

void encodeHeader(const _zbFileMgrHeader& header, unsigned char* out) {
    std::memset(out, 0, kHeaderSize);
    putFloat(out + 0, header.headerValue);
    putU64(out + 8, header.totalSize);
    putU64(out + 16, header.blockCount);
    std::memcpy(out + 24, header.reserved, sizeof header.reserved);
}

_zbFileMgrHeader decodeHeader(const unsigned char* in) {
    _zbFileMgrHeader header;
    std::memset(&header, 0, sizeof header);
    header.headerValue = getFloat(in + 0);
    header.totalSize = getU64(in + 8);
    header.blockCount = getU64(in + 16);
    std::memcpy(header.reserved, in + 24, sizeof header.reserved);
    return header;
}

// Moves `count` bytes from the source to the sink (or drops them without a sink); false when
// the source ends early or a write fails.
bool copyBytes(ByteSource& source, ByteSink* sink, unsigned long long count) {
    char chunk[16 * 1024];
    while (count > 0) {
        const size_t want = count < sizeof chunk ? static_cast<size_t>(count) : sizeof chunk;
        const size_t got = source.read(chunk, want);
        if (got != want || (sink != nullptr && !sink->write(chunk, got))) {
            return false;
        }
        count -= got;
    }
    return true;
}

// `size` bytes of data; data that is absent is written as zero bytes.
bool writeBlock(ByteSink& sink, const void* data, unsigned long long size) {
    if (data != nullptr) {
        return sink.write(data, static_cast<size_t>(size));
    }
    static const char zeros[4096] = {};
    for (unsigned long long left = size; left > 0;) {
        const size_t count = left < sizeof zeros ? static_cast<size_t>(left) : sizeof zeros;
        if (!sink.write(zeros, count)) {
            return false;
        }
        left -= count;
    }
    return true;
}

// The size table, 8 bytes an entry, with `replaced` in the place of entry `index`.
bool writeSizes(ByteSink& sink, const std::vector<unsigned long long>& sizes, size_t index,
                unsigned long long replaced) {
    unsigned char chunk[8 * 512];
    size_t filled = 0;
    for (size_t i = 0; i < sizes.size(); ++i) {
        putU64(chunk + filled, i == index ? replaced : sizes[i]);
        filled += 8;
        if (filled == sizeof chunk || i + 1 == sizes.size()) {
            if (!sink.write(chunk, filled)) {
                return false;
            }
            filled = 0;
        }
    }
    return true;
}

FILE* openStream(const char* path, const char* mode) {
    FILE* file = nullptr;
    zbp::fopen_s(&file, path, mode);
    return file;
}

} // namespace

void CzbFileMgrAdv::addDataSize(void* data, unsigned long long size) {
    m_blocks.push_back(_Block{data, size});
}

void CzbFileMgrAdv::setDataSize(int index, void* data, unsigned long long size) {
    if (index >= 0 && static_cast<size_t>(index) < m_blocks.size()) {
        m_blocks[static_cast<size_t>(index)] = _Block{data, size};
    }
}

void CzbFileMgrAdv::clear() {
    m_blocks.clear();
}

bool CzbFileMgrAdv::writeFile(char* path, float value) {
    // Written beside the file and put in its place only when whole: a failure keeps the old one.
    zbp::AtomicFile file;
    if (!file.open(path, "wb")) {
        return false;
    }
    FileSink sink(file.stream());
    if (!writeBlocks(m_blocks, value, sink)) {
        file.fail();
    }
    return file.commit();
}

int CzbFileMgrAdv::readFile(char* path, bool withSizeTable) {
    FILE* file = openStream(path, "rb");
    if (file == nullptr) {
        return 0;
    }
    FileSource source(file);
    readBlocks(m_blocks, source, withSizeTable);
    std::fclose(file);
    return 1;
}

_zbFileMgrHeader CzbFileMgrAdv::getFileHeaderInfo(char* path) {
    unsigned char bytes[kHeaderSize];
    std::memset(bytes, 0, sizeof bytes);
    FILE* file = openStream(path, "rb");
    if (file != nullptr) {
        zbp::fread_s(bytes, sizeof bytes, 1, sizeof bytes, file);
        std::fclose(file);
    }
    return decodeHeader(bytes);
}

bool CzbFileMgrAdv::editFile(char* path, int index, void* data, unsigned long long size) {
    FILE* file = openStream(path, "rb");
    if (file == nullptr) {
        return false;
    }
    // Everything is checked against the file's real length before anything is allocated,
    // so no header field can ask for more memory than the file has bytes.
    long long fileLength = zbp::_filelengthi64(zbp::_fileno(file));
    unsigned long long length = fileLength > 0 ? static_cast<unsigned long long>(fileLength) : 0;
    FileSource source(file);
    BlockFileLayout layout;
    bool edited = false;
    if (readBlockLayout(source, length, layout) && index >= 0 &&
        static_cast<size_t>(index) < layout.sizes.size()) {
        // The edited file is written beside the old one and takes its place only when whole,
        // so a failure at any point leaves the old file as it was, valid.
        zbp::AtomicFile edit;
        if (edit.open(path, "wb")) {
            FileSink sink(edit.stream());
            if (!writeEditedBlocks(source, layout, static_cast<size_t>(index), data, size, sink)) {
                edit.fail();
            }
            std::fclose(file);
            file = nullptr;
            edited = edit.commit();
        }
    }
    if (file != nullptr) {
        std::fclose(file);
    }
    return edited;
}

namespace detail {

void readBlocks(const std::vector<CzbFileMgrAdv::_Block>& blocks, ByteSource& source,
                bool withSizeTable) {
    unsigned char bytes[kHeaderSize];
    std::memset(bytes, 0, sizeof bytes);
    source.read(bytes, sizeof bytes);
    const _zbFileMgrHeader header = decodeHeader(bytes);
    if (!withSizeTable) {
        // The skip is a 32-bit offset, as the runtime's fseek takes it where long is 32 bits.
        int32_t skip = static_cast<int32_t>(static_cast<uint32_t>(header.blockCount * 8));
        source.skip(skip);
    }
    for (size_t i = 0; i < blocks.size() && i < header.blockCount; ++i) {
        const CzbFileMgrAdv::_Block& block = blocks[i];
        if (block.data != nullptr && block.size > 0) {
            source.read(block.data, static_cast<size_t>(block.size));
        }
    }
}

bool writeBlocks(const std::vector<CzbFileMgrAdv::_Block>& blocks, float value, ByteSink& sink) {
    _zbFileMgrHeader header;
    std::memset(&header, 0, sizeof header);
    header.headerValue = value;
    header.blockCount = blocks.size();
    for (const CzbFileMgrAdv::_Block& block : blocks) {
        header.totalSize += block.size;
    }
    unsigned char bytes[kHeaderSize];
    encodeHeader(header, bytes);
    if (!sink.write(bytes, sizeof bytes)) {
        return false;
    }
    unsigned char size[8];
    for (const CzbFileMgrAdv::_Block& block : blocks) {
        putU64(size, block.size);
        if (!sink.write(size, sizeof size)) {
            return false;
        }
    }
    for (const CzbFileMgrAdv::_Block& block : blocks) {
        if (!writeBlock(sink, block.data, block.size)) {
            return false;
        }
    }
    return true;
}

bool readBlockLayout(ByteSource& source, unsigned long long length, BlockFileLayout& layout) {
    if (length < kHeaderSize || source.read(layout.header, kHeaderSize) != kHeaderSize) {
        return false;
    }
    const _zbFileMgrHeader header = decodeHeader(layout.header);
    const unsigned long long count = header.blockCount;
    if (count > (length - kHeaderSize) / 8) {
        return false;
    }
    try {
        layout.sizes.assign(static_cast<size_t>(count), 0);
    } catch (const std::bad_alloc&) {
        return false;
    }
    const unsigned long long room = length - kHeaderSize - count * 8;
    unsigned long long dataBytes = 0;
    unsigned char chunk[8 * 512];
    for (size_t done = 0; done < layout.sizes.size();) {
        const size_t entries = layout.sizes.size() - done < sizeof chunk / 8
                                   ? layout.sizes.size() - done
                                   : sizeof chunk / 8;
        if (source.read(chunk, entries * 8) != entries * 8) {
            return false;
        }
        for (size_t i = 0; i < entries; ++i, ++done) {
            const unsigned long long size = getU64(chunk + 8 * i);
            if (size > room - dataBytes) {
                return false;
            }
            layout.sizes[done] = size;
            dataBytes += size;
        }
    }
    // The file must hold exactly what header and table say: anything else is not rewritten,
    // so no byte of it can be lost.
    layout.dataBytes = dataBytes;
    return dataBytes == room && header.totalSize == dataBytes;
}

bool writeEditedBlocks(ByteSource& source, const BlockFileLayout& layout, size_t index,
                       const void* data, unsigned long long size, ByteSink& sink) {
    // Only totalSize changes in the header; every other byte, the gap too, stays as read.
    unsigned char header[kHeaderSize];
    std::memcpy(header, layout.header, sizeof header);
    putU64(header + 8, layout.dataBytes - layout.sizes[index] + size);
    if (!sink.write(header, sizeof header) || !writeSizes(sink, layout.sizes, index, size)) {
        return false;
    }
    for (size_t i = 0; i < layout.sizes.size(); ++i) {
        if (i != index) {
            if (!copyBytes(source, &sink, layout.sizes[i])) {
                return false;
            }
        } else if (!copyBytes(source, nullptr, layout.sizes[i]) || !writeBlock(sink, data, size)) {
            return false;
        }
    }
    return true;
}

} // namespace detail

} // namespace zbBase
