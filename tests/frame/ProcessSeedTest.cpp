#include <zbBase/numeric/CzbRandom.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#if !defined(_WIN32)
#include <unistd.h>
#endif

using zbBase::CzbRandom;

namespace {
const uint32_t kLoadSeed = static_cast<uint32_t>(CzbRandom::ms_randomseed);
}

TEST(ProcessSeed, IsTheCalendarTimeAtLoad) {
    const uint32_t now = static_cast<uint32_t>(std::time(nullptr));
    EXPECT_LE(now - kLoadSeed, 3600u);
}

#if !defined(_WIN32)
// A child run of this program prints its seed when ZB_PRINT_SEED is set.
TEST(ProcessSeed, ChildPrint) {
    if (std::getenv("ZB_PRINT_SEED") != nullptr) {
        std::printf("seed=%u\n", kLoadSeed);
    }
}

namespace {
bool childSeed(uint32_t* seed) {
    char self[4096] = {};
    if (readlink("/proc/self/exe", self, sizeof self - 1) <= 0) {
        return false;
    }
    const std::string command =
        std::string("ZB_PRINT_SEED=1 '") + self + "' --gtest_filter=ProcessSeed.ChildPrint";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return false;
    }
    char line[256];
    bool found = false;
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        found = found || std::sscanf(line, "seed=%u", seed) == 1;
    }
    return pclose(pipe) == 0 && found;
}
} // namespace

TEST(ProcessSeed, TwoProcessesInOneSecondShareIt) {
    for (int attempt = 0; attempt < 5; ++attempt) {
        const time_t before = std::time(nullptr);
        uint32_t a = 0, b = 0;
        ASSERT_TRUE(childSeed(&a));
        ASSERT_TRUE(childSeed(&b));
        if (std::time(nullptr) == before) {
            EXPECT_EQ(a, b);
            EXPECT_EQ(a, static_cast<uint32_t>(before));
            return;
        }
    }
    GTEST_SKIP() << "every attempt crossed a second boundary";
}
#endif
