#include "support/zbInterpolationSamples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using zbBase::CzbInterpolation;

using zbtest::curve;
using zbtest::results;
using zbtest::Samples;

TEST(CzbInterpolation, ControlPointsStaySorted) {
    CzbInterpolation c;
    EXPECT_EQ(c.GetDataNum(), 0);
    EXPECT_EQ(c.GetData(0).x, 0.0);
    EXPECT_EQ(c.GetData(-1).y, 0.0);
    // x of the last point: dropped; interior x: behind the older point; smallest: in front.
    c = curve({{3, 30}, {1, 10}, {2, 20}, {3, 99}, {2, 21}, {-1, -5}});
    c.CaculationLinear(0);
    // Linear samples show the control points at whole abscissas, in list order; the interior
    // duplicate makes a zero interval with no sample of its own.
    EXPECT_EQ(results(c), (Samples{{-1, -5}, {0, 2.5}, {1, 10}, {2, 20}, {3, 30}}));
}

TEST(CzbInterpolation, CubicSplineWorkedValues) {
    CzbInterpolation c = curve({{0, 0}, {1, 1}, {2, 0}});
    c.CaculationCubicSpline(2.0);
    EXPECT_EQ(results(c), (Samples{{0, 0}, {0.5, 0.6875}, {1, 1}, {1.5, 0.6875}, {2, 0}}));
    c.CaculationCubicSpline(4.0);
    EXPECT_EQ(c.GetDataNum(), 9);
    c.CaculationCubicSpline(4.9);
    EXPECT_EQ(c.GetDataNum(), 9);
    EXPECT_EQ(c.GetData(8).x, 2.0);
    c.CaculationCubicSpline(0.0);
    EXPECT_EQ(results(c), (Samples{{0, 0}}));

    // Copies are independent; assignment to itself keeps both lists.
    CzbInterpolation copy(c), assigned;
    copy.AddPoint(3, 3);
    copy.CaculationCubicSpline(1.0);
    EXPECT_EQ(copy.GetDataNum(), 4);
    EXPECT_EQ(c.GetDataNum(), 1);
    assigned = copy;
    CzbInterpolation& self = assigned;
    assigned = self;
    EXPECT_EQ(results(assigned), results(copy));
    assigned.CaculationCubicSpline(1.0);
    EXPECT_EQ(results(assigned), results(copy));

    // One control point: earlier results stay.
    CzbInterpolation single = curve({{1, 1}});
    single.CaculationLinear(0);
    single.CaculationCubicSpline(3.0);
    EXPECT_EQ(results(single), (Samples{{1, 1}}));
}

TEST(CzbInterpolation, CubicSplineSolvesTheNaturalSpline) {
    CzbInterpolation two = curve({{0, 1}, {4, 9}});
    two.CaculationCubicSpline(4.0);
    EXPECT_EQ(results(two), (Samples{{0, 1}, {1, 3}, {2, 5}, {3, 7}, {4, 9}}));

    // Points on one line with uneven spacing: M is zero, samples stay on the line, and each
    // interval is sampled by its own width.
    CzbInterpolation line;
    for (double x : {0.0, 1.0, 3.0, 3.5, 7.0, 10.0}) {
        line.AddPoint(x, 2 * x - 1);
    }
    line.CaculationCubicSpline(5.0);
    ASSERT_EQ(line.GetDataNum(), 1 + 5 * 5);
    for (int i = 0; i < line.GetDataNum(); ++i) {
        EXPECT_NEAR(line.GetData(i).y, 2 * line.GetData(i).x - 1, 1e-12) << i;
    }
    EXPECT_EQ(line.GetData(5).x, 1.0);
    EXPECT_EQ(line.GetData(6).x, 1.4);
    EXPECT_EQ(line.GetData(10).x, 3.0);

    // [2/3 1/6; 1/6 2/3] M = (-2, 2) gives M = (-4, 4); the interval middles are
    // 0.5 - M1/16, 0.5 - (M1 + M2)/16 and 0.5 - M2/16.
    CzbInterpolation c = curve({{0, 0}, {1, 1}, {2, 0}, {3, 1}});
    c.CaculationCubicSpline(2.0);
    ASSERT_EQ(c.GetDataNum(), 7);
    EXPECT_NEAR(c.GetData(1).y, 0.75, 1e-15);
    EXPECT_NEAR(c.GetData(3).y, 0.5, 1e-15);
    EXPECT_NEAR(c.GetData(5).y, 0.25, 1e-15);
    EXPECT_EQ(c.GetData(6).y, 1.0);
}

TEST(CzbInterpolation, LinearAtWholeAbscissas) {
    CzbInterpolation c = curve({{0.0, 0.0}, {2.5, 5.0}});
    c.CaculationLinear(12345);
    EXPECT_EQ(results(c), (Samples{{0, 0}, {1, 2}, {2, 4}}));
    // A second run appends behind the first; ClearPoint empties only the results.
    c.CaculationLinear(0);
    EXPECT_EQ(c.GetDataNum(), 6);
    EXPECT_EQ(c.GetData(3).x, 0.0);
    c.ClearPoint();
    EXPECT_EQ(c.GetDataNum(), 0);
    c.CaculationLinear(0);
    EXPECT_EQ(c.GetDataNum(), 3);

    struct Case {
        Samples points, expect;
    };
    const Case cases[] = {
        {{{-2.5, 0.0}, {2.0, 9.0}}, {{-2.5, 0}, {-1, 3}, {0, 5}, {1, 7}, {2, 9}}},
        {{{0.5, 4}}, {{0.5, 4}}},
        {{}, {}},
        // The whole-abscissa counter is an int: it stops at INT_MAX instead of wrapping, and a
        // pair whose first abscissa plus 1 is beyond the int range gives no samples.
        {{{2147483645.5, 0.0}, {2147483648.5, 6.0}, {5e9, 6.0}},
         {{2147483645.5, 0}, {2147483646, 1}, {2147483647, 3}}},
        // -2147483648.5 truncates to -2147483648; the pair from -5e9 is skipped.
        {{{-5e9, 1.0}, {-2147483649.5, 1.0}, {-2147483647.5, 5.0}}, {{-5e9, 1}, {-2147483648, 4}}},
    };
    for (const Case& k : cases) {
        CzbInterpolation run = curve(k.points);
        run.CaculationLinear(0);
        EXPECT_EQ(results(run), k.expect);
    }
}

TEST(CzbInterpolation, PolynomialFullDegree) {
    CzbInterpolation c = curve({{0, 1}, {1, 2}, {2, 5}});
    c.CaculationPolinomial(0.5, 3.0, 1.0);
    EXPECT_EQ(results(c), (Samples{{0.5, 1.25}, {1.5, 3.25}, {2.5, 7.25}}));
    c.CaculationPolinomial(0.0, 1.0, 0.25);
    ASSERT_EQ(c.GetDataNum(), 5);
    EXPECT_EQ(c.GetData(4).x, 1.0);
    EXPECT_EQ(c.GetData(4).y, 2.0);
    // The abscissa comes from the counter: ten additions of 0.1 would give 0.9999999999999999.
    c.CaculationPolinomial(0.0, 1.0, 0.1);
    ASSERT_EQ(c.GetDataNum(), 11);
    EXPECT_EQ(c.GetData(3).x, 3 * 0.1);
    EXPECT_EQ(c.GetData(10).x, 1.0);
    c.CaculationPolinomial(2.0, 1.0, 0.5);
    EXPECT_EQ(c.GetDataNum(), 0);

    CzbInterpolation one = curve({{3, 7}});
    one.CaculationPolinomial(-10, 10, 5);
    EXPECT_EQ(results(one), (Samples{{-10, 7}, {-5, 7}, {0, 7}, {5, 7}, {10, 7}}));

    // Steps that could never pass the end, and ends that cannot be passed, give nothing.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const double bad[][3] = {{0, 1, 0},   {0, 1, -1},   {0, 1, nan}, {nan, 1, 1},
                             {0, nan, 1}, {-inf, 1, 1}, {0, inf, 1}};
    for (const auto& b : bad) {
        c.CaculationPolinomial(0.0, 1.0, 0.5);
        ASSERT_EQ(c.GetDataNum(), 3);
        c.CaculationPolinomial(b[0], b[1], b[2]);
        EXPECT_EQ(c.GetDataNum(), 0);
    }
    // A step below the spacing of doubles near the ends cannot move the abscissa: the samples
    // stop a couple of counts past the span instead of running for billions.
    c.CaculationPolinomial(1e300, 1e300, 1.0);
    EXPECT_EQ(c.GetDataNum(), 3);
    EXPECT_EQ(c.GetData(2).x, 1e300);
    CzbInterpolation empty;
    empty.CaculationPolinomial(0, 1, 0);
    EXPECT_EQ(empty.GetDataNum(), 0);
}

TEST(CzbInterpolation, DuplicateAbscissasRunToTheEnd) {
    CzbInterpolation c = curve({{0, 0}, {2, 0}, {1, 1}, {1, 2}}); // interior duplicate
    c.CaculationCubicSpline(2.0);
    EXPECT_EQ(c.GetDataNum(), 7);
    EXPECT_FALSE(std::isfinite(c.GetData(4).y));
    c.CaculationPolinomial(0.0, 2.0, 1.0);
    EXPECT_EQ(c.GetDataNum(), 3);
    EXPECT_FALSE(std::isfinite(c.GetData(1).y));
}
