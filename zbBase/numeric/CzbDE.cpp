#include "zbBase/numeric/CzbDE.h"

#include "zbBase/numeric/detail/zbTruncate.h"

#include <cmath>

namespace zbBase {

namespace {
const double kPi = 3.141592653589793;
const double kDegreesPerRadian = 57.29577951308232;
} // namespace

double CzbDE::DegreeToRadian(double degrees) { return degrees * kPi / 180.0; }

double CzbDE::RadianToDegree(double radians) { return radians * 180.0 / kPi; }

double CzbDE::GetAngle180(double angle) {
    return angle - static_cast<double>(detail::truncToInt(angle / 180.0)) * 180.0;
}

double CzbDE::GetAngle360(double angle) {
    double r = angle - static_cast<double>(detail::truncToInt(angle / 360.0)) * 360.0;
    if (0.0 > r) {
        r += 360.0;
    }
    return r;
}

double CzbDE::GetAngleClosing(double a, double b, int) {
    double A = GetAngle360(a);
    double B = GetAngle360(b);
    if (A == 0.0) {
        A = 360.0;
    }
    if (B == 0.0) {
        B = 360.0;
    }
    const double d = A - B;
    if (detail::truncToInt(std::fabs(d)) <= 180) {
        return d;
    }
    if (A > B) {
        return A - (B + 360.0);
    }
    return (A + 360.0) - B;
}

bool CzbDE::GetCheckAngleRange(double angle, double from, double to) {
    const double A = GetAngle360(angle);
    const double F = GetAngle360(from);
    const double T = GetAngle360(to);
    double upper = T;
    double lower = F;
    if (F > T) {
        upper = 360.0;
        lower = 0.0;
    }
    return (F <= A && A <= upper) || (lower <= A && A <= T);
}

double CzbDE::distance3d(double x1, double y1, double z1, double x2, double y2, double z2) {
    return std::sqrt(std::pow(x2 - x1, 2.0) + std::pow(y2 - y1, 2.0) + std::pow(z2 - z1, 2.0));
}

void CzbDE::getAngle3d(double x1, double y1, double z1, double x2, double y2, double z2,
                       double* azimuth, double* elevation) {
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double dz = z2 - z1;

    double az;
    if (dx == 0.0) {
        az = dy >= 0.0 ? 0.0 : 180.0;
    } else {
        double theta = std::atan(dy / dx);
        if (dx < 0.0) {
            theta += kPi;
        }
        az = theta * kDegreesPerRadian - 90.0;
    }
    if (az < 0.0) {
        az += 360.0;
    }
    *azimuth = az;

    const double h = std::sqrt(std::pow(dy, 2.0) + std::pow(dx, 2.0));
    double el = 0.0;
    if (h != 0.0) {
        el = std::atan(dz / h) * kDegreesPerRadian;
    }
    if (el < 0.0) {
        el += 360.0;
    }
    *elevation = el;
}

double CzbDE::getHeading(double x, double y) {
    if (x == 0.0 && y == 0.0) {
        return 0.0;
    }
    if (x >= 0.0 && y >= 0.0) {
        return std::atan(x / y) * 180.0 / kPi;
    }
    if (x >= 0.0 && y < 0.0) {
        return 180.0 - std::atan(-(x / y)) * 180.0 / kPi;
    }
    if (x < 0.0 && y < 0.0) {
        return std::atan(x / y) * 180.0 / kPi + 180.0;
    }
    if (x < 0.0 && y >= 0.0) {
        return 360.0 - std::atan(-(x / y)) * 180.0 / kPi;
    }
    return 0.0;
}

} // namespace zbBase
