// The string routines when memory runs out: charToWchar gives null, as for a null text, and
// holds no buffer.
#include <zbBase/diagnostics/CzbString.h>

#include "support/zbMemoryLimit.h"

#include <gtest/gtest.h>

#include <cwchar>

#if !defined(_WIN32)

TEST(StringFault, WideCopyWithoutMemory) {
    ZBTEST_SKIP_WHEN_SANITIZED();
    int rc = zbtest::withAddressSpace(zbtest::addressSpace() + (32 << 20), [] {
        char text[] = "wide";
        if (charToWchar(text) == nullptr) {
            return 1;
        }
        // Longer than the text before, so that the block that is given back does not fit it.
        char longer[] = "a wide text longer than the one before it";
        wchar_t* lost = nullptr;
        {
            zbtest::MemoryHog hog;
            lost = charToWchar(longer);
        }
        if (lost != nullptr || m_pWstrTemp != nullptr) {
            return 2;
        }
        wchar_t* again = charToWchar(text);
        return again != nullptr && std::wcscmp(again, L"wide") == 0 ? 0 : 3;
    });
    EXPECT_EQ(rc, 0);
}

#endif
