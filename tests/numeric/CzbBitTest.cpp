#include <zbBase/numeric/CzbBit.h>

#include <gtest/gtest.h>

#include <climits>

TEST(CzbBit, StaticOperationsTakeBitNumbers) {
    EXPECT_EQ(CzbBit::bitOn(0, 31), INT_MIN);
    EXPECT_EQ(CzbBit::bitChk(INT_MIN, 31), 1);
    EXPECT_EQ(CzbBit::bitChk(INT_MIN, 30), 0);
    EXPECT_EQ(CzbBit::bitOn(0, 0), 1);
    EXPECT_EQ(CzbBit::bitOn(1, 4), 17);
    EXPECT_EQ(CzbBit::bitOff(17, 0), 16);
    EXPECT_EQ(CzbBit::bitOff(16, 0), 16);
    EXPECT_EQ(CzbBit::bitTurn(16, 4), 0);
    EXPECT_EQ(CzbBit::bitTurn(0, 4), 16);
    EXPECT_EQ(CzbBit::bitOff(-1, 31), INT_MAX);
    EXPECT_EQ(CzbBit::bitChk(2, 1), 1); // a number, not a mask: bit 1 of 2 is set

    // From 32 upward nothing happens.
    for (int bit : {32, 33, 40, INT_MAX}) {
        EXPECT_EQ(CzbBit::bitOn(5, bit), 5);
        EXPECT_EQ(CzbBit::bitOff(5, bit), 5);
        EXPECT_EQ(CzbBit::bitTurn(5, bit), 5);
        EXPECT_EQ(CzbBit::bitChk(-1, bit), 0);
    }
    // Below 0 only the low five bits count.
    EXPECT_EQ(CzbBit::bitChk(1, -32), 1);
    EXPECT_EQ(CzbBit::bitOn(0, -1), INT_MIN);
    EXPECT_EQ(CzbBit::bitOn(0, -31), 2);
    EXPECT_EQ(CzbBit::bitOn(0, INT_MIN), 1);
    EXPECT_EQ(CzbBit::bitTurn(INT_MIN, -1), 0);
}

TEST(CzbBit, FlagsObject) {
    CzbBit b;
    EXPECT_EQ(b.getBit(), 0);
    b.setBitFlag(3, true);
    EXPECT_EQ(b.getBit(), 8);
    EXPECT_TRUE(b.getBitFlag(3));
    EXPECT_FALSE(b.getBitFlag(2));
    b.setBitFlag(3, false);
    EXPECT_EQ(b.getBit(), 0);
    b.setBitFlag(40, true);
    EXPECT_EQ(b.getBit(), 0);
    EXPECT_FALSE(b.getBitFlag(40));
    b.setBitFlag(-1, true);
    EXPECT_EQ(b.getBit(), INT_MIN);
    EXPECT_TRUE(b.getBitFlag(31));

    CzbBit c(0x55);
    EXPECT_EQ(c.getBit(), 0x55);
    b = c;
    EXPECT_EQ(b.getBit(), 0x55);
    b.setBit(-2);
    EXPECT_EQ(b.getBit(), -2);
    EXPECT_FALSE(b.getBitFlag(0));
    EXPECT_EQ(c.getBit(), 0x55);
}
