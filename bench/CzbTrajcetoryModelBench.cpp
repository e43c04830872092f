// Cost of one trajectory step: speed change, turn toward the point, move, reach test.
#include <zbBase/simulation/CzbTrajcetoryModel.h>

#include <benchmark/benchmark.h>

static void BM_CalculateStep(benchmark::State& state) {
    zbBase::CzbTrajcetoryModel model;
    // A square circuit flown in a loop, with climbs, so that every step turns and moves.
    model.m_waypoints.push_back({0, 0, 0, 200});
    model.m_waypoints.push_back({5000, 0, 500, 250});
    model.m_waypoints.push_back({5000, 5000, 0, 150});
    model.m_waypoints.push_back({0, 5000, 800, 300});
    model.m_loop = 1;
    model.setCurrentByWaypoint(0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(model.calculate(1.0f / 30.0f));
    }
    benchmark::DoNotOptimize(model.m_position);
}
BENCHMARK(BM_CalculateStep);
