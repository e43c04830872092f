#include "zbBase/numeric/CzbMatrix4x4.h"

#include "zbBase/numeric/detail/zbSnapToUnit.h"

#include <cmath>
#include <cstdio>

namespace zbBase {

namespace {

const double kPi = 3.141592653589793;

void setIdentity(double* m) {
    for (int i = 0; i < 16; ++i) {
        m[i] = (i % 5 == 0) ? 1.0 : 0.0;
    }
}

// Cosine and sine of an angle in degrees, with residues far below 1.0 rounded away so that
// right angles give exact zeros and ones.
void cosSin(double degrees, double* c, double* s) {
    const double r = degrees * kPi / 180.0;
    *c = detail::snapToUnit(std::cos(r));
    *s = detail::snapToUnit(std::sin(r));
}

} // namespace

CzbMatrix4x4::CzbMatrix4x4() : m_bSet(false) {
    setIdentity(m_matrix);
}

bool CzbMatrix4x4::MatrixClear() {
    setIdentity(m_matrix);
    m_bSet = false;
    return true;
}

bool CzbMatrix4x4::SetMatrix(double* values) {
    for (int i = 0; i < 16; ++i) {
        m_matrix[i] = values[i];
    }
    m_bSet = true;
    return true;
}

CzbMatrix4x4& CzbMatrix4x4::operator=(const CzbMatrix4x4& other) {
    for (int i = 0; i < 16; ++i) {
        m_matrix[i] = other.m_matrix[i];
    }
    m_bSet = true;
    return *this;
}

bool CzbMatrix4x4::Multiplication(double* factor) {
    if (!m_bSet) {
        for (int i = 0; i < 16; ++i) {
            m_matrix[i] = factor[i];
        }
        m_bSet = true;
        return true;
    }
    double product[16];
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            const double* a = m_matrix + 4 * row;
            product[4 * row + col] = a[0] * factor[col] + a[1] * factor[4 + col] +
                                     a[2] * factor[8 + col] + a[3] * factor[12 + col];
        }
    }
    for (int i = 0; i < 16; ++i) {
        m_matrix[i] = product[i];
    }
    return true;
}

bool CzbMatrix4x4::SetRotateH(double degrees) {
    double c, s;
    cosSin(degrees, &c, &s);
    double f[16] = {c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    return Multiplication(f);
}

bool CzbMatrix4x4::SetRotateP(double degrees) {
    double c, s;
    cosSin(degrees, &c, &s);
    double f[16] = {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1};
    return Multiplication(f);
}

bool CzbMatrix4x4::SetRotateR(double degrees) {
    double c, s;
    cosSin(degrees, &c, &s);
    double f[16] = {c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1};
    return Multiplication(f);
}

bool CzbMatrix4x4::SetTransform(double x, double y, double z) {
    double f[16] = {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1};
    return Multiplication(f);
}

CzbMatrix4x4& CzbMatrix4x4::operator*(const CzbMatrix4x4& other) {
    // A copy, so that composing an object with itself reads the old values.
    double f[16];
    for (int i = 0; i < 16; ++i) {
        f[i] = other.m_matrix[i];
    }
    Multiplication(f);
    return *this;
}

bool CzbMatrix4x4::MakeResult(double* x, double* y, double* z) {
    const double* m = m_matrix;
    const double px = *x, py = *y, pz = *z;
    const double nx = m[0] * px + m[1] * py + m[2] * pz + m[3];
    const double ny = m[4] * px + m[5] * py + m[6] * pz + m[7];
    const double nz = m[8] * px + m[9] * py + m[10] * pz + m[11];
    *x = nx;
    *y = ny;
    *z = nz;
    return true;
}

bool CzbMatrix4x4::MakeResult(float* x, float* y, float* z) {
    double px = *x, py = *y, pz = *z;
    MakeResult(&px, &py, &pz);
    *x = static_cast<float>(px);
    *y = static_cast<float>(py);
    *z = static_cast<float>(pz);
    return true;
}

void CzbMatrix4x4::MatrixPrint() {
    std::printf("\nMatrix\n");
    std::printf("\t%2d\t%2d\t%2d\t%2d\t\n", 1, 2, 3, 4);
    for (int row = 0; row < 4; ++row) {
        std::printf("%2d\t", row + 1);
        for (int col = 0; col < 4; ++col) {
            std::printf("%.2lf\t", m_matrix[4 * row + col]);
        }
        std::printf("\n");
    }
    std::printf("\n\n");
    std::fflush(stdout);
}

} // namespace zbBase
