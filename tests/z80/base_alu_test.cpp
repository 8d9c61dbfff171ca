// Flag results of the arithmetic helpers over representative and boundary
// operands. X and Y are seeded to 1 and must survive everything but CpA.
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

TEST(AluHelpers, CpTakesXAndYFromTheOperandWhateverTheResult) {
    TestMachine t;
    Z80& c = t.cpu();
    c.RegA = 0;
    c.FlagX = c.FlagY = 0;
    c.CpA(0x28);
    EXPECT_EQ(c.FlagX, 1);
    EXPECT_EQ(c.FlagY, 1);
    c.CpA(0x00);
    EXPECT_EQ(c.FlagX, 0);
    EXPECT_EQ(c.FlagY, 0);
}

TEST(AluHelpers, IncAndDecByte) {
    struct Case {
        bool inc;
        int in, out, S, Z, H, P, N;
    } cases[] = {
        {true, 0x00, 0x01, 0, 0, 0, 0, 0},  {true, 0x0F, 0x10, 0, 0, 1, 0, 0},
        {true, 0x7F, 0x80, 1, 0, 1, 1, 0},  {true, 0xFF, 0x00, 0, 1, 1, 0, 0},
        {false, 0x01, 0x00, 0, 1, 0, 0, 1}, {false, 0x00, 0xFF, 1, 0, 1, 0, 1},
        {false, 0x80, 0x7F, 0, 0, 1, 1, 1}, {false, 0x10, 0x0F, 0, 0, 1, 0, 1},
    };
    TestMachine t;
    Z80& c = t.cpu();
    for (const Case& k : cases) {
        for (int carry = 0; carry < 2; ++carry) {
            c.FlagC = carry;
            const int r = k.inc ? c.IncByte(k.in) : c.DecByte(k.in);
            SCOPED_TRACE(::testing::Message() << (k.inc ? "inc " : "dec ") << k.in);
            EXPECT_EQ(r, k.out);
            EXPECT_EQ(c.FlagS, k.S);
            EXPECT_EQ(c.FlagZ, k.Z);
            EXPECT_EQ(c.FlagH, k.H);
            EXPECT_EQ(c.FlagP, k.P);
            EXPECT_EQ(c.FlagN, k.N);
            EXPECT_EQ(c.FlagC, carry);
        }
    }
}

TEST(AluHelpers, Daa) {
    struct Case {
        int a, N, H, C;
        int out, outC, outN, outH;
    } cases[] = {
        {0x0A, 0, 0, 0, 0x10, 0, 0, 1}, // low nibble corrected
        {0x9A, 0, 0, 0, 0x00, 1, 0, 1}, // both nibbles, carry out
        {0x15, 0, 1, 0, 0x1B, 0, 0, 0}, // half carry in forces 6
        {0x45, 0, 0, 1, 0xA5, 1, 0, 0}, // carry in forces 0x60, carry stays
        {0x99, 0, 0, 0, 0x99, 0, 0, 0}, // already decimal
        {0x0F, 1, 1, 0, 0x09, 0, 1, 0}, // after a subtraction: through SubA
        {0xA0, 1, 0, 0, 0x40, 1, 1, 0}, // above 159: 0x60 taken off, carry set
    };
    TestMachine t;
    Z80& c = t.cpu();
    for (const Case& k : cases) {
        c.RegA = k.a;
        c.FlagN = k.N;
        c.FlagH = k.H;
        c.FlagC = k.C;
        c.Daa();
        SCOPED_TRACE(::testing::Message() << "a=" << k.a);
        EXPECT_EQ(c.RegA, k.out);
        EXPECT_EQ(c.FlagC, k.outC);
        EXPECT_EQ(c.FlagN, k.outN);
        EXPECT_EQ(c.FlagH, k.outH);
        EXPECT_EQ(c.FlagP, __builtin_popcount(k.out) % 2 == 0);
        EXPECT_EQ(c.FlagZ, k.out == 0);
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
