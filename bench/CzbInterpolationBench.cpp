// Natural cubic spline on 100 000 points with 10 samples per interval, beside GSL's natural
// cubic spline producing the same samples (when GSL is installed). The GSL run reports the
// largest difference between the two sample sets. The SideBySide run alternates one zbBase
// calculation and one GSL calculation in every iteration, so both see the same machine load,
// and prints both times and zbBase's share of GSL's time (below 1: zbBase is faster).
#include <zbBase/numeric/CzbInterpolation.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <vector>

#if defined(ZBBASE_HAVE_GSL)
#include <gsl/gsl_errno.h>
#include <gsl/gsl_spline.h>
#endif

namespace {

const int kPoints = 100000;
const int kSteps = 10;

// Unevenly spaced abscissas and a smooth, wavy ordinate.
void controlPoints(std::vector<double>* x, std::vector<double>* y) {
    x->resize(kPoints);
    y->resize(kPoints);
    double xi = 0.0;
    for (int i = 0; i < kPoints; ++i) {
        (*x)[i] = xi;
        (*y)[i] = std::sin(xi * 0.05) * 100.0 + std::cos(xi * 0.7);
        xi += 1.0 + 0.5 * std::sin(i * 0.37);
    }
}

void BM_CubicSpline_zbBase(benchmark::State& state) {
    std::vector<double> x, y;
    controlPoints(&x, &y);
    zbBase::CzbInterpolation curve;
    for (int i = 0; i < kPoints; ++i) {
        curve.AddPoint(x[i], y[i]);
    }
    for (auto _ : state) {
        curve.CaculationCubicSpline(kSteps);
        benchmark::DoNotOptimize(curve.GetData(kPoints));
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * curve.GetDataNum());
}
BENCHMARK(BM_CubicSpline_zbBase)->Unit(benchmark::kMillisecond);

#if defined(ZBBASE_HAVE_GSL)

// GSL's natural cubic spline sampled where CzbInterpolation samples, into sx and sy.
void gslSamples(const std::vector<double>& x, const std::vector<double>& y, std::vector<double>* sx,
                std::vector<double>* sy) {
    gsl_interp_accel* acc = gsl_interp_accel_alloc();
    gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, kPoints);
    gsl_spline_init(spline, x.data(), y.data(), kPoints);
    size_t k = 0;
    (*sx)[k] = x[0];
    (*sy)[k++] = y[0];
    for (int i = 0; i + 1 < kPoints; ++i) {
        const double h = x[i + 1] - x[i];
        for (int j = 1; j <= kSteps; ++j) {
            const double t = j * h / kSteps;
            double at = x[i] + t;
            if (at > x[kPoints - 1]) {
                at = x[kPoints - 1]; // GSL refuses to step past its last node
            }
            (*sx)[k] = at;
            (*sy)[k++] = gsl_spline_eval(spline, at, acc);
        }
    }
    gsl_spline_free(spline);
    gsl_interp_accel_free(acc);
}

const size_t kSamples = 1 + static_cast<size_t>(kPoints - 1) * kSteps;

void BM_CubicSpline_GSL(benchmark::State& state) {
    std::vector<double> x, y;
    controlPoints(&x, &y);
    std::vector<double> sx(kSamples), sy(kSamples);
    gsl_set_error_handler_off();
    gslSamples(x, y, &sx, &sy);
    zbBase::CzbInterpolation curve;
    for (int i = 0; i < kPoints; ++i) {
        curve.AddPoint(x[i], y[i]);
    }
    curve.CaculationCubicSpline(kSteps);
    double worst = 0.0;
    for (size_t k = 0; k < kSamples; ++k) {
        worst = std::fmax(worst, std::fabs(curve.GetData(static_cast<int>(k)).y - sy[k]));
    }
    for (auto _ : state) {
        gslSamples(x, y, &sx, &sy);
        benchmark::DoNotOptimize(sy.data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kSamples));
    state.counters["max_diff"] = worst;
}
BENCHMARK(BM_CubicSpline_GSL)->Unit(benchmark::kMillisecond);

// Processor seconds of this thread: time spent waiting for a core does not count.
double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void BM_CubicSpline_SideBySide(benchmark::State& state) {
    std::vector<double> x, y;
    controlPoints(&x, &y);
    std::vector<double> sx(kSamples), sy(kSamples);
    zbBase::CzbInterpolation curve;
    for (int i = 0; i < kPoints; ++i) {
        curve.AddPoint(x[i], y[i]);
    }
    gsl_set_error_handler_off();
    double zbSeconds = 0.0, gslSeconds = 0.0;
    for (auto _ : state) {
        double start = threadSeconds();
        curve.CaculationCubicSpline(kSteps);
        benchmark::DoNotOptimize(curve.GetData(kPoints));
        zbSeconds += threadSeconds() - start;
        start = threadSeconds();
        gslSamples(x, y, &sx, &sy);
        benchmark::DoNotOptimize(sy.data());
        gslSeconds += threadSeconds() - start;
    }
    const double runs = static_cast<double>(state.iterations());
    state.counters["zbBase_ms"] = zbSeconds / runs * 1e3;
    state.counters["GSL_ms"] = gslSeconds / runs * 1e3;
    state.counters["zbBase_time_per_GSL"] = zbSeconds / gslSeconds;
}
BENCHMARK(BM_CubicSpline_SideBySide)->Unit(benchmark::kMillisecond);

#endif

} // namespace
