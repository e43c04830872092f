#include <zbBase/numeric/CzbMatrix4x4.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using zbBase::CzbMatrix4x4;

namespace {

// Exposes the protected composing rule and the stored values.
class OpenMatrix : public CzbMatrix4x4 {
public:
    using CzbMatrix4x4::Multiplication;
    OpenMatrix& operator=(const CzbMatrix4x4& other) {
        CzbMatrix4x4::operator=(other);
        return *this;
    }
};

struct Point {
    double x, y, z;
};

Point apply(CzbMatrix4x4& m, double x, double y, double z) {
    m.MakeResult(&x, &y, &z);
    return {x, y, z};
}

std::string printed(CzbMatrix4x4& m) {
    testing::internal::CaptureStdout();
    m.MatrixPrint();
    std::string out = testing::internal::GetCapturedStdout();
    std::string clean;
    for (char ch : out) {
        if (ch != '\r') {
            clean += ch;
        }
    }
    return clean;
}

// Reads back the 16 elements by transforming unit points (the last row is not observable
// through MakeResult, so only rows 0 to 2 are compared).
void rows(CzbMatrix4x4& m, double out[12]) {
    const Point o = apply(m, 0, 0, 0);
    const Point ex = apply(m, 1, 0, 0), ey = apply(m, 0, 1, 0), ez = apply(m, 0, 0, 1);
    const Point cols[3] = {ex, ey, ez};
    for (int c = 0; c < 3; ++c) {
        out[0 + c] = cols[c].x - o.x;
        out[4 + c] = cols[c].y - o.y;
        out[8 + c] = cols[c].z - o.z;
    }
    out[3] = o.x;
    out[7] = o.y;
    out[11] = o.z;
}

} // namespace

TEST(CzbMatrix4x4, RightAngleRotationsAreExact) {
    CzbMatrix4x4 h, p, r;
    h.SetRotateH(90.0);
    p.SetRotateP(90.0);
    r.SetRotateR(90.0);
    Point a = apply(h, 1, 0, 0), b = apply(p, 0, 1, 0), c = apply(r, 0, 0, 1);
    EXPECT_EQ(a.x, 0.0);
    EXPECT_EQ(a.y, 1.0);
    EXPECT_EQ(a.z, 0.0);
    EXPECT_EQ(b.x, 0.0);
    EXPECT_EQ(b.y, 0.0);
    EXPECT_EQ(b.z, 1.0);
    EXPECT_EQ(c.x, 1.0);
    EXPECT_EQ(c.y, 0.0);
    EXPECT_EQ(c.z, 0.0);
    CzbMatrix4x4 m;
    m.SetRotateH(-90.0);
    a = apply(m, 1, 0, 0);
    EXPECT_EQ(a.x, 0.0);
    EXPECT_EQ(a.y, -1.0);
}

TEST(CzbMatrix4x4, FactorComposedLastActsFirst) {
    CzbMatrix4x4 m;
    EXPECT_TRUE(m.SetTransform(1, 2, 3));
    EXPECT_TRUE(m.SetRotateH(90.0));
    Point a = apply(m, 1, 0, 0);
    EXPECT_EQ(a.x, 1.0);
    EXPECT_EQ(a.y, 3.0);
    EXPECT_EQ(a.z, 3.0);

    CzbMatrix4x4 n;
    n.SetRotateH(90.0);
    n.SetTransform(1, 2, 3);
    a = apply(n, 1, 0, 0);
    EXPECT_EQ(a.x, -2.0);
    EXPECT_EQ(a.y, 2.0);
    EXPECT_EQ(a.z, 3.0);

    // A second rotation composes with the first.
    CzbMatrix4x4 ab, sum;
    ab.SetRotateH(25.0);
    ab.SetRotateH(40.0);
    sum.SetRotateH(65.0);
    double e1[12], e2[12];
    rows(ab, e1);
    rows(sum, e2);
    for (int i = 0; i < 12; ++i) {
        EXPECT_NEAR(e1[i], e2[i], 1e-15) << i;
    }

    // The float overload computes in double and narrows on store.
    float fx = 1.0f, fy = 0.0f, fz = 0.0f;
    EXPECT_TRUE(m.MakeResult(&fx, &fy, &fz));
    EXPECT_EQ(fx, 1.0f);
    EXPECT_EQ(fy, 3.0f);
    EXPECT_EQ(fz, 3.0f);
}

TEST(CzbMatrix4x4, SetClearAssignAndProduct) {
    double values[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 99, 98, 97, 96};
    CzbMatrix4x4 m;
    m.SetTransform(7, 7, 7);
    EXPECT_TRUE(m.SetMatrix(values)); // overwrites, does not compose
    Point a = apply(m, 1, 1, 1);
    EXPECT_EQ(a.x, 10.0);
    EXPECT_EQ(a.y, 26.0);
    EXPECT_EQ(a.z, 42.0);
    // The last row plays no part.
    values[12] = values[13] = values[14] = values[15] = 0.0;
    CzbMatrix4x4 noLastRow;
    noLastRow.SetMatrix(values);
    Point b = apply(noLastRow, 1, 1, 1);
    EXPECT_EQ(b.x, a.x);
    EXPECT_EQ(b.y, a.y);
    EXPECT_EQ(b.z, a.z);

    // After MatrixClear the next factor is stored unchanged.
    EXPECT_TRUE(m.MatrixClear());
    m.SetTransform(1, 2, 3);
    a = apply(m, 0, 0, 0);
    EXPECT_EQ(a.x, 1.0);
    EXPECT_EQ(a.y, 2.0);
    EXPECT_EQ(a.z, 3.0);

    // operator= from a new object: identity with the set flag on; the next composition runs
    // the full product and gives the same values.
    CzbMatrix4x4 fresh, t;
    t.SetRotateR(30.0);
    t = fresh;
    t.SetRotateP(30.0);
    CzbMatrix4x4 direct;
    direct.SetRotateP(30.0);
    double e1[12], e2[12];
    rows(t, e1);
    rows(direct, e2);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(e1[i], e2[i]) << i;
    }

    // A * B changes A in place into A . B, leaves B alone, and equals Multiplication.
    double aValues[16] = {2, 0, 1, 3, 0, 1, 0, -1, 1, 2, 3, 4, 0, 0, 0, 1};
    double bValues[16] = {1, 2, 0, 5, 0, 1, 1, 6, 3, 0, 1, 7, 0, 0, 0, 1};
    CzbMatrix4x4 A, B, bCopy;
    A.SetMatrix(aValues);
    B.SetMatrix(bValues);
    bCopy.SetMatrix(bValues);
    OpenMatrix viaRule;
    viaRule.SetMatrix(aValues);
    viaRule.Multiplication(bValues);
    CzbMatrix4x4& same = A * B;
    EXPECT_EQ(&same, &A);
    double r1[12], r2[12], b1[12], b2[12];
    rows(A, r1);
    rows(viaRule, r2);
    rows(B, b1);
    rows(bCopy, b2);
    // Row 0 of A . B: (2*1+1*3, 2*2, 2*0+1*1, 2*5+1*7+3).
    const double expectRow0[4] = {5, 4, 1, 20};
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(r1[i], r2[i]) << i;
        EXPECT_EQ(b1[i], b2[i]) << i;
        if (i < 4) {
            EXPECT_EQ(r1[i], expectRow0[i]) << i;
        }
    }
}

TEST(CzbMatrix4x4, PrintLayout) {
    CzbMatrix4x4 m;
    EXPECT_EQ(printed(m), "\nMatrix\n"
                          "\t 1\t 2\t 3\t 4\t\n"
                          " 1\t1.00\t0.00\t0.00\t0.00\t\n"
                          " 2\t0.00\t1.00\t0.00\t0.00\t\n"
                          " 3\t0.00\t0.00\t1.00\t0.00\t\n"
                          " 4\t0.00\t0.00\t0.00\t1.00\t\n"
                          "\n\n");
    m.SetTransform(1.234, -5.678, 19.999);
    m.SetRotateH(30.0);
    EXPECT_EQ(printed(m), "\nMatrix\n"
                          "\t 1\t 2\t 3\t 4\t\n"
                          " 1\t0.87\t-0.50\t0.00\t1.23\t\n"
                          " 2\t0.50\t0.87\t0.00\t-5.68\t\n"
                          " 3\t0.00\t0.00\t1.00\t20.00\t\n"
                          " 4\t0.00\t0.00\t0.00\t1.00\t\n"
                          "\n\n");
}

TEST(CzbMatrix4x4, NonFiniteAngleGivesNonFiniteElements) {
    CzbMatrix4x4 m;
    m.SetRotateH(std::nan(""));
    Point a = apply(m, 1, 0, 0);
    EXPECT_TRUE(std::isnan(a.x));
    EXPECT_EQ(a.z, 0.0);
}
