#include <zbBase/numeric/CzbDE.h>
#include <zbBase/numeric/detail/zbMissileRun.h>
#include <zbBase/numeric/detail/zbTruncate.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

using namespace zbBase;

namespace {
detail::MissileStart start(double tx, double ty, double tz, double hs, double es) {
    return detail::MissileStart{0, 0, 0, 0, 0, hs, es, tx, ty, tz, 300, 0, 30};
}
} // namespace

TEST(MissileRun, PassCountsOfTheWorkedCases) {
    CzbDE de;
    detail::MissileRun run = detail::flyMissile(de, start(0, 100, 0, 5, 5));
    EXPECT_TRUE(run.captured);
    EXPECT_EQ(run.passes, 1u);

    run = detail::flyMissile(de, start(0, -1000, 0, 5, 5));
    EXPECT_TRUE(run.captured);
    EXPECT_EQ(run.passes, 38u);
    EXPECT_NEAR(run.heading, 166.9, 0.05);

    // The heading's capture band is 2 * elevationStep = 0: the missile circles forever.
    run = detail::flyMissile(de, start(0, -100, 0, 1, 0));
    EXPECT_FALSE(run.captured);
    EXPECT_EQ(run.passes, 1417u);
    EXPECT_GT(std::fabs(run.heading), 720.0);
}

TEST(Truncation, MatchesTheHardwareConversionEverywhere) {
    EXPECT_EQ(detail::truncToInt(2.9), 2);
    EXPECT_EQ(detail::truncToInt(-2.9), -2);
    EXPECT_EQ(detail::truncToInt(2147483647.9), INT_MAX);
    EXPECT_EQ(detail::truncToInt(-2147483648.9), INT_MIN);
    EXPECT_EQ(detail::truncToInt(2147483648.0), INT_MIN);
    EXPECT_EQ(detail::truncToInt(std::nan("")), INT_MIN);
    EXPECT_EQ(detail::truncToInt(-std::numeric_limits<double>::infinity()), INT_MIN);
}
