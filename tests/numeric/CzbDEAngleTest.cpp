#include <zbBase/numeric/CzbDE.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using zbBase::CzbDE;

TEST(CzbDEAngles, ReductionsAndClosingAngle) {
    CzbDE de;
    const double reduced360[][2] = {
        {720.5, 0.5}, {-720.5, 359.5}, {-0.5, 359.5}, {360, 0}, {-360, 0}};
    for (const auto& c : reduced360) {
        EXPECT_EQ(de.GetAngle360(c[0]), c[1]) << c[0];
    }
    // A plain remainder, not a fold into +-180.
    const double reduced180[][2] = {{190, 10}, {-190, -10}, {180, 0}, {-180, 0}};
    for (const auto& c : reduced180) {
        EXPECT_EQ(CzbDE::GetAngle180(c[0]), c[1]) << c[0];
    }
    EXPECT_EQ(de.DegreeToRadian(180.0), 3.141592653589793);
    EXPECT_EQ(de.RadianToDegree(3.141592653589793), 180.0);

    // {a, b, n, a - b as the smaller signed turn}; the third argument changes nothing, 0 counts
    // as 360, and the fold tests the truncated magnitude, so 180.5 stays.
    const double closing[][4] = {{10, 350, 0, 20}, {350, 10, 0, -20},     {0, 0, 0, 0},
                                 {10, 0, 7, 10},   {270, 90, 0, 180},     {90, 270, 0, -180},
                                 {0, 180, 0, 180}, {190.5, 10, 0, 180.5}, {200, 10, 0, -170}};
    for (const auto& c : closing) {
        EXPECT_EQ(de.GetAngleClosing(c[0], c[1], static_cast<int>(c[2])), c[3])
            << c[0] << " " << c[1];
    }
}

TEST(CzbDEAngles, RangeTest) {
    CzbDE de;
    EXPECT_TRUE(de.GetCheckAngleRange(350, 300, 10));
    EXPECT_TRUE(de.GetCheckAngleRange(5, 300, 10));
    EXPECT_FALSE(de.GetCheckAngleRange(100, 300, 10));
    EXPECT_TRUE(de.GetCheckAngleRange(10, 10, 10));
    EXPECT_FALSE(de.GetCheckAngleRange(11, 10, 10));
    EXPECT_TRUE(de.GetCheckAngleRange(90, 0, 90));
    EXPECT_FALSE(de.GetCheckAngleRange(91, 0, 90));
}

TEST(CzbDEAngles, AzimuthElevationHeadingAndDistance) {
    CzbDE de;
    // {dx, dy, dz, azimuth, elevation}: counter-clockwise from +y; straight above or below is
    // 0, 0 and a target below the horizontal gives more than 270.
    const double cases[][5] = {{1, 0, 0, 270, 0}, {-1, 0, 0, 90, 0}, {0, -5, 0, 180, 0},
                               {0, 0, 7, 0, 0},   {0, 0, -7, 0, 0},  {1, 0, -1, 270, 315}};
    for (const auto& c : cases) {
        double az = -1, el = -1;
        de.getAngle3d(0, 0, 0, c[0], c[1], c[2], &az, &el);
        EXPECT_EQ(az, c[3]) << c[0] << " " << c[1] << " " << c[2];
        EXPECT_DOUBLE_EQ(el, c[4]) << c[0] << " " << c[1] << " " << c[2];
    }
    EXPECT_EQ(de.distance3d(1, 2, 3, 4, 6, 15), 13.0);

    // Clockwise from +y; a NaN component fits none of the quadrants.
    const double nan = std::nan("");
    const double headings[][3] = {{0, 0, 0},    {1, 0, 90},    {-1, 0, 270}, {0, -1, 180},
                                  {1, -1, 135}, {-1, -1, 225}, {-1, 1, 315}, {nan, 1, 0},
                                  {nan, -1, 0}, {1, nan, 0},   {-1, nan, 0}};
    for (const auto& h : headings) {
        EXPECT_EQ(CzbDE::getHeading(h[0], h[1]), h[2]) << h[0] << " " << h[1];
    }
    // getHeading and the azimuth run in opposite senses.
    double az, el;
    de.getAngle3d(0, 0, 0, 3, 4, 0, &az, &el);
    EXPECT_NEAR(az + CzbDE::getHeading(3, 4), 360.0, 1e-12);
}

TEST(CzbDEAngles, CopiesAndNonFiniteInput) {
    CzbDE a;
    CzbDE b(a);
    CzbDE c;
    c = b;
    EXPECT_EQ(c.GetAngle360(-90.0), CzbDE().GetAngle360(-90.0));
    EXPECT_EQ(sizeof(CzbDE), 1u);
    // Out of the truncation's range the results carry no meaning, but nothing traps.
    EXPECT_FALSE(std::isfinite(c.GetAngle360(std::numeric_limits<double>::infinity())));
    EXPECT_TRUE(std::isnan(c.GetAngle360(std::nan(""))));
    EXPECT_TRUE(std::isnan(c.GetAngleClosing(std::nan(""), 10, 0)));
    EXPECT_FALSE(c.GetCheckAngleRange(std::nan(""), 0, 90));
}
