#include "zbBase/geodesy/CzbWGS84.h"

#include "zbBase/numeric/CzbDE.h"

#include <cmath>
#include <limits>

namespace {

const double kPi = 3.141592653589793;

// Bessel 1841, for the Gauss-Krueger series.
const double kA = 6377397.155;               // semi-major axis
const double kE2 = 0.006674372227347433;     // first eccentricity squared
const double kEp2 = 0.006719218794659982;    // second eccentricity squared
const double kA1mE2 = 6334832.032545904;     // a(1 - e^2)
const double kArcA = 1.005037306048555;      // meridian arc coefficients
const double kArcB2 = 0.00252392462015;      //   of sin 2phi
const double kArcB4 = 2.64094670775e-6;      //   of sin 4phi
const double kArcB6 = 3.4388869999999998e-9; //   of sin 6phi
const double kArcB8 = 4.858125e-12;          //   of sin 8phi
const double kArcB10 = 7.5e-15;              //   of sin 10phi
const double kM0 = 6366742.520260027;        // a(1 - e^2) A, metres per radian
const double kFootpointTolerance = 1e-8;     // metres
const int kFootpointMaxPasses = 100;

// WGS84 semi-major axis with the e^2 of the local plane approximation.
const double kWgsA = 6378137.0;
const double kWgsE2 = 0.006694380015894481;
const double kWgsA1mE2 = 6335439.327128563;

double toRadians(double degrees) {
    return degrees * kPi / 180.0;
}
double toDegrees(double radians) {
    return radians * 180.0 / kPi;
}

// sin 2phi, sin 4phi, ... sin 10phi from sin 2phi and cos 2phi. The higher multiples come
// from the angle-sum rule, whose rounding (some 1e-16) times the arc's coefficients stays far
// below a nanometre.
struct MultipleSines {
    double s[5];
    MultipleSines(double s2, double c2) {
        double sk = s2, ck = c2;
        s[0] = s2;
        for (int k = 1; k < 5; ++k) {
            const double next = sk * c2 + ck * s2;
            ck = ck * c2 - sk * s2;
            sk = next;
            s[k] = sk;
        }
    }
    static MultipleSines ofAngle(double phi) {
        return MultipleSines(std::sin(2.0 * phi), std::cos(2.0 * phi));
    }
    // sin 2phi = 2 sin cos, cos 2phi = cos^2 - sin^2, when sin phi and cos phi are at hand.
    static MultipleSines ofSinCos(double sinPhi, double cosPhi) {
        return MultipleSines(2.0 * sinPhi * cosPhi, (cosPhi - sinPhi) * (cosPhi + sinPhi));
    }
};

// Turns (sin a, cos a) into (sin(a + d), cos(a + d)) for a small d, with the series of
// sin d and cos d to the eighth order (exact to rounding for |d| < 0.01).
void turnBySmallAngle(double d, double* sinA, double* cosA) {
    const double d2 = d * d;
    const double sd = d * (1.0 - d2 * (1.0 / 6 - d2 * (1.0 / 120 - d2 * (1.0 / 5040))));
    const double cd = 1.0 - d2 * (0.5 - d2 * (1.0 / 24 - d2 * (1.0 / 720 - d2 * (1.0 / 40320))));
    const double s = *sinA * cd + *cosA * sd;
    *cosA = *cosA * cd - *sinA * sd;
    *sinA = s;
}

// The multiple sines of the latitude of origin, worked out the same two ways as those of the
// point (so that a point on the origin has an arc of exactly 0), and kept per thread for the
// last origin used: hosts convert many points around one origin.
struct OriginSines {
    double phi0;
    MultipleSines ofAngle;  // for the inverse conversion
    MultipleSines ofSinCos; // for the forward conversion
    explicit OriginSines(double p)
        : phi0(p), ofAngle(MultipleSines::ofAngle(p)),
          ofSinCos(MultipleSines::ofSinCos(std::sin(p), std::cos(p))) {}
};

const OriginSines& originSines(double phi0) {
    thread_local OriginSines cached(0.0);
    if (!(phi0 == cached.phi0 && std::signbit(phi0) == std::signbit(cached.phi0))) {
        cached = OriginSines(phi0);
    }
    return cached;
}

// Meridian arc from the latitude of origin to phi, radians in, metres out, given the
// multiple sines of both.
double meridianArc(double phi, double phi0, const MultipleSines& p, const MultipleSines& o) {
    return kA1mE2 *
           (kArcA * (phi - phi0) - kArcB2 * (p.s[0] - o.s[0]) + kArcB4 * (p.s[1] - o.s[1]) -
            kArcB6 * (p.s[2] - o.s[2]) + kArcB8 * (p.s[3] - o.s[3]) - kArcB10 * (p.s[4] - o.s[4]));
}

} // namespace

void CzbWGS84::Bessel2TM(double height, double longitude, double latitude, double originLongitude,
                         double originLatitude, double* x, double* y) {
    const double phi = toRadians(latitude);
    const double sinPhi = std::sin(phi);
    const double W = std::sqrt(1.0 - kWgsE2 * sinPhi * sinPhi);
    const double N = kWgsA / W;
    const double M = kWgsA1mE2 / (W * W * W);
    *x = std::cos(phi) * toRadians(longitude - originLongitude) * (N + height);
    *y = (M + height) * toRadians(latitude - originLatitude);
}

void CzbWGS84::_Bessel2TM(double longitude, double latitude, double centralMeridian,
                          double originLatitude, double* x, double* y) {
    const double phi = toRadians(latitude);
    const double phi0 = toRadians(originLatitude);
    const double l = toRadians(longitude) - toRadians(centralMeridian);

    const double s = std::sin(phi);
    const double c = std::cos(phi);
    const double t = s / c; // tan phi
    const double n2 = kEp2 * c * c;
    const double N = kA / std::sqrt(1.0 - kE2 * s * s);

    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
    const double c2 = c * c, c3 = c2 * c, c5 = c3 * c2, c7 = c5 * c2;
    const double l2 = l * l, l3 = l2 * l, l4 = l3 * l, l5 = l4 * l, l6 = l5 * l, l7 = l6 * l,
                 l8 = l7 * l;

    *x = l * N * c + (l3 / 6.0) * N * c3 * (1.0 - t2 + n2) +
         (l5 / 120.0) * N * c5 * (5.0 - 18.0 * t2 + t4 + 14.0 * n2 - 58.0 * t2 * n2) +
         (l7 / 5040.0) * N * c7 * (61.0 - 479.0 * t2 + 179.0 * t4 - t6);
    *y = meridianArc(phi, phi0, MultipleSines::ofSinCos(s, c), originSines(phi0).ofSinCos) +
         (l2 / 2.0) * N * s * c + (l4 / 24.0) * N * s * c3 * (5.0 - t2 + 9.0 * n2 + 4.0 * n2 * n2) +
         (l6 / 720.0) * N * s * c5 * (61.0 - 58.0 * t2 + t4 + 270.0 * n2 - 330.0 * t2 * n2) +
         (l8 / 40320.0) * N * s * c7 * (1385.0 - 3111.0 * t2 + 543.0 * t4 - t6);
}

void CzbWGS84::_TM2Bessel(double x, double y, double centralMeridian, double originLatitude,
                          double* longitude, double* latitude) {
    if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(centralMeridian) ||
        !std::isfinite(originLatitude)) {
        *longitude = std::numeric_limits<double>::quiet_NaN();
        *latitude = std::numeric_limits<double>::quiet_NaN();
        return;
    }
    const double phi0 = toRadians(originLatitude);
    const MultipleSines& origin = originSines(phi0).ofAngle;

    // Footpoint latitude: the latitude on the central meridian whose arc is y. After the
    // first pass the steps are small, and sin 2phi and cos 2phi follow each step by a turn
    // instead of new library calls.
    double phi1 = y / kM0 + phi0;
    double sin2 = std::sin(2.0 * phi1);
    double cos2 = std::cos(2.0 * phi1);
    for (int pass = 0; pass < kFootpointMaxPasses; ++pass) {
        const double r = y - meridianArc(phi1, phi0, MultipleSines(sin2, cos2), origin);
        if (std::fabs(r) < kFootpointTolerance) {
            break;
        }
        const double previous = phi1;
        phi1 = phi1 + r / kM0;
        const double turn = 2.0 * (phi1 - previous);
        if (std::fabs(turn) < 0.01) {
            turnBySmallAngle(turn, &sin2, &cos2);
        } else {
            sin2 = std::sin(2.0 * phi1);
            cos2 = std::cos(2.0 * phi1);
        }
    }

    const double s = std::sin(phi1);
    const double c = std::cos(phi1);
    const double t = s / c; // tan phi1
    const double n2 = kEp2 * c * c;
    const double N = kA / std::sqrt(1.0 - kE2 * s * s);

    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
    const double n4 = n2 * n2;
    const double N2 = N * N, N3 = N2 * N, N4 = N3 * N, N5 = N4 * N, N6 = N5 * N, N7 = N6 * N,
                 N8 = N7 * N;
    const double x2 = x * x, x3 = x2 * x, x4 = x3 * x, x5 = x4 * x, x6 = x5 * x, x7 = x6 * x,
                 x8 = x7 * x;

    const double phi =
        phi1 - (t / (2.0 * N2)) * (1.0 + n2) * x2 +
        (t / (24.0 * N4)) * (5.0 + 3.0 * t2 + 6.0 * n2 - 6.0 * t2 * n2 - 3.0 * n4 - 9.0 * t2 * n4) *
            x4 -
        (t / (720.0 * N6)) *
            (61.0 + 90.0 * t2 + 45.0 * t4 + 107.0 * n2 - 162.0 * t2 * n2 - 45.0 * t4 * n2) * x6 +
        (t / (40320.0 * N8)) * (1385.0 + 3633.0 * t2 + 4095.0 * t4 + 1575.0 * t6) * x8;
    const double dl =
        x / (N * c) - (1.0 / (6.0 * N3 * c)) * (1.0 + 2.0 * t2 + n2) * x3 +
        (1.0 / (120.0 * N5 * c)) * (5.0 + 28.0 * t2 + 24.0 * t4 + 6.0 * n2 + 8.0 * t2 * n2) * x5 -
        (1.0 / (5040.0 * N7 * c)) * (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t6) * x7;

    *latitude = toDegrees(phi);
    *longitude = toDegrees(dl) + centralMeridian;
}

double CzbWGS84::getBearing(double targetLongitude, double targetLatitude,
                            double referenceLongitude, double referenceLatitude) {
    double x = 0.0, y = 0.0;
    _Bessel2TM(targetLongitude, targetLatitude, referenceLongitude, referenceLatitude, &x, &y);
    return zbBase::CzbDE::getHeading(x, y);
}

void CzbWGS84::getRangePosition(double bearing, double range, double referenceLongitude,
                                double referenceLatitude, double* longitude, double* latitude) {
    double x = 0.0, y = 0.0;
    zbBase::CzbDE::getRoate2d(bearing, 0.0, range, &x, &y);
    _TM2Bessel(x, y, referenceLongitude, referenceLatitude, longitude, latitude);
}
