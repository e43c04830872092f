#include <zbBase/numeric/zbVector.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

using namespace zbBase;

namespace {
template <class V> bool is(const V& v, double x, double y, double z) {
    return v.x == x && v.y == y && v.z == z;
}

// On both three-component types minus changes its left operand, plus neither.
template <class V> void threeComponentOperators() {
    V a(5, 7, 9), b(1, 2, 3), ex(1, 0, 0), ey(0, 1, 0), zero;
    EXPECT_TRUE(is(a - b, 4, 5, 6));
    EXPECT_TRUE(is(a, 4, 5, 6));
    EXPECT_TRUE(is(a + b, 5, 7, 9));
    EXPECT_TRUE(is(a, 4, 5, 6) && is(b, 1, 2, 3));
    EXPECT_TRUE(is(ex * ey, 0, 0, 1)); // cross product, operands unchanged
    EXPECT_TRUE(is(ex, 1, 0, 0) && is(ey, 0, 1, 0));
    V v(3, 4, 12);
    EXPECT_EQ(v.Mag(), 5);
    EXPECT_EQ(v.getLength(), 13);
    zero.Normalize();
    EXPECT_TRUE(is(zero, 0, 0, 0));
}
} // namespace

TEST(Vectors, OperatorsLengthsAndNormalize) {
    threeComponentOperators<zbVector3d>();
    threeComponentOperators<qwVector3f>();
    zbVector2d a2(5, 7), b2(1, 2);
    EXPECT_EQ((a2 - b2).x, 4.0);
    EXPECT_EQ((a2 + b2).y, 9.0);
    EXPECT_TRUE(a2.x == 5.0 && b2.y == 2.0);
    const qwPoint p(5, 7), q(1, 2);
    EXPECT_TRUE((p - q).Equals(qwPoint(4, 5)));
    EXPECT_EQ(p.x, 5);
    zbVector3d u(1, 1, 1);
    u += zbVector3d(1, 2, 3);
    u -= zbVector3d(0, 0, 1);
    EXPECT_TRUE(is(u, 2, 3, 3));
    EXPECT_EQ(zbVector3d(1, 2, 3).Dot(zbVector3d(4, 5, 6)), 32.0);
    zbVector3d n(0, 3, 4);
    n.Normalize();
    EXPECT_DOUBLE_EQ(n.y, 0.6);
    EXPECT_DOUBLE_EQ(n.z, 0.8);
    // Single precision: the double root of the float sum, rounded to float; float divisions.
    qwVector3f nf(1, 1, 1);
    nf.Normalize();
    const float third = 1.0f / static_cast<float>(std::sqrt(3.0));
    EXPECT_TRUE(is(nf, third, third, third));
    qwVector3f big(3e19f, 4e19f, 0); // squares overflow float: length infinite, all zero
    big.Normalize();
    EXPECT_TRUE(is(big, 0, 0, 0));

    // A float scalar is widened exactly: 0.1f, not 0.1.
    float tenth = 0.1f;
    zbVector3d w = zbVector3d(1, 2, 3) * tenth;
    EXPECT_TRUE(is(w, 0.1f, 2.0 * 0.1f, 3.0 * 0.1f));
    EXPECT_NE(w.x, 0.1);
    EXPECT_EQ((qwVector3f(1, 2, 3) * tenth).y, 2.0f * 0.1f);
}

TEST(Vectors, PointArithmeticWrapsAndLayoutIsPlainFields) {
    const qwPoint big(INT_MAX, INT_MIN), one(1, 1);
    qwPoint sum = big + one;
    EXPECT_EQ(sum.x, INT_MIN);
    EXPECT_EQ(sum.y, INT_MIN + 1);
    EXPECT_EQ((qwPoint(INT_MIN, 0) - one).x, INT_MAX);
    qwPoint copy(sum);
    EXPECT_TRUE(copy.Equals(sum));
    EXPECT_FALSE(copy.Equals(qwPoint(INT_MIN, 0)));     // x alike, y not
    EXPECT_FALSE(copy.Equals(qwPoint(0, INT_MIN + 1))); // y alike, x not

    static_assert(sizeof(zbVector2d) == 2 * sizeof(double), "x, y");
    static_assert(sizeof(zbVector3d) == 3 * sizeof(double), "x, y, z");
    static_assert(sizeof(qwVector3f) == 3 * sizeof(float), "x, y, z");
    static_assert(sizeof(qwPoint) == 2 * sizeof(int), "x, y");
    zbVector3d arr[2] = {zbVector3d(1, 2, 3), zbVector3d(4, 5, 6)};
    EXPECT_EQ(reinterpret_cast<double*>(arr)[3], 4.0);
}
