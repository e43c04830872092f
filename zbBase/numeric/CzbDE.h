// CzbDE: angle, heading and motion arithmetic.
//
// Angles are in degrees unless a name says radians; pi is 3.141592653589793 and degrees
// become radians as value * pi / 180. Two heading senses exist:
//  - getHeading counts clockwise from +y (north): +x is 90.
//  - getAngle3d and the moving operations count counter-clockwise from +y: -x is 90.
// The reducing operations truncate through a signed 32-bit integer and so hold for
// |angle| < 2^31 * 180; beyond that their results are not meaningful.
//
// The object has no state: constructing, copying and destroying it costs nothing, and any
// thread may call any operation.
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API CzbDE {
public:
    CzbDE() = default;
    CzbDE(const CzbDE&) = default;
    CzbDE& operator=(const CzbDE&) = default;
    ~CzbDE() = default;

    double DegreeToRadian(double degrees);
    double RadianToDegree(double radians);
    // Remainder by 180 with the sign of the angle (190 gives 10, not -170).
    static double GetAngle180(double angle);
    // The angle in [0, 360).
    double GetAngle360(double angle);
    // Signed smaller turn from b to a; positive when a lies ahead of b. The int is unused.
    double GetAngleClosing(double a, double b, int unused);
    // Whether angle lies in the range running from `from` up to `to`, both ends included.
    bool GetCheckAngleRange(double angle, double from, double to);
    double distance3d(double x1, double y1, double z1, double x2, double y2, double z2);
    // Azimuth (counter-clockwise from +y) and elevation (below the horizon: above 270)
    // from point 1 to point 2.
    void getAngle3d(double x1, double y1, double z1, double x2, double y2, double z2,
                    double* azimuth, double* elevation);
    // Compass heading of (x east, y north), clockwise from +y. 0 for (0, 0) and for NaN.
    static double getHeading(double x, double y);

    // The moving operations use the counter-clockwise heading sense and always return true.
    // One frame at `rate` frames per second: step (1.0 / rate) * speed.
    bool getMovingPostion(double* x, double* y, double* z, double heading, double elevation,
                          double speed, unsigned int rate);
    // Step speed * time.
    bool getNextPostion(double* x, double* y, double* z, double heading, double elevation,
                        double speed, double time);
    // Step distance.
    bool getRotatePostion(double* x, double* y, double* z, double heading, double elevation,
                          double distance);
    // Rotates (x, y) about the origin, clockwise for a positive angle.
    static void getRoate2d(double angle, double x, double y, double* outX, double* outY);
    // Swings the point about the centre by the given heading and elevation changes, keeping
    // its distance. A point straight above or below the centre lands in its horizontal plane.
    void rotateposition3d(double centreX, double centreY, double centreZ, double* x, double* y,
                          double* z, double headingChange, double elevationChange);
    // Rotates the point about the centre in the x-y, then y-z, then x-z plane.
    // Right angles come out exact.
    void axisrotate(double* outX, double* outY, double* outZ, double centreX, double centreY,
                    double centreZ, double pointX, double pointY, double pointZ, double angleXY,
                    double angleYZ, double angleXZ);
    // Flies a missile toward a fixed target; true once both its heading and elevation are
    // captured, false once its heading winds more than 720 degrees from 0. Also false at once
    // for a frame rate of 0 or a non-finite argument, and false when neither ending has come
    // after one simulated hour of passes, at least 100000 and at most 1000000 passes (the
    // frame rate's 32 bits are read unsigned, so -1 is 4294967295): a run takes well under a
    // second whatever its arguments.
    bool missilesim(double x, double y, double z, double heading, double elevation,
                    double headingStep, double elevationStep, double targetX, double targetY,
                    double targetZ, double speed, double acceleration, int frameRate);
};

} // namespace zbBase
