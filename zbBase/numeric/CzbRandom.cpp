#include "zbBase/numeric/CzbRandom.h"

#include "zbBase/numeric/detail/zbTruncate.h"
#include "zbBase/platform/detail/zbpClock.h"
#include "zbBase/platform/detail/zbpRand.h"

#include <cmath>
#include <cstdint>

namespace zbBase {

double CzbRandom::Gaussian(float sigma, float mean) {
    const double scale = std::sqrt(0.01);
    const double meanShare = static_cast<double>(mean) * 0.01;
    double sum = 0.0;
    for (int i = 0; i < 100; ++i) {
        const double u1 = static_cast<double>(static_cast<float>(zbp::rand()) / 32767.0f);
        const double u2 = static_cast<double>(static_cast<float>(zbp::rand()) / 32767.0f);
        const double z = std::cos(u2 * 6.283185307179586) * std::sqrt(std::log(u1) * -2.0);
        const double term = z * static_cast<double>(sigma) * scale + meanShare;
        const double micros = term * 1000000.0;
        if (!(micros > -2147483649.0 && micros < 2147483648.0)) {
            continue; // not finite, or beyond what the cut to whole millionths can hold
        }
        sum += static_cast<double>(detail::truncToInt(micros)) / 1000000.0;
    }
    return sum;
}

namespace {

// SplitMix64: a small generator of its own for the range value of GetRandom.
uint64_t nextMix(uint64_t& state) {
    uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

} // namespace

int CzbRandom::GetRandom(int a, int b) {
    const uint32_t now = static_cast<uint32_t>(zbp::_time64(nullptr));
    ms_randomseed = static_cast<int>(static_cast<uint32_t>(ms_randomseed) + now);
    zbp::srand(static_cast<unsigned>(ms_randomseed));

    // The range value comes from a generator of its own, started from the same seed, so the
    // runtime's generator is left at the start of the sequence of the new seed: the draws
    // that follow (Gaussian's among them) are exactly those of srand(seed).
    uint64_t state = static_cast<uint32_t>(ms_randomseed);
    const int64_t lo = a < b ? a : b;
    const int64_t hi = a < b ? b : a;
    const uint64_t range = static_cast<uint64_t>(hi - lo) + 1u; // at most 2^32
    // 2^64 mod range values at the bottom are refused, so that every value is equally likely.
    const uint64_t refused = (static_cast<uint64_t>(0) - range) % range;
    uint64_t r = nextMix(state);
    // A refusal has a chance below 2^-32; the bound only rules out an endless loop.
    for (int attempt = 1; attempt < 64 && r < refused; ++attempt) {
        r = nextMix(state);
    }
    return static_cast<int>(lo + static_cast<int64_t>(r % range));
}

} // namespace zbBase
