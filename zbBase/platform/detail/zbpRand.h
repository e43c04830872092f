// The runtime library's random generator with the Windows runtime's sequence and range
// (0 to 32767, one state per thread), in namespace zbp.
#pragma once

#include <stdlib.h>

namespace zbp {

#if defined(_WIN32)
using ::rand;
using ::srand;
#else
int rand();
void srand(unsigned seed);
#endif

} // namespace zbp
