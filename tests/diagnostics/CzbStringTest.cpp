#include "zbBase/diagnostics/CzbString.h"

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

using zbBase::CzbString;
using zbtest::Text;

TEST(CzbString, FindAndReverseFind) {
    // Find, ReverseFind of sub's first character ('\0' for the empty text); Find, StringFind
    // (strstr) of sub.
    struct Case {
        const char *text, *sub;
        int find, reverseFind, at, stringFind;
    };
    for (const Case& c : {Case{"banana", "nan", 2, 4, 2, 2}, Case{"banana", "nab", 2, 4, -1, -1},
                          Case{"ban", "bana", 0, 0, -1, -1}, Case{"abc", "", 3, 3, -1, 0},
                          Case{"", "a", -1, -1, -1, -1}, Case{"a/b/c", "/b", 1, 3, 1, 1},
                          Case{"abc", "x", -1, -1, -1, -1}}) {
        SCOPED_TRACE(std::string(c.text) + " " + c.sub);
        EXPECT_EQ(CzbString::Find(c.text, c.sub[0]), c.find);
        EXPECT_EQ(CzbString::ReverseFind(c.text, c.sub[0]), c.reverseFind);
        EXPECT_EQ(CzbString::Find(c.text, Text(c.sub)), c.at);
        EXPECT_EQ(CzbString::StringFind(c.text, c.sub), c.stringFind);
    }
}

TEST(CzbString, LeftRightMidCopyOrRefuse) {
    char dst[16] = {};
    EXPECT_TRUE(CzbString::Left("abcd", dst, 16, 2));
    EXPECT_STREQ(dst, "ab");
    EXPECT_TRUE(CzbString::Right("abcd", dst, 16, 2));
    EXPECT_STREQ(dst, "cd");
    // Refusals leave dst untouched: count beyond the text, buffer too small, negative counts.
    for (int size : {16, 2}) {
        for (int count : {size == 16 ? 4 : 2, -1}) {
            EXPECT_FALSE(CzbString::Left("abcd", dst, size, count));
            EXPECT_FALSE(CzbString::Right("abcd", dst, size, count));
        }
    }
    for (auto c :
         {std::make_tuple(3, 1, 3), std::make_tuple(16, 2, -2), std::make_tuple(16, 2, 4),
          std::make_tuple(4, 2, -1), std::make_tuple(16, 7, 1), std::make_tuple(16, -1, 1)}) {
        EXPECT_FALSE(CzbString::Mid("abcdef", dst, std::get<0>(c), std::get<1>(c), std::get<2>(c)));
    }
    EXPECT_STREQ(dst, "cd");
    EXPECT_TRUE(CzbString::Mid("abcdef", dst, 16, 2, 3));
    EXPECT_STREQ(dst, "cde");
    EXPECT_TRUE(CzbString::Mid("abcdef", dst, 16, 2, -1));
    EXPECT_STREQ(dst, "cdef");

    // Count 0 copies nothing; only the last byte becomes the terminator.
    memset(dst, 'z', sizeof dst);
    EXPECT_TRUE(CzbString::Left("abcd", dst, 8, 0));
    EXPECT_EQ(std::string(dst, 9), std::string("zzzzzzz\0z", 9));
}

TEST(CzbString, PathSplitting) {
    char path1[] = "a.b.txt";
    EXPECT_EQ(CzbString::GetExt(path1), path1 + 4);
    EXPECT_STREQ(CzbString::GetExt("a."), "");
    EXPECT_EQ(CzbString::GetExt(".cfg"), nullptr);
    EXPECT_EQ(CzbString::GetExt("abc"), nullptr);

    char dst[16];
    EXPECT_TRUE(CzbString::GetExt(dst, 16, ".cfg"));
    EXPECT_STREQ(dst, "cfg");
    memset(dst, 'q', sizeof dst);
    EXPECT_FALSE(CzbString::GetExt(dst, 16, "abc"));
    EXPECT_EQ(dst[0], 'q');
    // A result longer than the buffer is cut and terminated inside it.
    EXPECT_TRUE(CzbString::GetExt(dst, 4, "a.longext"));
    EXPECT_EQ(std::string(dst, 5), std::string("lon\0q", 5));

    for (auto c : {std::make_pair("w\\x\\y.txt", "y.txt"), std::make_pair("a/b.txt", "b.txt"),
                   std::make_pair("a\\b/c\\d", "c\\d"), std::make_pair("b.txt", "")}) {
        CzbString::GetName(dst, 16, c.first);
        EXPECT_STREQ(dst, c.second) << c.first;
    }
    for (auto c : {std::make_pair("a/b/c.txt", "a/b"), std::make_pair("/c.txt", ""),
                   std::make_pair("c.txt", "")}) {
        CzbString::GetPath(dst, 16, c.first);
        EXPECT_STREQ(dst, c.second) << c.first;
    }
    memset(dst, 'q', sizeof dst);
    CzbString::GetPath(dst, 5, "abcdefgh/x");
    EXPECT_EQ(std::string(dst, 6), std::string("abcd\0q", 6));

    char full[64];
    struct Case {
        const char *base, *relative, *result;
    };
    for (const Case& c : {Case{"dir/sub/a.cfg", "./b.dat", "dir/sub/b.dat"},
                          Case{"dir/sub/a.cfg", "/b.dat", "dir/sub/b.dat"},
                          Case{"dir/sub/a.cfg", "b.dat", "dir/sub/b.dat"},
                          Case{"dir/sub/a.cfg", "../b.dat", "dir/sub/../b.dat"},
                          Case{"a.cfg", "b.dat", "b.dat"}, Case{"dir\\a.cfg", "b.dat", "b.dat"}}) {
        EXPECT_TRUE(CzbString::GetFullPathName(full, 64, c.base, c.relative));
        EXPECT_STREQ(full, c.result) << c.base << " " << c.relative;
    }
    // Folder part fits, the rest does not: false, the folder part stays.
    EXPECT_FALSE(CzbString::GetFullPathName(full, 10, "dir/sub/a.cfg", "b.dat"));
    EXPECT_STREQ(full, "dir/sub/");
    std::memset(full, 'x', sizeof full);
    EXPECT_FALSE(CzbString::GetFullPathName(full, 8, "dir/sub/a.cfg", "b.dat"));
    EXPECT_EQ(std::string(full, 9), "dir/sub/x");
    EXPECT_FALSE(CzbString::GetFullPathName(full, 5, "dir/sub/a.cfg", "b.dat"));
    EXPECT_STREQ(full, "");

    // A size of 0 or below leaves the target untouched.
    memset(dst, 'q', sizeof dst);
    CzbString::GetName(dst, 0, "a/b.txt");
    CzbString::GetPath(dst, -1, "a/b.txt");
    EXPECT_TRUE(CzbString::GetExt(dst, 0, "a.txt"));
    EXPECT_FALSE(CzbString::GetFullPathName(dst, -1, "dir/a.cfg", "b.dat"));
    EXPECT_EQ(std::string(dst, sizeof dst), std::string(sizeof dst, 'q'));
}

TEST(CzbString, NumbersCaseAndReplace) {
    for (const char* yes : {"", "0", "123", "-12.5", "-", ".", "-.", "1."}) {
        EXPECT_TRUE(CzbString::IsNumber(Text(yes))) << yes;
    }
    for (const char* no : {"+1", "1e5", "1-", "1.2.3", " 1", "a"}) {
        EXPECT_FALSE(CzbString::IsNumber(Text(no))) << no;
    }
    char word[] = "MiXeD 1.";
    CzbString::MakeLower(word);
    EXPECT_STREQ(word, "mixed 1.");
    CzbString::MakeUpper(word);
    EXPECT_STREQ(word, "MIXED 1.");

    struct Case {
        const char *text, *from, *to, *result;
    };
    char text[64];
    for (const Case& c : {Case{"aXbXc", "X", "YY", "aYYbYYc"}, Case{"aaa", "aa", "b", "ba"},
                          Case{"abc", "x", "y", "abc"}, Case{"abc", "", "y", "abc"}}) {
        strcpy(text, c.text);
        CzbString::StringReplace(text, Text(c.from), Text(c.to));
        EXPECT_STREQ(text, c.result) << c.text;
    }
    CzbString::StringReplace(text, 'b', 'B');
    EXPECT_STREQ(text, "aBc");
    CzbString::StringReplace(text, '\0', 'x');
    EXPECT_EQ(std::string(text, 4), std::string("aBc\0", 4));

    // Growth beyond the 511 characters of the scratch buffer stops replacing and is cut.
    std::vector<char> big(2048, '\0');
    memset(big.data(), 'x', 300);
    CzbString::StringReplace(big.data(), Text("x"), Text("yy"));
    EXPECT_EQ(std::string(big.data()), std::string(255 * 2, 'y') + "x");
}

TEST(CzbString, WideConversions) {
    std::wstring wide;
    wide.push_back(static_cast<wchar_t>(0x0141));
    wide.push_back(L'b');
    EXPECT_EQ(CzbString::ToString(wide), "Ab");

    std::wstring widened = CzbString::ToWString("\xE9z");
    ASSERT_EQ(widened.size(), 2u);
    // A byte above 127 widens as a signed char does.
    unsigned long element = static_cast<unsigned long>(widened[0]);
    unsigned long upper = static_cast<unsigned long>(static_cast<wchar_t>(-1)) & ~0xFFul;
    EXPECT_EQ(element, upper | 0xE9ul);
    EXPECT_EQ(widened[1], L'z');
    EXPECT_TRUE(CzbString::ToWString("").empty());
    EXPECT_TRUE(CzbString::ToWString(nullptr).empty());

    wchar_t* first = charToWchar(Text("abc"));
    EXPECT_EQ(first, m_pWstrTemp);
    EXPECT_STREQ(first, L"abc");
    EXPECT_EQ(charToWchar(nullptr), nullptr);
    EXPECT_EQ(m_pWstrTemp, first);
    EXPECT_STREQ(charToWchar(Text("")), L"");
#if !defined(_WIN32)
    // Bytes that the C locale cannot convert give the empty text.
    EXPECT_STREQ(charToWchar(Text("caf\xE9")), L"");
#endif
    {
        CzbString routines;
        CzbString copy(routines);
        copy = routines;
    }
    EXPECT_EQ(m_pWstrTemp, nullptr);
}
