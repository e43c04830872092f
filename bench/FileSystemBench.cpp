// File search and folder copy side by side with std::filesystem.
//
// FindFile walks a generated tree of 50 000 files in 2 000 folders and collects every file
// with its size and times; the peer is recursive_directory_iterator collecting the same
// entries with size and last write time. CopyFolder copies 500 MiB in 40 files across 4
// folders; the peer is std::filesystem::copy with the recursive option. Both trees live
// under the system's temporary folder and are removed at the end. On a shared machine run
// with --benchmark_repetitions=4 --benchmark_enable_random_interleaving=true and compare
// the medians.
#include <zbBase/filesystem/CzbFileUtil.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#if !defined(_WIN32)
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
#if !defined(_WIN32)
        // Write-back of the generated trees would otherwise slow down the first figures.
        sync();
#endif
    }
    ~Trees() {
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }
};

Trees& trees() {
    static Trees instance;
    return instance;
}

struct Entry {
    std::string path;
    std::uintmax_t size;
    fs::file_time_type written;
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
                entries.push_back({item.path().string(), item.file_size(), item.last_write_time()});
            }
        }
        benchmark::DoNotOptimize(entries.data());
    }
    state.counters["files"] = static_cast<double>(entries.size());
}
BENCHMARK(BM_RecursiveDirectoryIterator)->Unit(benchmark::kMillisecond);

void BM_CopyFolder(benchmark::State& state) {
    std::string source = libraryText(trees().copySource);
    std::string target = libraryText(trees().copyTarget);
    for (auto _ : state) {
        CzbFileUtil::CopyFolder(&source[0], &target[0], true);
        state.PauseTiming();
        fs::remove_all(trees().copyTarget);
#if !defined(_WIN32)
        sync();
#endif
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 500LL * (1LL << 20));
}
BENCHMARK(BM_CopyFolder)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_StdFilesystemCopy(benchmark::State& state) {
    for (auto _ : state) {
        fs::copy(trees().copySource, trees().copyTarget, fs::copy_options::recursive);
        state.PauseTiming();
        fs::remove_all(trees().copyTarget);
#if !defined(_WIN32)
        sync();
#endif
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * 500LL * (1LL << 20));
}
BENCHMARK(BM_StdFilesystemCopy)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
