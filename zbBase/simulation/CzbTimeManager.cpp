#include "zbBase/simulation/CzbTimeManager.h"

#include "zbBase/numeric/detail/zbTruncate.h"
#include "zbBase/platform/detail/zbpClock.h"

namespace zbBase {

// The player thread reads and writes these members while the host does; they must be plain
// lock-free atomics of the plain type's width, or the layout that hosts rely on would change.
static_assert(sizeof(std::atomic<int64_t>) == sizeof(int64_t) &&
                  std::atomic<int64_t>::is_always_lock_free,
              "64-bit counters must be lock-free atomics of their own width");
static_assert(sizeof(std::atomic<double>) == sizeof(double) &&
                  std::atomic<double>::is_always_lock_free,
              "times must be lock-free atomics of their own width");
static_assert(sizeof(std::atomic<CzbTimeManager::PlayMode>) == sizeof(CzbTimeManager::PlayMode) &&
                  std::atomic<CzbTimeManager::PlayMode>::is_always_lock_free,
              "the mode must be a lock-free atomic of its own width");
static_assert(sizeof(std::atomic<void*>) == sizeof(void*) &&
                  std::atomic<void*>::is_always_lock_free,
              "the user value must be a lock-free atomic of its own width");
static_assert(sizeof(std::atomic<CzbTimeManager::MsgCallback>) ==
                      sizeof(CzbTimeManager::MsgCallback) &&
                  std::atomic<CzbTimeManager::MsgCallback>::is_always_lock_free,
              "the callback must be a lock-free atomic of its own width");
static_assert(sizeof(void*) != 8 || sizeof(CzbTimeManager) == 88,
              "member layout of CzbTimeManager changed");

CzbTimeManager::CzbTimeManager()
    : m_frequency(1), m_startCount(0), m_endCount(0), m_baseTime(0.0), m_currentTime(0.0),
      m_playMode(Stop), m_speedRate(1.0), m_msgUser(nullptr), m_msgCallback(nullptr), m_spare(0) {}

CzbTimeManager::CzbTimeManager(const CzbTimeManager& other)
    : m_frequency(other.m_frequency.load()), m_startCount(other.m_startCount.load()),
      m_endCount(other.m_endCount.load()), m_baseTime(other.m_baseTime.load()),
      m_currentTime(other.m_currentTime.load()), m_playMode(other.m_playMode.load()),
      m_speedRate(other.m_speedRate.load()), m_msgUser(other.m_msgUser.load()),
      m_msgCallback(other.m_msgCallback.load()), m_spare(other.m_spare) {}

CzbTimeManager& CzbTimeManager::operator=(const CzbTimeManager& other) {
    m_frequency = other.m_frequency.load();
    m_startCount = other.m_startCount.load();
    m_endCount = other.m_endCount.load();
    m_baseTime = other.m_baseTime.load();
    m_currentTime = other.m_currentTime.load();
    m_playMode = other.m_playMode.load();
    m_speedRate = other.m_speedRate.load();
    m_msgUser = other.m_msgUser.load();
    m_msgCallback = other.m_msgCallback.load();
    m_spare = other.m_spare;
    return *this;
}

CzbTimeManager::~CzbTimeManager() {}

int64_t CzbTimeManager::readCounter() {
    LARGE_INTEGER value;
    value.QuadPart = 0;
    zbp::QueryPerformanceCounter(&value);
    return value.QuadPart;
}

int64_t CzbTimeManager::readFrequency() {
    LARGE_INTEGER value;
    value.QuadPart = 1;
    zbp::QueryPerformanceFrequency(&value);
    return value.QuadPart;
}

void CzbTimeManager::sendMessage(int message) {
    MsgCallback callback = m_msgCallback.load();
    if (callback != nullptr) {
        callback(message, m_msgUser.load());
    }
}

void CzbTimeManager::SetPlay() {
    if (m_playMode.load() != Play) {
        // The counter and frequency go in before the mode, so that a reading on another thread
        // that sees Play never works with the stretch of an earlier run.
        m_startCount = readCounter();
        m_frequency = readFrequency();
        m_playMode = Play;
    }
    sendMessage(m_playMode.load());
}

void CzbTimeManager::SetPause() {
    if (m_playMode.load() == Play) {
        m_playMode = Pause;
        const int64_t end = readCounter();
        m_endCount = end;
        const double t = static_cast<double>(end - m_startCount.load()) /
                             static_cast<double>(m_frequency.load()) * m_speedRate.load() +
                         m_baseTime.load();
        m_startCount = end;
        m_baseTime = t;
        m_currentTime = t;
    }
    sendMessage(m_playMode.load());
}

void CzbTimeManager::SetStop() {
    if (m_playMode.load() != Stop) {
        m_playMode = Stop;
        m_endCount = readCounter();
    }
    m_baseTime = 0.0;
    m_currentTime = 0.0;
    sendMessage(m_playMode.load());
}

void CzbTimeManager::SetTime(int msec) {
    const double t = msec / 1000.0;
    // The stretch restarts before the base moves, so that a concurrent reading in Play shows
    // the old base rather than the new base plus the old stretch.
    m_startCount = readCounter();
    m_frequency = readFrequency();
    m_baseTime = t;
    m_currentTime = t;
}

double CzbTimeManager::GetTime(int unit) {
    double t;
    if (m_playMode.load() == Play) {
        const int64_t end = readCounter();
        m_endCount = end;
        t = static_cast<double>(end - m_startCount.load()) /
                static_cast<double>(m_frequency.load()) * m_speedRate.load() +
            m_baseTime.load();
        m_currentTime = t;
    } else {
        t = m_currentTime.load();
    }
    return unit != 0 ? t * 1000.0 : t;
}

void CzbTimeManager::GetTime(int* hours, int* minutes, int* seconds, int* msec) {
    const double t = GetTime(0);
    const int32_t S = detail::truncToInt(t);
    *hours = detail::truncToInt(t / 3600.0);
    *minutes = (S - (S / 3600) * 3600) / 60;
    *seconds = S - (S / 60) * 60;
    *msec = detail::truncToInt((t - S) * 1000.0);
}

CzbTimeManager::PlayMode CzbTimeManager::GetPlayMode() {
    return m_playMode.load();
}

void CzbTimeManager::SetSpeedRate(double rate) {
    if (rate >= 0.0) {
        m_speedRate = rate;
    }
}

double CzbTimeManager::GetSpeedRate() {
    return m_speedRate.load();
}

void CzbTimeManager::setMsgCallbackFunc(void (*fn)(int, void*), void* user) {
    m_msgCallback = fn;
    m_msgUser = user;
}

void CzbTimeManager::SetInit() {
    m_frequency = 1;
    m_startCount = 0;
    m_endCount = 0;
    m_baseTime = 0.0;
    m_speedRate = 1.0;
    m_playMode = Stop;
}

void CzbTimeManager::SetBegin() {
    m_startCount = readCounter();
    m_frequency = readFrequency();
}

void CzbTimeManager::SetEnd() {
    m_endCount = readCounter();
}

double CzbTimeManager::GetRunTimeSec() {
    return static_cast<double>(m_endCount.load() - m_startCount.load()) /
           static_cast<double>(m_frequency.load());
}

double CzbTimeManager::GetRunTimeMsec() {
    return GetRunTimeSec() * 1000.0;
}

double CzbTimeManager::GetFrameRate() {
    return 1.0 / GetRunTimeSec();
}

} // namespace zbBase
