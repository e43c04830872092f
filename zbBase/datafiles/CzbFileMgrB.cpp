#include "zbBase/datafiles/CzbFileMgrB.h"

#include "zbBase/datafiles/detail/zbRecordImage.h"
#include "zbBase/platform/detail/zbpAtomicFile.h"
#include "zbBase/platform/detail/zbpFileIO.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

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
    copyBlocks(other.m_writeBodies, m_writeBodies, m_bodySize);
    if (other.m_readHead != nullptr) {
        // The read side stays one image: the head, then the bodies.
        const size_t count = other.m_readBodies.size();
        const size_t bytes = m_headSize + count * m_bodySize;
        m_readHead = static_cast<char*>(std::malloc(bytes > 0 ? bytes : 1));
        if (m_readHead == nullptr) {
            throw std::bad_alloc();
        }
        std::memcpy(m_readHead, other.m_readHead, m_headSize);
        m_readBodies.reserve(count);
        for (size_t i = 0; i < count; ++i) {
            char* body = m_readHead + m_headSize + i * m_bodySize;
            std::memcpy(body, other.m_readBodies[i], m_bodySize);
            m_readBodies.push_back(body);
        }
    }
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
    // Written beside the file and put in its place only when whole: a failure keeps the old one.
    zbp::AtomicFile file;
    if (!file.open(path, "wb")) {
        return;
    }
    detail::FileSink sink(file.stream());
    if (!detail::writeRecords(*this, sink)) {
        file.fail();
    }
    file.commit();
}

bool CzbFileMgrB::OpenFile(char* path) {
    ClearReadBuffer();
    FILE* file = zbp::fopen(path, "rb");
    if (file == nullptr) {
        return false;
    }
    long long fileLength = zbp::_filelengthi64(zbp::_fileno(file));
    detail::FileSource source(file);
    bool read = detail::readRecordImage(
        *this, source, fileLength > 0 ? static_cast<unsigned long long>(fileLength) : 0);
    std::fclose(file);
    return read;
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
    // The bodies lie inside the image that the head owns.
    std::free(m_readHead);
    m_readHead = nullptr;
    std::vector<char*>().swap(m_readBodies);
}

void CzbFileMgrB::ClearWriteBuffer() {
    delete[] m_writeHead;
    m_writeHead = nullptr;
    releaseBlocks(m_writeBodies);
}

namespace detail {

namespace {
// Longest image: the file length is a signed 32-bit quantity.
const size_t kLongest = 0x7fffffff;
// The image starts no larger than this whatever the source says it holds, and grows as bytes
// really arrive.
const size_t kFirstPiece = 64u << 20;
const size_t kUnknownFirstPiece = 64u << 10;
} // namespace

bool readRecordImage(CzbFileMgrB& mgr, ByteSource& source, unsigned long long lengthHint) {
    mgr.ClearReadBuffer();
    if (lengthHint > kLongest) {
        return false; // a length that the format's signed 32-bit length cannot hold
    }
    const size_t head = mgr.m_headSize;
    const size_t body = mgr.m_bodySize;
    // Without bodies only the head counts, and one byte tells an empty source.
    size_t limit = kLongest;
    if (body == 0) {
        limit = head == 0 ? 1 : (head < kLongest ? head : kLongest);
    }
    size_t capacity = lengthHint == 0            ? kUnknownFirstPiece
                      : lengthHint < kFirstPiece ? static_cast<size_t>(lengthHint)
                                                 : kFirstPiece;
    if (capacity > limit) {
        capacity = limit;
    }
    char* image = static_cast<char*>(std::malloc(capacity));
    if (image == nullptr) {
        return false;
    }
    size_t got = 0;
    for (;;) {
        if (got < capacity) {
            const size_t count = source.read(image + got, capacity - got);
            if (count == 0) {
                break;
            }
            got += count;
            continue;
        }
        if (capacity == limit) {
            // A source that delivers more than the longest file fails as a longer file does.
            char more;
            if (limit == kLongest && source.read(&more, 1) == 1) {
                std::free(image);
                return false;
            }
            break;
        }
        // Full: more room only once more bytes have come, so a source that holds what it
        // said it holds is read into one piece of exactly its size.
        char probe[4096];
        const size_t count =
            source.read(probe, limit - got < sizeof probe ? limit - got : sizeof probe);
        if (count == 0) {
            break;
        }
        size_t grown = capacity * 2 > kUnknownFirstPiece ? capacity * 2 : kUnknownFirstPiece;
        if (grown > limit) {
            grown = limit;
        }
        char* larger = static_cast<char*>(std::realloc(image, grown));
        if (larger == nullptr) {
            std::free(image);
            return false;
        }
        image = larger;
        capacity = grown;
        std::memcpy(image + got, probe, count);
        got += count;
    }
    if (got < head) {
        std::free(image);
        return got > 0;
    }
    const size_t count = body > 0 ? (got - head) / body : 0;
    const size_t kept = head + count * body;
    if (kept < capacity) {
        char* fitted = static_cast<char*>(std::realloc(image, kept > 0 ? kept : 1));
        if (fitted != nullptr) {
            image = fitted;
        }
    }
    try {
        mgr.m_readBodies.reserve(count);
    } catch (const std::bad_alloc&) {
        std::free(image);
        return false;
    }
    mgr.m_readHead = image;
    for (size_t i = 0; i < count; ++i) {
        mgr.m_readBodies.push_back(image + head + i * body);
    }
    return got > 0;
}

bool writeRecords(const CzbFileMgrB& mgr, ByteSink& sink) {
    if (mgr.m_writeHead != nullptr) {
        if (!sink.write(mgr.m_writeHead, mgr.m_headSize)) {
            return false;
        }
    } else {
        // A head that was never set is written as zero bytes, so the bodies keep their places.
        static const char zeros[4096] = {};
        for (size_t left = mgr.m_headSize; left > 0;) {
            const size_t count = left < sizeof zeros ? left : sizeof zeros;
            if (!sink.write(zeros, count)) {
                return false;
            }
            left -= count;
        }
    }
    for (const char* body : mgr.m_writeBodies) {
        if (!sink.write(body, mgr.m_bodySize)) {
            return false;
        }
    }
    return true;
}

} // namespace detail

} // namespace zbBase
