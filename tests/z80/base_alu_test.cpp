// Flag results of the arithmetic helpers over boundary operands. X and Y are
// seeded to 1 and must survive everything but CpA. The exerciser run checks
// the documented flags of INC, DEC and DAA over many more operands.
#include <gtest/gtest.h>

#include "support/TestMachine.h"

namespace tvc::test {
namespace {

enum Op { Add, Adc, Sub, Sbc, Cp, And, Or, Xor };

struct AluCase {
    Op op;
    int a, v, carryIn;
    int result; // RegA after
    int S, Z, H, P, N, C;
};

void Apply(Z80& c, Op op, int v) {
    switch (op) {
    case Add: c.AddA(v); break;
    case Adc: c.AdcA(v); break;
    case Sub: c.SubA(v); break;
    case Sbc: c.SbcA(v); break;
    case Cp: c.CpA(v); break;
    case And: c.AndA(v); break;
    case Or: c.OrA(v); break;
    case Xor: c.XorA(v); break;
    }
}

TEST(AluHelpers, FlagsOverBoundaryOperands) {
    const AluCase cases[] = {
        // op   a     v    cin  res   S  Z  H  P  N  C
        {Add, 0x00, 0x00, 0, 0x00, 0, 1, 0, 0, 0, 0},
        {Add, 0x0F, 0x01, 0, 0x10, 0, 0, 1, 0, 0, 0},
        {Add, 0x7F, 0x01, 0, 0x80, 1, 0, 1, 1, 0, 0}, // signed overflow
        {Add, 0xFF, 0x01, 0, 0x00, 0, 1, 1, 0, 0, 1},
        {Add, 0x80, 0x80, 0, 0x00, 0, 1, 0, 1, 0, 1},
        {Add, 0x10, 0x20, 1, 0x30, 0, 0, 0, 0, 0, 0}, // ADD ignores the carry
        {Adc, 0x0E, 0x01, 1, 0x10, 0, 0, 1, 0, 0, 0},
        {Adc, 0x7F, 0x00, 1, 0x80, 1, 0, 1, 1, 0, 0},
        {Adc, 0xFF, 0x00, 1, 0x00, 0, 1, 1, 0, 0, 1},
        {Sub, 0x00, 0x01, 0, 0xFF, 1, 0, 1, 0, 1, 1},
        {Sub, 0x80, 0x01, 0, 0x7F, 0, 0, 1, 1, 1, 0}, // signed overflow
        {Sub, 0x42, 0x42, 0, 0x00, 0, 1, 0, 0, 1, 0},
        {Sub, 0x10, 0x01, 1, 0x0F, 0, 0, 1, 0, 1, 0}, // SUB ignores the carry
        {Sbc, 0x10, 0x0F, 1, 0x00, 0, 1, 1, 0, 1, 0},
        {Sbc, 0x00, 0x00, 1, 0xFF, 1, 0, 1, 0, 1, 1},
        {Sbc, 0x7F, 0xFF, 0, 0x80, 1, 0, 0, 1, 1, 1},
        {Cp, 0x05, 0x05, 0, 0x05, 0, 1, 0, 0, 1, 0}, // A kept
        {Cp, 0x05, 0x06, 0, 0x05, 1, 0, 1, 0, 1, 1},
        {Cp, 0x00, 0x28, 0, 0x00, 1, 0, 1, 0, 1, 1},  // X and Y from the operand
        {And, 0xF0, 0x3C, 1, 0x30, 0, 0, 1, 1, 0, 0}, // parity even
        {And, 0xF0, 0x0F, 1, 0x00, 0, 1, 1, 1, 0, 0},
        {Or, 0x80, 0x01, 1, 0x81, 1, 0, 0, 1, 0, 0},
        {Or, 0x00, 0x07, 1, 0x07, 0, 0, 0, 0, 0, 0}, // parity odd
        {Xor, 0xFF, 0xFF, 1, 0x00, 0, 1, 0, 1, 0, 0},
        {Xor, 0x0F, 0x01, 0, 0x0E, 0, 0, 0, 0, 0, 0},
    };
    TestMachine t;
    Z80& c = t.cpu();
    for (const AluCase& k : cases) {
        c.RegA = k.a;
        c.FlagC = k.carryIn;
        c.FlagX = c.FlagY = 1;
        const int xy = (k.v >> 3) & 1; // CpA copies bits 3 and 5 of the operand
        Apply(c, k.op, k.v);
        SCOPED_TRACE(::testing::Message() << "op " << k.op << " a=" << k.a << " v=" << k.v);
        EXPECT_EQ(c.RegA, k.result);
        EXPECT_EQ(c.FlagS, k.S);
        EXPECT_EQ(c.FlagZ, k.Z);
        EXPECT_EQ(c.FlagH, k.H);
        EXPECT_EQ(c.FlagP, k.P);
        EXPECT_EQ(c.FlagN, k.N);
        EXPECT_EQ(c.FlagC, k.C);
        if (k.op == Cp) {
            EXPECT_EQ(c.FlagX, xy);
            EXPECT_EQ(c.FlagY, (k.v >> 5) & 1);
        } else {
            EXPECT_EQ(c.FlagX, 1);
            EXPECT_EQ(c.FlagY, 1);
        }
    }
}

TEST(AluHelpers, AddHLKeepsSZPAndSetsHalfCarryFromBit11) {
    TestMachine t;
    Z80& c = t.cpu();
    struct Case {
        int hl, v, out, H, C;
    } cases[] = {{0x0FFF, 0x0001, 0x1000, 1, 0},
                 {0xFFFF, 0x0001, 0x0000, 1, 1},
                 {0x8000, 0x8000, 0x0000, 0, 1},
                 {0x1234, 0x1111, 0x2345, 0, 0}};
    for (const Case& k : cases) {
        c.SetHL(k.hl);
        c.FlagS = c.FlagZ = c.FlagP = 1;
        c.FlagN = 1;
        c.AddHL(k.v);
        EXPECT_EQ(c.HL(), k.out);
        EXPECT_EQ(c.FlagH, k.H);
        EXPECT_EQ(c.FlagC, k.C);
        EXPECT_EQ(c.FlagN, 0);
        EXPECT_EQ(c.FlagS + c.FlagZ + c.FlagP, 3);
    }
}

} // namespace
} // namespace tvc::test
