#include "zbBase/geodesy/CzbCoordinate.h"

#include "zbBase/numeric/detail/zbTruncate.h"

#include <cmath>

namespace zbBase {

double CzbCoordinate::GetDMStoDgree(int degrees, int minutes, double seconds) {
    return static_cast<double>(degrees) + static_cast<double>(minutes) / 60.0 + seconds / 3600.0;
}

void CzbCoordinate::GetDgreetoDMS(double value, int* degrees, int* minutes, double* seconds) {
    const int d = detail::truncToInt(value);
    const float f = static_cast<float>(std::fabs((value - d) * 60.0));
    const int m = detail::truncToInt(f);
    const float g = f - static_cast<float>(m);
    *degrees = d;
    *minutes = m;
    *seconds = static_cast<double>(g) * 60.0;
}

double CzbCoordinate::GetMakeDegree180(double value) {
    double r = value - static_cast<double>(detail::truncToInt(value / 360.0)) * 360.0;
    if (r > 180.0) {
        r = r - 360.0;
    }
    if (r < -180.0) {
        r = r + 360.0;
    }
    return r;
}

double CzbCoordinate::GetMakeDegree90(double value) {
    double r = value - static_cast<double>(detail::truncToInt(value / 180.0)) * 180.0;
    if (r > 90.0) {
        r = r - 180.0;
    } else if (r < -90.0) {
        r = r + 180.0;
    }
    return r;
}

void CzbCoordinate::GetMakeDMS180(int value, int* degrees, char* hemisphere) {
    const int r = detail::truncToInt(GetMakeDegree180(static_cast<double>(value)));
    *degrees = r < 0 ? -r : r;
    *hemisphere = r < 0 ? 'W' : 'E';
}

void CzbCoordinate::GetMakeDMS90(int value, int* degrees, char* hemisphere) {
    const int r = detail::truncToInt(GetMakeDegree90(static_cast<double>(value)));
    *degrees = r < 0 ? -r : r;
    *hemisphere = r < 0 ? 'S' : 'N';
}

} // namespace zbBase
