#include <zbBase/numeric/CzbRandom.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <set>

using zbBase::CzbRandom;

TEST(CzbRandom, GetRandomAccumulatesTimeIntoTheSeed) {
    for (int round = 0; round < 3; ++round) {
        const uint32_t before = static_cast<uint32_t>(CzbRandom::ms_randomseed);
        const uint32_t t0 = static_cast<uint32_t>(std::time(nullptr));
        CzbRandom::GetRandom(0, 0);
        const uint32_t t1 = static_cast<uint32_t>(std::time(nullptr));
        const uint32_t added = static_cast<uint32_t>(CzbRandom::ms_randomseed) - before;
        EXPECT_GE(added, t0);
        EXPECT_LE(added, t1);
    }
    // Wraps around instead of overflowing.
    CzbRandom::ms_randomseed = INT_MAX;
    CzbRandom::GetRandom(1, 2);
    EXPECT_LT(CzbRandom::ms_randomseed, 0);
}

TEST(CzbRandom, GetRandomDrawsInTheClosedRange) {
    bool seenLow = false, seenHigh = false;
    for (int i = 0; i < 400; ++i) {
        const int r = CzbRandom::GetRandom(3, -2); // either order
        EXPECT_GE(r, -2);
        EXPECT_LE(r, 3);
        seenLow = seenLow || r == -2;
        seenHigh = seenHigh || r == 3;
    }
    EXPECT_TRUE(seenLow);
    EXPECT_TRUE(seenHigh);
    EXPECT_EQ(CzbRandom::GetRandom(7, 7), 7);
    EXPECT_EQ(CzbRandom::GetRandom(INT_MIN, INT_MIN), INT_MIN);
    const int wide = CzbRandom::GetRandom(INT_MIN, INT_MAX);
    (void)wide; // any int is in range; it must simply not trap
}

TEST(CzbRandom, GaussianWithoutSpreadGivesTheMean) {
    // A term with a first draw of 0 is not finite and is left out: 5.0 or, rarely, 4.95.
    CzbRandom g;
    const double r = g.Gaussian(0.0f, 5.0f);
    EXPECT_TRUE(std::abs(r - 5.0) < 1e-9 || std::abs(r - 4.95) < 1e-9) << r;
}

namespace {

// Seeds the runtime's generator with `seed` the only way a host can: GetRandom adds the
// calendar time to ms_randomseed, so the seed is set to `seed` minus the time (again should
// the second turn in between). `value` receives what GetRandom(1, 6) returned.
bool seedThroughGetRandom(uint32_t seed, int* value = nullptr) {
    for (int attempt = 0; attempt < 5; ++attempt) {
        const uint32_t now = static_cast<uint32_t>(std::time(nullptr));
        CzbRandom::ms_randomseed = static_cast<int>(seed - now);
        const int drawn = CzbRandom::GetRandom(1, 6);
        if (static_cast<uint32_t>(CzbRandom::ms_randomseed) == seed) {
            if (value != nullptr) {
                *value = drawn;
            }
            return true;
        }
    }
    return false;
}

} // namespace

TEST(CzbRandom, GaussianAfterGetRandomStartsTheSequenceOfTheSeed) {
    // After a seed of 1 the runtime's generator gives 41, 18467, 6334, ... and Gaussian takes
    // exactly those: the range value of GetRandom comes from elsewhere. The same figures on
    // every platform.
    CzbRandom g;
    ASSERT_TRUE(seedThroughGetRandom(1));
    EXPECT_EQ(g.Gaussian(1.0f, 0.0f), 0.6750269999999998);
    EXPECT_EQ(g.Gaussian(1.0f, 0.0f), -0.7104699999999999);
    ASSERT_TRUE(seedThroughGetRandom(1));
    EXPECT_EQ(g.Gaussian(2.0f, 10.0f), 11.350040000000002);
    ASSERT_TRUE(seedThroughGetRandom(12345));
    EXPECT_EQ(g.Gaussian(2.0f, 10.0f), 8.562293000000002);
    EXPECT_EQ(g.Gaussian(2.0f, 10.0f), 8.823466);

    // The range value follows from the seed, and different seeds give different values.
    std::set<int> seen;
    for (uint32_t seed = 100; seed < 140; ++seed) {
        int first = 0, again = 0;
        ASSERT_TRUE(seedThroughGetRandom(seed, &first));
        ASSERT_TRUE(seedThroughGetRandom(seed, &again));
        EXPECT_EQ(first, again);
        EXPECT_GE(first, 1);
        EXPECT_LE(first, 6);
        seen.insert(first);
    }
    EXPECT_EQ(seen.size(), 6u);
}
