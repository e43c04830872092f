// Hostile numbers: every calculation ends soon and keeps its memory bounded, whatever it is
// given.
#include <zbBase/numeric/CzbDE.h>
#include <zbBase/numeric/CzbInterpolation.h>
#include <zbBase/numeric/detail/zbMissileRun.h>

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <thread>

// A limit on the address space shows memory running out; the sanitizers need far more
// address space than they use, so their builds leave that case out.
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ZBTEST_MEMORY_LIMIT 1
#endif

#if defined(ZBTEST_MEMORY_LIMIT)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

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

const int kMaxSamples = 1 << 24;

// Runs the body in a child process whose address space may grow by at most `bytes` more;
// the child's result, or -1 if it did not end normally.
#if defined(ZBTEST_MEMORY_LIMIT)
int withMemoryLimit(size_t bytes, const std::function<int()>& body) {
    pid_t child = fork();
    if (child < 0) {
        return -1;
    }
    if (child == 0) {
        long pages = 0;
        if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
            if (std::fscanf(statm, "%ld", &pages) != 1) {
                pages = 0;
            }
            std::fclose(statm);
        }
        rlimit limit{};
        limit.rlim_cur = limit.rlim_max = size_t(pages) * size_t(sysconf(_SC_PAGESIZE)) + bytes;
        if (pages == 0 || setrlimit(RLIMIT_AS, &limit) != 0) {
            _exit(125);
        }
        _exit(body());
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}
#endif

CzbInterpolation line(double x0, double x1) {
    CzbInterpolation curve;
    curve.AddPoint(x0, x0);
    curve.AddPoint(x1, x1);
    return curve;
}

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

TEST(NumericFault, InterpolationStopsAtItsSampleCeiling) {
    Deadline deadline(60);
    // Linear over [0, 1e12] and on to 2e12: whole abscissas up to the ceiling, and not one
    // more.
    CzbInterpolation curve = line(0.0, 1e12);
    curve.AddPoint(2e12, 0.0);
    curve.CaculationLinear(0);
    ASSERT_EQ(curve.GetDataNum(), kMaxSamples);
    EXPECT_EQ(curve.GetData(kMaxSamples - 1).x, kMaxSamples - 1.0);
    EXPECT_EQ(curve.GetData(kMaxSamples - 1).y, kMaxSamples - 1.0);
    curve.CaculationLinear(0); // a full list takes nothing more
    EXPECT_EQ(curve.GetDataNum(), kMaxSamples);
    curve = line(0.0, 1.5);
    curve.CaculationLinear(0);
    EXPECT_EQ(curve.GetDataNum(), 2); // (0, 0) and (1, 1)

    // A polynomial at a step of 1e-320, and over [0, 1e12] at a step of 1.
    curve = line(0.0, 1.0);
    curve.CaculationPolinomial(0.0, 1.0, 1e-320);
    ASSERT_EQ(curve.GetDataNum(), kMaxSamples);
    EXPECT_EQ(curve.GetData(kMaxSamples - 1).x, (kMaxSamples - 1) * 1e-320);
    curve.CaculationPolinomial(0.0, 1e12, 1.0);
    ASSERT_EQ(curve.GetDataNum(), kMaxSamples);
    EXPECT_EQ(curve.GetData(kMaxSamples - 1).y, kMaxSamples - 1.0);
    curve.CaculationPolinomial(0.0, 10.0, 1.0); // an ordinary call still makes all its samples
    EXPECT_EQ(curve.GetDataNum(), 11);

    // A spline with a billion steps per interval: the first intervals fill the list.
    curve = line(0.0, 1.0);
    curve.AddPoint(2.0, 0.0);
    curve.CaculationCubicSpline(1e9);
    ASSERT_EQ(curve.GetDataNum(), kMaxSamples);
    EXPECT_EQ(curve.GetData(kMaxSamples - 1).x, (kMaxSamples - 1) / 1e9);
    curve.CaculationCubicSpline(2147483647.0);
    EXPECT_EQ(curve.GetDataNum(), kMaxSamples);
    curve.CaculationCubicSpline(2.0);
    EXPECT_EQ(curve.GetDataNum(), 5);
}

#if defined(ZBTEST_MEMORY_LIMIT)

TEST(NumericFault, InterpolationKeepsWhatItMadeWhenMemoryRunsOut) {
    Deadline deadline(60);
    // 64 MiB of room: far less than a full list of samples. Every calculation stops where
    // memory ends, keeps its samples in order, and throws nothing.
    const int rc = withMemoryLimit(size_t(64) << 20, [] {
        int failed = 0;
        auto kept = [&failed](CzbInterpolation& curve, double lastX) {
            const int n = curve.GetDataNum();
            if (n < 1000 || n >= kMaxSamples || curve.GetData(n - 1).x != lastX * (n - 1)) {
                ++failed;
            }
        };
        try {
            CzbInterpolation curve = line(0.0, 1e12);
            curve.CaculationLinear(0);
            kept(curve, 1.0);
            curve.CaculationPolinomial(0.0, 1e12, 1.0);
            kept(curve, 1.0);
            curve.CaculationCubicSpline(1e9);
            kept(curve, 1e12 / 1e9);
            // A copy is whole or has no results; either way nothing is thrown.
            CzbInterpolation copy(curve);
            failed += copy.GetDataNum() != 0 && copy.GetDataNum() != curve.GetDataNum();
            copy.AddPoint(2e12, 0.0);
            copy = curve;
        } catch (...) {
            return 2;
        }
        return failed;
    });
    EXPECT_EQ(rc, 0);
}

#endif
