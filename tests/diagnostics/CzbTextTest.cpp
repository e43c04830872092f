#include "zbBase/diagnostics/CzbText.h"

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <ctime>
#include <regex>
#include <set>

using zbtest::Text;

TEST(CzbText, RingRotatesAndBlocksGrowButNeverShrink) {
    CzbText ring;
    ASSERT_EQ(ring.getBufferNum(), 8);
    EXPECT_EQ(ring.m_current.load(), -1);
    char* held[8];
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(ring.getBuffer(i), nullptr);
        held[i] = ring.getFormat(Text("text %d"), i);
        EXPECT_EQ(ring.getBuffer(i), held[i]);
        EXPECT_EQ(ring.getBufferSize(i), 512);
    }
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(std::string(held[i]), "text " + std::to_string(i));
    }
    // The ninth result reuses slot 0, whose block is large enough.
    EXPECT_EQ(ring.getDate(), held[0]);
    EXPECT_EQ(ring.getBufferSize(0), 512);

    // getFormat is bounded by its 512-byte block.
    EXPECT_EQ(std::strlen(ring.getFormat(Text("%s"), std::string(700, 'k').c_str())), 511u);
#if !defined(_WIN32)
    // A conversion that the formatter refuses (a wide character the C locale has no byte for)
    // gives the empty text.
    EXPECT_STREQ(ring.getFormat(Text("%ls"), L"\u00e9"), "");
#endif
    // A cursor that the host set outside the ring still takes a slot of it.
    ring.m_current.store(-5);
    const char* four = ring.getFormat(Text("at four"));
    EXPECT_EQ(four, ring.getBuffer(4));
    EXPECT_EQ(ring.m_current.load(), 4);
    ring.m_current.store(INT_MAX);
    const char* zero = ring.getBufferNew(8);
    EXPECT_EQ(zero, ring.getBuffer(0));
    EXPECT_EQ(ring.m_current.load(), 0);

    CzbText small;
    char* date = small.getDate();
    const std::string dateText = date;
    EXPECT_EQ(small.getBufferSize(0), 64);
    small.m_current.store(-1);
    char* grown = small.getBufferNew(100);
    EXPECT_EQ(small.getBuffer(0), grown);
    EXPECT_EQ(small.getBufferSize(0), 100);
    EXPECT_EQ(date, dateText); // a result held across a lap is out of date, never freed

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
    ring.setBufferSize(0);
    ring.setBufferSize(-2);
    EXPECT_EQ(ring.getBufferNum(), 8);
    EXPECT_EQ(ring.getBuffer(3), kept);
    EXPECT_STREQ(kept, "3");

    ring.setBufferSize(3);
    EXPECT_EQ(ring.getBufferNum(), 3);
    EXPECT_TRUE(ring.getBuffer(0) == nullptr && ring.getBufferSize(2) == 0);
    // The cursor stays at 7: the next slot is 8 % 3, then 0.
    char* next = ring.getBufferNew(10);
    EXPECT_EQ(ring.getBuffer(2), next);
    next = ring.getBufferNew(10);
    EXPECT_EQ(ring.getBuffer(0), next);
}

TEST(CzbText, DateTimeAndPaths) {
    CzbText ring;
    EXPECT_TRUE(std::regex_match(ring.getDate(Text("y"), Text("m"), Text("d")),
                                 std::regex("^\\d{4}y\\d\\dm\\d\\dd$")));
    EXPECT_TRUE(std::regex_match(ring.getTime(Text("h"), Text("m"), Text("s")),
                                 std::regex("^\\d\\dh\\d\\dm\\d\\ds$")));
    // The texts agree with the local calendar (retried across a change of second).
    bool matched = false;
    for (int attempt = 0; attempt < 5 && !matched; ++attempt) {
        std::time_t before = std::time(nullptr);
        const std::string texts[] = {ring.getDate(Text("")),  ring.getDate(),
                                     ring.getTime(Text("")),  ring.getTime(),
                                     ring.getDate(Text("-")), ring.getTime(Text(":"))};
        if (before != std::time(nullptr)) {
            continue;
        }
        std::tm t = *std::localtime(&before);
        char date[64], time[64], dashed[80], coloned[80];
        std::snprintf(date, sizeof date, "%04d%02d%02d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
        std::snprintf(time, sizeof time, "%02d%02d%02d", t.tm_hour, t.tm_min, t.tm_sec);
        std::snprintf(dashed, sizeof dashed, "%.4s-%.2s-%s", date, date + 4, date + 6);
        std::snprintf(coloned, sizeof coloned, "%.2s:%.2s:%s", time, time + 2, time + 4);
        EXPECT_EQ(texts[0] + texts[1] + texts[2] + texts[3] + texts[4] + texts[5],
                  std::string(date) + date + time + time + dashed + coloned);
        matched = true;
    }
    EXPECT_TRUE(matched);
    // Caller's texts too long for the 64-byte block are cut inside it.
    EXPECT_EQ(std::strlen(ring.getDate(Text(std::string(100, 'w')))), 63u);

    CzbText paths;
    std::string module = paths.getModuleFileName();
    EXPECT_NE(module.find("zbBase_tests_diagnostics"), std::string::npos) << module;
    EXPECT_EQ(paths.getBufferSize(0), 260);
    std::string expected = std::filesystem::current_path().string();
#if !defined(_WIN32)
    std::replace(expected.begin(), expected.end(), '/', '\\');
#endif
    EXPECT_EQ(std::string(paths.getCurrentDirectory()), expected);

    EXPECT_EQ(CzbTextExt::getInstance(), &CzbTextExt::m_zbText);
    EXPECT_EQ(CzbTextExt::getInstance()->getBufferNum(), 8);
}

TEST(CzbText, CopiesShareBlocksAndWriteOnlyIntoBlocksOfTheirOwn) {
    auto* shared = new CzbText;
    shared->getFormat(Text("shared"));
    CzbText copy(*shared);
    EXPECT_EQ(copy.getBuffer(0), shared->getBuffer(0));
    EXPECT_EQ(copy.m_current.load(), 0);
    char* fromCopy = copy.getFormat(Text("from copy"));
    EXPECT_EQ(shared->getBuffer(1), fromCopy);
    EXPECT_EQ(shared->m_current.load(), 0);
    CzbText assigned;
    assigned.getFormat(Text("dropped"));
    assigned = copy;
    CzbText& alias = assigned;
    assigned = alias;
    delete shared;
    // The blocks live on with the copies.
    EXPECT_STREQ(copy.getBuffer(0), "shared");
    EXPECT_STREQ(assigned.getBuffer(1), "from copy");

    // A copy that is gone leaves its own block in the slot to whoever comes next.
    CzbText source;
    source.getFormat(Text("one"));
    char* ownOfCopy = nullptr;
    {
        CzbText other(source);
        other.m_current.store(-1);
        ownOfCopy = other.getDate();
    }
    source.m_current.store(-1);
    EXPECT_EQ(source.getFormat(Text("two")), ownOfCopy);

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
    e.m_current.store(-1);
    EXPECT_NE(e.getDate(), large);
    EXPECT_EQ(e.getBufferSize(0), 512);
    EXPECT_STREQ(large, "large");
    e.m_current.store(-1);
    char* huge = e.getBufferNew(4096); // the copy grows the shared slot: d's result stays
    std::memset(huge, 'c', 4095);
    huge[4095] = '\0';
    EXPECT_STREQ(large, "large");
    EXPECT_EQ(d.getBuffer(0), huge);
}
