// The data file classes against plain stdio on the same bytes.
//
//   CzbFileDB     savefile and openfile of 100 000 items
//   CzbFileMgrAdv writeFile and readFile of 256 MiB in 64 blocks, beside fwrite and fread of the
//                 same blocks in the same program
//   CzbFileMgrB   MakeFile and OpenFile of 1 000 000 bodies of 16 bytes, and OpenFile of an
//                 8 MiB file with a body size of 1
//   CzbFileMgr    OpenFile and MakeFile of 64 000 distinct titles (a 0.95 MB file), beside a
//                 plain fgets and sscanf("%s = %s") pass over the same file
#include <zbBase/datafiles/CzbFileDB.h>
#include <zbBase/datafiles/CzbFileMgr.h>
#include <zbBase/datafiles/CzbFileMgrAdv.h>
#include <zbBase/datafiles/CzbFileMgrB.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

// One folder for the whole program, removed at exit.
struct BenchFolder {
    std::filesystem::path path;
    BenchFolder() {
        path = std::filesystem::temp_directory_path() / "zbBase_datafiles_bench";
        std::filesystem::create_directories(path);
    }
    ~BenchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    std::string file(const char* name) const { return (path / name).string(); }
};

BenchFolder& folder() {
    static BenchFolder instance;
    return instance;
}

char* C(const std::string& text) {
    return const_cast<char*>(text.c_str());
}

const int kItems = 100000;
const size_t kBlocks = 64;
const size_t kBlockSize = (256u << 20) / kBlocks;
const int kBodies = 1000000;
const unsigned kBodySize = 16;

void fillDatabase(CzbFileDB& db) {
    char key[32];
    for (int i = 0; i < kItems; ++i) {
        std::snprintf(key, sizeof key, "item%06d", i);
        db.setItem(key, i * 0.5);
    }
}

void FileDB_savefile(benchmark::State& state) {
    CzbFileDB db;
    fillDatabase(db);
    std::string path = folder().file("items.txt");
    for (auto _ : state) {
        benchmark::DoNotOptimize(db.savefile(C(path)));
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}
BENCHMARK(FileDB_savefile)->Unit(benchmark::kMillisecond);

void FileDB_openfile(benchmark::State& state) {
    std::string path = folder().file("items.txt");
    {
        CzbFileDB db;
        fillDatabase(db);
        db.savefile(C(path));
    }
    for (auto _ : state) {
        CzbFileDB db;
        benchmark::DoNotOptimize(db.openfile(C(path)));
        if (db.m_items.size() != static_cast<size_t>(kItems)) {
            state.SkipWithError("items lost");
        }
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}
BENCHMARK(FileDB_openfile)->Unit(benchmark::kMillisecond);

struct Blocks {
    std::vector<std::unique_ptr<char[]>> data;
    Blocks() {
        for (size_t i = 0; i < kBlocks; ++i) {
            data.emplace_back(new char[kBlockSize]);
            std::memset(data.back().get(), static_cast<int>(i), kBlockSize);
        }
    }
};

Blocks& blocks() {
    static Blocks instance;
    return instance;
}

void FileMgrAdv_writeFile(benchmark::State& state) {
    zbBase::CzbFileMgrAdv mgr;
    for (auto& block : blocks().data) {
        mgr.addDataSize(block.get(), kBlockSize);
    }
    std::string path = folder().file("adv.bin");
    for (auto _ : state) {
        benchmark::DoNotOptimize(mgr.writeFile(C(path), 1.0f));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBlocks * kBlockSize));
}
BENCHMARK(FileMgrAdv_writeFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void Stdio_fwrite(benchmark::State& state) {
    std::string path = folder().file("stdio.bin");
    char header[152 + 8 * kBlocks] = {};
    for (auto _ : state) {
        FILE* file = std::fopen(path.c_str(), "wb");
        std::fwrite(header, 1, sizeof header, file);
        for (auto& block : blocks().data) {
            std::fwrite(block.get(), 1, kBlockSize, file);
        }
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBlocks * kBlockSize));
}
BENCHMARK(Stdio_fwrite)->Unit(benchmark::kMillisecond)->UseRealTime();

void FileMgrAdv_readFile(benchmark::State& state) {
    std::string path = folder().file("adv.bin");
    zbBase::CzbFileMgrAdv mgr;
    for (auto& block : blocks().data) {
        mgr.addDataSize(block.get(), kBlockSize);
    }
    mgr.writeFile(C(path), 1.0f);
    for (auto _ : state) {
        benchmark::DoNotOptimize(mgr.readFile(C(path), false));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBlocks * kBlockSize));
}
BENCHMARK(FileMgrAdv_readFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void Stdio_fread(benchmark::State& state) {
    std::string path = folder().file("adv.bin");
    char header[152];
    for (auto _ : state) {
        FILE* file = std::fopen(path.c_str(), "rb");
        std::fread(header, 1, sizeof header, file);
        std::fseek(file, 8 * kBlocks, SEEK_CUR);
        for (auto& block : blocks().data) {
            benchmark::DoNotOptimize(std::fread(block.get(), 1, kBlockSize, file));
        }
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kBlocks * kBlockSize));
}
BENCHMARK(Stdio_fread)->Unit(benchmark::kMillisecond)->UseRealTime();

void fillRecords(zbBase::CzbFileMgrB& mgr) {
    mgr.SetDataSize(64, kBodySize);
    char body[kBodySize] = {};
    char head[64] = {};
    mgr.SetHead(head);
    for (int i = 0; i < kBodies; ++i) {
        std::memcpy(body, &i, sizeof i);
        mgr.AddBody(body);
    }
}

void FileMgrB_MakeFile(benchmark::State& state) {
    zbBase::CzbFileMgrB mgr;
    fillRecords(mgr);
    std::string path = folder().file("records.bin");
    for (auto _ : state) {
        mgr.MakeFile(C(path));
    }
    state.SetItemsProcessed(state.iterations() * kBodies);
}
BENCHMARK(FileMgrB_MakeFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void FileMgrB_OpenFile(benchmark::State& state) {
    std::string path = folder().file("records.bin");
    zbBase::CzbFileMgrB mgr;
    fillRecords(mgr);
    mgr.MakeFile(C(path));
    mgr.ClearWriteBuffer();
    for (auto _ : state) {
        benchmark::DoNotOptimize(mgr.OpenFile(C(path)));
    }
    if (mgr.m_readBodies.size() != static_cast<size_t>(kBodies)) {
        state.SkipWithError("bodies lost");
    }
    state.SetItemsProcessed(state.iterations() * kBodies);
}
BENCHMARK(FileMgrB_OpenFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void FileMgrB_OpenFile_BodySize1(benchmark::State& state) {
    std::string path = folder().file("bytes.bin");
    {
        std::string bytes(8u << 20, 'b');
        FILE* file = std::fopen(path.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    zbBase::CzbFileMgrB mgr;
    mgr.SetDataSize(0, 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(mgr.OpenFile(C(path)));
    }
    if (mgr.m_readBodies.size() != (8u << 20)) {
        state.SkipWithError("bodies lost");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(8u << 20));
}
BENCHMARK(FileMgrB_OpenFile_BodySize1)->Unit(benchmark::kMillisecond)->UseRealTime();

const int kTitles = 64000;

// One section per title: "[T12345]" and one attribute, some 15 bytes a title.
std::string titlesFile() {
    std::string path = folder().file("titles.ini");
    FILE* file = std::fopen(path.c_str(), "w");
    for (int i = 0; i < kTitles; ++i) {
        std::fprintf(file, "[T%05d]\na = %d\n", i, i % 10);
    }
    std::fclose(file);
    return path;
}

void FileMgr_OpenFile_64000Titles(benchmark::State& state) {
    std::string path = titlesFile();
    zbBase::CzbFileMgr mgr;
    for (auto _ : state) {
        benchmark::DoNotOptimize(mgr.OpenFile(C(path)));
    }
    if (mgr.m_attributes.size() != static_cast<size_t>(kTitles)) {
        state.SkipWithError("records lost");
    }
    state.SetItemsProcessed(state.iterations() * kTitles);
}
BENCHMARK(FileMgr_OpenFile_64000Titles)->Unit(benchmark::kMillisecond)->UseRealTime();

void Stdio_fgets_sscanf_64000Titles(benchmark::State& state) {
    std::string path = titlesFile();
    char line[1024], name[128], value[128];
    for (auto _ : state) {
        FILE* file = std::fopen(path.c_str(), "r");
        int records = 0;
        while (std::fgets(line, sizeof line, file) != nullptr) {
            if (line[0] == '[' || std::sscanf(line, "%127s = %127s", name, value) > 0) {
                ++records;
            }
        }
        std::fclose(file);
        benchmark::DoNotOptimize(records);
    }
    state.SetItemsProcessed(state.iterations() * kTitles);
}
BENCHMARK(Stdio_fgets_sscanf_64000Titles)->Unit(benchmark::kMillisecond)->UseRealTime();

void FileMgr_MakeFile_64000Titles(benchmark::State& state) {
    zbBase::CzbFileMgr mgr;
    mgr.OpenFile(C(titlesFile()));
    std::string path = folder().file("titles-out.ini");
    for (auto _ : state) {
        benchmark::DoNotOptimize(mgr.MakeFile(C(path)));
    }
    state.SetItemsProcessed(state.iterations() * kTitles);
}
BENCHMARK(FileMgr_MakeFile_64000Titles)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
