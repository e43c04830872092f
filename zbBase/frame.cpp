// The process-wide objects of the library, defined in one translation unit so that they are
// built at load in this order and destroyed at unload in reverse.
#include "zbBase/numeric/CzbRandom.h"
#include "zbBase/platform/detail/zbpClock.h"

#include <cstdint>

namespace zbBase {
// Seconds since the epoch at load, cut to the low 32 bits.
int CzbRandom::ms_randomseed = static_cast<int>(static_cast<uint32_t>(zbp::_time64(nullptr)));
} // namespace zbBase
