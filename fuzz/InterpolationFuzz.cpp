// Interpolation on arbitrary control points (duplicates, NaN and infinities among them):
// no trap, no undefined behaviour, no read outside the lists. Requests are kept to sizes
// that fit the fuzzer's memory: a span of whole abscissas or a sample count in the millions
// is the caller's to ask for, not a fault.
#include <zbBase/numeric/CzbInterpolation.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3 * sizeof(double)) {
        return 0;
    }
    double head[3];
    std::memcpy(head, data, sizeof head);
    data += sizeof head;
    size -= sizeof head;
    zbBase::CzbInterpolation curve;
    double lo = INFINITY, hi = -INFINITY;
    while (size >= 2 * sizeof(double)) {
        double p[2];
        std::memcpy(p, data, sizeof p);
        data += sizeof p;
        size -= sizeof p;
        curve.AddPoint(p[0], p[1]);
        lo = std::fmin(lo, p[0]);
        hi = std::fmax(hi, p[0]);
    }
    const double steps = std::fmod(std::fabs(head[0]), 64.0);
    curve.CaculationCubicSpline(std::isnan(steps) ? 0.0 : steps);
    if (hi - lo < 1.0e4) {
        curve.CaculationLinear(0);
    }
    const double first = head[1], last = head[1] + std::fmod(std::fabs(head[2]), 100.0);
    curve.CaculationPolinomial(first, last, 0.5);
    if (!(head[2] > 0.0) || (last - first) / head[2] < 1.0e6) {
        curve.CaculationPolinomial(first, last, head[2]);
    }
    for (int i = -1; i <= curve.GetDataNum(); ++i) {
        curve.GetData(i);
    }
    zbBase::CzbInterpolation copy(curve);
    copy.ClearPoint();
    return 0;
}
