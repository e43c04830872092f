// The fly-out behind CzbDE::missilesim, with what the run ended on, for tests and tools.
#pragma once

#include <cstdint>

namespace zbBase {
class CzbDE;
namespace detail {

// The most passes one fly-out makes: one simulated hour at 277 frames per second.
constexpr uint64_t kMissilePassCeiling = 1000000;

struct MissileRun {
    bool captured = false; // both channels locked onto the target
    uint64_t passes = 0;   // passes flown, the last one included
    double heading = 0.0;  // heading after the last pass
    double elevation = 0.0;
};

struct MissileStart {
    double x, y, z, heading, elevation, headingStep, elevationStep;
    double targetX, targetY, targetZ, speed, acceleration;
    int frameRate;
};

MissileRun flyMissile(CzbDE& de, const MissileStart& start);

} // namespace detail
} // namespace zbBase
