#include <zbBase/geodesy/CzbCoordinate.h>

#include <gtest/gtest.h>

#include <cmath>

using zbBase::CzbCoordinate;

TEST(CzbCoordinate, DmsToDegreesAndBack) {
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(37, 30, 0.0), 37.5);
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(0, 0, 3600.0), 1.0);
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(-10, 30, 0.0), -9.5);
    EXPECT_EQ(CzbCoordinate::GetDMStoDgree(12, 0, 36.0), 12.01);

    // In single precision; the sign is lost with zero degrees, and no carry between the parts.
    const double cases[][4] = {{12.5, 12, 30, 0},
                               {-37.25, -37, 15, 0},
                               {-0.5, 0, 30, 0},
                               {37.123456789, 37, 7, 24.44443702697754},
                               {12.9999999999, 12, 60, 0}};
    for (const auto& c : cases) {
        int d = -1, m = -1;
        double s = -1;
        CzbCoordinate::GetDgreetoDMS(c[0], &d, &m, &s);
        EXPECT_EQ(d, c[1]) << c[0];
        EXPECT_EQ(m, c[2]) << c[0];
        EXPECT_EQ(s, c[3]) << c[0];
    }
    int d, m;
    double s;
    CzbCoordinate::GetDgreetoDMS(std::nan(""), &d, &m, &s);
    EXPECT_TRUE(std::isnan(s));
}

TEST(CzbCoordinate, WrapsIntoLongitudeAndLatitude) {
    const double lon[][2] = {{190, -170}, {-190, 170},  {540, 180},   {360, 0},
                             {180, 180},  {-180, -180}, {-540, -180}, {725.5, 5.5}};
    for (const auto& c : lon) {
        EXPECT_EQ(CzbCoordinate::GetMakeDegree180(c[0]), c[1]) << c[0];
    }
    const double lat[][2] = {{100, -80}, {-100, 80}, {90, 90}, {-90, -90}, {180, 0}, {270, 90}};
    for (const auto& c : lat) {
        EXPECT_EQ(CzbCoordinate::GetMakeDegree90(c[0]), c[1]) << c[0];
    }
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
