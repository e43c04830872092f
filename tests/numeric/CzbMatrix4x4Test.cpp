#include <zbBase/numeric/CzbMatrix4x4.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

using zbBase::CzbMatrix4x4;

namespace {

// Exposes the protected composing rule.
class OpenMatrix : public CzbMatrix4x4 {
public:
    using CzbMatrix4x4::Multiplication;
};

using Point = std::array<double, 3>;

Point apply(CzbMatrix4x4& m, Point p) {
    m.MakeResult(&p[0], &p[1], &p[2]);
    return p;
}

// Rows 0 to 2 read back through MakeResult (the last row is not observable there).
std::array<double, 12> rows(CzbMatrix4x4& m) {
    const Point o = apply(m, {0, 0, 0});
    std::array<double, 12> out{};
    for (int c = 0; c < 3; ++c) {
        Point unit{0, 0, 0};
        unit[c] = 1;
        const Point p = apply(m, unit);
        for (int r = 0; r < 3; ++r) {
            out[4 * r + c] = p[r] - o[r];
        }
    }
    out[3] = o[0], out[7] = o[1], out[11] = o[2];
    return out;
}

std::string printed(CzbMatrix4x4& m) {
    testing::internal::CaptureStdout();
    m.MatrixPrint();
    std::string out = testing::internal::GetCapturedStdout();
    out.erase(std::remove(out.begin(), out.end(), '\r'), out.end());
    return out;
}

} // namespace

TEST(CzbMatrix4x4, RightAngleRotationsAreExact) {
    CzbMatrix4x4 h, p, r, back;
    EXPECT_TRUE(h.SetRotateH(90.0));
    p.SetRotateP(90.0);
    r.SetRotateR(90.0);
    back.SetRotateH(-90.0);
    EXPECT_EQ(apply(h, {1, 0, 0}), (Point{0, 1, 0}));
    EXPECT_EQ(apply(p, {0, 1, 0}), (Point{0, 0, 1}));
    EXPECT_EQ(apply(r, {0, 0, 1}), (Point{1, 0, 0}));
    EXPECT_EQ(apply(back, {1, 0, 0}), (Point{0, -1, 0}));
    CzbMatrix4x4 nan; // a non-finite angle gives non-finite elements
    nan.SetRotateH(std::nan(""));
    const Point a = apply(nan, {1, 0, 0});
    EXPECT_TRUE(std::isnan(a[0]));
    EXPECT_EQ(a[2], 0.0);
}

TEST(CzbMatrix4x4, FactorComposedLastActsFirst) {
    CzbMatrix4x4 m, n;
    EXPECT_TRUE(m.SetTransform(1, 2, 3));
    m.SetRotateH(90.0);
    EXPECT_EQ(apply(m, {1, 0, 0}), (Point{1, 3, 3}));
    n.SetRotateH(90.0);
    n.SetTransform(1, 2, 3);
    EXPECT_EQ(apply(n, {1, 0, 0}), (Point{-2, 2, 3}));

    // A second rotation composes with the first.
    CzbMatrix4x4 ab, sum;
    ab.SetRotateH(25.0);
    ab.SetRotateH(40.0);
    sum.SetRotateH(65.0);
    const std::array<double, 12> e1 = rows(ab), e2 = rows(sum);
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
    CzbMatrix4x4 m, noLastRow;
    m.SetTransform(7, 7, 7);
    EXPECT_TRUE(m.SetMatrix(values)); // overwrites, does not compose
    EXPECT_EQ(apply(m, {1, 1, 1}), (Point{10, 26, 42}));
    values[12] = values[13] = values[14] = values[15] = 0.0; // the last row plays no part
    noLastRow.SetMatrix(values);
    EXPECT_EQ(apply(noLastRow, {1, 1, 1}), (Point{10, 26, 42}));

    // After MatrixClear the next factor is stored unchanged.
    EXPECT_TRUE(m.MatrixClear());
    m.SetTransform(1, 2, 3);
    EXPECT_EQ(apply(m, {0, 0, 0}), (Point{1, 2, 3}));

    // operator= from a new object: identity with the set flag on; the next composition runs
    // the full product and gives the same values.
    CzbMatrix4x4 fresh, t, direct;
    t.SetRotateR(30.0);
    t = fresh;
    t.SetRotateP(30.0);
    direct.SetRotateP(30.0);
    EXPECT_EQ(rows(t), rows(direct));

    // A * B changes A in place into A . B, leaves B alone, and equals Multiplication.
    double aValues[16] = {2, 0, 1, 3, 0, 1, 0, -1, 1, 2, 3, 4, 0, 0, 0, 1};
    double bValues[16] = {1, 2, 0, 5, 0, 1, 1, 6, 3, 0, 1, 7, 0, 0, 0, 1};
    CzbMatrix4x4 A, B, bCopy;
    OpenMatrix viaRule;
    A.SetMatrix(aValues);
    B.SetMatrix(bValues);
    bCopy.SetMatrix(bValues);
    viaRule.SetMatrix(aValues);
    viaRule.Multiplication(bValues);
    EXPECT_EQ(&(A * B), &A);
    const std::array<double, 12> product = rows(A);
    EXPECT_EQ(product, rows(viaRule));
    EXPECT_EQ(rows(B), rows(bCopy));
    // Row 0 of A . B: (2*1+1*3, 2*2, 2*0+1*1, 2*5+1*7+3).
    EXPECT_EQ((std::array<double, 4>{product[0], product[1], product[2], product[3]}),
              (std::array<double, 4>{5, 4, 1, 20}));
}

TEST(CzbMatrix4x4, PrintLayout) {
    CzbMatrix4x4 m;
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
