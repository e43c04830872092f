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

int CzbRandom::GetRandom(int a, int b) {
    const uint32_t now = static_cast<uint32_t>(zbp::_time64(nullptr));
    ms_randomseed = static_cast<int>(static_cast<uint32_t>(ms_randomseed) + now);
    zbp::srand(static_cast<unsigned>(ms_randomseed));

    const int64_t lo = a < b ? a : b;
    const int64_t hi = a < b ? b : a;
    const uint64_t range = static_cast<uint64_t>(hi - lo) + 1u; // at most 2^32
    // 45 random bits from three draws, rejecting the top so that every value is equally likely.
    const uint64_t span = 1ull << 45;
    const uint64_t limit = span - span % range;
    // A rejection has a chance below 2^-13; the bound only rules out an endless loop.
    uint64_t r = 0;
    for (int attempt = 0; attempt < 64; ++attempt) {
        r = (static_cast<uint64_t>(zbp::rand()) << 30) |
            (static_cast<uint64_t>(zbp::rand()) << 15) | static_cast<uint64_t>(zbp::rand());
        if (r < limit) {
            break;
        }
    }
    return static_cast<int>(lo + static_cast<int64_t>(r % range));
}

} // namespace zbBase
