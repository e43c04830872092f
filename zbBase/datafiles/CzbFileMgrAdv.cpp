#include "zbBase/datafiles/CzbFileMgrAdv.h"

#include "zbBase/datafiles/detail/zbLittleEndian.h"
#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstring>
#include <memory>

using namespace zbBase::detail;

namespace zbBase {

namespace {

const size_t kHeaderSize = 152;

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

// Writes size bytes of data; data that is absent is written as zero bytes.
void writeBlock(FILE* file, const void* data, unsigned long long size) {
    if (data != nullptr) {
        std::fwrite(data, 1, static_cast<size_t>(size), file);
        return;
    }
    static const char zeros[4096] = {};
    for (unsigned long long left = size; left > 0;) {
        size_t count = left < sizeof zeros ? static_cast<size_t>(left) : sizeof zeros;
        std::fwrite(zeros, 1, count, file);
        left -= count;
    }
}

void writeSize(FILE* file, unsigned long long size) {
    unsigned char bytes[8];
    putU64(bytes, size);
    std::fwrite(bytes, 1, sizeof bytes, file);
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
    FILE* file = openStream(path, "wb");
    if (file == nullptr) {
        return false;
    }
    _zbFileMgrHeader header;
    std::memset(&header, 0, sizeof header);
    header.headerValue = value;
    header.blockCount = m_blocks.size();
    for (const _Block& block : m_blocks) {
        header.totalSize += block.size;
    }
    unsigned char bytes[kHeaderSize];
    encodeHeader(header, bytes);
    std::fwrite(bytes, 1, sizeof bytes, file);
    for (const _Block& block : m_blocks) {
        writeSize(file, block.size);
    }
    for (const _Block& block : m_blocks) {
        writeBlock(file, block.data, block.size);
    }
    std::fclose(file);
    return true;
}

int CzbFileMgrAdv::readFile(char* path, bool withSizeTable) {
    FILE* file = openStream(path, "rb");
    if (file == nullptr) {
        return 0;
    }
    unsigned char bytes[kHeaderSize];
    std::memset(bytes, 0, sizeof bytes);
    zbp::fread_s(bytes, sizeof bytes, 1, sizeof bytes, file);
    _zbFileMgrHeader header = decodeHeader(bytes);
    if (!withSizeTable) {
        // The skip is a 32-bit offset, as the runtime's fseek takes it where long is 32 bits.
        int32_t skip = static_cast<int32_t>(static_cast<uint32_t>(header.blockCount * 8));
        std::fseek(file, skip, SEEK_CUR);
    }
    for (size_t i = 0; i < m_blocks.size() && i < header.blockCount; ++i) {
        const _Block& block = m_blocks[i];
        if (block.data == nullptr || block.size == 0) {
            continue;
        }
        size_t size = static_cast<size_t>(block.size);
        zbp::fread_s(block.data, size, 1, size, file);
    }
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
    unsigned char bytes[kHeaderSize];
    if (length < kHeaderSize ||
        zbp::fread_s(bytes, sizeof bytes, 1, sizeof bytes, file) != sizeof bytes) {
        std::fclose(file);
        return false;
    }
    _zbFileMgrHeader header = decodeHeader(bytes);
    unsigned long long count = header.blockCount;
    if (count > (length - kHeaderSize) / 8) {
        std::fclose(file);
        return false;
    }
    size_t tableBytes = static_cast<size_t>(count * 8);
    std::unique_ptr<unsigned char[]> table(new unsigned char[tableBytes > 0 ? tableBytes : 1]);
    if (zbp::fread_s(table.get(), tableBytes, 1, tableBytes, file) != tableBytes) {
        std::fclose(file);
        return false;
    }
    std::vector<unsigned long long> sizes(static_cast<size_t>(count));
    unsigned long long dataBytes = 0;
    unsigned long long room = length - kHeaderSize - tableBytes;
    bool whole = true;
    for (size_t i = 0; i < sizes.size(); ++i) {
        sizes[i] = getU64(table.get() + 8 * i);
        if (sizes[i] > room - dataBytes) {
            whole = false;
            break;
        }
        dataBytes += sizes[i];
    }
    // The file must hold exactly what header and table say: anything else is not rewritten,
    // so no byte of it can be lost.
    if (!whole || dataBytes != room || header.totalSize != dataBytes) {
        std::fclose(file);
        return false;
    }
    std::unique_ptr<char[]> blocks(new char[dataBytes > 0 ? static_cast<size_t>(dataBytes) : 1]);
    size_t got = zbp::fread_s(blocks.get(), static_cast<size_t>(dataBytes), 1,
                              static_cast<size_t>(dataBytes), file);
    std::fclose(file);
    if (got != dataBytes) {
        return false;
    }
    if (index < 0 || static_cast<unsigned long long>(index) >= count) {
        return false;
    }

    file = openStream(path, "wb");
    if (file == nullptr) {
        return true;
    }
    // Only totalSize changes in the header; every other byte, the gap too, stays as read.
    putU64(bytes + 8, dataBytes - sizes[static_cast<size_t>(index)] + size);
    std::fwrite(bytes, 1, sizeof bytes, file);
    for (size_t i = 0; i < sizes.size(); ++i) {
        writeSize(file, i == static_cast<size_t>(index) ? size : sizes[i]);
    }
    unsigned long long offset = 0;
    for (size_t i = 0; i < sizes.size(); ++i) {
        if (i == static_cast<size_t>(index)) {
            writeBlock(file, data, size);
        } else {
            writeBlock(file, blocks.get() + offset, sizes[i]);
        }
        offset += sizes[i];
    }
    std::fclose(file);
    return true;
}

} // namespace zbBase
