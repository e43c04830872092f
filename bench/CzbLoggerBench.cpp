// CzbLogger beside spdlog's asynchronous logger, row by row as the performance table reads:
//
//   drain    a full ring of 65535 records with texts of 511 characters (512-byte blocks)
//            reaching the file: records per second from the start of the saver until
//            resetLogCount(1) returns. spdlog: its worker held at the first message until the
//            same 65535 messages wait in its queue (65536 entries), then timed until the last
//            one is written and flushed.
//   burst    the share of a burst of 1 000 000 records from one thread that reaches the file:
//            ring 65536, save period 10 ms (a ring overwrites its oldest record, saved or not).
//            spdlog: a queue of 65536 entries that overruns its oldest, one worker.
//   setLog   messages per second from 1 and from 4 threads, ring 8192, save period 10 ms.
//            spdlog: a queue of 8192 entries that overruns its oldest, one worker.
//
// Both loggers write one file sink in a folder of this run's own. Every row runs several
// times, zbBase and spdlog interleaved (--benchmark_repetitions, random interleaving), and the
// summary at the end gives the medians and their ratio.
#include <zbBase/diagnostics/CzbLogger.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#if defined(ZBBASE_HAVE_SPDLOG)
#include <spdlog/async.h>
#include <spdlog/details/file_helper.h>
#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>
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

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

const int kSetLogRing = 8192;
const int kSavePeriodMs = 10;
const int kDrainRecords = 65535;
const int kBurstRing = 65536;
const int kBurstRecords = 1000000;

// A folder of this run's own, removed with its content at exit.
struct BenchFolder {
    fs::path path =
        fs::temp_directory_path() / ("zbBase_bench_logger_" + std::to_string(ZB_BENCH_PID));
    BenchFolder() { fs::create_directories(path); }
    ~BenchFolder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};
BenchFolder g_folder;

void clearFolder() {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(g_folder.path, ignored)) {
        fs::remove_all(entry.path(), ignored);
    }
}

std::vector<char> writable(const std::string& text) {
    std::vector<char> bytes(text.begin(), text.end());
    bytes.push_back('\0');
    return bytes;
}

// A text of 511 characters that begins with its number.
std::string longText(int i) {
    char head[16];
    std::snprintf(head, sizeof head, "%06d ", i % 1000000);
    std::string text = head;
    text.append(511 - text.size(), 'x');
    return text;
}

double seconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

// Lines in every file of the folder; with `numbered`, only lines whose first 8 characters
// are a number not seen before (zbBase's lines begin with the record's number).
long long countLines(bool numbered) {
    std::vector<bool> seen(numbered ? kBurstRecords : 0);
    long long lines = 0;
    for (const auto& entry : fs::directory_iterator(g_folder.path)) {
        std::ifstream in(entry.path(), std::ios::binary);
        std::string line;
        while (std::getline(in, line)) {
            if (!numbered) {
                ++lines;
                continue;
            }
            if (line.size() < 8) {
                continue;
            }
            int number = std::atoi(line.substr(0, 8).c_str());
            if (number >= 0 && number < kBurstRecords && !seen[number]) {
                seen[number] = true;
                ++lines;
            }
        }
    }
    return lines;
}

// ---- drain ----

void BM_zbLogger_drain(benchmark::State& state) {
    char format[] = "%s";
    auto prefix = writable((g_folder.path / "drain").string());
    std::vector<std::string> texts;
    for (int i = 0; i < kDrainRecords; ++i) {
        texts.push_back(longText(i));
    }
    for (auto _ : state) {
        clearFolder();
        auto logger = std::make_unique<CzbLogger>(kDrainRecords + 1, 512);
        for (int i = 0; i < kDrainRecords; ++i) {
            logger->setLog(format, texts[i].c_str());
        }
        auto start = Clock::now();
        logger->setWriteFileMode(prefix.data(), 0);
        logger->resetLogCount(1);
        state.SetIterationTime(seconds(start, Clock::now()));
        logger.reset();
    }
    state.SetItemsProcessed(state.iterations() * kDrainRecords);
    clearFolder();
}
BENCHMARK(BM_zbLogger_drain)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

#if defined(ZBBASE_HAVE_SPDLOG)
// spdlog's file sink (the same file helper and formatting) whose first message waits at a
// gate, so that the queue fills before the worker writes anything; it flushes after the last
// message it expects and reports the time from the opening of the gate.
class GatedFileSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    GatedFileSink(const std::string& name, long long expected) : m_expected(expected) {
        m_file.open(name, true);
    }
    void open() {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_start = Clock::now();
        m_changed.notify_all();
    }
    double waitForEnd() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [&] { return m_done; });
        return seconds(m_start, m_end);
    }

protected:
    void sink_it_(const spdlog::details::log_msg& msg) override {
        if (m_count == 0) {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait(lock, [&] { return m_open; });
        }
        spdlog::memory_buf_t formatted;
        formatter_->format(msg, formatted);
        m_file.write(formatted);
        if (++m_count == m_expected) {
            m_file.flush();
            std::lock_guard<std::mutex> lock(m_mutex);
            m_end = Clock::now();
            m_done = true;
            m_changed.notify_all();
        }
    }
    void flush_() override { m_file.flush(); }

private:
    spdlog::details::file_helper m_file;
    long long m_expected;
    long long m_count = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
    bool m_done = false;
    Clock::time_point m_start, m_end;
};

void BM_spdlog_drain(benchmark::State& state) {
    std::vector<std::string> texts;
    for (int i = 0; i < kDrainRecords; ++i) {
        texts.push_back(longText(i));
    }
    for (auto _ : state) {
        clearFolder();
        auto pool = std::make_shared<spdlog::details::thread_pool>(kDrainRecords + 1, 1);
        auto sink =
            std::make_shared<GatedFileSink>((g_folder.path / "spd.log").string(), kDrainRecords);
        auto logger = std::make_shared<spdlog::async_logger>(
            "drain", sink, pool, spdlog::async_overflow_policy::overrun_oldest);
        for (int i = 0; i < kDrainRecords; ++i) {
            logger->info("{}", texts[i]);
        }
        sink->open();
        state.SetIterationTime(sink->waitForEnd());
        logger.reset();
        pool.reset();
    }
    state.SetItemsProcessed(state.iterations() * kDrainRecords);
    clearFolder();
}
BENCHMARK(BM_spdlog_drain)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
#endif

// ---- burst ----

void BM_zbLogger_burst(benchmark::State& state) {
    char format[] = "value %d of %s";
    auto prefix = writable((g_folder.path / "burst").string());
    double share = 0, writerRate = 0;
    for (auto _ : state) {
        clearFolder();
        auto logger = std::make_unique<CzbLogger>(kBurstRing, 512);
        logger->setWriteFileMode(prefix.data(), kSavePeriodMs);
        auto start = Clock::now();
        for (int i = 0; i < kBurstRecords; ++i) {
            logger->setLog(format, i, "a benchmark message");
        }
        auto written = Clock::now();
        logger->resetLogCount(1);
        state.SetIterationTime(seconds(start, Clock::now()));
        logger.reset();
        share += static_cast<double>(countLines(true)) / kBurstRecords;
        writerRate += kBurstRecords / seconds(start, written);
    }
    state.counters["share"] = share / static_cast<double>(state.iterations());
    state.counters["writer_per_second"] = writerRate / static_cast<double>(state.iterations());
    clearFolder();
}
BENCHMARK(BM_zbLogger_burst)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

#if defined(ZBBASE_HAVE_SPDLOG)
void BM_spdlog_burst(benchmark::State& state) {
    double share = 0, writerRate = 0;
    for (auto _ : state) {
        clearFolder();
        auto pool = std::make_shared<spdlog::details::thread_pool>(kBurstRing, 1);
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(
            (g_folder.path / "spd.log").string(), true);
        auto logger = std::make_shared<spdlog::async_logger>(
            "burst", sink, pool, spdlog::async_overflow_policy::overrun_oldest);
        auto start = Clock::now();
        for (int i = 0; i < kBurstRecords; ++i) {
            logger->info("value {} of {}", i, "a benchmark message");
        }
        auto written = Clock::now();
        // The worker writes what its queue still holds before the pool ends.
        logger.reset();
        pool.reset();
        state.SetIterationTime(seconds(start, Clock::now()));
        sink.reset();
        share += static_cast<double>(countLines(false)) / kBurstRecords;
        writerRate += kBurstRecords / seconds(start, written);
    }
    state.counters["share"] = share / static_cast<double>(state.iterations());
    state.counters["writer_per_second"] = writerRate / static_cast<double>(state.iterations());
    clearFolder();
}
BENCHMARK(BM_spdlog_burst)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
#endif

// ---- setLog ----

std::unique_ptr<CzbLogger> g_logger;

void setUpLogger(const benchmark::State&) {
    clearFolder();
    g_logger = std::make_unique<CzbLogger>(kSetLogRing, 512);
    auto prefix = writable((g_folder.path / "zb").string());
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
    spdlog::init_thread_pool(kSetLogRing, 1);
    auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(
        (g_folder.path / "spd.log").string(), false);
    g_spdlog = std::make_shared<spdlog::async_logger>(
        "bench", sink, spdlog::thread_pool(), spdlog::async_overflow_policy::overrun_oldest);
}

void tearDownSpdlog(const benchmark::State&) {
    g_spdlog.reset();
    spdlog::shutdown();
    clearFolder();
}

void BM_spdlog_setLog(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        g_spdlog->info("value {} of {}", i++, "a benchmark message");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_spdlog_setLog)
    ->Setup(setUpSpdlog)
    ->Teardown(tearDownSpdlog)
    ->Threads(1)
    ->Threads(4)
    ->UseRealTime();
#endif

// ---- summary ----

// Keeps every repetition's counters while the console shows them as usual.
class CollectingReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) {
                continue;
            }
            for (const auto& counter : run.counters) {
                m_values[run.benchmark_name()][counter.first].push_back(counter.second.value);
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // The median over the repetitions, or a negative value where there was no run.
    double median(const std::string& name, const std::string& counter) const {
        auto byName = m_values.find(name);
        if (byName == m_values.end()) {
            return -1;
        }
        auto values = byName->second.find(counter);
        if (values == byName->second.end() || values->second.empty()) {
            return -1;
        }
        std::vector<double> sorted = values->second;
        std::sort(sorted.begin(), sorted.end());
        size_t n = sorted.size();
        return n % 2 == 1 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2;
    }

private:
    std::map<std::string, std::map<std::string, std::vector<double>>> m_values;
};

void printRow(const CollectingReporter& reporter, const char* row, const std::string& zb,
              const std::string& spd, const char* counter, double scale, const char* unit,
              bool ratio) {
    double ours = reporter.median(zb, counter);
    double peer = reporter.median(spd, counter);
    if (ours < 0) {
        return;
    }
    std::printf("%-58s zbBase %9.3f %-4s", row, ours * scale, unit);
    if (peer >= 0) {
        std::printf("  spdlog %9.3f %-4s", peer * scale, unit);
        if (ratio && peer > 0) {
            std::printf("  ratio %.2fx", ours / peer);
        }
    }
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
    // Repetitions interleaved at random between zbBase and spdlog, unless the caller says
    // otherwise.
    std::vector<char*> args(argv, argv + argc);
    bool repetitions = false;
    for (int i = 1; i < argc; ++i) {
        repetitions = repetitions || std::string(argv[i]).rfind("--benchmark_repetitions", 0) == 0;
    }
    static char kRepetitions[] = "--benchmark_repetitions=5";
    static char kInterleave[] = "--benchmark_enable_random_interleaving=true";
    if (!repetitions) {
        args.push_back(kRepetitions);
        args.push_back(kInterleave);
    }
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data())) {
        return 1;
    }
    CollectingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    std::printf("\nMedians of the repetitions (zbBase / spdlog):\n");
    printRow(reporter, "Log drain, 65535 records of 511 characters [M records/s]",
             "BM_zbLogger_drain/iterations:5/manual_time",
             "BM_spdlog_drain/iterations:5/manual_time", "items_per_second", 1e-6, "M/s", true);
    printRow(reporter, "Burst of 1 M records reaching the file [%]",
             "BM_zbLogger_burst/iterations:1/manual_time",
             "BM_spdlog_burst/iterations:1/manual_time", "share", 100.0, "%", false);
    printRow(reporter, "Burst writer, one thread [M records/s]",
             "BM_zbLogger_burst/iterations:1/manual_time",
             "BM_spdlog_burst/iterations:1/manual_time", "writer_per_second", 1e-6, "M/s", true);
    printRow(reporter, "setLog from 1 thread [M/s]", "BM_zbLogger_setLog/real_time/threads:1",
             "BM_spdlog_setLog/real_time/threads:1", "items_per_second", 1e-6, "M/s", true);
    printRow(reporter, "setLog from 4 threads [M/s]", "BM_zbLogger_setLog/real_time/threads:4",
             "BM_spdlog_setLog/real_time/threads:4", "items_per_second", 1e-6, "M/s", true);
    return 0;
}
