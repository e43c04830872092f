#include "zbBase/simulation/CzbTimeManagerAdv.h"

#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpThread.h"

namespace zbBase {

static_assert(sizeof(std::atomic<int>) == sizeof(int) && std::atomic<int>::is_always_lock_free,
              "the thread state must be a lock-free atomic of its own width");
static_assert(sizeof(std::atomic<bool>) == sizeof(bool) && std::atomic<bool>::is_always_lock_free,
              "the callback flag must be a lock-free atomic of its own width");
static_assert(sizeof(void*) != 8 || sizeof(CzbTimeManagerAdv) == 104,
              "member layout of CzbTimeManagerAdv changed");

namespace {

const DWORD kPassMilliseconds = 30;

// The object that the calling thread plays, and whether that object has been destroyed from
// inside one of its callbacks on this thread. After each callback the player looks here
// before it touches the object again.
thread_local CzbTimeManagerAdv* t_playedObject = nullptr;
thread_local bool t_playedObjectGone = false;

bool playedObjectGone() {
    if (t_playedObjectGone) {
        t_playedObject = nullptr;
        t_playedObjectGone = false;
        return true;
    }
    return false;
}

} // namespace

CzbTimeManagerAdv::CzbTimeManagerAdv()
    : m_endTime(-1.0), m_threadState(0), m_inCallback(false), m_playerAlive(true),
      m_playerStop(false) {
    if (zbp::_beginthread(threadPlayer, 0, this) == static_cast<uintptr_t>(-1)) {
        m_playerAlive = false;
    }
}

CzbTimeManagerAdv::CzbTimeManagerAdv(const CzbTimeManagerAdv& other)
    : CzbTimeManager(other), m_endTime(other.m_endTime.load()),
      m_threadState(other.m_threadState.load()), m_inCallback(other.m_inCallback.load()),
      m_playerAlive(false), m_playerStop(false) {}

CzbTimeManagerAdv& CzbTimeManagerAdv::operator=(const CzbTimeManagerAdv& other) {
    CzbTimeManager::operator=(other);
    m_endTime = other.m_endTime.load();
    m_threadState = other.m_threadState.load();
    m_inCallback = other.m_inCallback.load();
    return *this;
}

CzbTimeManagerAdv::~CzbTimeManagerAdv() {
    if (t_playedObject == this) {
        // Destroyed from a callback on our own player thread: waiting here would wait for
        // ourselves. The player notices when the callback returns and leaves at once.
        t_playedObjectGone = true;
        return;
    }
    if (!m_playerAlive.load(std::memory_order_acquire)) {
        return;
    }
    m_playerStop = true;
    m_threadState = 2;
    // A static clock of a host's DLL is destroyed at the end of the process, after the system
    // has ended the player where it stood: it will never say goodbye then.
    while (m_playerAlive.load(std::memory_order_acquire) && !zbp::processExiting()) {
        zbp::Sleep(1);
    }
}

void CzbTimeManagerAdv::threadPlayer(void* self) {
    CzbTimeManagerAdv* clock = static_cast<CzbTimeManagerAdv*>(self);
    t_playedObject = clock;
    t_playedObjectGone = false;
    clock->m_threadState = 1;
    while (!clock->m_playerStop.load()) {
        const double endTime = clock->m_endTime.load();
        if (endTime > 0.0) {
            const double t = clock->GetTime(0);
            if (t > endTime) {
                clock->setEnd();
                if (playedObjectGone()) {
                    return;
                }
            }
        }
        if (clock->m_msgCallback.load() != nullptr && clock->m_playMode.load() == Play) {
            clock->m_inCallback = true;
            clock->sendMessage(3);
            if (playedObjectGone()) {
                return;
            }
            clock->m_inCallback = false;
        }
        zbp::Sleep(kPassMilliseconds);
        if (clock->m_threadState.load() != 1) {
            break;
        }
    }
    clock->m_threadState = 0;
    t_playedObject = nullptr;
    // The last access to the object: from here the destructor may release it.
    clock->m_playerAlive.store(false, std::memory_order_release);
}

void CzbTimeManagerAdv::setEnd() {
    const int64_t end = readCounter();
    m_endCount = end;
    m_baseTime = m_baseTime.load() + static_cast<double>(end - m_startCount.load()) /
                                         static_cast<double>(m_frequency.load()) *
                                         m_speedRate.load();
    m_startCount = end;
    const double endTime = m_endTime.load();
    m_currentTime = endTime;
    sendMessage(4);
    if (t_playedObjectGone) {
        return;
    }
    // A reading in Play during the callback shows the time really reached, which lies past
    // the end; the clock is fixed at the end again so that the end message comes only once.
    if (m_playMode.load() == Play && m_currentTime.load() > endTime) {
        m_currentTime = endTime;
    }
    m_playMode = Pause;
}

void CzbTimeManagerAdv::SetPlay() {
    if (m_playMode.load() == Play) {
        return;
    }
    if (m_endTime.load() == m_currentTime.load()) {
        SetStop();
    }
    m_startCount = readCounter();
    m_frequency = readFrequency();
    m_playMode = Play;
    sendMessage(m_playMode.load());
}

void CzbTimeManagerAdv::SetStop() {
    CzbTimeManager::SetStop();
}

void CzbTimeManagerAdv::SetTime(int msec) {
    CzbTimeManager::SetTime(msec);
    sendMessage(5);
}

} // namespace zbBase
