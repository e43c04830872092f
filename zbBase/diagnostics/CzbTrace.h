// CzbTrace: trace messages from any thread, written straight to a trace file or queued;
// CzbTraceExt: the process-wide trace object and its date-and-time stamp.
//
// In ModeFile each message is appended to the trace file as one line ("%s\n", text mode),
// the file being opened and closed for every message; without a file name the message is
// dropped, and so is a message whose line does not reach the file whole (a full disk). A line
// left unfinished by a failed write is never continued: the next one starts on its own line. In any
// other mode a heap copy of the message joins an unbounded first-in, first-out queue until the host
// pops it or writes the queue out with setWriteFile. Messages are formatted into 512 bytes: a
// longer one is cut to 511 characters.
//
// Threads: setTrace, getTracePop, clear, setTraceFileName and setWriteFile hold the object's
// lock (a critical section with spin count 4000) for their whole work, file access included.
// setMode, getTraceNum and getTraceFront give snapshots; the text of getTraceFront is safe
// only while no other thread pops or clears.
//
// A copy owns its own lock, its own copies of the queued texts and of the file name.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/platform/zbPlatformTypes.h"

#include <atomic>
#include <deque>
#include <stdio.h>

class ZB_API CzbTrace {
public:
    // Only the value 1 is tested: every other value queues.
    enum Mode : int { ModeQueue = 0, ModeFile = 1 };

    CzbTrace();
    CzbTrace(const CzbTrace& other);
    virtual ~CzbTrace();
    CzbTrace& operator=(const CzbTrace& other);

    virtual void setMode(Mode mode);
    virtual void setTrace(char* format, ...);

    int getTraceNum();
    // The oldest waiting message, left in the queue; null when the queue is empty.
    char* getTraceFront();
    // Copies the oldest waiting message into buffer (512 bytes always suffice) and removes
    // it; an empty queue leaves buffer as it was.
    void getTracePop(char* buffer);
    // Drops every waiting message unwritten.
    void clear();
    // Opens name ("w" when truncate is true, "a" when false), closes it, and makes it the
    // file of ModeFile. False when it cannot be opened; the former name stays in force.
    bool setTraceFileName(char* name, bool truncate);
    // Writes every waiting message to name ("a" when append is true, "w" when false) and
    // empties the queue. If the file cannot be opened the queue stays as it was. Appending, a
    // message leaves the queue only once its whole line is in the file; after a failed write
    // the rest stays queued. Replacing, the new file is written beside the old one and takes
    // its place only when whole; on any failure the old file and the queue stay as they were.
    void setWriteFile(char* name, bool append);

    std::atomic<Mode> m_mode;
    std::deque<char*> m_queue;
    char* m_fileName;
    zbBase::zbCriticalSection m_lock;
    FILE* m_file;
};

static_assert(sizeof(std::atomic<CzbTrace::Mode>) == sizeof(int), "mode keeps its width");
static_assert(std::atomic<CzbTrace::Mode>::is_always_lock_free, "mode must be lock-free");

class ZB_API CzbTraceExt {
public:
    CzbTraceExt(const CzbTraceExt&) {}
    CzbTraceExt& operator=(const CzbTraceExt&) { return *this; }

    // The address of m_Instance; the same from load to unload.
    static CzbTrace* getInstance();
    // Passes "<yyyymmdd><hhmmss> : <message>" to m_Instance, the date and time coming from
    // m_zbText (two of its slots). The stamp takes 17 characters, leaving 494 for the message.
    static void setTraceWithDateTime(char* format, ...);

    static CzbTrace m_Instance;

protected:
    CzbTraceExt() {}
    virtual ~CzbTraceExt() {}
};
