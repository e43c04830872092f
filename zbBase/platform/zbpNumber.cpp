#include "zbBase/platform/detail/zbpNumber.h"

#include <stdint.h>

namespace zbp {

namespace {
int32_t parseSaturated(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    const char* p = text;
    while (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\v' || *p == '\f' || *p == '\r') {
        ++p;
    }
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    // Counting past 2^31 is pointless: the result is already saturated.
    int64_t magnitude = 0;
    while (*p >= '0' && *p <= '9') {
        if (magnitude <= INT64_C(0x80000000)) {
            magnitude = magnitude * 10 + (*p - '0');
        }
        ++p;
    }
    if (negative) {
        return magnitude >= INT64_C(0x80000000) ? INT32_MIN : static_cast<int32_t>(-magnitude);
    }
    return magnitude > INT32_MAX ? INT32_MAX : static_cast<int32_t>(magnitude);
}
} // namespace

int atoi(const char* text) {
    return parseSaturated(text);
}

long atol(const char* text) {
    return parseSaturated(text);
}

} // namespace zbp
