// CzbRandom: Gaussian draws from the runtime's generator, and the process-wide seed.
//
// The generator is the Windows runtime's (0 to 32767, one state per thread) on every
// platform, so the same seed gives the same draws everywhere. ms_randomseed is set once at
// load from the calendar time and is changed only by GetRandom; it is unguarded, so hosts
// that call GetRandom from several threads serialise those calls themselves.
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API CzbRandom {
public:
    static int ms_randomseed;

    CzbRandom() = default;
    CzbRandom(const CzbRandom&) = default;
    CzbRandom& operator=(const CzbRandom&) = default;
    ~CzbRandom() = default;

    // Sum of 100 Box-Muller samples, each cut to whole millionths, with the given standard
    // deviation and mean. Uses 200 draws of the generator and does not seed it. A term that is
    // not finite, or whose count of millionths does not fit a 32-bit int (some 2147.48 in
    // size), is left out of the sum, so the sum stays finite.
    double Gaussian(float sigma, float mean);
    // Adds the calendar time in seconds to ms_randomseed (wrapping), seeds the generator
    // with it, and returns a uniform draw from the closed range between the two arguments
    // (in either order; equal arguments give that value). The draw comes from a generator of
    // its own started from the same seed: the runtime's generator is left untouched after
    // srand, so the draws that follow are those of srand(ms_randomseed).
    static int GetRandom(int a, int b);
};

} // namespace zbBase
