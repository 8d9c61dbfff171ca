// The arithmetic helpers against the flag rules, over every operand pair and
// carry: H is the carry into bit 4, P the signed overflow (parity for the
// logic ops), and X and Y survive everything but CpA, which copies bits 3 and
// 5 of the operand. The exerciser masks X and Y out, so they are checked here.
#include <gtest/gtest.h>

#include "support/TestMachine.h"

namespace tvc::test {
namespace {

enum Op { Add, Adc, Sub, Sbc, Cp, And, Or, Xor };

int Parity(int v) {
    return __builtin_popcount(unsigned(v)) % 2 == 0;
}

TEST(AluHelpers, FlagsFollowTheRulesForEveryOperand) {
    TestMachine t;
    Z80& c = t.cpu();
    // A switch rather than a table of member pointers: GCC's bounds check
    // misreads the index of such a table under UBSan.
    auto run = [&c](int op, int32_t v) {
        switch (op) {
        case Add: c.AddA(v); break;
        case Adc: c.AdcA(v); break;
        case Sub: c.SubA(v); break;
        case Sbc: c.SbcA(v); break;
        case Cp: c.CpA(v); break;
        case And: c.AndA(v); break;
        case Or: c.OrA(v); break;
        default: c.XorA(v); break;
        }
    };
    for (int op = Add; op <= Xor; ++op)
        for (int a = 0; a < 256; ++a)
            for (int v = 0; v < 256; ++v)
                for (int cin = 0; cin < 2; ++cin) {
                    const bool sub = op == Sub || op == Sbc || op == Cp;
                    const int carry = (op == Adc || op == Sbc) ? cin : 0;
                    const int wide = sub ? a - v - carry : a + v + carry;
                    const int sw =
                        sub ? int8_t(a) - int8_t(v) - carry : int8_t(a) + int8_t(v) + carry;
                    int r = wide & 255, f = 0;
                    if (op < And) {
                        f = ((a ^ v ^ r) & 0x10) | (sw < -128 || sw > 127 ? 4 : 0) | (sub ? 2 : 0) |
                            (wide < 0 || wide > 255 ? 1 : 0);
                    } else {
                        r = op == And ? a & v : op == Or ? a | v : a ^ v;
                        f = (op == And ? 0x10 : 0) | (Parity(r) ? 4 : 0);
                    }
                    const int xy = op == Cp ? v & 0x28 : (a & 1 ? 0x28 : 0);
                    f |= (r & 0x80) | (r == 0 ? 0x40 : 0) | xy;
                    c.RegA = a;
                    c.SetFlagsByte((a & 1 ? 0x28 : 0) | cin);
                    run(op, v);
                    ASSERT_EQ(c.RegA, op == Cp ? a : r) << op << " " << a << " " << v << " " << cin;
                    ASSERT_EQ(c.FlagsByte(), f) << op << " " << a << " " << v << " " << cin;
                }
}

// CPL, SCF and CCF over every value of A and every flag byte (the exerciser
// runs them only in its long group): CPL sets H and N; SCF sets C and clears
// H and N; CCF moves C into H, clears N and inverts C. S, Z, P, X and Y stay.
TEST(AluHelpers, CarryOpsFollowTheirRules) {
    TestMachine t;
    Z80& c = t.cpu();
    for (uint8_t op : {0x2F, 0x37, 0x3F})
        for (int a = 0; a < 256; ++a)
            for (int f : {0x00, 0xFF, 0x01, 0xFE}) {
                const int cin = f & 1, kept = f & 0xEC;
                int r = a, h = 0, n = 0, carry = cin;
                if (op == 0x2F) r = a ^ 255, h = n = 1;
                if (op == 0x37) carry = 1;
                if (op == 0x3F) h = cin, carry = !cin;
                t.Load(0x8000, {op});
                c.RegA = a;
                c.SetFlagsByte(f);
                t.Step();
                ASSERT_EQ(c.RegA, r) << int(op) << " " << a << " " << f;
                ASSERT_EQ(c.FlagsByte(), kept | h << 4 | n << 1 | carry)
                    << int(op) << " " << a << " " << f;
            }
}

} // namespace
} // namespace tvc::test
