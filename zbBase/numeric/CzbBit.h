// CzbBit: 32 flags in one int, and the same bit operations on plain ints.
//
// Every operation takes a bit number, not a mask. Numbers of 32 and above do nothing (a test
// answers 0 or false); below 32 only the low five bits count, so -1 is bit 31.
#pragma once

#include "zbBase/numeric/zbExport.h"

class ZB_API CzbBit {
public:
    CzbBit();
    CzbBit(int flags);
    CzbBit& operator=(const CzbBit& other);

    int getBit();
    void setBit(int flags);
    bool getBitFlag(int bit);
    void setBitFlag(int bit, bool on);

    static int bitChk(int value, int bit);
    static int bitOn(int value, int bit);
    static int bitOff(int value, int bit);
    static int bitTurn(int value, int bit);

private:
    int m_bit;
};
