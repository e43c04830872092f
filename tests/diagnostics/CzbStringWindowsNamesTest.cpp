// GetFullPathName as a Windows host calls it: <windows.h> makes the name a macro for
// GetFullPathNameA (or GetFullPathNameW under UNICODE), whether it comes before or after the
// library's header. The macro is defined here as <windows.h> defines it.
#define GetFullPathName GetFullPathNameA
#include "zbBase/diagnostics/CzbString.h"

#include <gtest/gtest.h>

#if !defined(GetFullPathName)
#error "the header must leave the host's macro as it found it"
#endif

using zbBase::CzbString;

TEST(CzbStringWindowsNames, GetFullPathNameUnderEachSpelling) {
    char base[] = "dir/sub/a.cfg";
    char ansi[64] = {};
    EXPECT_TRUE(CzbString::GetFullPathName(ansi, sizeof ansi, base, "./b.dat")); // ...A
    EXPECT_STREQ(ansi, "dir/sub/b.dat");
#undef GetFullPathName
#define GetFullPathName GetFullPathNameW
    char wide[64] = {};
    EXPECT_TRUE(CzbString::GetFullPathName(wide, sizeof wide, base, "../b.dat")); // ...W
    EXPECT_STREQ(wide, "dir/sub/../b.dat");
#undef GetFullPathName
    char plain[64] = {};
    EXPECT_TRUE(CzbString::GetFullPathName(plain, sizeof plain, base, "/b.dat"));
    EXPECT_STREQ(plain, "dir/sub/b.dat");
    char small[8] = {};
    EXPECT_FALSE(CzbString::GetFullPathNameA(small, sizeof small, base, "b.dat"));
    EXPECT_FALSE(CzbString::GetFullPathNameW(small, sizeof small, base, "b.dat"));
}
