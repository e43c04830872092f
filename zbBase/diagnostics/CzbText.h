// CzbText: short-lived text from a ring of heap blocks; CzbTextExt: the process-wide ring.
//
// Every text operation takes the next slot of the ring (rotation is shared by requests of
// every size), grows the slot's block if it is too small (a block never shrinks, and its old
// content is not kept), writes into it and returns it. A result stays valid until the ring
// comes back to its slot: with the default eight slots a caller can hold eight results.
//
// Dates and times are local time from the calendar clock, to the second:
//   getDate()            "20261119"         getTime()            "090507"
//   getDate("-")         "2026-11-19"       getTime(":")         "09:05:07"
//   getDate(a, b, c)     "2026a11b19c"      getTime(a, b, c)     "09a05b07c"
// getFormat fills a 512-byte block; a longer result is cut to 511 characters.
//
// Threads: any number of threads may share one ring, the process-wide one included. Taking a
// slot is atomic, so callers that acquire at the same time get different slots as long as no
// more than getBufferNum() acquisitions overlap, whatever their sizes; and the ring's own text
// operations never write into one block at the same time: a caller the ring brings back onto
// a slot whose text is still being written waits until it is done. A text handed out is not
// guarded beyond that: once the ring wraps onto a slot whose text another thread still reads
// (or a getBufferNew caller still writes), that text changes under it. setBufferSize and
// operator= are for one thread at a time.
//
// Copies share the slots with their source (the two arrays, so getBuffer of either shows the
// other's texts), each with its own cursor; each object writes only into blocks of its own.
// An object that comes to a slot whose block holds another object's text sets that block
// aside and takes one of its own (kept for its next turn), so a copy and its source used by
// one thread each never touch each other's texts. The last object that holds the slots frees
// them.
//
// No block is freed while the ring can still hand it out or a lapped caller can still reach
// it: a block that a slot outgrows is kept, not freed, until the ring and all its copies are
// destroyed or resized. That costs at most the sizes each slot grew through (the text
// operations ask for 64, 260 and 512 bytes), and a copy at most one block of its own per
// slot; an object that goes frees the blocks it set aside.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <atomic>

class ZB_API CzbText {
public:
    CzbText();
    CzbText(const CzbText& other);
    virtual ~CzbText();
    CzbText& operator=(const CzbText& other);

    // The block of slot index (0 to getBufferNum() - 1, not checked), null while it has none.
    char* getBuffer(int index);
    // Takes the next slot with a block of at least size bytes; its content is not cleared.
    // A size of 0 or less allocates nothing and returns the slot's block, null if none.
    char* getBufferNew(int size);
    int getBufferNum();
    // Capacity in bytes of slot index (not checked).
    int getBufferSize(int index);
    // Changes the number of slots; every block is dropped unless count is the present
    // number. A count below 1 leaves the ring unchanged. The cursor is kept.
    void setBufferSize(int count);

    char* getFormat(char* format, ...);
    char* getDate();
    char* getDate(char* separator);
    char* getDate(char* first, char* second, char* third);
    char* getTime();
    char* getTime(char* separator);
    char* getTime(char* first, char* second, char* third);
    // The current directory (260-byte block), as Windows path text.
    char* getCurrentDirectory();
    // The full path of the host executable (260-byte block), as Windows path text.
    char* getModuleFileName();

    char** m_buffers;
    int* m_bufferSizes;
    int m_bufferNum;
    std::atomic<int> m_current;

private:
    // Takes the next slot of this object's cursor, waits until no text operation is writing
    // into it, and gives it a block of this object's own of at least size (> 0) bytes. The
    // slot stays claimed until finishSlot.
    int claimSlot(int size);
    void finishSlot(int slot);
    void release();
    // Three numbers joined by the caller's texts, in a date-and-time block of the ring.
    char* getStamp(const char* format, int a, char* first, int b, char* second, int c, char* third);
};

static_assert(sizeof(std::atomic<int>) == sizeof(int), "cursor keeps the width of an int");
static_assert(std::atomic<int>::is_always_lock_free, "cursor must be lock-free");

class ZB_API CzbTextExt : public CzbText {
public:
    CzbTextExt() {}
    CzbTextExt(const CzbTextExt& other) : CzbText(other) {}
    ~CzbTextExt() override {}
    CzbTextExt& operator=(const CzbTextExt& other) {
        CzbText::operator=(other);
        return *this;
    }

    // The address of m_zbText; the same from load to unload.
    static CzbText* getInstance();

    static CzbText m_zbText;
};
