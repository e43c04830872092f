// Cost of the angle arithmetic and of one missile fly-out.
#include <zbBase/numeric/CzbDE.h>

#include <benchmark/benchmark.h>

static void BM_GetAngleClosing(benchmark::State& state) {
    zbBase::CzbDE de;
    double a = 10.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(de.GetAngleClosing(a, 350.0, 0));
        a += 0.5;
    }
}
BENCHMARK(BM_GetAngleClosing);

static void BM_MissileFlyOut(benchmark::State& state) {
    zbBase::CzbDE de;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            de.missilesim(0, 0, 0, 0, 0, 5, 5, 0, -1000, 0, 300, 0, 30)); // 38 passes
    }
}
BENCHMARK(BM_MissileFlyOut);
