// The CB group: costs, results and flags of the shifts, rotates and bit
// operations, and the gate on SLL.
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

// Every shift and rotate over every value and carry, on B and on (HL): the
// flags of the result, H and N cleared, X and Y kept.
TEST_F(CbGroup, ShiftsAndRotatesFollowTheirRules) {
    for (int kind = 0; kind < 8; ++kind)
        for (int v = 0; v < 256; ++v)
            for (int cin : {0, 1}) {
                const bool left = kind % 2 == 0; // RLC RRC RL RR SLA SRA SLL SRL
                const int in[8] = {v >> 7, (v & 1) << 7, cin, cin << 7, 0, v & 0x80, 1, 0};
                const int out = ((left ? v << 1 : v >> 1) | in[kind]) & 255;
                const int carry = left ? v >> 7 : v & 1;
                const int xy = v & 1 ? fX | fY : 0;
                const int flags = (out & fS) | (out ? 0 : fZ) |
                                  (__builtin_popcount(unsigned(out)) % 2 ? 0 : fP) | xy | carry;
                const uint8_t op = uint8_t(kind << 3);
                cpu.RegB = v;
                cpu.SetFlagsByte(fH | fN | xy | cin);
                Run({0xCB, op});
                ASSERT_EQ(cpu.RegB, out) << "CB " << Hex({op}) << " of " << v << " c " << cin;
                ASSERT_EQ(Flags(), flags) << "CB " << Hex({op}) << " of " << v << " c " << cin;
                cpu.SetHL(0x2345);
                Poke(0x2345, v);
                cpu.SetFlagsByte(fH | fN | xy | cin);
                Run({0xCB, uint8_t(op | 6)});
                ASSERT_EQ(Peek(0x2345), out) << "CB " << Hex({uint8_t(op | 6)}) << " of " << v;
                ASSERT_EQ(Flags(), flags) << "CB " << Hex({uint8_t(op | 6)}) << " of " << v;
            }
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

// SLL is served only while UndocEnabled is 1; otherwise the opcode byte is
// stepped over at no cost and the byte after it runs next.
TEST_F(CbGroup, SllIsGatedByUndocEnabled) {
    for (int32_t undoc : {0, 1}) {
        for (uint8_t op = 0x30; op <= 0x37; ++op) {
            cpu.UndocEnabled = undoc;
            cpu.RegB = cpu.RegC = cpu.RegD = cpu.RegE = cpu.RegA = 0x40;
            cpu.SetHL(0x2040);
            Poke(0x2040, 0x40);
            const size_t unknown = UnknownOpcodes();
            const Cost c = Run({0xCB, op, 0x00});
            const int32_t after = op == 0x36   ? Peek(0x2040)
                                  : op == 0x37 ? cpu.RegA
                                  : op == 0x34 ? cpu.RegH
                                  : op == 0x35 ? cpu.RegL
                                  : op == 0x30 ? cpu.RegB
                                  : op == 0x31 ? cpu.RegC
                                  : op == 0x32 ? cpu.RegD
                                               : cpu.RegE;
            const int32_t before = op == 0x34 ? 0x20 : 0x40; // H is 0x20, all others 0x40
            if (undoc) {
                EXPECT_EQ(c.t, op == 0x36 ? 15 : 8);
                EXPECT_EQ(c.r, 1);
                EXPECT_EQ(after, (before << 1 | 1) & 255) << Hex({op});
                EXPECT_EQ(UnknownOpcodes(), unknown);
            } else {
                EXPECT_EQ(c.t, 0) << Hex({op});
                EXPECT_EQ(c.r, 0);
                EXPECT_EQ(after, before) << Hex({op});
                EXPECT_EQ(UnknownOpcodes(), unknown + 1);
                EXPECT_EQ(tm.host.label1.back(), "Unknown Opcode!");
            }
            EXPECT_EQ(c.len, 2);
            EXPECT_EQ(cpu.PrefixState, 0);
        }
    }
    EXPECT_TRUE(tm.host.messages.empty());
}

} // namespace
} // namespace tvc::test
