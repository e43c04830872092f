#include "zbBase/numeric/CzbBit.h"

#include <cstdint>

namespace {
// The mask of a bit number, or 0 for numbers from 32 up.
uint32_t maskOf(int bit) { return bit >= 32 ? 0u : (1u << (static_cast<uint32_t>(bit) & 31u)); }
int fromBits(uint32_t bits) { return static_cast<int>(bits); }
} // namespace

CzbBit::CzbBit() : m_bit(0) {}
CzbBit::CzbBit(int flags) : m_bit(flags) {}

CzbBit& CzbBit::operator=(const CzbBit& other) {
    m_bit = other.m_bit;
    return *this;
}

int CzbBit::getBit() { return m_bit; }
void CzbBit::setBit(int flags) { m_bit = flags; }
bool CzbBit::getBitFlag(int bit) { return bitChk(m_bit, bit) != 0; }

void CzbBit::setBitFlag(int bit, bool on) { m_bit = on ? bitOn(m_bit, bit) : bitOff(m_bit, bit); }

int CzbBit::bitChk(int value, int bit) {
    return (static_cast<uint32_t>(value) & maskOf(bit)) != 0 ? 1 : 0;
}
int CzbBit::bitOn(int value, int bit) { return fromBits(static_cast<uint32_t>(value) | maskOf(bit)); }
int CzbBit::bitOff(int value, int bit) {
    return fromBits(static_cast<uint32_t>(value) & ~maskOf(bit));
}
int CzbBit::bitTurn(int value, int bit) {
    return fromBits(static_cast<uint32_t>(value) ^ maskOf(bit));
}
