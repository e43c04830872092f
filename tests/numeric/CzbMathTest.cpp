#include <zbBase/numeric/CzbMath.h>

#include <gtest/gtest.h>

#include <cmath>

using zbBase::CzbMath;
using zbBase::zbVector2d;
using zbBase::zbVector3d;

TEST(CzbMath, AngleAtVertex) {
    CzbMath m;
    EXPECT_EQ(m.GetAngle3Point(0, 0, 1, 0, 0, 1), 90.0);
    EXPECT_EQ(m.GetAngle3Point(0, 0, 1, 0, -1, 0), 180.0);
    EXPECT_EQ(m.GetAngle3Point(0, 0, 0, 1, 1, 0), 90.0); // no sense of rotation
    EXPECT_NEAR(m.GetAngle3Point(1, 1, 2, 1, 2, 2), 45.0, 1e-13);
    EXPECT_TRUE(std::isnan(m.GetAngle3Point(0, 0, 0, 0, 1, 1)));
}

TEST(CzbMath, SegmentCrossing) {
    CzbMath m;
    zbVector2d out(-7, -7);
    EXPECT_TRUE(m.GetIntersectPoint({0, 0}, {2, 2}, {0, 2}, {2, 0}, &out));
    EXPECT_EQ(out.x, 1.0);
    EXPECT_EQ(out.y, 1.0);
    EXPECT_TRUE(m.GetIntersectPoint({0, 0}, {1, 0}, {1, 0}, {1, 1}, &out));
    EXPECT_EQ(out.x, 1.0);
    EXPECT_EQ(out.y, 0.0);
    // A segment that starts on the other one (t = 0, s = 1/2) crosses it there; only a
    // common start point is left out.
    EXPECT_TRUE(m.GetIntersectPoint({1, 0}, {1, 1}, {0, 0}, {2, 0}, &out));
    EXPECT_EQ(out.x, 1.0);
    EXPECT_EQ(out.y, 0.0);
    EXPECT_TRUE(m.GetIntersectPoint({0, 0}, {2, 0}, {1, 0}, {1, 1}, &out)); // s = 0
    EXPECT_EQ(out.x, 1.0);
    EXPECT_EQ(out.y, 0.0);

    out.set(-7, -7);
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {1, 0}, {0, 0}, {0, 1}, &out));     // common start
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {1, 0}, {0, 1}, {1, 1}, &out));     // parallel
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {2, 0}, {1, 0}, {3, 0}, &out));     // overlapping
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {1, 1}, {3, 0}, {3, 5}, &out));     // t beyond 1
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {4, 4}, {0, 2}, {0.5, 1.9}, &out)); // s beyond 1
    EXPECT_FALSE(m.GetIntersectPoint({2, 2}, {3, 3}, {0, 2}, {2, 0}, &out));     // t below 0
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {2, 2}, {0.5, 1.5}, {1, 3}, &out)); // s below 0
    EXPECT_FALSE(m.GetIntersectPoint({0, 0}, {0, 0}, {0, 0}, {1, 1}, &out));     // zero length
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
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.5}, nullptr, 0));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.5}, nullptr, -3));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.5}, square, 1));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0, 0}, square, 1));
    zbVector2d segment[2] = {{0, 0}, {2, 0}};
    EXPECT_TRUE(m.GetIsPointOnPolygon({0.5, 0}, segment, 2));
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.5, 0.1}, segment, 2));
    // Concave: the unsigned angles at an inside point near a corner add up to about 399.3.
    zbVector2d concave[5] = {{0, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}};
    EXPECT_FALSE(m.GetIsPointOnPolygon({0.1, 0.1}, concave, 5));
    EXPECT_TRUE(m.GetIsPointOnPolygon({2, 0.5}, concave, 5));
    EXPECT_FALSE(m.GetIsPointOnPolygon({std::nan(""), 0.5}, square, 4));
}

TEST(CzbMath, PointOnLine) {
    CzbMath m;
    EXPECT_TRUE(m.GetLineOnPoint({1, 1, 1}, {0, 0, 0}, {2, 2, 2}));
    EXPECT_FALSE(m.GetLineOnPoint({1, 1, 2}, {0, 0, 0}, {2, 2, 2}));
    EXPECT_TRUE(m.GetLineOnPoint({-3, -3, -3}, {0, 0, 0}, {2, 2, 2})); // unbounded line
    // A and B differ only in z: x and y are compared, z is not.
    EXPECT_TRUE(m.GetLineOnPoint({1, 2, 99}, {1, 2, 0}, {1, 2, 5}));
    EXPECT_TRUE(m.GetLineOnPoint({1, 2, 99}, {1, 2, 0}, {1, 2, 0})); // A equals B
    EXPECT_FALSE(m.GetLineOnPoint({1, 2.5, 0}, {1, 2, 0}, {1, 2, 5}));
    EXPECT_FALSE(m.GetLineOnPoint({1.5, 2, 0}, {1, 2, 0}, {1, 2, 5}));
    // x constant along the line: only y and z are compared.
    EXPECT_TRUE(m.GetLineOnPoint({5, 5, 5}, {0, 0, 0}, {0, 1, 1}));
    EXPECT_FALSE(m.GetLineOnPoint({5, 5, 4}, {0, 0, 0}, {0, 1, 1}));
    // Along the x axis both y and z are compared.
    EXPECT_TRUE(m.GetLineOnPoint({7, 0, 0}, {0, 0, 0}, {1, 0, 0}));
    EXPECT_FALSE(m.GetLineOnPoint({7, 0, 1}, {0, 0, 0}, {1, 0, 0}));
    EXPECT_FALSE(m.GetLineOnPoint({7, 1, 0}, {0, 0, 0}, {1, 0, 0}));
    // y constant: the x-z plane; z constant: the x-y plane.
    EXPECT_TRUE(m.GetLineOnPoint({2, 9, 4}, {0, 3, 0}, {1, 3, 2}));
    EXPECT_FALSE(m.GetLineOnPoint({2, 9, 5}, {0, 3, 0}, {1, 3, 2}));
    EXPECT_TRUE(m.GetLineOnPoint({2, 4, 9}, {0, 0, 3}, {1, 2, 3}));
    EXPECT_FALSE(m.GetLineOnPoint({2, 5, 9}, {0, 0, 3}, {1, 2, 3}));
    EXPECT_FALSE(m.GetLineOnPoint({std::nan(""), 1, 1}, {0, 0, 0}, {2, 2, 2}));
    EXPECT_FALSE(m.GetLineOnPoint({1, std::nan(""), 1}, {0, 0, 3}, {1, 2, 3}));
}

TEST(CzbMath, RotateAboutCentre) {
    CzbMath m;
    zbVector2d r = m.GetRotatePosition({1, 1}, {2, 1}, 90.0);
    EXPECT_EQ(r.x, 1.0);
    EXPECT_EQ(r.y, 2.0);
    r = m.GetRotatePosition({1, 1}, {2, 1}, -90.0);
    EXPECT_EQ(r.x, 1.0);
    EXPECT_EQ(r.y, 0.0);
    r = m.GetRotatePosition({0, 0}, {3, 4}, 0.0);
    EXPECT_EQ(r.x, 3.0);
    EXPECT_EQ(r.y, 4.0);
    r = m.GetRotatePosition({0, 0}, {2, 0}, 30.0);
    EXPECT_NEAR(r.x, std::sqrt(3.0), 1e-15);
    EXPECT_NEAR(r.y, 1.0, 1e-15);
}
