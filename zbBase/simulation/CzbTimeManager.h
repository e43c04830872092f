// CzbTimeManager: simulated time for a host, and a stopwatch for frame times.
//
// The clock plays, pauses, stops and is set to a time; it runs at any non-negative multiple of
// real time. Nothing ticks in the background: every reading in Play works the time out from
// the high-resolution counter as (counter - m_startCount) / m_frequency * m_speedRate +
// m_baseTime, so the resolution is that of the counter and the time has the precision of a
// double. A change of rate while playing applies to the whole stretch since m_startCount.
//
// Every change of mode ends with a message to the callback (if one is set), on the caller's
// thread: 0 Play, 1 Stop, 2 Pause; the code is the mode at the end of the call, sent also when
// the call changed nothing. Codes 3, 4 and 5 come from CzbTimeManagerAdv.
//
// The members are public and hosts may read them. Each one that the player thread of
// CzbTimeManagerAdv shares is a lock-free atomic of the width of the plain type, so a plain
// assignment and a plain read work as they would on the plain type, and no operation waits.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <atomic>
#include <cstdint>

namespace zbBase {

class ZB_API CzbTimeManager {
public:
    enum PlayMode { Play = 0, Stop = 1, Pause = 2 };
    // void callback(int message, void* user); user is m_msgUser.
    typedef void (*MsgCallback)(int, void*);

    CzbTimeManager();
    // Copies every member, callback and user value included.
    CzbTimeManager(const CzbTimeManager& other);
    CzbTimeManager& operator=(const CzbTimeManager& other);
    virtual ~CzbTimeManager();

    virtual void SetPlay();
    virtual void SetStop();
    // Sets the simulated time to msec / 1000 seconds; the mode stays and no message is sent.
    virtual void SetTime(int msec);
    virtual void SetPause();
    // GetTime(int*, int*, int*, int*): the time split into parts, each truncated toward zero
    // (a negative time gives parts that are negative or zero); reads the time through
    // GetTime(0). GetTime(int): seconds if unit is 0, milliseconds otherwise; in Play this
    // moves m_endCount and m_currentTime.
    // The table of virtual functions holds GetTime(int*, int*, int*, int*) before GetTime(int)
    // with every compiler. Visual C++ puts overloaded virtual functions into the table in the
    // reverse order of their declaration, so for it they are declared the other way round.
#if defined(_MSC_VER)
    virtual double GetTime(int unit);
    virtual void GetTime(int* hours, int* minutes, int* seconds, int* msec);
#else
    virtual void GetTime(int* hours, int* minutes, int* seconds, int* msec);
    virtual double GetTime(int unit);
#endif
    virtual PlayMode GetPlayMode();
    // A negative rate is ignored; 0 freezes the time while the mode stays Play.
    virtual void SetSpeedRate(double rate);
    virtual double GetSpeedRate();

    // A null function turns messages off.
    void setMsgCallbackFunc(void (*fn)(int, void*), void* user);
    // Back to the start values; m_currentTime, the callback and the user value stay, and no
    // message is sent.
    void SetInit();
    // Stopwatch. It shares m_startCount and m_endCount with the clock: SetBegin during Play
    // restarts the stretch, and a reading in Play moves m_endCount.
    void SetBegin();
    void SetEnd();
    double GetRunTimeSec();
    double GetRunTimeMsec();
    // Positive infinity when no time has been measured.
    double GetFrameRate();

    std::atomic<int64_t> m_frequency;  // counter ticks per second; 1 until first read
    std::atomic<int64_t> m_startCount; // counter value at which the running stretch began
    std::atomic<int64_t> m_endCount;   // counter value of the latest reading
    std::atomic<double> m_baseTime;    // simulated seconds at m_startCount
    std::atomic<double> m_currentTime; // simulated seconds at the latest reading
    std::atomic<PlayMode> m_playMode;  // Stop at start
    std::atomic<double> m_speedRate;   // simulated seconds per real second
    std::atomic<void*> m_msgUser;      // handed back to the callback
    std::atomic<MsgCallback> m_msgCallback;
    int m_spare; // read by no operation; copies carry it

protected:
    // Sends a message if a callback is set.
    void sendMessage(int message);
    // Current value of the high-resolution counter.
    static int64_t readCounter();
    static int64_t readFrequency();
};

} // namespace zbBase
