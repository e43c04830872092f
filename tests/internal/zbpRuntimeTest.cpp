// The runtime functions of the platform layer, each as the Windows runtime behaves (bad
// arguments: tests/fault/HostInputFaultTest.cpp).
#include <zbBase/platform/detail/zbpClock.h>
#include <zbBase/platform/detail/zbpFileIO.h>
#include <zbBase/platform/detail/zbpNumber.h>
#include <zbBase/platform/detail/zbpPath.h>
#include <zbBase/platform/detail/zbpText.h>

#include "support/zbTestFiles.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

TEST(zbpNumber, TextToNumberAsTheRuntimeReadsIt) {
    struct {
        const char* text;
        long value;
    } cases[] = {
        {" \t\n\v\f\r42", 42},
        {"+7 apples", 7},
        {"-0012", -12},
        {"2147483647", INT_MAX},
        {"2147483648", INT_MAX},
        {"99999999999999999999999", INT_MAX},
        {"-2147483648", INT_MIN},
        {"-2147483649", INT_MIN},
        {"- 5", 0},
        {"", 0},
        {"x1", 0},
        {"12.9e3", 12},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(zbp::atoi(c.text), c.value);
        EXPECT_EQ(zbp::atol(c.text), c.value);
    }
    EXPECT_EQ(zbp::atoi(nullptr), 0);
    EXPECT_EQ(zbp::atol(nullptr), 0);
}

TEST(zbpText, CaseOfAsciiLettersOnly) {
    char text[] = "aZ09\xe9_q";
    EXPECT_EQ(zbp::_strupr(text), text);
    EXPECT_STREQ(text, "AZ09\xe9_Q");
    EXPECT_EQ(zbp::_strlwr(text), text);
    EXPECT_STREQ(text, "az09\xe9_q");
    EXPECT_EQ(zbp::_strupr(nullptr), nullptr);
    EXPECT_EQ(zbp::_strlwr(nullptr), nullptr);
}

TEST(zbpClock, CalendarTime) {
    __time64_t stored = -1;
    const __time64_t now = zbp::_time64(&stored);
    EXPECT_EQ(stored, now);
    EXPECT_GT(now, 1600000000); // after September 2020
    ASSERT_NE(zbp::_localtime64(&now), nullptr);
    EXPECT_GE(zbp::_localtime64(&now)->tm_year, 120);
#if !defined(_WIN32)
    // Before 1970, a year beyond int and no argument: null, as the runtime answers.
    const __time64_t before = -1, farAhead = 100000000000000000;
    EXPECT_TRUE(!zbp::_localtime64(&before) && !zbp::_localtime64(&farAhead) &&
                !zbp::_localtime64(nullptr));
#endif
}

TEST(zbpPath, CurrentFolderAndProgramPath) {
    const std::string cwd = zbp::toLibraryPath(fs::current_path().string());
    // Too small a buffer: the size needed, terminator included, and nothing written.
    std::string small(cwd.size(), 'x');
    EXPECT_EQ(zbp::GetCurrentDirectoryA(0, nullptr), cwd.size() + 1);
    EXPECT_EQ(zbp::GetCurrentDirectoryA(static_cast<DWORD>(small.size()), &small[0]),
              cwd.size() + 1);
    EXPECT_EQ(small, std::string(cwd.size(), 'x'));
    char buffer[4096];
    EXPECT_EQ(zbp::GetCurrentDirectoryA(sizeof buffer, buffer), cwd.size());
    EXPECT_EQ(std::string(buffer), cwd);
    EXPECT_GT(zbp::GetModuleFileNameA(nullptr, buffer, sizeof buffer), 0u);
    const std::string whole = buffer;
    EXPECT_NE(whole.find("zbBase_tests_internal"), std::string::npos);
    EXPECT_EQ(whole.find('/'), std::string::npos);
    EXPECT_EQ(zbp::toNativePath(nullptr), "");
#if !defined(_WIN32)
    char cut[8];
    EXPECT_EQ(zbp::GetModuleFileNameA(nullptr, cut, sizeof cut), 7u);
    EXPECT_EQ(std::string(cut), whole.substr(0, 7));
    EXPECT_EQ(zbp::GetModuleFileNameA(nullptr, nullptr, 10) +
                  zbp::GetModuleFileNameA(nullptr, cut, 0),
              0u);
    // A current folder that was removed has no name: 0.
    zbtest::TempFolder folder;
    fs::create_directory(folder.path() / "gone");
    const fs::path saved = fs::current_path();
    fs::current_path(folder.path() / "gone");
    fs::remove(folder.path() / "gone");
    const DWORD n = zbp::GetCurrentDirectoryA(sizeof buffer, buffer);
    fs::current_path(saved);
    EXPECT_EQ(n, 0u);
#endif
}

TEST(zbpFileIO, StreamsAndDescriptors) {
    zbtest::TempFolder folder;
    const std::string name = folder.file("data.txt");
    zbtest::writeBytes(name, "abc");
    FILE* file = zbp::fopen(name.c_str(), "rt"); // "t" is taken on every platform
    ASSERT_NE(file, nullptr);
    char bytes[16] = {};
    EXPECT_EQ(fread(bytes, 1, sizeof bytes, file), 3u);
    fclose(file);
    FILE* stream = stdin; // overwritten by every call below
    EXPECT_EQ(zbp::fopen_s(&stream, folder.file("missing").c_str(), "rb"), ENOENT);
    EXPECT_EQ(stream, nullptr);
    ASSERT_EQ(zbp::fopen_s(&stream, name.c_str(), "rb"), 0);
    EXPECT_EQ(zbp::_read(zbp::_fileno(stream), nullptr, 4), -1);
    EXPECT_EQ(zbp::_read(zbp::_fileno(stream), bytes + 3, sizeof bytes - 3), 3);
    EXPECT_EQ(zbp::_read(zbp::_fileno(stream), bytes, sizeof bytes), 0);
    EXPECT_EQ(std::string(bytes, 6), "abcabc");
    fclose(stream);
#if defined(ZBP_OWN_FREAD_S)
    // A read that cannot fit the buffer reads nothing, not even the part that would fit.
    ASSERT_EQ(zbp::fopen_s(&stream, name.c_str(), "rb"), 0);
    char two[2] = {'-', '-'};
    errno = 0;
    EXPECT_EQ(zbp::fread_s(two, sizeof two, 1, 3, stream), 0u);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(zbp::fread_s(nullptr, 8, 1, 3, stream), 0u);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(zbp::fread_s(two, sizeof two, 0, 3, stream) +
                  zbp::fread_s(two, sizeof two, 1, 0, stream) +
                  zbp::fread_s(two, sizeof two, 1, 1, nullptr),
              0u);
    EXPECT_EQ(two[0], '-');
    // Whole elements only: two of one byte fit, then the rest.
    EXPECT_EQ(zbp::fread_s(two, sizeof two, 1, 2, stream), 2u);
    EXPECT_EQ(std::string(two, 2), "ab");
    EXPECT_EQ(zbp::fread_s(two, sizeof two, 1, 2, stream), 1u);
    EXPECT_EQ(two[0], 'c');
    fclose(stream);
#endif
}

TEST(zbpFileIO, LengthsOfSixtyFourBits) {
    zbtest::TempFolder folder;
    const std::string name = folder.file("sparse.bin");
    zbtest::writeBytes(name, "x");
    for (long long length : {1ll, (1ll << 31) - 1, 1ll << 31, (1ll << 32) + 5}) {
        std::error_code error;
        fs::resize_file(name, static_cast<std::uintmax_t>(length), error);
        if (error) {
            GTEST_SKIP() << "the file system here holds no sparse file of " << length << " bytes";
        }
        FILE* file = zbp::fopen(name.c_str(), "rb");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(zbp::_filelengthi64(zbp::_fileno(file)), length);
        fclose(file);
    }
}
