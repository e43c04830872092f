#include <zbBase/numeric/CzbDE.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using zbBase::CzbDE;

TEST(CzbDEAngles, Reductions) {
    CzbDE de;
    EXPECT_DOUBLE_EQ(de.GetAngle360(720.5), 0.5);
    EXPECT_DOUBLE_EQ(de.GetAngle360(-720.5), 359.5);
    EXPECT_EQ(de.GetAngle360(-0.5), 359.5);
    EXPECT_EQ(de.GetAngle360(360.0), 0.0);
    EXPECT_EQ(de.GetAngle360(-360.0), 0.0);
    EXPECT_EQ(CzbDE::GetAngle180(190.0), 10.0);
    EXPECT_EQ(CzbDE::GetAngle180(-190.0), -10.0);
    EXPECT_EQ(CzbDE::GetAngle180(180.0), 0.0);
    EXPECT_EQ(CzbDE::GetAngle180(-180.0), 0.0);
    EXPECT_EQ(de.DegreeToRadian(180.0), 3.141592653589793);
    EXPECT_EQ(de.RadianToDegree(3.141592653589793), 180.0);
}

TEST(CzbDEAngles, ClosingAngle) {
    CzbDE de;
    EXPECT_EQ(de.GetAngleClosing(10, 350, 0), 20.0);
    EXPECT_EQ(de.GetAngleClosing(350, 10, 0), -20.0);
    EXPECT_EQ(de.GetAngleClosing(0, 0, 0), 0.0);
    EXPECT_EQ(de.GetAngleClosing(10, 0, 7), 10.0);
    EXPECT_EQ(de.GetAngleClosing(270, 90, 0), 180.0);
    EXPECT_EQ(de.GetAngleClosing(90, 270, 0), -180.0);
    EXPECT_EQ(de.GetAngleClosing(0, 180, 0), 180.0);
    // The fold tests the truncated magnitude, so 180.5 stays.
    EXPECT_EQ(de.GetAngleClosing(190.5, 10, 0), 180.5);
    EXPECT_EQ(de.GetAngleClosing(200, 10, 0), -170.0);
}

TEST(CzbDEAngles, RangeTest) {
    CzbDE de;
    EXPECT_TRUE(de.GetCheckAngleRange(350, 300, 10));
    EXPECT_TRUE(de.GetCheckAngleRange(5, 300, 10));
    EXPECT_FALSE(de.GetCheckAngleRange(100, 300, 10));
    EXPECT_TRUE(de.GetCheckAngleRange(10, 10, 10));
    EXPECT_FALSE(de.GetCheckAngleRange(11, 10, 10));
    EXPECT_TRUE(de.GetCheckAngleRange(45, 0, 90));
    EXPECT_TRUE(de.GetCheckAngleRange(90, 0, 90));
    EXPECT_FALSE(de.GetCheckAngleRange(91, 0, 90));
}

TEST(CzbDEAngles, AzimuthElevationAndDistance) {
    CzbDE de;
    double az = -1, el = -1;
    de.getAngle3d(0, 0, 0, 1, 0, 0, &az, &el);
    EXPECT_EQ(az, 270.0);
    EXPECT_EQ(el, 0.0);
    de.getAngle3d(0, 0, 0, -1, 0, 0, &az, &el);
    EXPECT_EQ(az, 90.0);
    de.getAngle3d(0, 0, 0, 0, -5, 0, &az, &el);
    EXPECT_EQ(az, 180.0);
    de.getAngle3d(0, 0, 0, 0, 0, 7, &az, &el);
    EXPECT_EQ(az, 0.0);
    EXPECT_EQ(el, 0.0);
    de.getAngle3d(0, 0, 0, 0, 0, -7, &az, &el);
    EXPECT_EQ(az, 0.0);
    EXPECT_EQ(el, 0.0);
    de.getAngle3d(0, 0, 0, 1, 0, -1, &az, &el);
    EXPECT_DOUBLE_EQ(el, 315.0);
    EXPECT_EQ(de.distance3d(1, 2, 3, 4, 6, 15), 13.0);
}

TEST(CzbDEAngles, CompassHeading) {
    EXPECT_EQ(CzbDE::getHeading(0, 0), 0.0);
    EXPECT_EQ(CzbDE::getHeading(1, 0), 90.0);
    EXPECT_EQ(CzbDE::getHeading(-1, 0), 270.0);
    EXPECT_EQ(CzbDE::getHeading(0, -1), 180.0);
    EXPECT_EQ(CzbDE::getHeading(1, -1), 135.0);
    EXPECT_EQ(CzbDE::getHeading(-1, -1), 225.0);
    EXPECT_EQ(CzbDE::getHeading(-1, 1), 315.0);
    // A NaN component fits none of the quadrants, whatever the sign of the other.
    EXPECT_EQ(CzbDE::getHeading(std::nan(""), 1), 0.0);
    EXPECT_EQ(CzbDE::getHeading(std::nan(""), -1), 0.0);
    EXPECT_EQ(CzbDE::getHeading(1, std::nan("")), 0.0);
    EXPECT_EQ(CzbDE::getHeading(-1, std::nan("")), 0.0);
    // getHeading and the azimuth run in opposite senses.
    CzbDE de;
    double az, el;
    de.getAngle3d(0, 0, 0, 3, 4, 0, &az, &el);
    EXPECT_NEAR(az + CzbDE::getHeading(3, 4), 360.0, 1e-12);
}

TEST(CzbDEAngles, CopiesAreLikeNew) {
    CzbDE a;
    CzbDE b(a);
    CzbDE c;
    c = b;
    EXPECT_EQ(c.GetAngle360(-90.0), CzbDE().GetAngle360(-90.0));
    EXPECT_EQ(sizeof(CzbDE), 1u);
}

TEST(CzbDEAngles, NonFiniteInputDoesNotTrap) {
    CzbDE de;
    const double inf = std::numeric_limits<double>::infinity();
    // Out of the truncation's range the results carry no meaning, but nothing traps.
    EXPECT_FALSE(std::isfinite(de.GetAngle360(inf)));
    EXPECT_TRUE(std::isnan(de.GetAngle360(std::nan(""))));
    EXPECT_TRUE(std::isnan(de.GetAngleClosing(std::nan(""), 10, 0)));
    EXPECT_FALSE(de.GetCheckAngleRange(std::nan(""), 0, 90));
}
