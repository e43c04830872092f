// A system that refuses to start one more thread: a clock whose player cannot start is a
// plain clock without ticks or end test, and its destruction does not wait for a player that
// never ran. The test program puts its own pthread_create in front of the system's; while a
// ThreadsRefused is in scope it fails as a system at its thread limit does. POSIX only.
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

class ThreadsRefused {
public:
    ThreadsRefused() { s_refuseThreads = true; }
    ~ThreadsRefused() { s_refuseThreads = false; }
    ThreadsRefused(const ThreadsRefused&) = delete;
    ThreadsRefused& operator=(const ThreadsRefused&) = delete;
};

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

namespace {
std::vector<int> s_messages;
void record(int message, void*) {
    s_messages.push_back(message);
}
} // namespace

TEST(SimulationFault, ClockWithoutItsPlayerIsAPlainClock) {
    const auto start = std::chrono::steady_clock::now();
    {
        ThreadsRefused refused;
        CzbTimeManagerAdv clock;
        EXPECT_EQ(clock.m_threadState, 0);
        s_messages.clear();
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
