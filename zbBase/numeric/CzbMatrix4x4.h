// CzbMatrix4x4: a homogeneous 4x4 transform of doubles, composed from rotations and
// translations and applied to points.
//
// Storage is row by row: element (row, column) is at 4 * row + column. Points are column
// vectors transformed as M * p; the translation stands at indices 3, 7 and 11 and the last row
// plays no part in MakeResult (w is taken as 1, nothing is divided by it).
//
// The Set* operations do not replace the matrix: each multiplies its factor in on the right,
// so the factor composed last acts first on a point. Sines and cosines pass through
// (v + 1.0) - 1.0, which makes rotations by +-90 degrees exact; other multiples of 90 keep
// residues of about 2e-16. Every bool result is always true. A non-finite angle gives
// non-finite elements. One object is for one thread at a time.
#pragma once

#include "zbBase/numeric/zbExport.h"

namespace zbBase {

class ZB_API CzbMatrix4x4 {
public:
    CzbMatrix4x4();
    CzbMatrix4x4(const CzbMatrix4x4& other) = default;
    ~CzbMatrix4x4() = default;

    // Identity, set flag false.
    bool MatrixClear();
    // Replaces the matrix by 16 doubles in storage order; the one operation that overwrites.
    bool SetMatrix(double* values);
    // Copies the 16 values; the target's set flag becomes true whatever the source's was.
    CzbMatrix4x4& operator=(const CzbMatrix4x4& other);

    // Rotation about z (x toward y), in degrees.
    bool SetRotateH(double degrees);
    // Rotation about x (y toward z), in degrees.
    bool SetRotateP(double degrees);
    // Rotation about y (z toward x), in degrees.
    bool SetRotateR(double degrees);
    // Translation by (x, y, z).
    bool SetTransform(double x, double y, double z);
    // Composes the right operand into this object in place (this = this * other) and returns
    // this object; the right operand is unchanged.
    CzbMatrix4x4& operator*(const CzbMatrix4x4& other);

    // Transforms the point in place; the float overload computes in double.
    bool MakeResult(float* x, float* y, float* z);
    bool MakeResult(double* x, double* y, double* z);
    // Prints the matrix on standard output with two decimals.
    void MatrixPrint();

protected:
    // Composes 16 doubles in storage order on the right of the matrix (or stores them while
    // the matrix is the untouched identity).
    bool Multiplication(double* factor);

private:
    double m_matrix[16];
    bool m_bSet;
};

} // namespace zbBase
