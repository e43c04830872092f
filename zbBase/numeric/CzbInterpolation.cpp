#include "zbBase/numeric/CzbInterpolation.h"

#include "zbBase/numeric/detail/zbTruncate.h"

#include <climits>
#include <cmath>
#include <cstddef>

namespace zbBase {

void CzbInterpolation::AddPoint(double x, double y) {
    if (m_points.empty() || x > m_points.back().x) {
        m_points.push_back({x, y});
        return;
    }
    for (auto it = m_points.begin(); it != m_points.end(); ++it) {
        if (it->x > x) {
            m_points.insert(it, {x, y});
            return;
        }
    }
}

void CzbInterpolation::ClearPoint() {
    m_results.clear();
}

CzbInterpolation::_Data CzbInterpolation::GetData(int index) {
    if (index < 0 || static_cast<size_t>(index) >= m_results.size()) {
        return {0.0, 0.0};
    }
    return m_results[static_cast<size_t>(index)];
}

int CzbInterpolation::GetDataNum() {
    return static_cast<int>(m_results.size());
}

void CzbInterpolation::solveTridiag(double* sub, double* diag, double* sup, double* b, int size) {
    for (int i = 2; i <= size; ++i) {
        sub[i] = sub[i] / diag[i - 1];
        diag[i] = diag[i] - sub[i] * sup[i - 1];
        b[i] = b[i] - sub[i] * b[i - 1];
    }
    b[size] = b[size] / diag[size];
    for (int i = size - 1; i >= 1; --i) {
        b[i] = (b[i] - sup[i] * b[i + 1]) / diag[i];
    }
}

void CzbInterpolation::CaculationCubicSpline(double steps) {
    const size_t n = m_points.size();
    if (n < 2) {
        return;
    }
    m_results.clear();
    m_results.push_back(m_points[0]);

    const _Data* p = m_points.data();
    std::vector<double> h(n, 0.0);
    for (size_t i = 1; i < n; ++i) {
        h[i] = p[i].x - p[i - 1].x;
    }
    std::vector<double> M(n, 0.0);
    if (n >= 3) {
        // The interior points 1 to n-2 keep their own indices in the system.
        std::vector<double> sub(n - 1), diag(n - 1), sup(n - 1);
        for (size_t i = 1; i + 1 < n; ++i) {
            sub[i] = h[i] / 6;
            diag[i] = (h[i] + h[i + 1]) / 3;
            sup[i] = h[i + 1] / 6;
            M[i] = (p[i + 1].y - p[i].y) / h[i + 1] - (p[i].y - p[i - 1].y) / h[i];
        }
        solveTridiag(sub.data(), diag.data(), sup.data(), M.data(), static_cast<int>(n - 2));
    }

    const int count = detail::truncToInt(steps);
    if (count < 1) {
        return;
    }
    const double dc = count;
    if (static_cast<double>(n - 1) * dc < static_cast<double>(1 << 26)) {
        m_results.reserve(1 + (n - 1) * static_cast<size_t>(count));
    }
    for (size_t i = 0; i + 1 < n; ++i) {
        const double hi = h[i + 1];
        const double x0 = p[i].x, y0 = p[i].y, y1 = p[i + 1].y;
        const double m0 = M[i] / 6, m1 = M[i + 1] / 6;
        for (int j = 1; j <= count; ++j) {
            const double t = j * hi / dc;
            const double u = hi - t;
            const double y = ((y1 - m1 * (hi + t) * u) * t + (y0 - m0 * (hi + u) * t) * u) / hi;
            m_results.push_back({x0 + t, y});
        }
    }
}

void CzbInterpolation::CaculationLinear(int /*unused*/) {
    if (m_points.empty()) {
        return;
    }
    m_results.push_back(m_points[0]);
    for (size_t i = 0; i + 1 < m_points.size(); ++i) {
        const double x0 = m_points[i].x, y0 = m_points[i].y;
        const double x1 = m_points[i + 1].x, y1 = m_points[i + 1].y;
        const double slope = (y1 - y0) / (x1 - x0);
        const double start = x0 + 1.0;
        if (!(start > -2147483649.0 && start < 2147483648.0)) {
            continue; // no whole abscissa an int can count from
        }
        // The counter stops at INT_MAX rather than wrapping.
        for (int k = detail::truncToInt(start); x1 >= static_cast<double>(k); ++k) {
            m_results.push_back({static_cast<double>(k), (k - x0) * slope + y0});
            if (k == INT_MAX) {
                break;
            }
        }
    }
}

void CzbInterpolation::CaculationPolinomial(double first, double last, double step) {
    const size_t n = m_points.size();
    if (n == 0) {
        return;
    }
    m_results.clear();
    // A step that never carries the abscissa past the end, or an end that it can never pass,
    // would loop without bound.
    if (!(step > 0.0) || !std::isfinite(first) || !std::isfinite(last) || first > last) {
        return;
    }
    std::vector<double> x(n), c(n);
    for (size_t i = 0; i < n; ++i) {
        x[i] = m_points[i].x;
        c[i] = m_points[i].y;
    }
    for (size_t k = 1; k < n; ++k) {
        for (size_t i = 0; i + k < n; ++i) {
            c[i] = (c[i + 1] - c[i]) / (x[i + k] - x[i]);
        }
    }
    // The abscissa normally passes the end after floor(span) + 1 steps. Two more allow for
    // rounding; the bound only bites when the step is below the spacing of doubles near the
    // ends, where the abscissa would stand still for billions of passes.
    const double span = (last - first) / step;
    const int lastIndex =
        span < static_cast<double>(INT_MAX - 2) ? static_cast<int>(span) + 2 : INT_MAX;
    for (int i = 0;; ++i) {
        const double a = i * step + first;
        if (a > last) {
            break;
        }
        double value = c[0];
        for (size_t j = 1; j < n; ++j) {
            value = (a - x[j]) * value + c[j];
        }
        m_results.push_back({a, value});
        if (i == lastIndex) {
            break;
        }
    }
}

} // namespace zbBase
