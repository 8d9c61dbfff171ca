// The CB group: costs, the flags of BIT and the gate on SLL; the exerciser
// checks the shifts, rotates, SET and RES.
#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

class CbGroup : public CpuTest {};

// Every CB opcode: published 8 for a register and 15 for (HL) (BIT 8 and
// 12), with this machine's rows: RLC 2 and 4, BIT 4 and 12 (BIT 7,(HL) 4),
// RES 2 everywhere.
TEST_F(CbGroup, CostsFollowTheTimingRule) {
    for (int op = 0; op < 256; ++op) {
        const bool hl = (op & 7) == 6;
        int t = hl ? 15 : 8;
        if (op < 0x08) t = hl ? 4 : 2;
        if (op >= 0x40 && op < 0x80) t = hl && op != 0x7E ? 12 : 4;
        if (op >= 0x80 && op < 0xC0) t = 2;
        cpu.SetHL(0x2000);
        const Cost c = Run({0xCB, uint8_t(op)});
        EXPECT_EQ(c.t, t) << "CB " << Hex({uint8_t(op)});
        EXPECT_EQ(c.r, 1) << "CB " << Hex({uint8_t(op)});
        EXPECT_EQ(c.len, 2) << "CB " << Hex({uint8_t(op)});
    }
    EXPECT_EQ(UnknownOpcodes(), 0u);
}

// BIT: Z and P say the bit is clear, S only for a set bit 7, H = 1, N = 0;
// C, X and Y stay.
TEST_F(CbGroup, BitSetsZPAndSFromTheTestedBit) {
    const struct {
        uint8_t op;
        int32_t value, flags;
    } rows[] = {
        {0x78, 0x80, fS | fH},                        // BIT 7,B set
        {0x78, 0x7F, fZ | fP | fH},                   // BIT 7,B clear
        {0x40, 0x81, fH},                             // BIT 0,B set: no S for another bit
        {0x40, 0xFE, fZ | fP | fH}, {0x68, 0x20, fH}, // BIT 5,B
    };
    for (int kept : {0, fC | fX | fY}) {
        for (const auto& row : rows) {
            cpu.RegB = row.value;
            cpu.SetFlagsByte(kept | fS | fN);
            Run({0xCB, row.op});
            EXPECT_EQ(Flags(), row.flags | kept) << "CB " << Hex({row.op}) << " of " << row.value;
            EXPECT_EQ(cpu.RegB, row.value);
        }
    }
}

// SLL is served only while UndocEnabled is 1 (the exerciser checks its
// results); otherwise the opcode byte is stepped over at no cost and the
// byte after it runs next.
TEST_F(CbGroup, SllIsGatedByUndocEnabled) {
    for (int32_t undoc : {0, 1}) {
        for (uint8_t op = 0x30; op <= 0x37; ++op) {
            cpu.UndocEnabled = undoc;
            cpu.RegB = 0x40;
            cpu.SetHL(0x2040);
            const size_t unknown = UnknownOpcodes();
            const Cost c = Run({0xCB, op, 0x00});
            EXPECT_EQ(c.t, undoc ? (op == 0x36 ? 15 : 8) : 0) << Hex({op});
            EXPECT_EQ(c.r, undoc);
            EXPECT_EQ(c.len, 2);
            EXPECT_EQ(cpu.RegB, op == 0x30 && undoc ? 0x81 : 0x40);
            EXPECT_EQ(UnknownOpcodes(), unknown + 1 - undoc);
            EXPECT_EQ(cpu.PrefixState, 0);
        }
    }
    EXPECT_EQ(tm.host.label1.back(), "Unknown Opcode!");
    EXPECT_TRUE(tm.host.messages.empty());
}

} // namespace
} // namespace tvc::test
