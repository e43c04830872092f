// CzbInterpolation: curves through a list of control points, sampled into a result list.
//
// Control points stay in ascending order of x. Three calculations fill the result list:
//  - CaculationCubicSpline: natural cubic spline (second derivative 0 at both ends), sampled
//    evenly within each interval; the result list is replaced.
//  - CaculationLinear: the broken line through the points, sampled at whole abscissas; the
//    samples are appended behind what the list already holds.
//  - CaculationPolinomial: the one polynomial of degree n-1 through all n points (Newton form),
//    sampled from first to last by step; outside the points' span it extrapolates, and for
//    many points it oscillates as every full-degree interpolant does.
// Points with equal x are not rejected: a zero interval gives infinities or NaN in the
// samples, and the calculation still runs to its end. One object is for one thread at a time.
//
// Bounds: the result list holds at most 16777216 (2^24) samples, 256 MiB. A calculation stops
// sampling when the list is full, or when memory for a sample or a work array runs out, and
// keeps what it made; so a span of 1e12 or a step of 1e-320 ends within a fraction of a
// second. No operation throws: a control point that memory cannot hold is dropped, a copy
// that memory cannot hold whole starts without results (and without control points if those
// do not fit either), and such an operator= changes nothing.
#pragma once

#include "zbBase/numeric/zbExport.h"

#include <vector>

namespace zbBase {

class ZB_API CzbInterpolation {
public:
    struct _Data {
        double x;
        double y;
    };

    CzbInterpolation() = default;
    CzbInterpolation(const CzbInterpolation& other);
    CzbInterpolation& operator=(const CzbInterpolation& other);
    ~CzbInterpolation() = default;

    // Inserts the point at its sorted place, behind points of equal x. A point whose x equals
    // that of the last point is dropped.
    void AddPoint(double x, double y);
    // Empties the result list; the control points stay.
    void ClearPoint();
    // The argument, truncated toward zero, is the number of samples per interval. Needs at
    // least two control points, otherwise the result list is left as it is.
    void CaculationCubicSpline(double steps);
    // The int is not read.
    void CaculationLinear(int unused);
    // Samples at first + i * step while not above last. A step that is not above zero, or a
    // first or last that is not finite, gives an empty result list.
    void CaculationPolinomial(double first, double last, double step);
    // The sample at the index, or (0.0, 0.0) outside the list.
    _Data GetData(int index);
    int GetDataNum();

private:
    // Gaussian elimination without pivoting on a tridiagonal system indexed 1 to size; the
    // solution replaces b.
    void solveTridiag(double* sub, double* diag, double* sup, double* b, int size);

    std::vector<_Data> m_points;
    std::vector<_Data> m_results;
};

} // namespace zbBase
