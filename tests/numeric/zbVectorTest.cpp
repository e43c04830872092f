#include <zbBase/numeric/zbVector.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

using namespace zbBase;

TEST(Vectors, MinusChangesLeftOperandOnlyOnThreeComponentTypes) {
    zbVector3d a(5, 7, 9), b(1, 2, 3);
    zbVector3d c = a - b;
    EXPECT_EQ(c.x, 4.0);
    EXPECT_EQ(a.x, 4.0);
    EXPECT_EQ(a.y, 5.0);
    EXPECT_EQ(a.z, 6.0);
    EXPECT_EQ(b.x, 1.0);

    qwVector3f af(5, 7, 9), bf(1, 2, 3);
    qwVector3f cf = af - bf;
    EXPECT_EQ(cf.z, 6.0f);
    EXPECT_EQ(af.z, 6.0f);

    zbVector2d a2(5, 7), b2(1, 2);
    zbVector2d c2 = a2 - b2;
    EXPECT_EQ(c2.x, 4.0);
    EXPECT_EQ(a2.x, 5.0);

    const qwPoint p(5, 7), q(1, 2);
    qwPoint r = p - q;
    EXPECT_TRUE(r.Equals(qwPoint(4, 5)));
    EXPECT_EQ(p.x, 5);

    // Plus changes neither operand on any of the four.
    zbVector3d s = zbVector3d(1, 1, 1) + b;
    EXPECT_EQ(s.z, 4.0);
    EXPECT_EQ(b.z, 3.0);
    zbVector2d s2 = a2 + b2;
    EXPECT_EQ(s2.x, 6.0);
    EXPECT_EQ(s2.y, 9.0);
    EXPECT_EQ(a2.x, 5.0);
    EXPECT_EQ(b2.y, 2.0);
    qwVector3f sf = af + bf;
    EXPECT_EQ(sf.x, 5.0f);
    EXPECT_EQ(sf.z, 9.0f);
    EXPECT_EQ(af.x, 4.0f);
    EXPECT_EQ(bf.z, 3.0f);
}

TEST(Vectors, LengthsDotCrossAndNormalize) {
    zbVector3d v(3, 4, 12);
    EXPECT_EQ(v.Mag(), 5.0);
    EXPECT_EQ(v.getLength(), 13.0);
    qwVector3f vf(3, 4, 12);
    EXPECT_EQ(vf.Mag(), 5.0f);
    EXPECT_EQ(vf.getLength(), 13.0f);

    zbVector3d ex(1, 0, 0), ey(0, 1, 0);
    zbVector3d ez = ex * ey;
    EXPECT_EQ(ez.x, 0.0);
    EXPECT_EQ(ez.y, 0.0);
    EXPECT_EQ(ez.z, 1.0);
    EXPECT_EQ(ex.x, 1.0);
    EXPECT_EQ(ey.y, 1.0);
    qwVector3f fx(1, 0, 0), fy(0, 1, 0);
    EXPECT_EQ((fx * fy).z, 1.0f);
    EXPECT_EQ(zbVector3d(1, 2, 3).Dot(zbVector3d(4, 5, 6)), 32.0);

    zbVector3d zero;
    zero.Normalize();
    EXPECT_EQ(zero.x, 0.0);
    EXPECT_EQ(zero.getLength(), 0.0);
    qwVector3f zerof;
    zerof.Normalize();
    EXPECT_EQ(zerof.z, 0.0f);
    zbVector3d n(0, 3, 4);
    n.Normalize();
    EXPECT_DOUBLE_EQ(n.y, 0.6);
    EXPECT_DOUBLE_EQ(n.z, 0.8);
    // Single precision: the length is the double root of the float sum, rounded to float,
    // and the divisions are float.
    qwVector3f nf(1, 1, 1);
    nf.Normalize();
    const float root3 = static_cast<float>(std::sqrt(3.0));
    EXPECT_EQ(nf.x, 1.0f / root3);
    EXPECT_EQ(nf.z, 1.0f / root3);
    qwVector3f big(3e19f, 4e19f, 0); // squares overflow float: length infinite, all zero
    big.Normalize();
    EXPECT_EQ(big.x, 0.0f);
    EXPECT_EQ(big.y, 0.0f);

    zbVector3d u(1, 1, 1);
    u += zbVector3d(1, 2, 3);
    u -= zbVector3d(0, 0, 1);
    EXPECT_EQ(u.z, 3.0);
}

TEST(Vectors, FloatScalarIsWidenedExactly) {
    float tenth = 0.1f;
    zbVector3d v(1, 2, 3);
    zbVector3d w = v * tenth;
    EXPECT_EQ(w.x, static_cast<double>(0.1f));
    EXPECT_NE(w.x, 0.1);
    EXPECT_EQ(w.z, 3.0 * static_cast<double>(0.1f));
    EXPECT_EQ(v.x, 1.0);
    qwVector3f vf(1, 2, 3);
    EXPECT_EQ((vf * tenth).y, 2.0f * 0.1f);
}

TEST(Vectors, PointArithmeticWrapsAround) {
    const qwPoint big(INT_MAX, INT_MIN);
    const qwPoint one(1, 1);
    qwPoint sum = big + one;
    EXPECT_EQ(sum.x, INT_MIN);
    EXPECT_EQ(sum.y, INT_MIN + 1);
    qwPoint diff = qwPoint(INT_MIN, 0) - one;
    EXPECT_EQ(diff.x, INT_MAX);
    qwPoint copy(sum);
    EXPECT_TRUE(copy.Equals(sum));
    EXPECT_FALSE(copy.Equals(one));
    EXPECT_FALSE(copy.Equals(qwPoint(INT_MIN, 0)));     // x alike, y not
    EXPECT_FALSE(copy.Equals(qwPoint(0, INT_MIN + 1))); // y alike, x not
}

TEST(Vectors, LayoutIsPlainFields) {
    static_assert(sizeof(zbVector2d) == 2 * sizeof(double), "x, y");
    static_assert(sizeof(zbVector3d) == 3 * sizeof(double), "x, y, z");
    static_assert(sizeof(qwVector3f) == 3 * sizeof(float), "x, y, z");
    static_assert(sizeof(qwPoint) == 2 * sizeof(int), "x, y");
    zbVector3d arr[2] = {zbVector3d(1, 2, 3), zbVector3d(4, 5, 6)};
    EXPECT_EQ(reinterpret_cast<double*>(arr)[3], 4.0);
}
