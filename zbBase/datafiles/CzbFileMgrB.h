// CzbFileMgrB: a binary file of one fixed-size head followed by fixed-size body records.
//
// File: the head (m_headSize bytes) at offset 0, body i at m_headSize + i * m_bodySize, and
// nothing else: no magic number, no count, no sizes. A reader sets the writer's two sizes with
// SetDataSize before OpenFile; a mismatch cannot be detected. Records are opaque bytes.
//
// The write side (SetHead, AddBody, MakeFile) and the read side (OpenFile, GetHeadData,
// GetBodyData, MoveNext) are kept apart. Write blocks are heap copies owned by the object. The
// read side is one block owned by the object: m_readHead is its start and each entry of
// m_readBodies points into it behind the head, so the bodies are released with the head and
// never one by one. Read blocks are lent until ClearReadBuffer, OpenFile, SetDataSize or the
// destructor. Copies duplicate every block. Both sizes stay below 2^31.
//
// Memory follows the file: OpenFile reads in pieces as bytes arrive, whatever length the file
// claims, and holds the bytes it keeps once plus one pointer per body.
//
// The class has no lock: an object belongs to one thread at a time.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <stdint.h>
#include <vector>

namespace zbBase {

class ZB_API CzbFileMgrB {
public:
    CzbFileMgrB();
    CzbFileMgrB(const CzbFileMgrB& other);
    CzbFileMgrB& operator=(const CzbFileMgrB& other);
    ~CzbFileMgrB();

    // Drops both sides, then takes the two sizes.
    void SetDataSize(unsigned int headSize, unsigned int bodySize);
    // Copies m_headSize bytes as the head to write (replacing an earlier one); false, with
    // nothing done, when the head size is 0.
    bool SetHead(void* data);
    // Copies m_bodySize bytes as the next body to write; always true.
    bool AddBody(void* data);
    // Writes the head (zero bytes when none was set) and every body, in binary mode, beside
    // the file, and puts it in the file's place only when every write, the flush and the close
    // succeeded: a failure leaves the old file as it was. Nothing is reported.
    void MakeFile(char* path);
    // Drops the read side, then reads the file. The head is kept when the file holds all of
    // it, each body that the file holds whole, in file order; a partial last body is left
    // out, and a body size of 0 gives no bodies (and nothing behind the head is read). false
    // when the file cannot be opened, is empty, is longer than 2^31-1 bytes (the longest
    // that a signed 32-bit length describes; it is not read) or its bodies do not fit in
    // memory, and the read side is then empty; true otherwise (even when the file is
    // shorter than the head).
    bool OpenFile(char* path);

    // The head as read, or null.
    void* GetHeadData();
    // The body at the cursor, or null when there is none.
    void* GetBodyData();
    // The next cursor, wrapping to 0 after the last body; 0 means the walk has come round.
    int MoveNext();

    void ClearReadBuffer();
    void ClearWriteBuffer();

    uint32_t m_headSize;
    uint32_t m_bodySize;
    char* m_writeHead;
    std::vector<char*> m_writeBodies;
    int32_t m_cursor;
    char* m_readHead;
    std::vector<char*> m_readBodies;

private:
    void copyFrom(const CzbFileMgrB& other);
};

} // namespace zbBase
