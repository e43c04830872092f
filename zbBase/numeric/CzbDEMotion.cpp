// The moving, rotating and fly-out half of CzbDE.
#include "zbBase/numeric/CzbDE.h"

#include "zbBase/numeric/detail/zbMissileRun.h"
#include "zbBase/numeric/detail/zbSnapToUnit.h"
#include "zbBase/numeric/detail/zbTruncate.h"

#include <algorithm>
#include <cmath>

namespace zbBase {

namespace {
const double kPi = 3.141592653589793;

// Moves the point by d along heading (counter-clockwise from +y) and elevation.
void moveBy(double* x, double* y, double* z, double heading, double elevation, double d) {
    const double E = elevation * kPi / 180.0;
    const double H = -(heading * kPi / 180.0);
    const double g = std::cos(E) * d;
    *x += std::sin(H) * g;
    *y += std::cos(H) * g;
    *z += std::sin(E) * d;
}

bool allFinite(std::initializer_list<double> values) {
    return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}
} // namespace

bool CzbDE::getMovingPostion(double* x, double* y, double* z, double heading, double elevation,
                             double speed, unsigned int rate) {
    moveBy(x, y, z, heading, elevation, (1.0 / static_cast<double>(rate)) * speed);
    return true;
}

bool CzbDE::getNextPostion(double* x, double* y, double* z, double heading, double elevation,
                           double speed, double time) {
    moveBy(x, y, z, heading, elevation, speed * time);
    return true;
}

bool CzbDE::getRotatePostion(double* x, double* y, double* z, double heading, double elevation,
                             double distance) {
    moveBy(x, y, z, heading, elevation, distance);
    return true;
}

void CzbDE::getRoate2d(double angle, double x, double y, double* outX, double* outY) {
    const double a = angle * kPi / 180.0;
    *outX = std::sin(a) * y + std::cos(a) * x;
    *outY = std::cos(a) * y - std::sin(a) * x;
}

void CzbDE::rotateposition3d(double centreX, double centreY, double centreZ, double* x, double* y,
                             double* z, double headingChange, double elevationChange) {
    const double px = *x;
    const double py = *y;
    const double pz = *z;
    double azimuth = 0.0;
    double elevation = 0.0;
    getAngle3d(centreX, centreY, centreZ, px, py, pz, &azimuth, &elevation);
    const double r = std::sqrt(std::pow(px - centreX, 2.0) + std::pow(py - centreY, 2.0) +
                               std::pow(pz - centreZ, 2.0));
    const double E = (elevation + elevationChange) * kPi / 180.0;
    const double H = -((azimuth + headingChange) * kPi / 180.0);
    const double g = std::cos(E) * r;
    *x = std::sin(H) * g + centreX;
    *y = std::cos(H) * g + centreY;
    *z = std::sin(E) * r + centreZ;
}

void CzbDE::axisrotate(double* outX, double* outY, double* outZ, double centreX, double centreY,
                       double centreZ, double pointX, double pointY, double pointZ, double angleXY,
                       double angleYZ, double angleXZ) {
    const double a1 = angleXY * kPi / 180.0;
    const double a2 = angleYZ * kPi / 180.0;
    const double a3 = angleXZ * kPi / 180.0;
    const double s1 = detail::snapToUnit(std::sin(a1));
    const double c1 = detail::snapToUnit(std::cos(a1));
    const double s2 = detail::snapToUnit(std::sin(a2));
    const double c2 = detail::snapToUnit(std::cos(a2));
    const double s3 = detail::snapToUnit(std::sin(a3));
    const double c3 = detail::snapToUnit(std::cos(a3));

    const double dx = pointX - centreX;
    const double dy = pointY - centreY;
    const double dz = pointZ - centreZ;

    const double x1 = c1 * dx - s1 * dy;
    const double y1 = s1 * dx + c1 * dy;
    const double y2 = c2 * y1 - s2 * dz;
    const double z1 = s2 * y1 + c2 * dz;
    const double x2 = c3 * x1 - s3 * z1;
    const double z2 = s3 * x1 + c3 * z1;

    *outX = x2 + centreX;
    *outY = centreY + y2;
    *outZ = z2 + centreZ;
}

namespace detail {

MissileRun flyMissile(CzbDE& de, const MissileStart& s) {
    MissileRun run;
    const unsigned int rate = static_cast<unsigned int>(s.frameRate);
    if (rate == 0 ||
        !allFinite({s.x, s.y, s.z, s.heading, s.elevation, s.headingStep, s.elevationStep,
                    s.targetX, s.targetY, s.targetZ, s.speed, s.acceleration})) {
        return run;
    }
    // One simulated hour at the given rate, never fewer than 100000 passes, and never more
    // than kMissilePassCeiling whatever the rate: a pass costs some 50 ns, so a run that
    // neither ending stops is over in some 50 ms.
    const uint64_t maxPasses =
        std::min(kMissilePassCeiling, std::max<uint64_t>(100000u, 3600ull * rate));
    const double dt = 1.0 / static_cast<double>(rate);
    double x = s.x, y = s.y, z = s.z;
    double heading = s.heading, elevation = s.elevation, speed = s.speed;
    bool elevationLocked = false;
    bool headingLocked = false;

    while (run.passes < maxPasses) {
        ++run.passes;
        double A = 0.0;
        double L = 0.0;
        de.getAngle3d(x, y, z, s.targetX, s.targetY, s.targetZ, &A, &L);

        // Each channel's capture band comes from the other channel's step.
        double c = de.GetAngleClosing(elevation, L, 0);
        if (2.0 * s.headingStep > truncToInt(std::fabs(c))) {
            elevation = L;
            elevationLocked = true;
        } else if (0.0 > c) {
            elevation += s.elevationStep;
        } else {
            elevation -= s.elevationStep;
        }

        c = de.GetAngleClosing(heading, A, 0);
        if (2.0 * s.elevationStep > truncToInt(std::fabs(c))) {
            heading = A;
            headingLocked = true;
        } else if (0.0 > c) {
            heading += s.headingStep;
        } else {
            heading -= s.headingStep;
        }

        moveBy(&x, &y, &z, heading, elevation, dt * speed);

        const double faster = speed + s.acceleration;
        if (faster > 20.0) {
            speed = faster;
        }
        run.heading = heading;
        run.elevation = elevation;
        if (elevationLocked && headingLocked) {
            run.captured = true;
            return run;
        }
        if (truncToInt(std::fabs(heading)) > 720) {
            return run;
        }
    }
    return run;
}

} // namespace detail

bool CzbDE::missilesim(double x, double y, double z, double heading, double elevation,
                       double headingStep, double elevationStep, double targetX, double targetY,
                       double targetZ, double speed, double acceleration, int frameRate) {
    const detail::MissileStart start{
        x,       y,       z,       heading, elevation,    headingStep, elevationStep,
        targetX, targetY, targetZ, speed,   acceleration, frameRate};
    return detail::flyMissile(*this, start).captured;
}

} // namespace zbBase
