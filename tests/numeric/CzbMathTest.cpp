#include <zbBase/numeric/CzbMath.h>

#include <gtest/gtest.h>

#include <cmath>

using zbBase::CzbMath;
using zbBase::zbVector2d;
using zbBase::zbVector3d;

TEST(CzbMath, AngleAtVertexAndRotation) {
    CzbMath m;
    EXPECT_EQ(m.GetAngle3Point(0, 0, 1, 0, 0, 1), 90.0);
    EXPECT_EQ(m.GetAngle3Point(0, 0, 1, 0, -1, 0), 180.0);
    EXPECT_EQ(m.GetAngle3Point(0, 0, 0, 1, 1, 0), 90.0); // no sense of rotation
    EXPECT_NEAR(m.GetAngle3Point(1, 1, 2, 1, 2, 2), 45.0, 1e-13);
    EXPECT_TRUE(std::isnan(m.GetAngle3Point(0, 0, 0, 0, 1, 1)));

    // {centre, point, angle, expected}: from x toward y, right angles exact.
    const double turns[][7] = {
        {1, 1, 2, 1, 90, 1, 2}, {1, 1, 2, 1, -90, 1, 0}, {0, 0, 3, 4, 0, 3, 4}};
    for (const auto& t : turns) {
        const zbVector2d r = m.GetRotatePosition({t[0], t[1]}, {t[2], t[3]}, t[4]);
        EXPECT_EQ(r.x, t[5]) << t[4];
        EXPECT_EQ(r.y, t[6]) << t[4];
    }
    const zbVector2d r = m.GetRotatePosition({0, 0}, {2, 0}, 30.0);
    EXPECT_NEAR(r.x, std::sqrt(3.0), 1e-15);
    EXPECT_NEAR(r.y, 1.0, 1e-15);
}

TEST(CzbMath, SegmentCrossing) {
    CzbMath m;
    // End points count (t or s of 0 or 1); only a common start point is left out.
    const double cross[][10] = {{0, 0, 2, 2, 0, 2, 2, 0, 1, 1},
                                {0, 0, 1, 0, 1, 0, 1, 1, 1, 0},
                                {1, 0, 1, 1, 0, 0, 2, 0, 1, 0},
                                {0, 0, 2, 0, 1, 0, 1, 1, 1, 0}};
    for (const auto& c : cross) {
        zbVector2d out(-7, -7);
        EXPECT_TRUE(
            m.GetIntersectPoint({c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}, &out));
        EXPECT_EQ(out.x, c[8]);
        EXPECT_EQ(out.y, c[9]);
    }
    // Common start, parallel, overlapping, t beyond 1, s beyond 1, t below 0, s below 0, zero
    // length: no crossing, and the out vector keeps its value.
    const double apart[][8] = {{0, 0, 1, 0, 0, 0, 0, 1},     {0, 0, 1, 0, 0, 1, 1, 1},
                               {0, 0, 2, 0, 1, 0, 3, 0},     {0, 0, 1, 1, 3, 0, 3, 5},
                               {0, 0, 4, 4, 0, 2, 0.5, 1.9}, {2, 2, 3, 3, 0, 2, 2, 0},
                               {0, 0, 2, 2, 0.5, 1.5, 1, 3}, {0, 0, 0, 0, 0, 0, 1, 1}};
    zbVector2d out(-7, -7);
    for (const auto& c : apart) {
        EXPECT_FALSE(
            m.GetIntersectPoint({c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}, &out))
            << "case " << &c - apart;
    }
    EXPECT_EQ(out.x, -7.0);
    EXPECT_EQ(out.y, -7.0);
}

TEST(CzbMath, PointInPolygon) {
    CzbMath m;
    zbVector2d square[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    zbVector2d reversed[4] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
    EXPECT_TRUE(m.GetIsPointOnPolygon({0.5, 0.5}, square, 4));
    EXPECT_TRUE(m.GetIsPointOnPolygon({0.5, 0.5}, reversed, 4));
    EXPECT_FALSE(m.GetIsPointOnPolygon({1.5, 0.5}, square, 4));
    EXPECT_FALSE(m.GetIsPointOnPolygon({1, 1}, square, 4));  // on a vertex: 0/0
    EXPECT_TRUE(m.GetIsPointOnPolygon({0.5, 0}, square, 4)); // middle of an edge
    EXPECT_FALSE(m.GetIsPointOnPolygon({std::nan(""), 0.5}, square, 4));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.5}, nullptr, 0));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.5}, nullptr, -3));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.5}, square, 1));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0, 0}, square, 1));
    zbVector2d segment[2] = {{0, 0}, {2, 0}}; // two angles of 180 make a full turn
    EXPECT_TRUE(m.GetIsPointOnPolygon({0.5, 0}, segment, 2));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.1}, segment, 2));
    // Concave: the unsigned angles at an inside point near a corner add up to about 399.3.
    zbVector2d concave[5] = {{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}};
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.1, 0.1}, concave, 5));
    EXPECT_TRUE(m.GetIsPointOnPolygon({2, 0.5}, concave, 5));
}

TEST(CzbMath, PointOnLine) {
    CzbMath m;
    const double nan = std::nan("");
    // {P, A, B, on}. The line is unbounded. Where A and B differ only in z (or not at all) x and
    // y are compared, not z; where x is constant only y and z; where y is constant x and z;
    // where z is constant x and y; along the x axis both y and z.
    const double cases[][10] = {
        {1, 1, 1, 0, 0, 0, 2, 2, 2, 1},    {1, 1, 2, 0, 0, 0, 2, 2, 2, 0},
        {-3, -3, -3, 0, 0, 0, 2, 2, 2, 1}, {nan, 1, 1, 0, 0, 0, 2, 2, 2, 0},
        {1, 2, 99, 1, 2, 0, 1, 2, 5, 1},   {1, 2, 99, 1, 2, 0, 1, 2, 0, 1},
        {1, 2.5, 0, 1, 2, 0, 1, 2, 5, 0},  {1.5, 2, 0, 1, 2, 0, 1, 2, 5, 0},
        {5, 5, 5, 0, 0, 0, 0, 1, 1, 1},    {5, 5, 4, 0, 0, 0, 0, 1, 1, 0},
        {7, 0, 0, 0, 0, 0, 1, 0, 0, 1},    {7, 0, 1, 0, 0, 0, 1, 0, 0, 0},
        {7, 1, 0, 0, 0, 0, 1, 0, 0, 0},    {2, 9, 4, 0, 3, 0, 1, 3, 2, 1},
        {2, 9, 5, 0, 3, 0, 1, 3, 2, 0},    {2, 4, 9, 0, 0, 3, 1, 2, 3, 1},
        {2, 5, 9, 0, 0, 3, 1, 2, 3, 0},    {1, nan, 1, 0, 0, 3, 1, 2, 3, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(m.GetLineOnPoint({c[0], c[1], c[2]}, {c[3], c[4], c[5]}, {c[6], c[7], c[8]}),
                  c[9] != 0)
            << "case " << &c - cases;
    }
}
