// The (v + 1.0) - 1.0 step of the rotation code.
#pragma once

namespace zbBase {
namespace detail {

// Drops everything below the resolution of 1.0, so that cos 90 degrees becomes exactly 0.
// volatile keeps any compiler setting from folding the two operations away.
inline double snapToUnit(double v) {
    volatile double shifted = v + 1.0;
    return shifted - 1.0;
}

} // namespace detail
} // namespace zbBase
