#include <zbBase/numeric/CzbBit.h>

#include <gtest/gtest.h>

#include <climits>

TEST(CzbBit, StaticOperationsTakeBitNumbers) {
    const auto on = CzbBit::bitOn, off = CzbBit::bitOff, turn = CzbBit::bitTurn;
    const auto chk = CzbBit::bitChk;
    struct Case {
        int (*op)(int, int);
        int value, bit, expect;
    };
    // Bit 1 of 2 is set (a number, not a mask); below 0 only the low five bits count.
    const Case cases[] = {{on, 0, 31, INT_MIN},   {chk, INT_MIN, 31, 1}, {chk, INT_MIN, 30, 0},
                          {on, 0, 0, 1},          {on, 1, 4, 17},        {off, 17, 0, 16},
                          {off, 16, 0, 16},       {turn, 16, 4, 0},      {turn, 0, 4, 16},
                          {off, -1, 31, INT_MAX}, {chk, 2, 1, 1},        {chk, 1, -32, 1},
                          {on, 0, -1, INT_MIN},   {on, 0, -31, 2},       {on, 0, INT_MIN, 1},
                          {turn, INT_MIN, -1, 0}};
    for (const Case& c : cases) {
        EXPECT_EQ(c.op(c.value, c.bit), c.expect) << c.value << " " << c.bit;
    }
    for (int bit : {32, 33, 40, INT_MAX}) { // from 32 upward nothing happens
        EXPECT_EQ(on(5, bit), 5);
        EXPECT_EQ(off(5, bit), 5);
        EXPECT_EQ(turn(5, bit), 5);
        EXPECT_EQ(chk(-1, bit), 0);
    }
}

TEST(CzbBit, FlagsObject) {
    CzbBit b;
    EXPECT_EQ(b.getBit(), 0);
    b.setBitFlag(3, true);
    EXPECT_EQ(b.getBit(), 8);
    EXPECT_TRUE(b.getBitFlag(3));
    EXPECT_FALSE(b.getBitFlag(2));
    b.setBitFlag(3, false);
    b.setBitFlag(40, true);
    EXPECT_EQ(b.getBit(), 0);
    EXPECT_FALSE(b.getBitFlag(40));
    b.setBitFlag(-1, true);
    EXPECT_EQ(b.getBit(), INT_MIN);
    EXPECT_TRUE(b.getBitFlag(31));

    CzbBit c(0x55);
    b = c;
    EXPECT_EQ(b.getBit(), 0x55);
    b.setBit(-2);
    EXPECT_FALSE(b.getBitFlag(0));
    EXPECT_EQ(c.getBit(), 0x55);
}
