// The message text of CzbLogger::setLog, formatted by hand for the usual conversions: the
// bytes must be the runtime's, for every value and at every cut.
#include <zbBase/diagnostics/CzbLogger.h>
#include <zbBase/diagnostics/detail/CzbLoggerMessage.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using zbBase::detail::LogMessageFormatter;

namespace {

// The formatter's text in `bytes` bytes; "<runtime>" where it leaves the format to the runtime.
std::string ours(size_t bytes, const char* format, ...) {
    std::vector<char> out(bytes + 1, '#');
    size_t length = 0;
    va_list args;
    va_start(args, format);
    bool done = LogMessageFormatter::format(out.data(), bytes, format, args, &length);
    va_end(args);
    if (!done) {
        return "<runtime>";
    }
    EXPECT_EQ(out[bytes], '#') << format; // nothing written past the text
    EXPECT_EQ(length, strlen(out.data())) << format;
    return out.data();
}

std::string runtime(size_t bytes, const char* format, ...) {
    std::vector<char> out(bytes);
    va_list args;
    va_start(args, format);
    vsnprintf(out.data(), bytes, format, args);
    va_end(args);
    return out.data();
}

#define EXPECT_AS_RUNTIME(bytes, ...)                                                              \
    EXPECT_EQ(ours(bytes, __VA_ARGS__), runtime(bytes, __VA_ARGS__)) << #__VA_ARGS__

} // namespace

TEST(CzbLoggerMessage, WholeNumbersTextsAndCharactersAsTheRuntimeWritesThem) {
    const char* flags[] = {"", "-", "0", "-0", "0-", "00"};
    const char* widths[] = {"", "1", "2", "5", "12", "25"};
    const char* precisions[] = {"", ".", ".0", ".1", ".3", ".12", ".20"};
    const long long numbers[] = {0,       1,        -1,        7,           -7,        42,
                                 99,      100,      -100,      12345,       -98765,    INT_MAX,
                                 INT_MIN, LONG_MAX, LONG_MIN,  LLONG_MAX,   LLONG_MIN, 65535,
                                 70000,   -70000,   123456789, 0xdeadbeefLL};
    const char* texts[] = {"", "a", "hello world", "a text of exactly thirty-two ch.",
                           "a text of more than thirty-two characters, cut by precisions"};
    int checked = 0;
    for (const char* flag : flags) {
        for (const char* width : widths) {
            for (const char* precision : precisions) {
                const std::string head = std::string("<%") + flag + width + precision;
                for (const char* conversion : {"d", "i", "u", "x", "X"}) {
                    for (long long n : numbers) {
                        std::string f = head + conversion + ">";
                        EXPECT_AS_RUNTIME(64, f.c_str(), static_cast<int>(n));
                        f = head + "h" + conversion + ">";
                        EXPECT_AS_RUNTIME(64, f.c_str(), static_cast<int>(n));
                        f = head + "l" + conversion + ">";
                        EXPECT_AS_RUNTIME(64, f.c_str(), static_cast<long>(n));
                        f = head + "ll" + conversion + ">";
                        EXPECT_AS_RUNTIME(64, f.c_str(), n);
                        checked += 4;
                    }
                }
                if (std::strchr(flag, '0') == nullptr) {
                    const std::string s = head + "s>";
                    for (const char* text : texts) {
                        EXPECT_AS_RUNTIME(64, s.c_str(), text);
                    }
                    if (precision[0] == '\0') {
                        const std::string c = head + "c>";
                        for (char ch : {'a', '%', ' ', '\x7f', '\xe9'}) {
                            EXPECT_AS_RUNTIME(64, c.c_str(), ch);
                        }
                    }
                }
            }
        }
    }
    EXPECT_GT(checked, 20000);
    EXPECT_EQ(ours(64, "%hu %hx %hd", 70000, -1, 40000), "4464 ffff -25536");
    EXPECT_EQ(ours(64, "100%% of %s, %-4c|", "it", 'x'), "100% of it, x   |");
    EXPECT_EQ(ours(64, "no conversion"), "no conversion");
    EXPECT_EQ(ours(64, ""), "");
}

TEST(CzbLoggerMessage, CutAtEverySizeLikeTheRuntime) {
    const std::string long_text(700, 'y');
    for (size_t bytes = 1; bytes <= 80; ++bytes) {
        EXPECT_AS_RUNTIME(bytes, "value %d of %s", -123456, "a benchmark message");
        EXPECT_AS_RUNTIME(bytes, "%08x|%-10s|%5c|%%|%.3d", 0xbeefu, "ab", 'z', 7);
        EXPECT_AS_RUNTIME(bytes, "%30d", 5);
        EXPECT_AS_RUNTIME(bytes, "%-30s.", "left");
    }
    for (size_t bytes : {1, 2, 31, 32, 33, 34, 511, 512, 513, 700}) {
        EXPECT_AS_RUNTIME(bytes, "%s", long_text.c_str());
        EXPECT_AS_RUNTIME(bytes, "%s%s", "head ", long_text.c_str());
        EXPECT_AS_RUNTIME(bytes, "%.600s|", long_text.c_str());
        EXPECT_AS_RUNTIME(bytes, "%9999d|", 1);
    }

    // Random formats of literal text, numbers and texts of every shape.
    std::mt19937 random(12345);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    auto directive = [&](bool zeros) {
        std::string s = "%";
        const char* flags[] = {"", "-", "0", "0-"};
        s += flags[pick(zeros ? 4 : 2)];
        if (pick(2) != 0) {
            s += std::to_string(1 + pick(30));
        }
        if (pick(3) == 0) {
            s += "." + std::to_string(pick(25));
        }
        return s;
    };
    const char* literals[] = {"", "x", " = ", "%%", "a longer literal piece, ", "\t\n"};
    for (int i = 0; i < 5000; ++i) {
        const char* sizes[] = {"", "h", "l", "ll"};
        const char* conversions[] = {"d", "i", "u", "x", "X"};
        const std::string number = directive(true) + sizes[pick(4)] + conversions[pick(5)];
        const std::string text = directive(false) + "s";
        const std::string format =
            std::string(literals[pick(6)]) + number + literals[pick(6)] + text + literals[pick(6)];
        const unsigned long long bits = static_cast<unsigned long long>(random()) << pick(33);
        const long long value = static_cast<long long>(pick(2) != 0 ? ~bits : bits);
        const std::string word(static_cast<size_t>(pick(50)), static_cast<char>('a' + pick(26)));
        const size_t bytes = 1 + static_cast<size_t>(pick(90));
        if (number.find("ll") != std::string::npos) {
            EXPECT_AS_RUNTIME(bytes, format.c_str(), value, word.c_str());
        } else if (number.find('l') != std::string::npos) {
            EXPECT_AS_RUNTIME(bytes, format.c_str(), static_cast<long>(value), word.c_str());
        } else {
            EXPECT_AS_RUNTIME(bytes, format.c_str(), static_cast<int>(value), word.c_str());
        }
    }
}

TEST(CzbLoggerMessage, EverythingElseGoesToTheRuntime) {
    const char* null = nullptr;
    EXPECT_EQ(ours(64, "%f", 1.5), "<runtime>");
    EXPECT_EQ(ours(64, "%d %.2f", 1, 1.5), "<runtime>");
    EXPECT_EQ(ours(64, "%p", &null), "<runtime>");
    EXPECT_EQ(ours(64, "%*d", 5, 1), "<runtime>");
    EXPECT_EQ(ours(64, "%.*s", 2, "abc"), "<runtime>");
    EXPECT_EQ(ours(64, "%+d", 1), "<runtime>");
    EXPECT_EQ(ours(64, "% d", 1), "<runtime>");
    EXPECT_EQ(ours(64, "%#x", 1), "<runtime>");
    EXPECT_EQ(ours(64, "%1$d", 1), "<runtime>");
    EXPECT_EQ(ours(64, "%hhd", 1), "<runtime>");
    EXPECT_EQ(ours(64, "%zu", sizeof null), "<runtime>");
    EXPECT_EQ(ours(64, "%ls", L"wide"), "<runtime>");
    EXPECT_EQ(ours(64, "%05s", "a"), "<runtime>"); // zeros in one runtime, blanks in another
    EXPECT_EQ(ours(64, "%s", null), "<runtime>");
    EXPECT_EQ(ours(64, "a%cb", 0), "<runtime>");
    EXPECT_EQ(ours(64, "%10000d", 1), "<runtime>");
    EXPECT_EQ(ours(64, "%.10000d", 1), "<runtime>");
    EXPECT_EQ(ours(64, "%5%"), "<runtime>");
    EXPECT_EQ(ours(64, "ends in %"), "<runtime>");
    // Past the text's end as well: the runtime decides how such a format fails.
    EXPECT_EQ(ours(4, "%s %f", "long text", 2.0), "<runtime>");
    EXPECT_EQ(ours(64, nullptr), "<runtime>");

    // setLog stores the runtime's text for those, up to the first NUL and cut to the block.
    CzbLogger logger(8, 12);
    char fractions[] = "%.3f|%s|%d";
    logger.setLog(fractions, 2.5, "ab", 7);
    char nul[] = "a%cb";
    logger.setLog(nul, 0);
    char usual[] = "%s=%05d";
    logger.setLog(usual, "value", -42);
    EXPECT_STREQ(logger.GetLogData(0)->text, runtime(12, fractions, 2.5, "ab", 7).c_str());
    EXPECT_STREQ(logger.GetLogData(1)->text, "a");
    EXPECT_STREQ(logger.GetLogData(2)->text, "value=-0042");
}
