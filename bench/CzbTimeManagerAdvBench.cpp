// The player's tick interval over 5 s of play, against the nominal 30 ms.
#include <zbBase/simulation/CzbTimeManagerAdv.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

namespace {

struct TickLog {
    std::mutex mutex;
    std::vector<std::chrono::steady_clock::time_point> ticks;
};

void onMessage(int message, void* user) {
    if (message != 3) {
        return;
    }
    TickLog* log = static_cast<TickLog*>(user);
    const auto now = std::chrono::steady_clock::now();
    std::lock_guard<std::mutex> lock(log->mutex);
    log->ticks.push_back(now);
}

} // namespace

static void BM_PlayerTickInterval(benchmark::State& state) {
    for (auto _ : state) {
        TickLog log;
        {
            zbBase::CzbTimeManagerAdv clock;
            clock.setMsgCallbackFunc(onMessage, &log);
            clock.SetPlay();
            std::this_thread::sleep_for(std::chrono::seconds(5));
            clock.SetStop();
        }
        std::vector<double> ms;
        for (size_t i = 1; i < log.ticks.size(); ++i) {
            ms.push_back(
                std::chrono::duration<double, std::milli>(log.ticks[i] - log.ticks[i - 1]).count());
        }
        if (ms.empty()) {
            state.SkipWithError("no ticks");
            return;
        }
        std::sort(ms.begin(), ms.end());
        const double mean = std::accumulate(ms.begin(), ms.end(), 0.0) / ms.size();
        state.counters["ticks"] = static_cast<double>(log.ticks.size());
        state.counters["mean_ms"] = mean;
        state.counters["median_ms"] = ms[ms.size() / 2];
        state.counters["p99_ms"] = ms[std::min(ms.size() - 1, ms.size() * 99 / 100)];
        state.counters["max_ms"] = ms.back();
        state.counters["nominal_ms"] = 30.0;
    }
}
BENCHMARK(BM_PlayerTickInterval)->Iterations(1)->Unit(benchmark::kMillisecond);

// Cost of a reading of the clock while playing, the call a host makes in each tick.
static void BM_GetTimeWhilePlaying(benchmark::State& state) {
    zbBase::CzbTimeManager clock;
    clock.SetPlay();
    for (auto _ : state) {
        benchmark::DoNotOptimize(clock.GetTime(0));
    }
}
BENCHMARK(BM_GetTimeWhilePlaying);
