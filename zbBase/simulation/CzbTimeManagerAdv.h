// CzbTimeManagerAdv: a simulation clock with a player thread that ticks it and ends a run.
//
// The constructor starts the player. About every 30 ms (30 ms plus the time spent in the
// callback) the player
//  - tests the end: while m_endTime is above 0 and the time shown is strictly past it, the
//    clock is fixed at m_endTime, message 4 is sent (the mode is still Play during the call)
//    and the clock is left in Pause; the end comes once, and up to one pass late, with
//    m_baseTime holding the time really reached;
//  - sends message 3 while the mode is Play, with m_inCallback true during the call.
// Messages 3 and 4 arrive on the player thread, all others on the caller's thread. SetPlay
// from the end stops the clock first (message 1), so the run starts over from 0 (message 0).
// SetTime sends message 5.
//
// The player runs in every mode, until m_threadState is not 1; it writes 0 as it leaves. The
// destructor makes it leave and waits for that (up to one pass); destroying the object from
// its own callback on the player thread does not wait, and the player then leaves without
// touching the object again. A copy has no player. No clock operation waits or spins.
#pragma once

#include "zbBase/simulation/CzbTimeManager.h"

namespace zbBase {

class ZB_API CzbTimeManagerAdv : public CzbTimeManager {
public:
    CzbTimeManagerAdv();
    // Copies every member of both classes and starts no thread.
    CzbTimeManagerAdv(const CzbTimeManagerAdv& other);
    // Copies every member of both classes; this object's player, if it runs, sees the copied
    // m_threadState.
    CzbTimeManagerAdv& operator=(const CzbTimeManagerAdv& other);
    ~CzbTimeManagerAdv() override;

    void SetPlay() override;
    void SetStop() override;
    void SetTime(int msec) override;

    // The player thread's body; self is the object.
    static void threadPlayer(void* self);

    // End of the run in simulated seconds; tested only while above 0. Written by the host.
    std::atomic<double> m_endTime;
    // 1 while the player runs; any other value makes it leave; it writes 0 as it leaves.
    // 0 until the player begins, and when it could not be started.
    std::atomic<int> m_threadState;
    // True while the player is inside the callback for message 3.
    std::atomic<bool> m_inCallback;

protected:
    // Takes the clock to its end: folds the stretch into m_baseTime, shows m_endTime, sends
    // message 4, then pauses.
    void setEnd();

private:
    // Both live in what would otherwise be tail padding, so the size stays that of the
    // public layout. m_playerAlive is true from a successful start until the player's last
    // access to the object; m_playerStop asks the player to leave.
    std::atomic<bool> m_playerAlive;
    std::atomic<bool> m_playerStop;
};

} // namespace zbBase
