// An interpolation's results as (x, y) pairs, and a curve through given control points.
#pragma once

#include <zbBase/numeric/CzbInterpolation.h>

#include <utility>
#include <vector>

namespace zbtest {

using Samples = std::vector<std::pair<double, double>>;

inline Samples results(zbBase::CzbInterpolation& c) {
    Samples s;
    for (int i = 0; i < c.GetDataNum(); ++i) {
        s.push_back({c.GetData(i).x, c.GetData(i).y});
    }
    return s;
}

inline zbBase::CzbInterpolation curve(const Samples& points) {
    zbBase::CzbInterpolation c;
    for (const auto& p : points) {
        c.AddPoint(p.first, p.second);
    }
    return c;
}

} // namespace zbtest
