#include "zbBase/numeric/CzbInterpolation.h"

#include "zbBase/numeric/detail/zbTruncate.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define ZB_SPLINE_SSE2 1
#endif

namespace zbBase {

namespace {

// The most samples a result list holds: 2^24, 256 MiB of samples. Far more than any plot or
// table needs (a sample a millisecond for four and a half hours), while a calculation that
// reaches it stays well under a second and within memory that a host can spare.
constexpr size_t kMaxSamples = size_t(1) << 24;

// Reserves room for the samples to come where memory allows; without it the list grows as
// they come.
template <class T> void reserveWherePossible(std::vector<T>& list, size_t count) {
    try {
        list.reserve(count);
    } catch (const std::bad_alloc&) {
    }
}

// Samples the spline writes in place between two lengthenings of the list: 4 KiB, which the
// zeroing brings into the first-level cache just before the samples overwrite it (measured
// best among 64 to 2048).
constexpr size_t kBatch = 256;

// Lengthens the list to `size` with zeroed samples, growing its storage where needed and
// memory allows, else only as far as its storage reaches. The new length.
size_t lengthen(std::vector<CzbInterpolation::_Data>& list, size_t size) {
    if (size > list.capacity()) {
        try {
            list.resize(size);
            return size;
        } catch (const std::bad_alloc&) {
            size = list.capacity();
        }
    }
    list.resize(size);
    return size;
}

// One interval of the spline: with h its width, x0 and y0 its left point, y1 its right
// ordinate and m0, m1 the second derivatives at its ends divided by 6, the samples j = 1 to
// last of `steps` go to out[0] to out[last - 1]:
//   t = j h / steps, u = h - t, x = x0 + t,
//   y = ((y1 - m1 (h + t) u) t + (y0 - m0 (h + u) t) u) / h.
// The products take their factors in the order the library has always multiplied them: for
// numbers the order changes nothing, and where both factors are NaN it decides which comes
// through. With SSE2 two samples go through each instruction; an odd last sample is worked
// twice, so no operation runs on values that no sample has.
void sampleInterval(CzbInterpolation::_Data* out, int last, double steps, double h, double x0,
                    double y0, double y1, double m0, double m1) {
#if defined(ZB_SPLINE_SSE2)
    const __m128d vh = _mm_set1_pd(h), vsteps = _mm_set1_pd(steps), vx0 = _mm_set1_pd(x0);
    const __m128d vy0 = _mm_set1_pd(y0), vy1 = _mm_set1_pd(y1);
    const __m128d vm0 = _mm_set1_pd(m0), vm1 = _mm_set1_pd(m1);
    // The two samples j (low lane) and j + 1 (high lane), as x in the low half of each
    // result and y in the high half.
    auto pair = [&](__m128i j, __m128d* low, __m128d* high) {
        const __m128d t = _mm_div_pd(_mm_mul_pd(_mm_cvtepi32_pd(j), vh), vsteps);
        const __m128d u = _mm_sub_pd(vh, t);
        const __m128d right =
            _mm_mul_pd(_mm_sub_pd(vy1, _mm_mul_pd(_mm_mul_pd(_mm_add_pd(vh, t), vm1), u)), t);
        const __m128d left =
            _mm_mul_pd(_mm_sub_pd(vy0, _mm_mul_pd(t, _mm_mul_pd(_mm_add_pd(vh, u), vm0))), u);
        const __m128d y = _mm_div_pd(_mm_add_pd(right, left), vh);
        const __m128d x = _mm_add_pd(vx0, t);
        *low = _mm_unpacklo_pd(x, y);
        *high = _mm_unpackhi_pd(x, y);
    };
    __m128i j = _mm_set_epi32(0, 0, 2, 1);
    const __m128i two = _mm_set1_epi32(2);
    __m128d low, high;
    int k = 0;
    for (; k + 1 < last; k += 2) {
        pair(j, &low, &high);
        _mm_storeu_pd(&out[k].x, low);
        _mm_storeu_pd(&out[k + 1].x, high);
        j = _mm_add_epi32(j, two);
    }
    if (k < last) {
        pair(_mm_shuffle_epi32(j, 0), &low, &high);
        _mm_storeu_pd(&out[k].x, low);
    }
#else
    for (int k = 0; k < last; ++k) {
        const double t = (k + 1) * h / steps;
        const double u = h - t;
        out[k].x = x0 + t;
        out[k].y = ((y1 - (h + t) * m1 * u) * t + (y0 - t * ((h + u) * m0)) * u) / h;
    }
#endif
}

} // namespace

CzbInterpolation::CzbInterpolation(const CzbInterpolation& other) {
    // A copy that memory cannot hold whole gets what fits: the control points first.
    try {
        m_points = other.m_points;
        m_results = other.m_results;
    } catch (const std::bad_alloc&) {
        if (m_points.size() != other.m_points.size()) {
            m_points.clear();
        }
        m_results.clear();
    }
}

CzbInterpolation& CzbInterpolation::operator=(const CzbInterpolation& other) {
    if (this == &other) {
        return *this;
    }
    // Built aside and swapped in, so a failed copy leaves the object as it was.
    try {
        std::vector<_Data> points(other.m_points);
        std::vector<_Data> results(other.m_results);
        m_points.swap(points);
        m_results.swap(results);
    } catch (const std::bad_alloc&) {
    }
    return *this;
}

void CzbInterpolation::AddPoint(double x, double y) {
    // A point that memory cannot hold is dropped; the list stays as it was.
    try {
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
    } catch (const std::bad_alloc&) {
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
    // Each step's diagonal and right-hand side stay in registers for the next step, so the
    // chain of dependent operations does not pass through memory. The arrays are distinct.
    double diagBefore = diag[1], bBefore = b[1];
    for (int i = 2; i <= size; ++i) {
        const double factor = sub[i] / diagBefore;
        sub[i] = factor;
        diagBefore = diag[i] - factor * sup[i - 1];
        diag[i] = diagBefore;
        bBefore = b[i] - factor * bBefore;
        b[i] = bBefore;
    }
    double after = b[size] / diag[size];
    b[size] = after;
    for (int i = size - 1; i >= 1; --i) {
        after = (b[i] - sup[i] * after) / diag[i];
        b[i] = after;
    }
}

void CzbInterpolation::CaculationCubicSpline(double steps) {
    const size_t n = m_points.size();
    if (n < 2) {
        return;
    }
    m_results.clear();
    try {
        m_results.push_back(m_points[0]);

        const _Data* p = m_points.data();
        // One uninitialised block for the work arrays, each n long and indexed like the
        // points: the intervals h, the second derivatives M, and for interior points the
        // system's sub-, main and super-diagonal.
        const size_t arrays = n >= 3 ? 5 : 2;
        std::unique_ptr<double[]> work(new double[arrays * n]);
        double* const h = work.get();
        double* const M = h + n;
        M[0] = 0.0;
        if (n >= 3) {
            // Each quotient is formed once: h[i] / 6 is sub[i] and sup[i - 1], and the slope
            // of interval i enters the right-hand sides of points i - 1 and i. The slopes go
            // into M first and become the right-hand sides in place.
            double* const sub = M + n;
            double* const diag = sub + n;
            double* const sup = diag + n;
            for (size_t i = 1; i < n; ++i) {
                h[i] = p[i].x - p[i - 1].x;
                sub[i] = h[i] / 6;
                M[i] = (p[i].y - p[i - 1].y) / h[i];
            }
            for (size_t i = 1; i + 1 < n; ++i) {
                diag[i] = (h[i] + h[i + 1]) / 3;
                sup[i] = sub[i + 1];
                M[i] = M[i + 1] - M[i];
            }
            solveTridiag(sub, diag, sup, M, static_cast<int>(n - 2));
        } else {
            h[1] = p[1].x - p[0].x;
        }
        M[n - 1] = 0.0;

        const int count = detail::truncToInt(steps);
        if (count < 1) {
            return;
        }
        const double dc = count;
        const size_t total = std::min(kMaxSamples, 1 + (n - 1) * static_cast<size_t>(count));
        reserveWherePossible(m_results, total);
        // The list is lengthened a batch at a time and the samples are written in place; what
        // is left over at the end is cut off again.
        size_t made = 1;
        double m0 = M[0] / 6; // the left point's M / 6: the right one of the interval before
        for (size_t i = 0; i + 1 < n && made < total; ++i) {
            int last = static_cast<int>(std::min(static_cast<size_t>(count), total - made));
            bool stop = false;
            if (m_results.size() - made < static_cast<size_t>(last)) {
                const size_t want = made + std::max(static_cast<size_t>(last), kBatch);
                const size_t room = lengthen(m_results, std::min(want, total)) - made;
                if (room < static_cast<size_t>(last)) {
                    last = static_cast<int>(room); // out of memory: the interval's first samples
                    stop = true;
                }
            }
            const double m1 = M[i + 1] / 6;
            sampleInterval(m_results.data() + made, last, dc, h[i + 1], p[i].x, p[i].y, p[i + 1].y,
                           m0, m1);
            made += static_cast<size_t>(last);
            if (stop) {
                break;
            }
            m0 = m1;
        }
        m_results.resize(made);
    } catch (const std::bad_alloc&) {
        // Out of memory for the work arrays or the samples: what was made stays.
    }
}

void CzbInterpolation::CaculationLinear(int /*unused*/) {
    if (m_points.empty()) {
        return;
    }
    try {
        if (m_results.size() >= kMaxSamples) {
            return;
        }
        // Room for every sample to come, up to the ceiling, so the list never moves.
        double planned = 1.0;
        for (size_t i = 0; i + 1 < m_points.size() && planned < kMaxSamples; ++i) {
            const double start = m_points[i].x + 1.0;
            const double end = std::min(std::floor(m_points[i + 1].x), 2147483647.0);
            if (start > -2147483649.0 && start < 2147483648.0 && end >= std::trunc(start)) {
                planned += end - std::trunc(start) + 1.0;
            }
        }
        reserveWherePossible(m_results, m_results.size() + static_cast<size_t>(std::min(
                                                               planned, double(kMaxSamples))));
        m_results.push_back(m_points[0]);
        for (size_t i = 0; i + 1 < m_points.size(); ++i) {
            const double x0 = m_points[i].x, y0 = m_points[i].y;
            const double x1 = m_points[i + 1].x, y1 = m_points[i + 1].y;
            const double slope = (y1 - y0) / (x1 - x0);
            const double start = x0 + 1.0;
            if (!(start > -2147483649.0 && start < 2147483648.0)) {
                continue; // no whole abscissa an int can count from
            }
            // The counter stops at INT_MAX rather than wrapping, and the samples at the
            // ceiling.
            for (int k = detail::truncToInt(start); x1 >= static_cast<double>(k); ++k) {
                if (m_results.size() >= kMaxSamples) {
                    return;
                }
                m_results.push_back({static_cast<double>(k), (k - x0) * slope + y0});
                if (k == INT_MAX) {
                    break;
                }
            }
        }
    } catch (const std::bad_alloc&) {
        // Out of memory for the samples: what was made stays.
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
    try {
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
        // The abscissa normally passes the end after floor(span) + 1 steps. Two more allow
        // for rounding; that bound only bites when the step is below the spacing of doubles
        // near the ends, where the abscissa would stand still for billions of passes. The
        // ceiling on samples comes on top.
        const double span = (last - first) / step;
        const double maxIndex = static_cast<double>(kMaxSamples - 1);
        const int lastIndex = static_cast<int>(span < maxIndex - 2 ? span + 2 : maxIndex);
        reserveWherePossible(m_results, static_cast<size_t>(lastIndex) + 1);
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
    } catch (const std::bad_alloc&) {
        // Out of memory for the work arrays or the samples: what was made stays.
    }
}

} // namespace zbBase
