#include "zbBase/datafiles/CzbFileMgrB.h"

#include "zbBase/platform/detail/zbpFileIO.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>

namespace zbBase {

namespace {

char* copyBlock(const void* data, size_t size) {
    char* block = new char[size];
    if (size > 0) {
        std::memcpy(block, data, size);
    }
    return block;
}

void releaseBlocks(std::vector<char*>& blocks) {
    for (char* block : blocks) {
        delete[] block;
    }
    blocks.clear();
}

// Copies of the blocks, every one released again when a later copy fails.
void copyBlocks(const std::vector<char*>& from, std::vector<char*>& to, size_t size) {
    to.reserve(from.size());
    try {
        for (const char* block : from) {
            to.push_back(nullptr);
            to.back() = copyBlock(block, size);
        }
    } catch (...) {
        releaseBlocks(to);
        throw;
    }
}

} // namespace

CzbFileMgrB::CzbFileMgrB()
    : m_headSize(0), m_bodySize(0), m_writeHead(nullptr), m_writeBodies(), m_cursor(0),
      m_readHead(nullptr), m_readBodies() {}

CzbFileMgrB::CzbFileMgrB(const CzbFileMgrB& other) : CzbFileMgrB() {
    try {
        copyFrom(other);
    } catch (...) {
        ClearReadBuffer();
        ClearWriteBuffer();
        throw;
    }
}

CzbFileMgrB& CzbFileMgrB::operator=(const CzbFileMgrB& other) {
    if (this != &other) {
        CzbFileMgrB copy(other);
        std::swap(m_headSize, copy.m_headSize);
        std::swap(m_bodySize, copy.m_bodySize);
        std::swap(m_writeHead, copy.m_writeHead);
        m_writeBodies.swap(copy.m_writeBodies);
        std::swap(m_cursor, copy.m_cursor);
        std::swap(m_readHead, copy.m_readHead);
        m_readBodies.swap(copy.m_readBodies);
    }
    return *this;
}

CzbFileMgrB::~CzbFileMgrB() {
    ClearReadBuffer();
    ClearWriteBuffer();
}

void CzbFileMgrB::copyFrom(const CzbFileMgrB& other) {
    m_headSize = other.m_headSize;
    m_bodySize = other.m_bodySize;
    m_cursor = other.m_cursor;
    if (other.m_writeHead != nullptr) {
        m_writeHead = copyBlock(other.m_writeHead, m_headSize);
    }
    if (other.m_readHead != nullptr) {
        m_readHead = copyBlock(other.m_readHead, m_headSize);
    }
    copyBlocks(other.m_writeBodies, m_writeBodies, m_bodySize);
    copyBlocks(other.m_readBodies, m_readBodies, m_bodySize);
}

void CzbFileMgrB::SetDataSize(unsigned int headSize, unsigned int bodySize) {
    ClearReadBuffer();
    ClearWriteBuffer();
    m_headSize = headSize;
    m_bodySize = bodySize;
}

bool CzbFileMgrB::SetHead(void* data) {
    if (m_headSize == 0) {
        return false;
    }
    char* head = copyBlock(data, m_headSize);
    delete[] m_writeHead;
    m_writeHead = head;
    return true;
}

bool CzbFileMgrB::AddBody(void* data) {
    std::unique_ptr<char[]> body(copyBlock(data, m_bodySize));
    m_writeBodies.push_back(body.get());
    body.release();
    return true;
}

void CzbFileMgrB::MakeFile(char* path) {
    FILE* file = zbp::fopen(path, "wb");
    if (file == nullptr) {
        return;
    }
    if (m_writeHead != nullptr) {
        std::fwrite(m_writeHead, 1, m_headSize, file);
    } else {
        // A head that was never set is written as zero bytes, so the bodies keep their places.
        static const char zeros[4096] = {};
        for (size_t left = m_headSize; left > 0;) {
            size_t count = left < sizeof zeros ? left : sizeof zeros;
            std::fwrite(zeros, 1, count, file);
            left -= count;
        }
    }
    for (const char* body : m_writeBodies) {
        std::fwrite(body, 1, m_bodySize, file);
    }
    std::fclose(file);
}

bool CzbFileMgrB::OpenFile(char* path) {
    ClearReadBuffer();
    FILE* file = zbp::fopen(path, "rb");
    if (file == nullptr) {
        return false;
    }
    long long fileLength = zbp::_filelengthi64(zbp::_fileno(file));
    // The length is a signed 32-bit quantity: a longer file is taken up to that length.
    size_t length = fileLength > 0 ? static_cast<size_t>(fileLength) : 0;
    if (length > static_cast<size_t>(INT_MAX)) {
        length = INT_MAX;
    }
    if (m_bodySize == 0 && length > m_headSize) {
        length = m_headSize; // no record lies behind the head
    }
    std::unique_ptr<char[]> image(new char[length > 0 ? length : 1]);
    // Only what was really read counts, should the file have shrunk in the meantime.
    size_t got = 0;
    while (got < length) {
        int n = zbp::_read(zbp::_fileno(file), image.get() + got,
                           static_cast<unsigned int>(length - got));
        if (n <= 0) {
            break;
        }
        got += static_cast<size_t>(n);
    }
    std::fclose(file);

    if (m_headSize <= got) {
        m_readHead = copyBlock(image.get(), m_headSize);
    }
    if (m_bodySize > 0 && m_headSize <= got) {
        m_readBodies.reserve((got - m_headSize) / m_bodySize);
        for (size_t offset = m_headSize; got - offset >= m_bodySize; offset += m_bodySize) {
            m_readBodies.push_back(nullptr);
            m_readBodies.back() = copyBlock(image.get() + offset, m_bodySize);
        }
    }
    return fileLength > 0;
}

void* CzbFileMgrB::GetHeadData() {
    return m_readHead;
}

void* CzbFileMgrB::GetBodyData() {
    if (m_cursor < 0 || static_cast<size_t>(m_cursor) >= m_readBodies.size()) {
        return nullptr;
    }
    return m_readBodies[static_cast<size_t>(m_cursor)];
}

int CzbFileMgrB::MoveNext() {
    // Counted in 64 bits: a cursor that a host set to the largest int wraps to 0, not past it.
    int64_t next = static_cast<int64_t>(m_cursor) + 1;
    if (next >= 0 && static_cast<uint64_t>(next) >= m_readBodies.size()) {
        next = 0;
    }
    m_cursor = static_cast<int32_t>(next);
    return m_cursor;
}

void CzbFileMgrB::ClearReadBuffer() {
    m_cursor = 0;
    delete[] m_readHead;
    m_readHead = nullptr;
    releaseBlocks(m_readBodies);
}

void CzbFileMgrB::ClearWriteBuffer() {
    delete[] m_writeHead;
    m_writeHead = nullptr;
    releaseBlocks(m_writeBodies);
}

} // namespace zbBase
