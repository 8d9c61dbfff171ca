// X and Y (bits 3 and 5 of F), which the exerciser masks out; it checks the
// other flags and the results of the ALU operations, CPL, SCF and CCF.
#include <gtest/gtest.h>

#include "support/TestMachine.h"

namespace tvc::test {
namespace {

// X and Y survive the ALU operations and CPL, SCF and CCF; only CP copies
// them from its operand.
TEST(AluHelpers, XAndYStayButCpCopiesThemFromTheOperand) {
    TestMachine t;
    Z80& c = t.cpu();
    for (uint8_t op : {0xC6, 0xCE, 0xD6, 0xDE, 0xE6, 0xEE, 0xF6, 0xFE, 0x2F, 0x37, 0x3F})
        for (int kept : {0x00, 0x28})
            for (int v : {0x00, 0x28, 0xD7}) {
                t.Load(0x8000, {op, uint8_t(v)});
                c.RegA = 0x28;
                c.SetFlagsByte(kept);
                t.Step();
                EXPECT_EQ(c.FlagsByte() & 0x28, op == 0xFE ? v & 0x28 : kept)
                    << int(op) << " " << v << " " << kept;
            }
}

} // namespace
} // namespace tvc::test
