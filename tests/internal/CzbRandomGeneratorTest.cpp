// The generator behind CzbRandom: the Windows runtime's sequence and range on every
// platform, one state per thread, so that Gaussian draws repeat for a seed.
#include "zbBase/numeric/CzbRandom.h"
#include "zbBase/platform/detail/zbpRand.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

using zbBase::CzbRandom;

TEST(CzbRandomGenerator, WindowsRuntimeSequence) {
    zbp::srand(1);
    const int expect[] = {41, 18467, 6334, 26500, 19169, 15724, 11478, 29358};
    for (int e : expect) {
        EXPECT_EQ(zbp::rand(), e);
    }
    zbp::srand(0xFFFFFFFFu);
    for (int i = 0; i < 10000; ++i) {
        const int r = zbp::rand();
        ASSERT_GE(r, 0);
        ASSERT_LE(r, 32767);
    }
}

TEST(CzbRandomGenerator, GaussianKeepsTheSumFinite) {
    CzbRandom g;
    // Seed 0 gives a first draw of 38; look for a seed whose first draw is 0 instead.
    unsigned seed = 0;
    for (unsigned s = 0; s < 2000000; ++s) {
        zbp::srand(s);
        if (zbp::rand() == 0) {
            seed = s;
            break;
        }
    }
    zbp::srand(seed);
    EXPECT_NEAR(g.Gaussian(0.0f, 5.0f), 4.95, 1e-9); // the infinite first term is left out
    // Terms too large for whole millionths in an int are left out too.
    zbp::srand(1);
    EXPECT_EQ(g.Gaussian(0.0f, 300000.0f), 0.0);
    zbp::srand(1);
    EXPECT_TRUE(std::isfinite(g.Gaussian(1e9f, 0.0f)));
}

TEST(CzbRandomGenerator, OneStatePerThread) {
    std::vector<int> first(8), second(8);
    auto draw = [](std::vector<int>* out) {
        zbp::srand(99);
        for (int& v : *out) {
            v = zbp::rand();
        }
    };
    std::thread t1(draw, &first);
    std::thread t2(draw, &second);
    t1.join();
    t2.join();
    EXPECT_EQ(first, second);
    // A new thread starts as if seeded with 1.
    int firstDraw = -1;
    std::thread t3([&firstDraw] { firstDraw = zbp::rand(); });
    t3.join();
    EXPECT_EQ(firstDraw, 41);
}
