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

// First estimate of the footpoint latitude: the meridian arc above turned inside out. With the
// rectifying latitude mu = (arc from the equator) / M0,
//   phi = mu + D2 sin 2mu + D4 sin 4mu + D6 sin 6mu + D8 sin 8mu + D10 sin 10mu
// with D2 = 2.511273241833288237e-3, D4 = 3.6787858681032190098e-6,
// D6 = 7.3809644524578461223e-9, D8 = 1.6832012242484676465e-11 and
// D10 = 4.1494809405646822357e-14, worked out from the arc's coefficients to 50 digits. The
// terms left out are below 1.3e-16 rad, 1e-9 m, so the stop test ends the iteration at once.
// Since sin 2k mu = sin 2mu U(k-1)(cos 2mu), the sum is sin 2mu times a polynomial in
// cos 2mu, with these coefficients:
const double kFootP0 = 2.5112658609103305885e-3;  // D2 - D6 + D10
const double kFootP1 = 7.3575044081574680809e-6;  // 2 D4 - 4 D8
const double kFootP2 = 2.9523359872118516727e-8;  // 4 D6 - 12 D10
const double kFootP3 = 1.3465609793987741172e-10; // 8 D8
const double kFootP4 = 6.6391695049034915772e-13; // 16 D10
const double kInvM0 = 1.5706619151282382147e-7;   // 1 / M0
const double kInvA = 1.5680378306312334409e-7;    // 1 / a

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
    // sin 2phi = 2 sin cos, cos 2phi = cos^2 - sin^2, when sin phi and cos phi are at hand.
    static MultipleSines ofSinCos(double sinPhi, double cosPhi) {
        return MultipleSines(2.0 * sinPhi * cosPhi, (cosPhi - sinPhi) * (cosPhi + sinPhi));
    }
};

// Turns (sin a, cos a) into (sin(a + d), cos(a + d)) for a d below kFootpointTurn, the
// largest distance of the footpoint latitude from the rectifying latitude (0.00252 rad) with
// room to spare: there sin d to d^5 and cos d to d^4 are exact to rounding.
const double kFootpointTurn = 0.003;
void turnToFootpoint(double d, double* sinA, double* cosA) {
    const double d2 = d * d;
    const double sd = d - d * d2 * (1.0 / 6 - d2 * (1.0 / 120));
    const double cd = 1.0 - d2 * (0.5 - d2 * (1.0 / 24));
    const double s = *sinA * cd + *cosA * sd;
    *cosA = *cosA * cd - *sinA * sd;
    *sinA = s;
}

// Meridian arc from the latitude of origin to phi, radians in, metres out, given the
// multiple sines of both.
double meridianArc(double phi, double phi0, const MultipleSines& p, const MultipleSines& o) {
    return kA1mE2 *
           (kArcA * (phi - phi0) - kArcB2 * (p.s[0] - o.s[0]) + kArcB4 * (p.s[1] - o.s[1]) -
            kArcB6 * (p.s[2] - o.s[2]) + kArcB8 * (p.s[3] - o.s[3]) - kArcB10 * (p.s[4] - o.s[4]));
}

// What both conversions need of the latitude of origin, kept per thread for the last origin
// used: hosts convert many points around one origin. The multiple sines are worked out from
// sin phi0 and cos phi0, as those of the point are, so that a point on the origin has an arc
// of exactly 0.
struct Origin {
    double phi0;
    MultipleSines sines;
    double arcFromEquator; // metres
    explicit Origin(double p)
        : phi0(p), sines(MultipleSines::ofSinCos(std::sin(p), std::cos(p))),
          arcFromEquator(meridianArc(p, 0.0, sines, MultipleSines(0.0, 1.0))) {}
};

const Origin& originOf(double phi0) {
    thread_local Origin cached(0.0);
    if (!(phi0 == cached.phi0 && std::signbit(phi0) == std::signbit(cached.phi0))) {
        cached = Origin(phi0);
    }
    return cached;
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
    *y = meridianArc(phi, phi0, MultipleSines::ofSinCos(s, c), originOf(phi0).sines) +
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
    const Origin& origin = originOf(phi0);

    // Footpoint latitude phi1: the latitude on the central meridian whose arc from the origin
    // is y. The estimate from the rectifying latitude mu already meets the stop test, save
    // for a rare last digit; the documented step r / M0 follows if it does not. sin phi and
    // cos phi of every estimate come from those of mu by a small turn.
    const double mu = (y + origin.arcFromEquator) * kInvM0;
    const double sinMu = std::sin(mu);
    const double cosMu = std::cos(mu);
    const double sin2Mu = 2.0 * sinMu * cosMu;
    const double cos2Mu = (cosMu - sinMu) * (cosMu + sinMu);
    const double cos2MuSq = cos2Mu * cos2Mu;
    double phi1 = mu + sin2Mu * ((kFootP0 + kFootP1 * cos2Mu) +
                                 cos2MuSq * (kFootP2 + kFootP3 * cos2Mu + kFootP4 * cos2MuSq));
    double s = 0.0;
    double c = 0.0;
    for (int pass = 0; pass < kFootpointMaxPasses; ++pass) {
        const double turn = phi1 - mu;
        if (std::fabs(turn) < kFootpointTurn) {
            s = sinMu;
            c = cosMu;
            turnToFootpoint(turn, &s, &c);
        } else {
            s = std::sin(phi1);
            c = std::cos(phi1);
        }
        const double r = y - meridianArc(phi1, phi0, MultipleSines::ofSinCos(s, c), origin.sines);
        if (std::fabs(r) < kFootpointTolerance) {
            break;
        }
        phi1 = phi1 + r / kM0;
        if (pass + 1 == kFootpointMaxPasses) {
            s = std::sin(phi1);
            c = std::cos(phi1);
        }
    }

    // With u = x / N the terms read t u^2 / 2 for t x^2 / 2N^2, and so on; 1 / N is
    // sqrt(1 - e^2 sin^2 phi1) / a, and 1 / cos phi1 is the one division of the series.
    const double invC = 1.0 / c;
    const double t = s * invC; // tan phi1
    const double n2 = kEp2 * c * c;
    const double u = x * (std::sqrt(1.0 - kE2 * s * s) * kInvA);

    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
    const double n4 = n2 * n2;
    const double u2 = u * u, u4 = u2 * u2, u6 = u4 * u2, u8 = u4 * u4;
    const double u3 = u2 * u, u5 = u4 * u, u7 = u4 * u3;

    const double phi =
        phi1 - (t / 2.0) * (1.0 + n2) * u2 +
        (t / 24.0) * (5.0 + 3.0 * t2 + 6.0 * n2 - 6.0 * t2 * n2 - 3.0 * n4 - 9.0 * t2 * n4) * u4 -
        (t / 720.0) *
            (61.0 + 90.0 * t2 + 45.0 * t4 + 107.0 * n2 - 162.0 * t2 * n2 - 45.0 * t4 * n2) * u6 +
        (t / 40320.0) * (1385.0 + 3633.0 * t2 + 4095.0 * t4 + 1575.0 * t6) * u8;
    const double dl =
        (u - (1.0 / 6.0) * (1.0 + 2.0 * t2 + n2) * u3 +
         (1.0 / 120.0) * (5.0 + 28.0 * t2 + 24.0 * t4 + 6.0 * n2 + 8.0 * t2 * n2) * u5 -
         (1.0 / 5040.0) * (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t6) * u7) *
        invC;

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
