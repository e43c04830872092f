// Natural cubic spline on 100 000 points with 10 samples per interval, beside GSL's natural
// cubic spline producing the same samples (when GSL is installed). The GSL run reports the
// largest difference between the two sample sets.
#include <zbBase/numeric/CzbInterpolation.h>

#include <benchmark/benchmark.h>

#include <cmath>
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

void BM_CubicSpline_GSL(benchmark::State& state) {
    std::vector<double> x, y;
    controlPoints(&x, &y);
    const size_t samples = 1 + static_cast<size_t>(kPoints - 1) * kSteps;
    std::vector<double> sx(samples), sy(samples);
    auto run = [&] {
        gsl_interp_accel* acc = gsl_interp_accel_alloc();
        gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, kPoints);
        gsl_spline_init(spline, x.data(), y.data(), kPoints);
        size_t k = 0;
        sx[k] = x[0];
        sy[k++] = y[0];
        for (int i = 0; i + 1 < kPoints; ++i) {
            const double h = x[i + 1] - x[i];
            for (int j = 1; j <= kSteps; ++j) {
                const double t = j * h / kSteps;
                double at = x[i] + t;
                if (at > x[kPoints - 1]) {
                    at = x[kPoints - 1]; // GSL refuses to step past its last node
                }
                sx[k] = at;
                sy[k++] = gsl_spline_eval(spline, at, acc);
            }
        }
        gsl_spline_free(spline);
        gsl_interp_accel_free(acc);
    };
    gsl_set_error_handler_off();
    run();
    zbBase::CzbInterpolation curve;
    for (int i = 0; i < kPoints; ++i) {
        curve.AddPoint(x[i], y[i]);
    }
    curve.CaculationCubicSpline(kSteps);
    double worst = 0.0;
    for (size_t k = 0; k < samples; ++k) {
        worst = std::fmax(worst, std::fabs(curve.GetData(static_cast<int>(k)).y - sy[k]));
    }
    for (auto _ : state) {
        run();
        benchmark::DoNotOptimize(sy.data());
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * samples));
    state.counters["max_diff"] = worst;
}
BENCHMARK(BM_CubicSpline_GSL)->Unit(benchmark::kMillisecond);

#endif

} // namespace
