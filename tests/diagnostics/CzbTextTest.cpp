#include "zbBase/diagnostics/CzbText.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <ctime>
#include <regex>
#include <set>
#include <thread>

using diagtest::Text;

TEST(CzbText, RingRotatesThroughEightSlots) {
    CzbText ring;
    ASSERT_EQ(ring.getBufferNum(), 8);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(ring.getBuffer(i), nullptr);
        EXPECT_EQ(ring.getBufferSize(i), 0);
    }
    EXPECT_EQ(ring.m_current.load(), -1);

    char* held[8];
    for (int i = 0; i < 8; ++i) {
        held[i] = ring.getFormat(Text("text %d"), i);
        EXPECT_EQ(ring.getBuffer(i), held[i]);
        EXPECT_EQ(ring.getBufferSize(i), 512);
    }
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(std::string(held[i]), "text " + std::to_string(i));
    }
    // The ninth result reuses slot 0, whose block is large enough.
    char* ninth = ring.getFormat(Text("ninth"));
    EXPECT_EQ(ninth, held[0]);
    EXPECT_STREQ(held[0], "ninth");

    // getFormat is bounded by its 512-byte block.
    std::string longText(700, 'k');
    char* cut = ring.getFormat(Text("%s"), longText.c_str());
    EXPECT_EQ(std::strlen(cut), 511u);
#if !defined(_WIN32)
    // A conversion that the formatter refuses (a wide character the C locale has no byte for)
    // gives the empty text.
    EXPECT_STREQ(ring.getFormat(Text("%ls"), L"\u00e9"), "");
#endif

    // A cursor that the host set outside the ring still takes a slot of it.
    ring.m_current.store(-5);
    EXPECT_EQ(ring.getFormat(Text("at four")), ring.getBuffer(4));
    EXPECT_EQ(ring.m_current.load(), 4);
    ring.m_current.store(INT_MAX);
    EXPECT_EQ(ring.getBufferNew(8), ring.getBuffer(0));
    EXPECT_EQ(ring.m_current.load(), 0);
}

TEST(CzbText, BlocksGrowButNeverShrink) {
    CzbText ring;
    ring.getDate();
    EXPECT_EQ(ring.getBufferSize(0), 64);
    for (int i = 1; i < 8; ++i) {
        ring.getBufferNew(1);
    }
    char* grown = ring.getBufferNew(100);
    EXPECT_EQ(ring.getBuffer(0), grown);
    EXPECT_EQ(ring.getBufferSize(0), 100);
    for (int i = 1; i < 8; ++i) {
        ring.getBufferNew(1);
    }
    EXPECT_EQ(ring.getDate(), grown);
    EXPECT_EQ(ring.getBufferSize(0), 100);

    // A size of 0 or less allocates nothing but still moves the cursor.
    CzbText empty;
    EXPECT_EQ(empty.getBufferNew(0), nullptr);
    EXPECT_EQ(empty.getBufferNew(-5), nullptr);
    EXPECT_EQ(empty.m_current.load(), 1);
    EXPECT_EQ(empty.getBufferSize(0), 0);
    EXPECT_EQ(empty.getBufferSize(1), 0);
}

TEST(CzbText, SetBufferSizeReplacesTheRing) {
    CzbText ring;
    for (int i = 0; i < 8; ++i) {
        ring.getFormat(Text("%d"), i);
    }
    char* kept = ring.getBuffer(3);
    ring.setBufferSize(8);
    EXPECT_EQ(ring.getBuffer(3), kept);
    EXPECT_STREQ(kept, "3");

    ring.setBufferSize(0);
    ring.setBufferSize(-2);
    EXPECT_EQ(ring.getBufferNum(), 8);
    EXPECT_EQ(ring.getBuffer(3), kept);

    ring.setBufferSize(3);
    EXPECT_EQ(ring.getBufferNum(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ring.getBuffer(i), nullptr);
        EXPECT_EQ(ring.getBufferSize(i), 0);
    }
    EXPECT_EQ(ring.m_current.load(), 7);
    char* next = ring.getBufferNew(10);
    EXPECT_EQ(ring.getBuffer(2), next);
    char* after = ring.getBufferNew(10);
    EXPECT_EQ(ring.getBuffer(0), after);
}

TEST(CzbText, DateAndTimeForms) {
    CzbText ring;
    std::regex date8("^\\d{8}$"), time6("^\\d{6}$");
    EXPECT_TRUE(std::regex_match(ring.getDate(), date8));
    EXPECT_TRUE(std::regex_match(ring.getTime(), time6));
    EXPECT_TRUE(std::regex_match(ring.getDate(Text("-")), std::regex("^\\d{4}-\\d\\d-\\d\\d$")));
    EXPECT_TRUE(std::regex_match(ring.getTime(Text(":")), std::regex("^\\d\\d:\\d\\d:\\d\\d$")));
    EXPECT_TRUE(std::regex_match(ring.getDate(Text("y"), Text("m"), Text("d")),
                                 std::regex("^\\d{4}y\\d\\dm\\d\\dd$")));
    EXPECT_TRUE(std::regex_match(ring.getTime(Text("h"), Text("m"), Text("s")),
                                 std::regex("^\\d\\dh\\d\\dm\\d\\ds$")));

    // The texts agree with the local calendar (retried across a change of second).
    bool matched = false;
    for (int attempt = 0; attempt < 5 && !matched; ++attempt) {
        std::time_t before = std::time(nullptr);
        std::string date = ring.getDate(Text(""));
        std::string plain = ring.getDate();
        std::string time = ring.getTime(Text(""));
        std::time_t after = std::time(nullptr);
        if (before != after) {
            continue;
        }
        std::tm local = *std::localtime(&before);
        char expected[64];
        std::snprintf(expected, sizeof expected, "%04d%02d%02d", local.tm_year + 1900,
                      local.tm_mon + 1, local.tm_mday);
        EXPECT_EQ(date, expected);
        EXPECT_EQ(plain, expected);
        std::snprintf(expected, sizeof expected, "%02d%02d%02d", local.tm_hour, local.tm_min,
                      local.tm_sec);
        EXPECT_EQ(time, expected);
        matched = true;
    }
    EXPECT_TRUE(matched);

    // Caller's texts too long for the 64-byte block are cut inside it.
    std::string wide(100, 'w');
    EXPECT_EQ(std::strlen(ring.getDate(Text(wide))), 63u);
}

TEST(CzbText, DirectoryAndModulePaths) {
    CzbText ring;
    std::string module = ring.getModuleFileName();
    EXPECT_NE(module.find("zbBase_tests_diagnostics"), std::string::npos) << module;
    EXPECT_EQ(ring.getBufferSize(0), 260);
    std::string folder = ring.getCurrentDirectory();
    std::string expected = std::filesystem::current_path().string();
#if !defined(_WIN32)
    for (char& c : expected) {
        if (c == '/') {
            c = '\\';
        }
    }
#endif
    EXPECT_EQ(folder, expected);
}

TEST(CzbText, CopiesShareBlocksAndReleaseThemOnce) {
    auto* source = new CzbText;
    source->getFormat(Text("shared"));
    CzbText copy(*source);
    EXPECT_EQ(copy.m_buffers, source->m_buffers);
    EXPECT_EQ(copy.getBuffer(0), source->getBuffer(0));
    EXPECT_EQ(copy.m_current.load(), 0);
    char* fromCopy = copy.getFormat(Text("from copy"));
    EXPECT_EQ(source->getBuffer(1), fromCopy);
    EXPECT_EQ(source->m_current.load(), 0);

    CzbText assigned;
    assigned.getFormat(Text("dropped"));
    assigned = copy;
    CzbText& alias = assigned;
    assigned = alias;
    EXPECT_EQ(assigned.getBuffer(1), fromCopy);
    delete source;
    // The blocks live on with the copies.
    EXPECT_STREQ(copy.getBuffer(0), "shared");
    EXPECT_STREQ(assigned.getBuffer(1), "from copy");

    CzbTextExt ext;
    ext.getFormat(Text("ext"));
    CzbTextExt extCopy(ext);
    extCopy = ext;
    EXPECT_STREQ(extCopy.getBuffer(0), "ext");
}

TEST(CzbText, CopiesWriteOnlyIntoBlocksOfTheirOwn) {
    CzbText source;
    char* first = source.getFormat(Text("one")); // slot 0
    char* ownOfCopy = nullptr;
    {
        CzbText copy(source);
        char* fromCopy = copy.getFormat(Text("copy")); // slot 1, seen through both
        EXPECT_EQ(source.getBuffer(1), fromCopy);
        // Slot 0 shows the source's text: the copy sets that block aside and takes its own,
        // as large as the slot has grown.
        copy.m_current.store(-1);
        ownOfCopy = copy.getDate();
        EXPECT_NE(ownOfCopy, first);
        EXPECT_STREQ(first, "one");
        EXPECT_EQ(source.getBuffer(0), ownOfCopy);
        EXPECT_EQ(source.getBufferSize(0), 512);
        char* second = source.getFormat(Text("two")); // the source's slot 1
        EXPECT_NE(second, fromCopy);
        EXPECT_STREQ(fromCopy, "copy");
        // Each gets its own block back on its next turn.
        source.m_current.store(-1);
        EXPECT_EQ(source.getFormat(Text("three")), first);
        copy.m_current.store(-1);
        EXPECT_EQ(copy.getDate(), ownOfCopy);
    }
    // A copy that is gone leaves its blocks in the slots to whoever comes next.
    source.m_current.store(-1);
    EXPECT_EQ(source.getFormat(Text("four")), ownOfCopy);
    EXPECT_EQ(source.getBufferSize(0), 512);

    // Three objects in turn in one slot: each keeps its text, and each finds its own block
    // again behind the blocks that the others set aside.
    CzbText a;
    CzbText b(a);
    CzbText c(a);
    char* fromA = a.getFormat(Text("a"));
    char* fromB = b.getFormat(Text("b"));
    char* fromC = c.getFormat(Text("c"));
    EXPECT_EQ(std::set<char*>({fromA, fromB, fromC}).size(), 3u);
    a.m_current.store(-1);
    EXPECT_EQ(a.getFormat(Text("a again")), fromA);
    b.m_current.store(-1);
    EXPECT_EQ(b.getFormat(Text("b again")), fromB);
    EXPECT_STREQ(fromA, "a again");
    EXPECT_STREQ(fromC, "c");
    EXPECT_EQ(c.getBuffer(0), fromB);

    // An object's own block that the slot has outgrown meanwhile is replaced by a larger one.
    CzbText d;
    CzbText e(d);
    char* small = d.getDate();
    e.getDate();
    d.m_current.store(-1);
    char* large = d.getFormat(Text("large"));
    EXPECT_NE(large, small);
    EXPECT_EQ(d.getBufferSize(0), 512);
    e.m_current.store(-1);
    char* alsoLarge = e.getDate();
    EXPECT_NE(alsoLarge, large);
    EXPECT_EQ(e.getBufferSize(0), 512);
    EXPECT_STREQ(large, "large");
}

TEST(CzbText, ProcessWideRing) {
    CzbText* first = CzbTextExt::getInstance();
    EXPECT_EQ(first, &CzbTextExt::m_zbText);
    EXPECT_EQ(CzbTextExt::getInstance(), first);
    EXPECT_EQ(first->getBufferNum(), 8);
}

TEST(CzbText, ConcurrentCallersGetDistinctSlots) {
    const int threads = 4, perThread = 200;
    CzbText ring;
    ring.setBufferSize(threads * perThread);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&ring, t] {
            for (int i = 0; i < perThread; ++i) {
                char* block = ring.getBufferNew(16);
                std::snprintf(block, 16, "%d:%d", t, i);
            }
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    std::set<std::string> seen;
    for (int i = 0; i < threads * perThread; ++i) {
        ASSERT_NE(ring.getBuffer(i), nullptr);
        seen.insert(ring.getBuffer(i));
    }
    EXPECT_EQ(seen.size(), static_cast<size_t>(threads * perThread));
}
