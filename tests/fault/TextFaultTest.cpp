// Rings of short-lived text shared by copies and threads: no block is freed while anyone can
// still reach it, and no two callers write into one block at the same time.
#include <zbBase/diagnostics/CzbText.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

char* text(const char* literal) {
    return const_cast<char*>(literal);
}

// Sizes that make slots grow, in an order that differs from thread to thread.
int mixedSize(unsigned seed, int i) {
    static const int sizes[] = {1, 64, 100, 260, 512, 700, 1500, 4096};
    return sizes[(seed * 7u + static_cast<unsigned>(i) * 5u) % 8u];
}

} // namespace

TEST(TextFault, CopyAndSourceOnTwoThreadsKeepTheirTexts) {
    const int rounds = 20000;
    auto source = std::make_unique<CzbText>();
    for (int i = 0; i < 8; ++i) {
        source->getDate();
    }
    auto copy = std::make_unique<CzbText>(*source);
    std::atomic<int> failures{0};
    std::atomic<int> ready{0};
    auto work = [&failures, &ready](CzbText* ring, unsigned seed) {
        ready.fetch_add(1);
        while (ready.load() < 2) {
        }
        // Each thread holds its last eight results and checks them all after every call.
        std::string expected[8];
        char* results[8] = {};
        for (int i = 0; i < rounds; ++i) {
            const int slot = i % 8; // result i takes the place of result i - 8
            const int size = mixedSize(seed, i);
            char* block;
            if (i % 3 == 0) {
                block = ring->getFormat(text("%u:%d:%0*d"), seed, i, size % 400, 7);
            } else {
                block = ring->getBufferNew(size);
                std::memset(block, static_cast<int>('a' + seed), size_t(size - 1));
                block[size - 1] = '\0';
            }
            results[slot] = block;
            expected[slot] = block;
            for (int k = 0; k < 8; ++k) {
                if (results[k] != nullptr && expected[k] != results[k]) {
                    failures.fetch_add(1);
                }
            }
        }
    };
    std::thread first(work, source.get(), 1u);
    std::thread second(work, copy.get(), 2u);
    first.join();
    second.join();
    EXPECT_EQ(failures.load(), 0);
    source.reset();
    // The copy still reads every slot after its source is gone.
    for (int i = 0; i < 8; ++i) {
        ASSERT_NE(copy->getBuffer(i), nullptr);
        EXPECT_LT(std::strlen(copy->getBuffer(i)), size_t(copy->getBufferSize(i)));
    }
}

TEST(TextFault, OneRingSharedByMoreThreadsThanSlots) {
    // Twelve threads on the eight slots of the process-wide ring and on a ring of three, with
    // requests of every size: blocks replaced under a lapped writer stay alive, and the ring's
    // own writers never share a block.
    CzbText small;
    small.setBufferSize(3);
    CzbText* rings[] = {CzbTextExt::getInstance(), &small};
    const std::string wide(480, 'w');
    for (CzbText* ring : rings) {
        std::vector<std::thread> threads;
        for (unsigned t = 0; t < 12; ++t) {
            threads.emplace_back([ring, t, &wide] {
                const std::string mark(500, static_cast<char>('A' + t));
                for (int i = 0; i < 1500; ++i) {
                    switch ((i + static_cast<int>(t)) % 5) {
                    case 0:
                        ring->getFormat(text("%s"), mark.c_str());
                        break;
                    case 1:
                        ring->getDate(text("-"));
                        break;
                    case 2:
                        ring->getCurrentDirectory();
                        break;
                    case 3:
                        ring->getBufferNew(mixedSize(t, i) * 2);
                        break;
                    default:
                        ring->getTime(text(wide.c_str()));
                        break;
                    }
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        // Every block holds one writer's whole text: a mark of 500 equal letters is never
        // mixed with another thread's.
        for (int slot = 0; slot < ring->getBufferNum(); ++slot) {
            const char* block = ring->getBuffer(slot);
            ASSERT_NE(block, nullptr);
            const size_t length = strnlen(block, size_t(ring->getBufferSize(slot)));
            ASSERT_LT(length, size_t(ring->getBufferSize(slot)));
            if (length == 500) {
                EXPECT_EQ(std::string(block), std::string(500, block[0]));
            }
        }
    }
}
