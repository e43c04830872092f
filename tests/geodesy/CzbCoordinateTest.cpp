#include <zbBase/geodesy/CzbCoordinate.h>

#include <gtest/gtest.h>

#include <cmath>

using zbBase::CzbCoordinate;

TEST(CzbCoordinate, DmsToDegrees) {
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(37, 30, 0.0), 37.5);
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(0, 0, 3600.0), 1.0);
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(-10, 30, 0.0), -9.5);
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(12, 0, 36.0), 12.01);
}

TEST(CzbCoordinate, DegreesToDmsInSinglePrecision) {
    int d = -1, m = -1;
    double s = -1;
    CzbCoordinate::GetDgreetoDMS(12.5, &d, &m, &s);
    EXPECT_EQ(d, 12);
    EXPECT_EQ(m, 30);
    EXPECT_EQ(s, 0.0);
    CzbCoordinate::GetDgreetoDMS(-37.25, &d, &m, &s);
    EXPECT_EQ(d, -37);
    EXPECT_EQ(m, 15);
    EXPECT_EQ(s, 0.0);
    CzbCoordinate::GetDgreetoDMS(-0.5, &d, &m, &s); // the sign is lost with zero degrees
    EXPECT_EQ(d, 0);
    EXPECT_EQ(m, 30);
    EXPECT_EQ(s, 0.0);
    CzbCoordinate::GetDgreetoDMS(37.123456789, &d, &m, &s);
    EXPECT_EQ(d, 37);
    EXPECT_EQ(m, 7);
    EXPECT_EQ(s, 24.44443702697754);
    CzbCoordinate::GetDgreetoDMS(12.9999999999, &d, &m, &s); // no carry between the parts
    EXPECT_EQ(d, 12);
    EXPECT_EQ(m, 60);
    EXPECT_EQ(s, 0.0);
    CzbCoordinate::GetDgreetoDMS(std::nan(""), &d, &m, &s);
    EXPECT_TRUE(std::isnan(s));
}

TEST(CzbCoordinate, WrapsIntoLongitudeAndLatitude) {
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(190.0), -170.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(-190.0), 170.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(540.0), 180.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(360.0), 0.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(180.0), 180.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(-180.0), -180.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(-540.0), -180.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree180(725.5), 5.5);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree90(100.0), -80.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree90(-100.0), 80.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree90(90.0), 90.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree90(-90.0), -90.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree90(180.0), 0.0);
    EXPECT_EQ(CzbCoordinate::GetMakeDegree90(270.0), 90.0);
    EXPECT_TRUE(std::isnan(CzbCoordinate::GetMakeDegree180(std::nan(""))));
}

TEST(CzbCoordinate, WholeDegreesWithHemisphere) {
    struct Case {
        int in, out;
        char hemi;
    };
    const Case lon[] = {{190, 170, 'W'},  {-190, 170, 'E'}, {0, 0, 'E'},
                        {-180, 180, 'W'}, {180, 180, 'E'},  {-45, 45, 'W'}};
    for (const Case& c : lon) {
        int d = -1;
        char h[2] = {'?', 'x'};
        CzbCoordinate::GetMakeDMS180(c.in, &d, h);
        EXPECT_EQ(d, c.out) << c.in;
        EXPECT_EQ(h[0], c.hemi) << c.in;
        EXPECT_EQ(h[1], 'x'); // one letter, no terminator
    }
    const Case lat[] = {{100, 80, 'S'}, {-100, 80, 'N'}, {0, 0, 'N'}, {-30, 30, 'S'}};
    for (const Case& c : lat) {
        int d = -1;
        char h = '?';
        CzbCoordinate::GetMakeDMS90(c.in, &d, &h);
        EXPECT_EQ(d, c.out) << c.in;
        EXPECT_EQ(h, c.hemi) << c.in;
    }
}
