#include "datafiles/zbTempFolder.h"

#include <zbBase/datafiles/CzbFileDB.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <limits>
#include <thread>
#include <utility>

using zbBase::CzbStringT;

TEST(CzbStringT, EmptyNullFormatCompareAndSharedCopies) {
    CzbStringT empty(nullptr);
    EXPECT_EQ(empty.GetLength(), 0);
    EXPECT_STREQ(empty.GetString(), "");
    CzbStringT a("abc");
    a = static_cast<const char*>(nullptr);
    EXPECT_EQ(a.GetLength(), 0);

    CzbStringT f;
    f.Format("%s%s%d", "speed", "_#", -1);
    EXPECT_STREQ(f, "speed_#-1");
    EXPECT_EQ(f.GetLength(), 9);
    EXPECT_EQ(f[0], 's');
    f.Format("%s", f.GetString()); // its own text as argument
    EXPECT_STREQ(f, "speed_#-1");

    EXPECT_LT(CzbStringT("B").Compare("a"), 0);    // bytes, case counts
    EXPECT_GT(CzbStringT("\xE0").Compare("z"), 0); // unsigned bytes
    EXPECT_TRUE(CzbStringT("ab") < CzbStringT("abc"));
    EXPECT_GT(CzbStringT("x").Compare(nullptr), 0);

    CzbStringT original("value");
    CzbStringT copy(original);
    EXPECT_EQ(copy.GetString(), original.GetString()); // shared until written
    copy.GetBuffer()[0] = 'V';
    EXPECT_STREQ(original, "value");
    EXPECT_STREQ(copy, "Value");
    copy = original;
    const CzbStringT& same = copy;
    copy = same;
    EXPECT_STREQ(copy, "value");

    CzbStringT moved("old");
    moved = std::move(copy);
    EXPECT_STREQ(moved, "value");
    CzbStringT& alias = moved;
    moved = std::move(alias); // onto itself: unchanged
    EXPECT_STREQ(moved, "value");
    EXPECT_EQ(moved.GetString(), original.GetString()); // still shared
}

TEST(CzbFileDB, EmptyDatabaseGivesDefaults) {
    CzbFileDB db;
    char text[16] = "untouched";
    int i = 1;
    long l = 2;
    float f = 3;
    double d = 4;
    CzbStringT s;
    db.getItem(T("k"), text, T("def"));
    db.getItem(T("k"), &i, 9);
    db.getItem(T("k"), &l, 8L);
    db.getItem(T("k"), &f, 7.5f);
    db.getItem(T("k"), &d, 6.5);
    db.getItem(T("k"), &s, T("sdef"));
    EXPECT_STREQ(text, "def");
    EXPECT_TRUE(i == 9 && l == 8L && f == 7.5f && d == 6.5);
    EXPECT_STREQ(s, "sdef");
    db.getItem(0, T("k"), &s, nullptr);
    EXPECT_STREQ(s, "");
    EXPECT_EQ(db.getItemNum(T("k")), 0);
    EXPECT_EQ(db.getItemPoint(T("k")), nullptr);
    EXPECT_EQ(db.deleteItem(0), -1);
    EXPECT_EQ(db.deleteItem(T("k")), 0);
    EXPECT_EQ(db.deleteItem(static_cast<char*>(nullptr)), -1);
    db.setItemClear(T("k"));
    db.clear();
    EXPECT_TRUE(db.m_items.empty());
}

TEST(CzbFileDB, TextFormsOfNumbers) {
    CzbFileDB db;
    // Beyond the 32-bit range numbers saturate; a float read of a huge value is infinite. Just
    // beyond the largest float, nearer to it than to the next power of two, rounds to it.
    const float inf = std::numeric_limits<float>::infinity();
    const float max = std::numeric_limits<float>::max();
    struct Case {
        const char* text;
        long asLong;
        float asFloat;
    };
    for (const Case& c :
         {Case{"", 0, 0}, Case{"abc", 0, 0}, Case{"12abc", 12, 12}, Case{"2.500000", 2, 2.5f},
          Case{"99999999999", INT_MAX, 1e11f}, Case{"-99999999999", INT_MIN, -1e11f},
          Case{"1e300", 1, inf}, Case{"-1e300", -1, -inf}, Case{"3.4028235e38", 3, max},
          Case{"-3.4028235e38", -3, -max}}) {
        db.setItem(T("k"), T(c.text));
        int i = 9;
        long l = 9;
        float f = 9;
        db.getItem(T("k"), &i, 9);
        db.getItem(T("k"), &l, 9L);
        db.getItem(T("k"), &f, 9.0f);
        EXPECT_TRUE(i == c.asLong && l == c.asLong && f == c.asFloat) << c.text;
    }
    char text[16] = "x";
    db.setItem(T("empty"), T(""));
    db.getItem(T("empty"), text, T("def"));
    EXPECT_STREQ(text, "");

    db.setItem(T("f"), 2.5f);
    db.setItem(T("d"), 2.5);
    db.setItem(T("l"), -7L);
    EXPECT_STREQ(db.getItemPoint(T("f")), "2.500000");
    EXPECT_STREQ(db.getItemPoint(T("d")), "2.500000");
    EXPECT_STREQ(db.getItemPoint(T("l")), "-7");
    double d = 0;
    long l = 0;
    db.getItem(T("d"), &d, 0.0);
    db.getItem(T("l"), &l, 0L);
    EXPECT_EQ(d, 2.5);
    EXPECT_EQ(l, -7L);
}

TEST(CzbFileDB, OrderPositionsAndFamilies) {
    CzbFileDB db;
    db.setItem(T("a"), 1);
    db.setItem(T("b"), 2);
    db.setItem(T("a"), 3);
    db.setItem(T("x"), T("1"));
    EXPECT_EQ(dump(db), "a=3|b=2|x=1|");
    EXPECT_EQ(db.deleteItem(3), -1);
    EXPECT_EQ(db.deleteItem(-1), -1);
    EXPECT_EQ(db.deleteItem(0), 0);
    EXPECT_EQ(db.deleteItem(T("x")), 0);
    EXPECT_EQ(db.deleteItem(T("x")), 0);
    db.setItem(T(""), T("empty key"));
    EXPECT_EQ(dump(db), "b=2|=empty key|");
    db.clear();

    // A family is the items whose keys start with name + "_#"; a null name is the empty name.
    db.setItem(2, T("a"), T("two"));
    db.setItem(T("a_#5"), 5);
    db.setItem(-1, T("a"), 1.5);
    db.setItem(7, T("a"), 0.25f);
    db.setItem(3, nullptr, T("unnamed"));
    EXPECT_EQ(dump(db), "a_#2=two|a_#5=5|a_#-1=1.500000|a_#7=0.250000|_#3=unnamed|");
    EXPECT_EQ(db.getItemNum(T("a")), 4);
    EXPECT_EQ(db.getItemNum(nullptr), 1);
    EXPECT_STREQ(db.getItemPoint(7, T("a")), "0.250000");
    EXPECT_EQ(db.getItemPoint(6, T("a")), nullptr);
    char text[16];
    db.getItem(0, T("a"), text, T("def"));
    EXPECT_STREQ(text, "def");
    int v = 0;
    db.getItem(5, T("a"), &v, 0);
    double d = 0, d8 = 0;
    db.getItem(-1, T("a"), &d, 9.0);
    db.getItem(8, T("a"), &d8, 9.0);
    EXPECT_TRUE(v == 5 && d == 1.5 && d8 == 9.0);
    db.setItemClear(nullptr);

    db.setItem(T("speed_#x"), T("1"));
    db.setItem(T("speed_#"), T("1"));
    db.setItem(T("speedy_#0"), T("1"));
    EXPECT_EQ(db.getItemNum(T("speed")), 2);
    for (int i = 0; i < 3; ++i) {
        db.setItem(i, T("g"), i);
    }
    db.deleteItem(T("g_#1"));
    EXPECT_EQ(db.getItemNum(T("g")), 2);
    float f = 0;
    db.getItem(1, T("g"), &f, -1.0f);
    EXPECT_EQ(f, -1.0f);
    db.setItemClear(T("a"));
    EXPECT_EQ(dump(db), "speed_#x=1|speed_#=1|speedy_#0=1|g_#0=0|g_#2=2|");
}

TEST(CzbFileDB, ItemPointIsTheItemsOwnAndCopiesAreIndependent) {
    CzbFileDB db;
    db.setItem(T("k"), T("abc"));
    CzbFileDB copy(db);
    db.getItemPoint(T("k"))[0] = 'X';
    EXPECT_STREQ(copy.getItemPoint(T("k")), "abc");
    CzbStringT out;
    db.getItem(T("k"), &out, T("d"));
    db.getItemPoint(T("k"))[1] = 'Y';
    EXPECT_STREQ(out, "Xbc");

    db.setItem(T("second"), 2);
    copy = db;
    const CzbFileDB& same = copy;
    copy = same;
    copy.setItem(T("k"), T("changed"));
    EXPECT_EQ(dump(copy), "k=changed|second=2|");
    EXPECT_EQ(dump(db), "k=XYc|second=2|");
}

TEST(CzbFileDB, LockIsReentrantAndSerialisesHosts) {
    CzbFileDB db;
    db.setWriteEnter();
    db.setWriteEnter();
    db.setItem(T("n"), 0);
    db.setWriteRelease();
    db.setWriteRelease();
    auto work = [&db] {
        for (int i = 0; i < 500; ++i) {
            db.setWriteEnter();
            int n = 0;
            db.getItem(T("n"), &n, 0);
            db.setItem(T("n"), n + 1);
            db.setWriteRelease();
        }
    };
    std::thread a(work), b(work);
    a.join();
    b.join();
    int n = 0;
    db.getItem(T("n"), &n, 0);
    EXPECT_EQ(n, 1000);
}

TEST(CzbFileDB, ConstructionLeavesAFileNamedAaaAlone) {
    TempFolder folder;
    std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    writeBytes("aaa.txt", "host=`keeps this`\n");
    {
        CzbFileDB db;
        EXPECT_TRUE(db.m_items.empty());
        CzbFileDB copy(db);
    }
    EXPECT_EQ(readBytes("aaa.txt"), "host=`keeps this`\n");
    std::filesystem::remove("aaa.txt");
    { CzbFileDB db; }
    EXPECT_FALSE(std::filesystem::exists("aaa.txt"));
    std::filesystem::current_path(previous);
}
