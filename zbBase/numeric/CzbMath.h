// CzbMath: plane and line geometry on the library's vector types.
//
// All comparisons are exact, without tolerance. Angles are degrees. The acos ratios are not
// clamped: a zero-length arm gives NaN (GetAngle3Point returns it, GetIsPointOnPolygon
// answers false). The object has no state; any thread may call any operation.
#pragma once

#include "zbBase/numeric/zbExport.h"
#include "zbBase/numeric/zbVector.h"

namespace zbBase {

class ZB_API CzbMath {
public:
    CzbMath() = default;
    CzbMath(const CzbMath&) = default;
    CzbMath& operator=(const CzbMath&) = default;
    ~CzbMath() = default;

    // Unsigned angle at the vertex between the arms to the two points, 0 to 180.
    double GetAngle3Point(double vertexX, double vertexY, double x1, double y1, double x2,
                          double y2);
    // Whether segment a1-a2 crosses segment b1-b2; the crossing is stored only then.
    // Parallel and collinear segments never cross, nor do two segments that start at the
    // same point; other shared end points count.
    bool GetIntersectPoint(zbVector2d a1, zbVector2d a2, zbVector2d b1, zbVector2d b2,
                           zbVector2d* crossing);
    // Whether the unsigned angles the edges subtend at the point add up to a full turn
    // (strictly between 359.9 and 360.1). True inside a convex polygon and on the inner part
    // of an edge; false on a vertex, and possibly false inside a concave polygon.
    bool GetIsPointOnPolygon(zbVector2d point, zbVector2d* vertices, int count);
    // Whether the point lies on the unbounded line through a and b. Where the line keeps one
    // coordinate constant, that coordinate of the point is not compared.
    bool GetLineOnPoint(zbVector3d point, zbVector3d a, zbVector3d b);
    // The point turned about the centre, counter-clockwise (x toward y) for a positive
    // angle; right angles are exact.
    zbVector2d GetRotatePosition(zbVector2d centre, zbVector2d point, double degrees);
};

} // namespace zbBase
