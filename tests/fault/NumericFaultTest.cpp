// Hostile numbers: every calculation ends soon and keeps its memory bounded, whatever it is
// given.
#include <zbBase/numeric/CzbDE.h>
#include <zbBase/numeric/detail/zbMissileRun.h>

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
using namespace zbBase;

namespace {

// Ends the test program when a case runs past its deadline, so a calculation that would go
// on for days fails at once instead of holding up the suite.
class Deadline {
public:
    explicit Deadline(int seconds)
        : m_watch([this, seconds] {
              std::unique_lock<std::mutex> lock(m_mutex);
              if (!m_done.wait_for(lock, std::chrono::seconds(seconds),
                                   [this] { return m_over; })) {
                  std::fprintf(stderr, "deadline of %d s passed\n", seconds);
                  std::_Exit(3);
              }
          }) {}
    ~Deadline() {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_over = true;
        }
        m_done.notify_one();
        m_watch.join();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_done;
    bool m_over = false;
    std::thread m_watch;
};

} // namespace

TEST(NumericFault, MissileEndsSoonAtAnyFrameRate) {
    Deadline deadline(30);
    CzbDE de;
    // Steps of 0: the heading never winds up and its band never captures, so only the pass
    // bound ends these runs. A frame rate of -1 is read as 4294967295.
    for (int rate : {INT_MAX, -1, INT_MIN, 1000000, 277, 30, 1}) {
        detail::MissileStart start{0, 0, 0, 0, 0, 0, 0, 0, -100, 0, 300, 0, rate};
        detail::MissileRun run = detail::flyMissile(de, start);
        EXPECT_FALSE(run.captured) << rate;
        const uint64_t hour = 3600ull * static_cast<unsigned int>(rate);
        const uint64_t expected = hour < 100000 ? 100000 : hour > 1000000 ? 1000000 : hour;
        EXPECT_EQ(run.passes, expected) << rate;
    }
    EXPECT_FALSE(de.missilesim(0, 0, 0, 0, 0, 0, 0, 0, -100, 0, 300, 0, INT_MAX));
    EXPECT_FALSE(de.missilesim(0, 0, 0, 0, 0, 0, 0, 0, -100, 0, 300, 0, -1));
    // The worked cases still end as they did.
    EXPECT_TRUE(de.missilesim(0, 0, 0, 0, 0, 5, 5, 0, -1000, 0, 300, 0, 30));
    EXPECT_FALSE(de.missilesim(0, 0, 0, 0, 0, 1, 0, 0, -100, 0, 300, 0, 30));
    // Huge steps, speeds and accelerations end within the same bound.
    EXPECT_LE(
        detail::flyMissile(de, {0, 0, 0, 0, 0, 0, 1e6, 1e5, 1e5, 1e5, 1e300, 1e300, -1}).passes,
        1000000u);
}
