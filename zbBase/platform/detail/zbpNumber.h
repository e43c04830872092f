// Text to number as the Windows runtime reads it, in namespace zbp.
//
// Leading white space, an optional sign, then decimal digits; the rest is ignored and text
// without digits gives 0. Values beyond the 32-bit range give INT_MIN or INT_MAX (long is 32
// bits wide on Windows), the same on every platform and runtime.
#pragma once

namespace zbp {

int atoi(const char* text);
long atol(const char* text);

} // namespace zbp
