// A clock whose player thread cannot start (this program's pthread_create fails as at the
// system's thread limit while s_refuseThreads is set) is a plain clock. POSIX only.
#if !defined(_WIN32)

#include <zbBase/simulation/CzbTimeManagerAdv.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>
#include <thread>
#include <vector>

namespace {

std::atomic<bool> s_refuseThreads{false};
std::vector<int> s_messages;
void record(int message, void*) {
    s_messages.push_back(message);
}

} // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*start)(void*),
                              void* arg) {
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const Create real = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (s_refuseThreads.load() || real == nullptr) {
        return EAGAIN;
    }
    return real(thread, attr, start, arg);
}

using zbBase::CzbTimeManagerAdv;

TEST(SimulationFault, ClockWithoutItsPlayerIsAPlainClock) {
    const auto start = std::chrono::steady_clock::now();
    {
        s_refuseThreads = true;
        s_messages.clear();
        CzbTimeManagerAdv clock;
        EXPECT_EQ(clock.m_threadState, 0);
        clock.setMsgCallbackFunc(record, nullptr);
        clock.m_endTime = 0.001;
        clock.SetPlay();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        // Time runs, but nobody ticks and nobody ends the run.
        EXPECT_GT(clock.GetTime(0), 0.05);
        EXPECT_EQ(clock.GetPlayMode(), CzbTimeManagerAdv::Play);
        EXPECT_EQ(s_messages, std::vector<int>{0});
        EXPECT_EQ(clock.m_threadState, 0);
    }
    s_refuseThreads = false;
    // Destruction did not wait for a player that never ran.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));

    // Threads come again: the next clock has its player.
    CzbTimeManagerAdv clock;
    for (int i = 0; i < 500 && clock.m_threadState != 1; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(clock.m_threadState, 1);
}

#endif
