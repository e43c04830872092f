#include "zbBase/platform/detail/zbpRand.h"

#if !defined(_WIN32)

namespace zbp {

namespace {
// Each thread starts as if seeded with 1, like the Windows runtime.
thread_local unsigned holdRand = 1;
} // namespace

int rand() {
    holdRand = holdRand * 214013u + 2531011u;
    return static_cast<int>((holdRand >> 16) & 0x7fffu);
}

void srand(unsigned seed) { holdRand = seed; }

} // namespace zbp

#endif
