// Gauss-Krueger conversions per second, forward and inverse, beside PROJ's transverse
// Mercator on the Bessel ellipsoid (when PROJ is installed). The PROJ runs report the largest
// difference from CzbWGS84 over the same points, in millimetres. The SideBySide runs alternate
// one pass of zbBase and one of PROJ over the same points in every iteration, so both see the
// same machine load, and print both rates and their ratio (zbBase_per_PROJ above 1: zbBase
// is faster).
#include <zbBase/geodesy/CzbWGS84.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <vector>

#if defined(ZBBASE_HAVE_PROJ)
#include <proj.h>
#endif

namespace {

const double kCentral = 12.0;
const double kOrigin = 46.0;
const double kPi = 3.141592653589793;

struct Grid {
    std::vector<double> lon, lat, x, y;
};

// Points within 3 degrees of the central meridian, latitudes 30 to 70, and their grid values.
const Grid& grid() {
    static const Grid g = [] {
        Grid r;
        for (double lat = 30.0; lat <= 70.0; lat += 0.5) {
            for (double dl = -3.0; dl <= 3.0; dl += 0.125) {
                double x, y;
                CzbWGS84::_Bessel2TM(kCentral + dl, lat, kCentral, kOrigin, &x, &y);
                r.lon.push_back(kCentral + dl);
                r.lat.push_back(lat);
                r.x.push_back(x);
                r.y.push_back(y);
            }
        }
        return r;
    }();
    return g;
}

void BM_GaussKrueger_Forward_zbBase(benchmark::State& state) {
    const Grid& g = grid();
    const size_t n = g.lon.size();
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i) {
            double x, y;
            CzbWGS84::_Bessel2TM(g.lon[i], g.lat[i], kCentral, kOrigin, &x, &y);
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
}
BENCHMARK(BM_GaussKrueger_Forward_zbBase);

void BM_GaussKrueger_Inverse_zbBase(benchmark::State& state) {
    const Grid& g = grid();
    const size_t n = g.lon.size();
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i) {
            double lon, lat;
            CzbWGS84::_TM2Bessel(g.x[i], g.y[i], kCentral, kOrigin, &lon, &lat);
            benchmark::DoNotOptimize(lon);
            benchmark::DoNotOptimize(lat);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
}
BENCHMARK(BM_GaussKrueger_Inverse_zbBase);

#if defined(ZBBASE_HAVE_PROJ)

// Transverse Mercator with scale 1, no false origin, on PROJ's Bessel 1841 ellipsoid;
// geographic coordinates in radians.
PJ* makeProj() {
    return proj_create(PJ_DEFAULT_CTX, "+proj=tmerc +ellps=bessel +lon_0=12 +lat_0=46 +k_0=1 "
                                       "+x_0=0 +y_0=0 +units=m");
}

void BM_GaussKrueger_Forward_PROJ(benchmark::State& state) {
    const Grid& g = grid();
    const size_t n = g.lon.size();
    PJ* P = makeProj();
    if (P == nullptr) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    double worst = 0.0;
    for (size_t i = 0; i < n; ++i) {
        PJ_COORD c = proj_coord(g.lon[i] * kPi / 180.0, g.lat[i] * kPi / 180.0, 0, 0);
        PJ_COORD r = proj_trans(P, PJ_FWD, c);
        worst = std::fmax(worst, std::hypot(r.xy.x - g.x[i], r.xy.y - g.y[i]));
    }
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i) {
            PJ_COORD c = proj_coord(g.lon[i] * kPi / 180.0, g.lat[i] * kPi / 180.0, 0, 0);
            PJ_COORD r = proj_trans(P, PJ_FWD, c);
            benchmark::DoNotOptimize(r);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
    state.counters["max_diff_mm"] = worst * 1000.0;
    proj_destroy(P);
}
BENCHMARK(BM_GaussKrueger_Forward_PROJ);

void BM_GaussKrueger_Inverse_PROJ(benchmark::State& state) {
    const Grid& g = grid();
    const size_t n = g.lon.size();
    PJ* P = makeProj();
    if (P == nullptr) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    // The difference of the two inverses, as a ground distance, through PROJ's own forward.
    double worst = 0.0;
    for (size_t i = 0; i < n; ++i) {
        double lon, lat;
        CzbWGS84::_TM2Bessel(g.x[i], g.y[i], kCentral, kOrigin, &lon, &lat);
        PJ_COORD inv = proj_trans(P, PJ_INV, proj_coord(g.x[i], g.y[i], 0, 0));
        PJ_COORD a = proj_trans(P, PJ_FWD, inv);
        PJ_COORD b = proj_trans(P, PJ_FWD, proj_coord(lon * kPi / 180.0, lat * kPi / 180.0, 0, 0));
        worst = std::fmax(worst, std::hypot(a.xy.x - b.xy.x, a.xy.y - b.xy.y));
    }
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i) {
            PJ_COORD r = proj_trans(P, PJ_INV, proj_coord(g.x[i], g.y[i], 0, 0));
            benchmark::DoNotOptimize(r);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
    state.counters["max_diff_mm"] = worst * 1000.0;
    proj_destroy(P);
}
BENCHMARK(BM_GaussKrueger_Inverse_PROJ);

// Processor seconds of this thread taken by one call of pass: time the thread spends waiting
// for a core on a busy machine does not count.
double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <class Pass> double timed(Pass pass) {
    const double start = threadSeconds();
    pass();
    return threadSeconds() - start;
}

// zbBase's pass and PROJ's pass, one after the other in every iteration.
template <class ZbPass, class ProjPass>
void sideBySide(benchmark::State& state, ZbPass zbPass, ProjPass projPass) {
    const size_t n = grid().lon.size();
    double zbSeconds = 0.0, projSeconds = 0.0;
    for (auto _ : state) {
        zbSeconds += timed(zbPass);
        projSeconds += timed(projPass);
    }
    const double points = static_cast<double>(state.iterations()) * static_cast<double>(n);
    state.counters["zbBase_M_per_s"] = points / zbSeconds / 1e6;
    state.counters["PROJ_M_per_s"] = points / projSeconds / 1e6;
    state.counters["zbBase_per_PROJ"] = projSeconds / zbSeconds;
}

void BM_GaussKrueger_Forward_SideBySide(benchmark::State& state) {
    const Grid& g = grid();
    const size_t n = g.lon.size();
    PJ* P = makeProj();
    if (P == nullptr) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    sideBySide(
        state,
        [&] {
            for (size_t i = 0; i < n; ++i) {
                double x, y;
                CzbWGS84::_Bessel2TM(g.lon[i], g.lat[i], kCentral, kOrigin, &x, &y);
                benchmark::DoNotOptimize(x);
                benchmark::DoNotOptimize(y);
            }
        },
        [&] {
            for (size_t i = 0; i < n; ++i) {
                PJ_COORD c = proj_coord(g.lon[i] * kPi / 180.0, g.lat[i] * kPi / 180.0, 0, 0);
                PJ_COORD r = proj_trans(P, PJ_FWD, c);
                benchmark::DoNotOptimize(r);
            }
        });
    proj_destroy(P);
}
BENCHMARK(BM_GaussKrueger_Forward_SideBySide);

void BM_GaussKrueger_Inverse_SideBySide(benchmark::State& state) {
    const Grid& g = grid();
    const size_t n = g.lon.size();
    PJ* P = makeProj();
    if (P == nullptr) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    sideBySide(
        state,
        [&] {
            for (size_t i = 0; i < n; ++i) {
                double lon, lat;
                CzbWGS84::_TM2Bessel(g.x[i], g.y[i], kCentral, kOrigin, &lon, &lat);
                benchmark::DoNotOptimize(lon);
                benchmark::DoNotOptimize(lat);
            }
        },
        [&] {
            for (size_t i = 0; i < n; ++i) {
                PJ_COORD r = proj_trans(P, PJ_INV, proj_coord(g.x[i], g.y[i], 0, 0));
                benchmark::DoNotOptimize(r);
            }
        });
    proj_destroy(P);
}
BENCHMARK(BM_GaussKrueger_Inverse_SideBySide);

#endif

} // namespace
