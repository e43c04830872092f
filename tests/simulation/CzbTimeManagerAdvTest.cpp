#include <zbBase/simulation/CzbTimeManagerAdv.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

using zbBase::CzbTimeManager;
using zbBase::CzbTimeManagerAdv;

namespace {

// Messages with whether they came on the thread that made the recorder. Given the clock, it
// reads the time inside the end message, as a host that logs its final time does.
struct Recorder {
    struct Entry {
        int message;
        bool onHostThread;
    };
    static void callback(int message, void* user) {
        Recorder* self = static_cast<Recorder*>(user);
        if (message == 4 && self->clock != nullptr) {
            self->playingAtEnd = self->clock->GetPlayMode() == CzbTimeManager::Play;
            self->timeAtEnd = self->clock->GetTime(0);
        }
        std::lock_guard<std::mutex> lock(self->mutex);
        self->all.push_back({message, std::this_thread::get_id() == self->host});
    }
    std::vector<Entry> entries() {
        std::lock_guard<std::mutex> lock(mutex);
        return all;
    }
    int count(int message) {
        const std::vector<Entry> e = entries();
        return int(
            std::count_if(e.begin(), e.end(), [&](Entry x) { return x.message == message; }));
    }
    void clear() {
        std::lock_guard<std::mutex> lock(mutex);
        all.clear();
    }

    CzbTimeManagerAdv* clock = nullptr;
    std::atomic<bool> playingAtEnd{false};
    std::atomic<double> timeAtEnd{0.0};
    std::mutex mutex;
    std::vector<Entry> all;
    const std::thread::id host = std::this_thread::get_id();
};

void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

// Polls for up to 20 s: a slow or instrumented run never fails on time alone.
template <class Pred> bool waitFor(Pred pred) {
    for (int i = 0; i < 4000 && !pred(); ++i) {
        sleepMs(5);
    }
    return pred();
}

} // namespace

TEST(CzbTimeManagerAdv, PlayerTicksWhilePlaying) {
    Recorder rec; // outlives the clock and its player
    CzbTimeManagerAdv clock;
    EXPECT_EQ(clock.m_endTime, -1.0);
    EXPECT_FALSE(clock.m_inCallback);
    ASSERT_TRUE(waitFor([&] { return clock.m_threadState == 1; }));
    clock.setMsgCallbackFunc(Recorder::callback, &rec);
    sleepMs(100);
    EXPECT_EQ(rec.count(3), 0); // no ticks while stopped
    clock.SetPlay();
    ASSERT_TRUE(waitFor([&] { return rec.count(3) >= 3; }));
    clock.SetPlay(); // while playing: no message, no restart
    clock.SetPause();
    sleepMs(100); // a last tick may still come after the pause
    const int ticks = rec.count(3);
    sleepMs(200);
    EXPECT_EQ(rec.count(3), ticks);

    // Play and pause on the host's thread, ticks on the player's.
    std::vector<Recorder::Entry> e = rec.entries();
    ASSERT_GE(e.size(), 5u);
    EXPECT_EQ(e[0].message, 0);
    EXPECT_TRUE(e[0].onHostThread);
    for (size_t i = 1; i < e.size(); ++i) {
        EXPECT_EQ(e[i].message, e[i].onHostThread ? 2 : 3) << i;
    }
    EXPECT_EQ(rec.count(2), 1);
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Pause);

    rec.clear();
    clock.SetTime(2000);
    ASSERT_EQ(rec.entries().size(), 1u);
    EXPECT_EQ(rec.entries()[0].message, 5);
    EXPECT_EQ(clock.GetTime(0), 2.0);
    clock.SetPlay(); // from a pause: goes on, no restart
    EXPECT_GE(clock.GetTime(0), 2.0);
}

TEST(CzbTimeManagerAdv, RunEndsExactlyAtEndTimeAndRestarts) {
    Recorder rec;
    CzbTimeManagerAdv clock;
    rec.clock = &clock;
    clock.setMsgCallbackFunc(Recorder::callback, &rec);
    clock.m_endTime = 0.5;
    clock.SetSpeedRate(5.0);
    clock.SetPlay();
    ASSERT_TRUE(waitFor([&] { return rec.count(4) == 1; }));
    sleepMs(200);
    EXPECT_EQ(rec.count(4), 1); // once, although the callback read the time past the end
    EXPECT_TRUE(rec.playingAtEnd);
    EXPECT_GT(rec.timeAtEnd, 0.5);
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Pause);
    EXPECT_EQ(clock.GetTime(0), 0.5);
    EXPECT_GE(clock.m_baseTime, 0.5);
    std::vector<Recorder::Entry> e = rec.entries();
    EXPECT_EQ(e.front().message, 0);
    EXPECT_EQ(e.back().message, 4);
    EXPECT_FALSE(e.back().onHostThread);

    rec.clear();
    clock.SetPlay(); // from the end: stop, then play from 0
    e = rec.entries();
    ASSERT_GE(e.size(), 2u);
    EXPECT_EQ(e[0].message, 1);
    EXPECT_EQ(e[1].message, 0);
    EXPECT_LT(clock.GetTime(0), 0.5);
    ASSERT_TRUE(waitFor([&] { return rec.count(4) == 1; }));

    // A time set past the end fires the end at the next pass, whatever the mode.
    rec.clear();
    clock.SetStop();
    clock.SetTime(7000);
    ASSERT_TRUE(waitFor([&] { return rec.count(4) == 1; }));
    EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Pause);
    EXPECT_EQ(clock.GetTime(0), 0.5);

    // No end test unless the end time is above 0.
    for (double end : {-1.0, 0.0}) {
        rec.clear();
        clock.m_endTime = end;
        clock.SetTime(5000);
        clock.SetPlay();
        ASSERT_TRUE(waitFor([&] { return rec.count(3) >= 3; }));
        EXPECT_EQ(rec.count(4), 0);
        EXPECT_EQ(clock.GetPlayMode(), CzbTimeManager::Play);
    }
}

TEST(CzbTimeManagerAdv, CopyHasNoPlayerAndHostCanEndThePlayer) {
    CzbTimeManagerAdv clock;
    ASSERT_TRUE(waitFor([&] { return clock.m_threadState == 1; }));
    clock.m_endTime = 1000.0;
    clock.SetPlay();
    CzbTimeManagerAdv copy(clock);
    EXPECT_EQ(copy.m_threadState, 1);
    EXPECT_EQ(copy.GetPlayMode(), CzbTimeManager::Play);
    EXPECT_EQ(copy.m_startCount, clock.m_startCount.load());
    EXPECT_EQ(copy.m_endTime, 1000.0);
    Recorder rec;
    copy.setMsgCallbackFunc(Recorder::callback, &rec);
    copy.m_endTime = 0.001;
    sleepMs(200);
    EXPECT_TRUE(rec.entries().empty()); // no ticks, no end test

    // Assigning a stopped state makes the target's own player leave; so does a host's write.
    CzbTimeManagerAdv target;
    ASSERT_TRUE(waitFor([&] { return target.m_threadState == 1; }));
    CzbTimeManagerAdv idle(clock);
    idle.m_threadState = 0;
    target = idle;
    EXPECT_EQ(target.GetPlayMode(), CzbTimeManager::Play);
    EXPECT_TRUE(waitFor([&] { return target.m_threadState == 0; }));
    clock.m_threadState = 5;
    EXPECT_TRUE(waitFor([&] { return clock.m_threadState == 0; }));
}

TEST(CzbTimeManagerAdv, ConstructAndDestroyWhilePlaying) {
    for (int i = 0; i < 30; ++i) {
        Recorder rec;
        {
            CzbTimeManagerAdv clock;
            clock.setMsgCallbackFunc(Recorder::callback, &rec);
            clock.m_endTime = (i % 3 == 0) ? 0.001 : 100.0;
            clock.SetPlay();
            if (i % 2 == 0) {
                sleepMs(i % 7);
            }
        }
        const size_t after = rec.entries().size();
        sleepMs(i % 5);
        EXPECT_EQ(rec.entries().size(), after); // nothing arrives after destruction
    }
}

namespace {
struct SelfDestroy {
    CzbTimeManagerAdv* clock;
    int onMessage;
    std::atomic<bool> hostDone{false}; // the host no longer touches the clock
    std::atomic<bool> done{false};
};

void destroyOnMessage(int message, void* user) {
    SelfDestroy* s = static_cast<SelfDestroy*>(user);
    if (message == s->onMessage && s->hostDone && !s->done) {
        delete s->clock;
        s->done = true;
    }
}
} // namespace

TEST(CzbTimeManagerAdv, DestroyedFromItsOwnCallbackOnThePlayer) {
    for (int code : {3, 4}) {
        SelfDestroy s;
        s.onMessage = code;
        s.clock = new CzbTimeManagerAdv;
        s.clock->setMsgCallbackFunc(destroyOnMessage, &s);
        s.clock->SetPlay();
        s.hostDone = true;
        if (code == 4) {
            s.clock->m_endTime = 0.05; // the last touch: the end that destroys the clock follows
        }
        ASSERT_TRUE(waitFor([&] { return s.done.load(); }));
        sleepMs(100); // the player leaves without touching the freed object
    }
}
