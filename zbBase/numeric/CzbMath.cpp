#include "zbBase/numeric/CzbMath.h"

#include "zbBase/numeric/detail/zbSnapToUnit.h"

#include <cmath>

namespace zbBase {

namespace {

const double kPi = 3.141592653589793;

// Unsigned angle between two vectors in degrees; NaN when either has zero length.
double angleBetween(const zbVector2d& u, const zbVector2d& v) {
    const double dot = u.x * v.x + u.y * v.y;
    const double lu = std::sqrt(u.x * u.x + u.y * u.y);
    const double lv = std::sqrt(v.x * v.x + v.y * v.y);
    return std::acos(dot / (lu * lv)) * 180.0 / kPi;
}

} // namespace

double CzbMath::GetAngle3Point(double vertexX, double vertexY, double x1, double y1, double x2,
                               double y2) {
    zbVector2d vertex(vertexX, vertexY);
    const zbVector2d u = zbVector2d(x1, y1) - vertex;
    const zbVector2d v = zbVector2d(x2, y2) - vertex;
    return angleBetween(u, v);
}

bool CzbMath::GetIntersectPoint(zbVector2d a1, zbVector2d a2, zbVector2d b1, zbVector2d b2,
                                zbVector2d* crossing) {
    const zbVector2d dA = a2 - a1;
    const zbVector2d dB = b2 - b1;
    const double d = dA.x * dB.y - dB.x * dA.y;
    if (d == 0.0) {
        return false;
    }
    const zbVector2d w = a1 - b1;
    const double nA = w.y * dB.x - w.x * dB.y;
    const double nB = w.y * dA.x - w.x * dA.y;
    if (nA == 0.0 && nB == 0.0) {
        return false;
    }
    const double t = nA / d;
    if (t < 0.0 || t > 1.0) {
        return false;
    }
    const double s = nB / d;
    if (s < 0.0 || s > 1.0) {
        return false;
    }
    crossing->x = dA.x * t + a1.x;
    crossing->y = dA.y * t + a1.y;
    return true;
}

bool CzbMath::GetIsPointOnPolygon(zbVector2d point, zbVector2d* vertices, int count) {
    if (count < 1) {
        return false;
    }
    double sum = 0.0;
    for (int i = 0; i < count; ++i) {
        const int j = (i + 1 == count) ? 0 : i + 1;
        const zbVector2d u = vertices[i] - point;
        const zbVector2d v = vertices[j] - point;
        sum += angleBetween(v, u);
    }
    return sum > 359.9 && sum < 360.1;
}

bool CzbMath::GetLineOnPoint(zbVector3d p, zbVector3d a, zbVector3d b) {
    if (a.x == b.x && a.y == b.y) {
        return p.x == a.x && p.y == a.y;
    }
    if (a.x == b.x) {
        return (b.z - a.z) / (b.y - a.y) * (p.y - a.y) + a.z - p.z == 0.0;
    }
    if (a.y == b.y && a.z == b.z) {
        return p.y == a.y && p.z == a.z;
    }
    if (a.y == b.y) {
        return (b.z - a.z) / (b.x - a.x) * (p.x - a.x) + a.z - p.z == 0.0;
    }
    if (a.z == b.z) {
        return (b.y - a.y) / (b.x - a.x) * (p.x - a.x) + a.y - p.y == 0.0;
    }
    const double tx = (p.x - a.x) / (b.x - a.x);
    const double ty = (p.y - a.y) / (b.y - a.y);
    const double tz = (p.z - a.z) / (b.z - a.z);
    return tx == ty && tx == tz;
}

zbVector2d CzbMath::GetRotatePosition(zbVector2d centre, zbVector2d point, double degrees) {
    const double r = degrees * kPi / 180.0;
    const double c = detail::snapToUnit(std::cos(r));
    const double s = detail::snapToUnit(std::sin(r));
    const zbVector2d q = point - centre;
    return zbVector2d(c * q.x - s * q.y + centre.x, c * q.y + s * q.x + centre.y);
}

} // namespace zbBase
