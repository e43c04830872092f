// File search and folder copy side by side with std::filesystem and plain POSIX calls.
//
// Search: a generated tree of 50 000 files in 2 000 folders (40 folders of 49 subfolders
// each, 25 files of 100 bytes in every folder). FindFile("*.*", recursive) collects every file
// with its size and times; std::filesystem::recursive_directory_iterator collects the same
// files with size and last write time; the plain walk is opendir/readdir recursion with one
// stat of the full path per entry.
// Copy: CopyFolder of 500 MiB in 40 files across 4 folders beside std::filesystem::copy with
// the recursive option; the target is removed and the disk synced outside the timing.
//
// The contenders run interleaved (5 repetitions in random order unless other options are
// given), and the program ends with the ratios of the median times. Both trees live under the
// system's temporary folder and are removed at the end.
#include <zbBase/filesystem/CzbFileUtil.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

std::string libraryText(const fs::path& path) {
    std::string text = path.string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

fs::path benchRoot() {
#if defined(_WIN32)
    int pid = 0;
#else
    int pid = getpid();
#endif
    return fs::temp_directory_path() / ("zbfs_bench_" + std::to_string(pid));
}

struct Trees {
    fs::path root = benchRoot();
    fs::path search = root / "search";
    fs::path copySource = root / "copy_src";
    fs::path copyTarget = root / "copy_dst";

    Trees() {
        fs::remove_all(root);
        // 40 top folders of 49 folders each, plus the 40 themselves: 2 000 folders of 25
        // files each.
        std::string content(100, 'x');
        for (int top = 0; top < 40; ++top) {
            for (int sub = 0; sub < 50; ++sub) {
                fs::path folder = search / ("top" + std::to_string(top));
                if (sub > 0) {
                    folder /= "sub" + std::to_string(sub);
                }
                fs::create_directories(folder);
                for (int f = 0; f < 25; ++f) {
                    std::ofstream(folder / ("file" + std::to_string(f) + ".dat")) << content;
                }
            }
        }
        std::string block(1 << 20, '\0');
        for (size_t i = 0; i < block.size(); ++i) {
            block[i] = static_cast<char>(i * 31 + (i >> 12));
        }
        for (int folder = 0; folder < 4; ++folder) {
            fs::path dir = copySource / ("part" + std::to_string(folder));
            fs::create_directories(dir);
            for (int f = 0; f < 10; ++f) {
                std::ofstream out(dir / ("blob" + std::to_string(f) + ".bin"), std::ios::binary);
                for (int mib = 0; mib < 12; ++mib) {
                    out.write(block.data(), static_cast<std::streamsize>(block.size()));
                }
                if (folder * 10 + f < 20) {
                    out.write(block.data(), static_cast<std::streamsize>(block.size()));
                }
            }
        }
        syncDisk();
    }
    ~Trees() {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
    // Write-back of earlier work would otherwise slow down the next figure.
    static void syncDisk() {
#if !defined(_WIN32)
        sync();
#endif
    }
};

Trees& trees() {
    static Trees instance;
    return instance;
}

struct Entry {
    std::string path;
    std::uintmax_t size;
    long long written;
};

void BM_FindFile(benchmark::State& state) {
    std::string pattern = libraryText(trees().search / "*.*");
    CzbFileUtil util;
    for (auto _ : state) {
        util.FindFile(&pattern[0], true);
        benchmark::DoNotOptimize(util.getFindData()->data());
    }
    state.counters["files"] = static_cast<double>(util.getFindData()->size());
}
BENCHMARK(BM_FindFile)->Unit(benchmark::kMillisecond);

void BM_RecursiveDirectoryIterator(benchmark::State& state) {
    fs::path root = trees().search;
    std::vector<Entry> entries;
    for (auto _ : state) {
        entries.clear();
        for (const fs::directory_entry& item : fs::recursive_directory_iterator(root)) {
            if (!item.is_directory()) {
                entries.push_back({item.path().string(), item.file_size(),
                                   item.last_write_time().time_since_epoch().count()});
            }
        }
        benchmark::DoNotOptimize(entries.data());
    }
    state.counters["files"] = static_cast<double>(entries.size());
}
BENCHMARK(BM_RecursiveDirectoryIterator)->Unit(benchmark::kMillisecond);

#if !defined(_WIN32)
// One stat of the full path per entry, as a plain C walk does it.
void readdirStat(const std::string& folder, std::vector<Entry>& out) {
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) {
        return;
    }
    while (struct dirent* item = readdir(dir)) {
        if (strcmp(item->d_name, ".") == 0 || strcmp(item->d_name, "..") == 0) {
            continue;
        }
        std::string path = folder + "/" + item->d_name;
        struct stat info;
        if (lstat(path.c_str(), &info) != 0) {
            continue;
        }
        if (S_ISDIR(info.st_mode)) {
            readdirStat(path, out);
        } else {
            out.push_back({path, static_cast<std::uintmax_t>(info.st_size),
                           static_cast<long long>(info.st_mtime)});
        }
    }
    closedir(dir);
}

void BM_ReaddirStat(benchmark::State& state) {
    std::string root = trees().search.string();
    std::vector<Entry> entries;
    for (auto _ : state) {
        entries.clear();
        readdirStat(root, entries);
        benchmark::DoNotOptimize(entries.data());
    }
    state.counters["files"] = static_cast<double>(entries.size());
}
BENCHMARK(BM_ReaddirStat)->Unit(benchmark::kMillisecond);
#endif

void BM_CopyFolder(benchmark::State& state) {
    std::string source = libraryText(trees().copySource);
    std::string target = libraryText(trees().copyTarget);
    for (auto _ : state) {
        CzbFileUtil::CopyFolder(&source[0], &target[0], true);
        state.PauseTiming();
        fs::remove_all(trees().copyTarget);
        Trees::syncDisk();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 500LL * (1LL << 20));
}
BENCHMARK(BM_CopyFolder)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_StdFilesystemCopy(benchmark::State& state) {
    for (auto _ : state) {
        fs::copy(trees().copySource, trees().copyTarget, fs::copy_options::recursive);
        state.PauseTiming();
        fs::remove_all(trees().copyTarget);
        Trees::syncDisk();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 500LL * (1LL << 20));
}
BENCHMARK(BM_StdFilesystemCopy)->Unit(benchmark::kMillisecond)->Iterations(1);

// The console report, keeping each benchmark's time per iteration of every repetition.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0 && !run.error_occurred) {
                const double n = static_cast<double>(run.iterations);
                Times& times = m_times[run.run_name.function_name];
                times.real.push_back(run.real_accumulated_time / n);
                times.cpu.push_back(run.cpu_accumulated_time / n);
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // Median time of a benchmark in milliseconds (wall clock, or the process's CPU time), or
    // 0 when it did not run.
    double median(const std::string& name, bool cpu) const {
        auto found = m_times.find(name);
        if (found == m_times.end() || found->second.real.empty()) {
            return 0.0;
        }
        std::vector<double> times = cpu ? found->second.cpu : found->second.real;
        std::sort(times.begin(), times.end());
        size_t n = times.size();
        double middle = n % 2 == 1 ? times[n / 2] : (times[n / 2 - 1] + times[n / 2]) / 2.0;
        return middle * 1000.0;
    }

    void printRatio(const char* label, const std::string& ours, const std::string& peer) const {
        for (bool cpu : {false, true}) {
            double a = median(ours, cpu);
            double b = median(peer, cpu);
            if (a > 0.0 && b > 0.0) {
                std::printf("%-46s %s %9.2f ms / %9.2f ms = %.2fx\n", label, cpu ? "cpu " : "wall",
                            a, b, a / b);
            }
        }
    }

private:
    struct Times {
        std::vector<double> real;
        std::vector<double> cpu;
    };
    std::map<std::string, Times> m_times;
};

bool hasOption(int argc, char** argv, const char* prefix) {
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], prefix, std::strlen(prefix)) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<char*> args(argv, argv + argc);
    static char repetitions[] = "--benchmark_repetitions=5";
    static char interleave[] = "--benchmark_enable_random_interleaving=true";
    if (!hasOption(argc, argv, "--benchmark_repetitions")) {
        args.push_back(repetitions);
        if (!hasOption(argc, argv, "--benchmark_enable_random_interleaving")) {
            args.push_back(interleave);
        }
    }
    int count = static_cast<int>(args.size());
    args.push_back(nullptr);
    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data())) {
        return 1;
    }
    trees(); // built before the first timing
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nmedian time per run, ours / peer (wall clock, and CPU time of the process)\n");
    reporter.printRatio("FindFile / recursive_directory_iterator", "BM_FindFile",
                        "BM_RecursiveDirectoryIterator");
    reporter.printRatio("FindFile / readdir + stat", "BM_FindFile", "BM_ReaddirStat");
    reporter.printRatio("recursive_directory_iterator / readdir + stat",
                        "BM_RecursiveDirectoryIterator", "BM_ReaddirStat");
    reporter.printRatio("CopyFolder / std::filesystem::copy", "BM_CopyFolder",
                        "BM_StdFilesystemCopy");
    benchmark::Shutdown();
    return 0;
}
