#include "zbBase/diagnostics/CzbString.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <cstring>

using diagtest::Text;
using zbBase::CzbString;

TEST(CzbString, FindAndReverseFind) {
    EXPECT_EQ(CzbString::Find("abc", 'c'), 2);
    EXPECT_EQ(CzbString::Find("abc", 'x'), -1);
    EXPECT_EQ(CzbString::Find("abc", '\0'), 3);
    EXPECT_EQ(CzbString::Find("", 'a'), -1);
    EXPECT_EQ(CzbString::ReverseFind("a/b/c", '/'), 3);
    EXPECT_EQ(CzbString::ReverseFind("abc", '\0'), 3);
    EXPECT_EQ(CzbString::ReverseFind("abc", 'x'), -1);

    EXPECT_EQ(CzbString::Find("banana", Text("nan")), 2);
    EXPECT_EQ(CzbString::Find("banana", Text("nab")), -1);
    EXPECT_EQ(CzbString::Find("ban", Text("bana")), -1);
    EXPECT_EQ(CzbString::Find("abc", Text("")), -1);
    EXPECT_EQ(CzbString::Find("", Text("a")), -1);

    EXPECT_EQ(CzbString::StringFind("xyabc", "ab"), 2);
    EXPECT_EQ(CzbString::StringFind("abc", "ab"), 0);
    EXPECT_EQ(CzbString::StringFind("abc", "x"), -1);
}

TEST(CzbString, LeftRightMidCopyOrRefuse) {
    char dst[16];
    memset(dst, 0, sizeof dst);
    EXPECT_TRUE(CzbString::Left("abcd", dst, 16, 2));
    EXPECT_STREQ(dst, "ab");
    EXPECT_FALSE(CzbString::Left("abcd", dst, 16, 4));
    EXPECT_FALSE(CzbString::Left("abcd", dst, 2, 2));
    EXPECT_FALSE(CzbString::Left("abcd", dst, 16, -1));

    memset(dst, 0, sizeof dst);
    EXPECT_TRUE(CzbString::Right("abcd", dst, 16, 2));
    EXPECT_STREQ(dst, "cd");
    EXPECT_FALSE(CzbString::Right("abcd", dst, 16, 4));
    EXPECT_FALSE(CzbString::Right("abcd", dst, 16, -1));
    EXPECT_FALSE(CzbString::Right("abcd", dst, 2, 2));
    EXPECT_FALSE(CzbString::Mid("abcdef", dst, 3, 1, 3));
    EXPECT_FALSE(CzbString::Mid("abcdef", dst, 16, 2, -2));
    EXPECT_STREQ(dst, "cd");

    memset(dst, 0, sizeof dst);
    EXPECT_TRUE(CzbString::Mid("abcdef", dst, 16, 2, 3));
    EXPECT_STREQ(dst, "cde");
    EXPECT_FALSE(CzbString::Mid("abcdef", dst, 16, 2, 4));
    memset(dst, 0, sizeof dst);
    EXPECT_TRUE(CzbString::Mid("abcdef", dst, 16, 2, -1));
    EXPECT_STREQ(dst, "cdef");
    EXPECT_FALSE(CzbString::Mid("abcdef", dst, 4, 2, -1));
    EXPECT_FALSE(CzbString::Mid("abcdef", dst, 16, 7, 1));
    EXPECT_FALSE(CzbString::Mid("abcdef", dst, 16, -1, 1));

    // Count 0 copies nothing; only the last byte becomes the terminator.
    memset(dst, 'z', sizeof dst);
    EXPECT_TRUE(CzbString::Left("abcd", dst, 8, 0));
    EXPECT_EQ(std::string(dst, 8), std::string("zzzzzzz\0", 8));
    EXPECT_EQ(dst[8], 'z');

    // A refusal leaves dst untouched.
    memset(dst, 'q', sizeof dst);
    EXPECT_FALSE(CzbString::Right("ab", dst, 16, 5));
    EXPECT_EQ(dst[15], 'q');
}

TEST(CzbString, PathSplitting) {
    char path1[] = "a.b.txt";
    EXPECT_STREQ(CzbString::GetExt(path1), "txt");
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
    memset(dst, 'q', sizeof dst);
    EXPECT_TRUE(CzbString::GetExt(dst, 4, "a.longext"));
    EXPECT_STREQ(dst, "lon");
    EXPECT_EQ(dst[4], 'q');

    CzbString::GetName(dst, 16, "w\\x\\y.txt");
    EXPECT_STREQ(dst, "y.txt");
    CzbString::GetName(dst, 16, "a/b.txt");
    EXPECT_STREQ(dst, "b.txt");
    CzbString::GetName(dst, 16, "a\\b/c\\d");
    EXPECT_STREQ(dst, "c\\d");
    CzbString::GetName(dst, 16, "b.txt");
    EXPECT_STREQ(dst, "");

    CzbString::GetPath(dst, 16, "a/b/c.txt");
    EXPECT_STREQ(dst, "a/b");
    CzbString::GetPath(dst, 16, "/c.txt");
    EXPECT_STREQ(dst, "");
    CzbString::GetPath(dst, 16, "c.txt");
    EXPECT_STREQ(dst, "");
    memset(dst, 'q', sizeof dst);
    CzbString::GetPath(dst, 5, "abcdefgh/x");
    EXPECT_STREQ(dst, "abcd");
    EXPECT_EQ(dst[5], 'q');

    char full[64];
    for (const char* relative : {"./b.dat", "/b.dat", "b.dat"}) {
        EXPECT_TRUE(CzbString::GetFullPathName(full, 64, "dir/sub/a.cfg", relative));
        EXPECT_STREQ(full, "dir/sub/b.dat");
    }
    EXPECT_TRUE(CzbString::GetFullPathName(full, 64, "dir/sub/a.cfg", "../b.dat"));
    EXPECT_STREQ(full, "dir/sub/../b.dat");
    EXPECT_TRUE(CzbString::GetFullPathName(full, 64, "a.cfg", "b.dat"));
    EXPECT_STREQ(full, "b.dat");
    EXPECT_TRUE(CzbString::GetFullPathName(full, 64, "dir\\a.cfg", "b.dat"));
    EXPECT_STREQ(full, "b.dat");
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

    char text[64] = "aXbXc";
    CzbString::StringReplace(text, Text("X"), Text("YY"));
    EXPECT_STREQ(text, "aYYbYYc");
    strcpy(text, "aaa");
    CzbString::StringReplace(text, Text("aa"), Text("b"));
    EXPECT_STREQ(text, "ba");
    strcpy(text, "abc");
    CzbString::StringReplace(text, Text("x"), Text("y"));
    EXPECT_STREQ(text, "abc");
    CzbString::StringReplace(text, Text(""), Text("y"));
    EXPECT_STREQ(text, "abc");
    CzbString::StringReplace(text, 'b', 'B');
    EXPECT_STREQ(text, "aBc");
    CzbString::StringReplace(text, '\0', 'x');
    EXPECT_STREQ(text, "aBc");
    EXPECT_EQ(text[3], '\0');

    // Growth beyond the 511 characters of the scratch buffer stops replacing and is cut.
    std::vector<char> big(2048, '\0');
    std::string source(300, 'x');
    memcpy(big.data(), source.c_str(), source.size() + 1);
    CzbString::StringReplace(big.data(), Text("x"), Text("yy"));
    std::string result(big.data());
    EXPECT_EQ(result.size(), 511u);
    EXPECT_EQ(result, std::string(255 * 2, 'y') + "x");
}

TEST(CzbString, WideConversions) {
    std::wstring wide;
    wide.push_back(static_cast<wchar_t>(0x0141));
    wide.push_back(L'b');
    EXPECT_EQ(CzbString::ToString(wide), "Ab");

    std::wstring widened = CzbString::ToWString("\xE9z");
    ASSERT_EQ(widened.size(), 2u);
    unsigned long element = static_cast<unsigned long>(widened[0]);
    unsigned long upper = static_cast<unsigned long>(static_cast<wchar_t>(-1)) & ~0xFFul;
    EXPECT_EQ(element & 0xFFul, 0xE9ul);
    EXPECT_EQ(element & upper, upper);
    EXPECT_EQ(widened[1], L'z');
    EXPECT_TRUE(CzbString::ToWString("").empty());
    EXPECT_TRUE(CzbString::ToWString(nullptr).empty());

    wchar_t* first = charToWchar(Text("abc"));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, m_pWstrTemp);
    EXPECT_STREQ(first, L"abc");
    EXPECT_EQ(charToWchar(nullptr), nullptr);
    EXPECT_EQ(m_pWstrTemp, first);
    EXPECT_STREQ(first, L"abc");
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
