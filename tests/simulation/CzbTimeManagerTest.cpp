#include <zbBase/simulation/CzbTimeManager.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using zbBase::CzbTimeManager;

namespace {

void record(int message, void* user) {
    static_cast<std::vector<int>*>(user)->push_back(message);
}

// Moves the start of the running stretch back, as if `seconds` of real time had passed.
void runFor(CzbTimeManager& clock, double seconds) {
    clock.m_startCount = clock.m_startCount - static_cast<int64_t>(seconds * clock.m_frequency);
}

std::vector<int> parts(CzbTimeManager& clock) {
    int h = -1, m = -1, s = -1, ms = -1;
    clock.GetTime(&h, &m, &s, &ms);
    return {h, m, s, ms};
}

} // namespace

TEST(CzbTimeManager, StateTableAndMessages) {
    CzbTimeManager clock;
    EXPECT_EQ(clock.GetTime(0), 0.0);
    EXPECT_EQ(clock.GetRunTimeSec(), 0.0);
    EXPECT_EQ(clock.m_frequency, 1);
    EXPECT_TRUE(std::isinf(clock.GetFrameRate()));
    std::vector<int> messages;
    clock.setMsgCallbackFunc(record, &messages);

    clock.SetPause(); // from Stop: nothing changes, message of the mode
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Stop);
    clock.SetStop();
    clock.SetPlay();
    const int64_t start = clock.m_startCount;
    EXPECT_GT(clock.m_frequency, 1);
    clock.SetPlay(); // does not restart the stretch
    EXPECT_EQ(clock.m_startCount, start);
    runFor(clock, 2.0);
    clock.SetPause();
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Pause);
    const double paused = clock.GetTime(0);
    EXPECT_NEAR(paused, 2.0, 0.5);
    EXPECT_EQ(clock.m_baseTime, paused);
    EXPECT_EQ(clock.m_startCount, clock.m_endCount);
    EXPECT_EQ(clock.GetTime(1), paused * 1000.0);
    clock.SetPause(); // from Pause: nothing changes
    EXPECT_EQ(clock.GetTime(0), paused);
    clock.SetPlay(); // goes on from the paused time
    EXPECT_GE(clock.GetTime(0), paused);
    EXPECT_LT(clock.GetTime(0), paused + 1.0);
    clock.SetStop();
    EXPECT_EQ(clock.GetTime(0), 0.0);
    EXPECT_EQ(clock.m_baseTime, 0.0);
    EXPECT_EQ(messages, (std::vector<int>{1, 1, 0, 0, 2, 2, 0, 1}));
    clock.setMsgCallbackFunc(nullptr, nullptr);
    clock.SetPlay();
    EXPECT_EQ(messages.size(), 8u);
}

TEST(CzbTimeManager, SpeedRate) {
    CzbTimeManager clock, changed;
    clock.SetSpeedRate(2.0);
    clock.SetPlay();
    runFor(clock, 3.0);
    EXPECT_NEAR(clock.GetTime(0), 6.0, 0.5);

    changed.SetPlay();
    runFor(changed, 3.0);
    EXPECT_NEAR(changed.GetTime(0), 3.0, 0.5);
    changed.SetSpeedRate(2.0); // applies to the whole stretch
    EXPECT_NEAR(changed.GetTime(0), 6.0, 1.0);
    changed.SetSpeedRate(-1.0);
    changed.SetSpeedRate(NAN);
    EXPECT_EQ(changed.GetSpeedRate(), 2.0);
    changed.SetSpeedRate(0.0);
    EXPECT_EQ(changed.GetTime(0), changed.m_baseTime);
    EXPECT_EQ(changed.GetPlayMode(), CzbTimeManager::Play);
}

TEST(CzbTimeManager, SetTimeAndParts) {
    CzbTimeManager clock;
    std::vector<int> messages;
    clock.setMsgCallbackFunc(record, &messages);
    clock.SetTime(90500);
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Stop);
    EXPECT_EQ(parts(clock), (std::vector<int>{0, 1, 30, 500}));
    clock.SetPlay();
    EXPECT_GE(clock.GetTime(0), 90.5);
    EXPECT_LT(clock.GetTime(0), 91.5);

    clock.SetStop();
    clock.SetTime(3723250); // 1 h 2 min 3.25 s
    EXPECT_EQ(parts(clock), (std::vector<int>{1, 2, 3, 250}));
    clock.SetTime(-61500); // negative: parts negative or zero
    EXPECT_EQ(parts(clock), (std::vector<int>{0, -1, -1, -500}));
    EXPECT_EQ(clock.GetTime(0), -61.5);
}

TEST(CzbTimeManager, SetInitStopwatchAndCopy) {
    CzbTimeManager clock;
    std::vector<int> messages;
    clock.setMsgCallbackFunc(record, &messages);
    clock.SetTime(4000);
    clock.SetSpeedRate(3.0);
    clock.SetPlay();
    clock.m_spare = 7;
    CzbTimeManager copy(clock), assigned;
    assigned = clock;
    EXPECT_EQ(copy.GetPlayMode(), CzbTimeManager::Play);
    EXPECT_EQ(copy.m_startCount, clock.m_startCount);
    EXPECT_EQ(copy.m_spare, 7);
    EXPECT_EQ(assigned.m_msgUser.load(), &messages);
    EXPECT_EQ(assigned.GetSpeedRate(), 3.0);

    clock.SetPause();
    const double shown = clock.GetTime(0);
    messages.clear();
    clock.SetInit();
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Stop);
    EXPECT_EQ(clock.GetSpeedRate(), 1.0);
    EXPECT_EQ(clock.m_frequency, 1);
    EXPECT_EQ(clock.m_baseTime, 0.0);
    EXPECT_EQ(clock.GetTime(0), shown); // still shows the last time

    clock.SetBegin();
    clock.m_endCount = clock.m_startCount + clock.m_frequency / 4;
    EXPECT_DOUBLE_EQ(clock.GetRunTimeSec(), 0.25);
    EXPECT_DOUBLE_EQ(clock.GetRunTimeMsec(), 250.0);
    EXPECT_DOUBLE_EQ(clock.GetFrameRate(), 4.0);
    clock.SetEnd();
    EXPECT_GE(clock.GetRunTimeSec(), 0.0);
}
