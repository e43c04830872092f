#include <zbBase/simulation/CzbSyncObject.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

using zbBase::CzbSyncObject;

TEST(CzbSyncObject, ReadersCountAndReleases) {
    CzbSyncObject gate;
    EXPECT_EQ(gate.GetReadCount(), 0);
    EXPECT_FALSE(gate.GetWriteState());
    EXPECT_TRUE(gate.SetRead(false));
    EXPECT_TRUE(gate.SetRead(true));
    EXPECT_EQ(gate.GetReadCount(), 2);
    EXPECT_FALSE(gate.SetWrite(false)); // readers inside
    EXPECT_FALSE(gate.GetWriteState());
    EXPECT_EQ(gate.SetReadRelease(), 1);
    EXPECT_EQ(gate.SetReadRelease(), 0);
    EXPECT_EQ(gate.SetReadRelease(), 0);
    EXPECT_EQ(gate.GetReadCount(), 0);
    gate.SetWriteRelease(); // no writer: nothing changes
    EXPECT_FALSE(gate.GetWriteState());
    CzbSyncObject copy(gate);
    copy = gate;
    EXPECT_EQ(copy.GetReadCount(), 0);
}

TEST(CzbSyncObject, WriterExcludesReadersAndWriters) {
    CzbSyncObject gate;
    EXPECT_TRUE(gate.SetWrite(false));
    EXPECT_TRUE(gate.GetWriteState());
    EXPECT_FALSE(gate.SetWrite(false));
    EXPECT_FALSE(gate.SetRead(false));
    EXPECT_EQ(gate.GetReadCount(), 0);

    // A waiting reader gets in once the writer leaves, a waiting writer once the reader does.
    std::atomic<bool> entered{false}, wrote{false};
    std::thread reader([&] { entered = gate.SetRead(true); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(entered);
    gate.SetWriteRelease();
    reader.join();
    EXPECT_TRUE(entered);
    EXPECT_EQ(gate.GetReadCount(), 1);
    std::thread writer([&] { wrote = gate.SetWrite(true); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(wrote);
    EXPECT_EQ(gate.SetReadRelease(), 0);
    writer.join();
    EXPECT_TRUE(wrote);
    EXPECT_TRUE(gate.GetWriteState());

    CzbSyncObject direct; // a claim written directly also keeps readers out
    direct.m_writeState = true;
    EXPECT_FALSE(direct.SetRead(false));
}

TEST(CzbSyncObject, ExclusionUnderSeveralThreads) {
    // First with waits mixed in, then attempts that never wait, back to back, so that readers
    // and writers meet inside each other's two steps (register, then look).
    for (const bool tight : {false, true}) {
        CzbSyncObject gate;
        std::atomic<int> readers{0}, writers{0}, violations{0}, reads{0};
        long long writes = 0; // plain data: the gate alone keeps it race-free
        std::vector<std::thread> threads;
        for (int t = 0; t < 6; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < (tight ? 50000 : 200); ++i) {
                    if (t % 3 == 0) {
                        if (!gate.SetWrite(!tight && i % 4 != 0)) {
                            continue;
                        }
                        violations += writers.fetch_add(1) != 0 || readers.load() != 0;
                        writes += 1;
                        writers.fetch_sub(1);
                        gate.SetWriteRelease();
                    } else if (gate.SetRead(!tight && i % 3 != 0)) {
                        readers.fetch_add(1);
                        violations += writers.load() != 0;
                        volatile long long seen = writes; // a race here shows under TSan
                        (void)seen;
                        readers.fetch_sub(1);
                        reads += 1;
                        gate.SetReadRelease();
                    }
                }
            });
        }
        for (std::thread& th : threads) {
            th.join();
        }
        EXPECT_EQ(violations, 0);
        EXPECT_EQ(gate.GetReadCount(), 0);
        EXPECT_FALSE(gate.GetWriteState());
        // Waiting writers always get in. Attempts that never wait may all meet the other side
        // on a loaded machine, so the tight round asks only for exclusion.
        if (!tight) {
            EXPECT_GE(writes, 2 * 150);
            EXPECT_GT(reads, 0);
        }
    }
}
