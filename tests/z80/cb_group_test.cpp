// The CB group: costs, results and flags of the shifts, rotates and bit
// operations, and the gate on SLL.
#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

class CbGroup : public CpuTest {};

TEST_F(CbGroup, CostsFollowTheTimingTable) {
    const struct {
        uint8_t op;
        int32_t t;
    } rows[] = {
        {0x00, 2}, {0x06, 4},  {0x07, 2},                         // RLC r, (HL)
        {0x09, 8}, {0x0E, 15}, {0x12, 8},  {0x16, 15},            // RRC, RL
        {0x1B, 8}, {0x1E, 15}, {0x24, 8},  {0x26, 15},            // RR, SLA
        {0x2D, 8}, {0x2E, 15}, {0x37, 8},  {0x36, 15},            // SRA, SLL
        {0x38, 8}, {0x3E, 15},                                    // SRL
        {0x40, 4}, {0x46, 12}, {0x76, 12}, {0x7E, 4},  {0x7F, 4}, // BIT; BIT 7,(HL) is 4
        {0x80, 2}, {0x86, 2},  {0x9E, 2},  {0xBE, 2},  {0xBF, 2}, // RES: 2 everywhere
        {0xC0, 8}, {0xC6, 15}, {0xDE, 15}, {0xFF, 8},             // SET
    };
    for (const auto& row : rows) {
        cpu.SetHL(0x2000);
        const Cost c = Run({0xCB, row.op});
        EXPECT_EQ(c.t, row.t) << "CB " << Hex({row.op});
        EXPECT_EQ(c.r, 1) << "CB " << Hex({row.op});
        EXPECT_EQ(c.len, 2) << "CB " << Hex({row.op});
    }
    EXPECT_EQ(UnknownOpcodes(), 0u);
}

// Results and flags of the shifts and rotates, on B and on (HL). X and Y keep
// what they held; H and N are cleared.
TEST_F(CbGroup, ShiftsAndRotatesSetTheFlagsOfTheResult) {
    const struct {
        uint8_t op; // on B
        int32_t in, carryIn, out, flags;
    } rows[] = {
        {0x00, 0x80, 0, 0x01, fC},           // RLC
        {0x08, 0x01, 0, 0x80, fS | fC},      // RRC
        {0x10, 0x80, 0, 0x00, fZ | fP | fC}, // RL
        {0x10, 0x01, 1, 0x03, fP},
        {0x18, 0x01, 1, 0x80, fS | fC},      // RR
        {0x20, 0xC1, 0, 0x82, fS | fP | fC}, // SLA
        {0x28, 0x81, 0, 0xC0, fS | fP | fC}, // SRA keeps bit 7
        {0x30, 0x00, 0, 0x01, 0},            // SLL: bit 0 set, never zero
        {0x30, 0x80, 0, 0x01, fC},
        {0x38, 0x00, 1, 0x00, fZ | fP}, // SRL of 0
        {0x38, 0x81, 0, 0x40, fC},
    };
    for (int xy : {0, fX | fY}) {
        for (const auto& row : rows) {
            cpu.RegB = row.in;
            cpu.SetFlagsByte(fH | fN | xy | (row.carryIn ? fC : 0));
            Run({0xCB, row.op});
            EXPECT_EQ(cpu.RegB, row.out) << "CB " << Hex({row.op}) << " of " << row.in;
            EXPECT_EQ(Flags(), row.flags | xy) << "CB " << Hex({row.op}) << " of " << row.in;

            cpu.SetHL(0x2345);
            Poke(0x2345, row.in);
            cpu.SetFlagsByte(fH | fN | xy | (row.carryIn ? fC : 0));
            Run({0xCB, uint8_t(row.op | 6)});
            EXPECT_EQ(Peek(0x2345), row.out) << "CB " << Hex({uint8_t(row.op | 6)});
            EXPECT_EQ(Flags(), row.flags | xy) << "CB " << Hex({uint8_t(row.op | 6)});
        }
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
