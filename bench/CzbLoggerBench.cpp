// Cost of CzbLogger::setLog from one and from four threads, beside spdlog's asynchronous
// logger set up alike (a ring of 8192 entries that overwrites its oldest, one file sink, one
// background thread); and the saver's drain rate, records per second reaching the file.
#include <zbBase/diagnostics/CzbLogger.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#if defined(ZBBASE_HAVE_SPDLOG)
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

#if defined(_WIN32)
#include <process.h>
#define ZB_BENCH_PID _getpid()
#else
#include <unistd.h>
#define ZB_BENCH_PID getpid()
#endif

namespace {

const int kRing = 8192;
const int kSavePeriodMs = 10;

// A folder of this run's own, removed with its content at exit.
struct BenchFolder {
    std::filesystem::path path = std::filesystem::temp_directory_path() /
                                 ("zbBase_bench_logger_" + std::to_string(ZB_BENCH_PID));
    BenchFolder() { std::filesystem::create_directories(path); }
    ~BenchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};
BenchFolder g_folder;

const std::filesystem::path& benchFolder() {
    return g_folder.path;
}

void clearFolder() {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(benchFolder(), ignored)) {
        std::filesystem::remove_all(entry.path(), ignored);
    }
}

std::vector<char> writable(const std::string& text) {
    std::vector<char> bytes(text.begin(), text.end());
    bytes.push_back('\0');
    return bytes;
}

std::unique_ptr<CzbLogger> g_logger;

void setUpLogger(const benchmark::State&) {
    clearFolder();
    g_logger = std::make_unique<CzbLogger>(kRing, 512);
    auto prefix = writable((benchFolder() / "zb").string());
    g_logger->setWriteFileMode(prefix.data(), kSavePeriodMs);
}

void tearDownLogger(const benchmark::State&) {
    g_logger.reset();
    clearFolder();
}

void BM_zbLogger_setLog(benchmark::State& state) {
    char format[] = "value %d of %s";
    int i = 0;
    for (auto _ : state) {
        g_logger->setLog(format, i++, "a benchmark message");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_zbLogger_setLog)
    ->Setup(setUpLogger)
    ->Teardown(tearDownLogger)
    ->Threads(1)
    ->Threads(4)
    ->UseRealTime();

#if defined(ZBBASE_HAVE_SPDLOG)
std::shared_ptr<spdlog::async_logger> g_spdlog;

void setUpSpdlog(const benchmark::State&) {
    clearFolder();
    spdlog::init_thread_pool(kRing, 1);
    auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(
        (benchFolder() / "spd.log").string(), false);
    g_spdlog = std::make_shared<spdlog::async_logger>(
        "bench", sink, spdlog::thread_pool(), spdlog::async_overflow_policy::overrun_oldest);
}

void tearDownSpdlog(const benchmark::State&) {
    g_spdlog.reset();
    spdlog::shutdown();
    clearFolder();
}

void BM_spdlog_async_info(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        g_spdlog->info("value {} of {}", i++, "a benchmark message");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_spdlog_async_info)
    ->Setup(setUpSpdlog)
    ->Teardown(tearDownSpdlog)
    ->Threads(1)
    ->Threads(4)
    ->UseRealTime();
#endif

// Records stored beforehand; the timed part starts the saver and waits until every record
// is in the file.
void BM_zbLogger_drain(benchmark::State& state) {
    const int records = static_cast<int>(state.range(0));
    char format[] = "value %d of %s";
    auto prefix = writable((benchFolder() / "drain").string());
    for (auto _ : state) {
        state.PauseTiming();
        clearFolder();
        // One slot more than records: a ring filled exactly round looks empty to the saver.
        auto logger = std::make_unique<CzbLogger>(records + 1, 512);
        for (int i = 0; i < records; ++i) {
            logger->setLog(format, i, "a benchmark message");
        }
        state.ResumeTiming();
        logger->setWriteFileMode(prefix.data(), 0);
        logger->resetLogCount(1);
        state.PauseTiming();
        logger.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * records);
    clearFolder();
}
BENCHMARK(BM_zbLogger_drain)->Arg(20000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
