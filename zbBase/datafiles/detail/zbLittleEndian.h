// Little-endian encoding of the binary file fields, independent of the machine's byte order.
#pragma once

#include <cstdint>
#include <cstring>

namespace zbBase {
namespace detail {

inline void putU64(unsigned char* out, uint64_t value) {
    for (int i = 0; i < 8; ++i) {
        out[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

inline uint64_t getU64(const unsigned char* in) {
    uint64_t value = 0;
    for (int i = 7; i >= 0; --i) {
        value = (value << 8) | in[i];
    }
    return value;
}

inline void putFloat(unsigned char* out, float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    for (int i = 0; i < 4; ++i) {
        out[i] = static_cast<unsigned char>(bits >> (8 * i));
    }
}

inline float getFloat(const unsigned char* in) {
    uint32_t bits = 0;
    for (int i = 3; i >= 0; --i) {
        bits = (bits << 8) | in[i];
    }
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace detail
} // namespace zbBase
