// CzbWGS84: geographic coordinates to plane coordinates in metres and back, and bearings and
// range positions on that basis. Angles are decimal degrees, longitude before latitude, east
// before north; lengths are metres.
//
// Two methods, not interchangeable:
//  - Bessel2TM is a local plane approximation: the longitude and latitude differences scaled
//    by the WGS84 radii of curvature at the point, plus a height. It is no projection; its
//    error grows with the square of the distance from the origin (some metres at 100 km).
//  - _Bessel2TM and _TM2Bessel are the Gauss-Krueger (transverse Mercator) series on the
//    Bessel 1841 ellipsoid, to the eighth order in the longitude difference, with scale 1 on
//    the central meridian and no false easting or northing (west and south give negative
//    values). A forward and inverse round trip comes back to within 1e-9 degrees up to
//    3 degrees off the central meridian (latitudes up to 80), some 5 mm at 8 degrees, 0.2 m at
//    12 and tens of metres at 20: the series are for zones a few degrees wide. Longitude
//    differences are not wrapped across +-180 degrees.
// getBearing and getRangePosition stand on the Gauss-Krueger pair in a grid centred on the
// reference point, so the bearing is a grid bearing (clockwise from the reference meridian).
//
// _TM2Bessel finds the footpoint latitude by the documented stop test (|r| < 1e-8 m of
// meridian arc) and step r / M0, but starts from a series for the footpoint latitude instead
// of y / M0 + phi0: the first pass nearly always meets the test (the rest need a second). It
// gives NaN for any non-finite input, and ends the iteration after at most 100 passes. No
// state; any thread may call any operation.
#pragma once

#include "zbBase/numeric/zbExport.h"

class ZB_API CzbWGS84 {
public:
    CzbWGS84() = default;
    CzbWGS84(const CzbWGS84&) = default;
    CzbWGS84& operator=(const CzbWGS84&) = default;
    ~CzbWGS84() = default;

    // Plane offsets (east, north) of the point from the origin, with the radii of curvature
    // taken at the point's latitude and the height added to them.
    static void Bessel2TM(double height, double longitude, double latitude, double originLongitude,
                          double originLatitude, double* x, double* y);
    // Gauss-Krueger easting and northing of the point.
    static void _Bessel2TM(double longitude, double latitude, double centralMeridian,
                           double originLatitude, double* x, double* y);
    // Geographic coordinates of a Gauss-Krueger easting and northing; the longitude is not
    // normalised.
    static void _TM2Bessel(double x, double y, double centralMeridian, double originLatitude,
                           double* longitude, double* latitude);
    // Grid bearing from the reference point to the target, degrees clockwise from north
    // (0 for the reference point itself).
    static double getBearing(double targetLongitude, double targetLatitude,
                             double referenceLongitude, double referenceLatitude);
    // The point at the grid bearing and range from the reference point.
    static void getRangePosition(double bearing, double range, double referenceLongitude,
                                 double referenceLatitude, double* longitude, double* latitude);
};
