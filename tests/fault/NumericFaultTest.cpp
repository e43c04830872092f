// Hostile numbers: every calculation ends soon and keeps its memory bounded, whatever it is
// given. ctest holds these cases to deadlines of their own (cmake/FaultDeadlines.cmake).
#include "support/zbInterpolationSamples.h"
#include "support/zbMemoryLimit.h"

#include <zbBase/numeric/CzbDE.h>
#include <zbBase/numeric/detail/zbMissileRun.h>

#include <gtest/gtest.h>

#include <climits>

using namespace zbBase;

namespace {

const int kMaxSamples = 1 << 24;

CzbInterpolation line(double x0, double x1) {
    return zbtest::curve({{x0, x0}, {x1, x1}});
}

} // namespace

TEST(NumericFault, MissileEndsSoonAtAnyFrameRate) {
    CzbDE de;
    // Steps of 0: the heading never winds up and its band never captures, so only the pass
    // bound, one simulated hour within 10^5 to 10^6 passes, ends these runs. A frame rate of
    // -1 is read as 4294967295.
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
    // Huge steps, speeds and accelerations end within the same bound.
    EXPECT_LE(
        detail::flyMissile(de, {0, 0, 0, 0, 0, 0, 1e6, 1e5, 1e5, 1e5, 1e300, 1e300, -1}).passes,
        1000000u);
}

TEST(NumericFault, InterpolationStopsAtItsSampleCeiling) {
    // Linear over [0, 1e12] and on to 2e12: whole abscissas up to the ceiling, not one more.
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

#if !defined(_WIN32)

TEST(NumericFault, InterpolationKeepsWhatItMadeWhenMemoryRunsOut) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    // 64 MiB of room, far less than a full list of samples: every calculation stops where
    // memory ends, keeps its samples in order, and throws nothing (an exception gives 125).
    const int rc = zbtest::withAddressSpace(zbtest::addressSpace() + (64 << 20), [] {
        int failed = 0;
        auto kept = [&failed](CzbInterpolation& curve, double lastX) {
            const int n = curve.GetDataNum();
            failed += n < 1000 || n >= kMaxSamples || curve.GetData(n - 1).x != lastX * (n - 1);
        };
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
        return failed;
    });
    EXPECT_EQ(rc, 0);
}

#endif
