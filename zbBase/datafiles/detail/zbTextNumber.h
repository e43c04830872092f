// Number parsing shared by the text file classes.
#pragma once

#include "zbBase/platform/detail/zbpNumber.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>

namespace zbBase {
namespace detail {

// The double rounded to the nearest float, as the hardware does it: values beyond the float
// range become infinities (or FLT_MAX when they round down to it), without undefined behaviour.
inline float narrowToFloat(double value) {
    if (!(std::fabs(value) > FLT_MAX)) {
        return static_cast<float>(value);
    }
    // Half a unit in the last place above FLT_MAX; from there on the value rounds to infinity.
    const double limit = static_cast<double>(FLT_MAX) + std::ldexp(1.0, 103);
    float magnitude = std::fabs(value) < limit ? FLT_MAX : HUGE_VALF;
    return value < 0 ? -magnitude : magnitude;
}

inline double textToDouble(const char* text) {
    return std::atof(text);
}
inline float textToFloat(const char* text) {
    return narrowToFloat(std::atof(text));
}
inline int textToInt(const char* text) {
    return zbp::atoi(text);
}

} // namespace detail
} // namespace zbBase
