// Conversion of a double to a 32-bit integer toward zero without undefined behaviour.
#pragma once

#include <climits>
#include <cstdint>

namespace zbBase {
namespace detail {

// Truncates toward zero. NaN, infinities and values outside the int range give INT_MIN,
// which is what the x86-64 truncating conversion yields, so that every platform agrees.
inline int32_t truncToInt(double value) {
    if (value > -2147483649.0 && value < 2147483648.0) {
        return static_cast<int32_t>(value);
    }
    return INT32_MIN;
}

} // namespace detail
} // namespace zbBase
