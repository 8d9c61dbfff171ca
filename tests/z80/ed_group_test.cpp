// The ED group: the cost table, the undefined rows, the 16-bit arithmetic
// with its half-carry rule, the block instructions and their repetition
// between interrupt samples, and the port instructions.
#include "video/Crtc.h"
#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

class EdGroup : public CpuTest {
  protected:
    void SetUp() override {
        CpuTest::SetUp();
        cpu.SetHL(0x2000);
        cpu.SetDE(0x3000);
        cpu.SetBC(0x0070); // a port with no side effect for IN and OUT
    }
};

// Every row by its column: IN r,(C) and OUT (C),r 12; SBC HL and ADC HL 15
// (ADC HL,SP 11); LD (nn),rr 20 with a RegR step of 2 and LD rr,(nn) 20;
// NEG 8; RETN and RETI 14; IM 8 with a step of 2; LD I,A and LD R,A 9 with
// no step, LD A,I 9, LD A,R 9 with 2; RRD and RLD 18 with 5. CPI, CPD, OUTI
// and OUTD cost 16 with no step. The block moves are checked on their own.
// Every other row, also those the published processor defines but this one
// does not (IN F, OUT (C),0, INI to OTDR, the duplicates of NEG, RETN and
// IM), is stepped over at no cost, and the byte after it runs next.
TEST_F(EdGroup, CostsFollowTheRule) {
    for (int op = 0; op < 256; ++op) {
        const int col = op & 7, y = op >> 3 & 7;
        int t = 0, r = 0, len = 2;
        if (op < 0x40 || op >= 0x80)
            t = op == 0xA1 || op == 0xA9 || op == 0xA3 || op == 0xAB ? 16 : 0;
        else if (col < 2 && y != 6)
            t = 12, r = 1;
        else if (col == 2)
            t = op == 0x7A ? 11 : 15, r = 1;
        else if (col == 3)
            t = 20, r = y % 2 ? 1 : 2, len = 4;
        else if (op == 0x44)
            t = 8, r = 1;
        else if (op == 0x45 || op == 0x4D)
            t = 14, r = 1;
        else if (op == 0x46 || op == 0x56 || op == 0x5E)
            t = 8, r = 2;
        else if (op == 0x47 || op == 0x4F || op == 0x57 || op == 0x5F)
            t = 9, r = op == 0x57 ? 1 : op == 0x5F ? 2 : 0;
        else if (op == 0x67 || op == 0x6F)
            t = 18, r = 5;
        if (op == 0xA0 || op == 0xA8 || op == 0xB0 || op == 0xB8 || op == 0xB1 || op == 0xB9)
            continue; // their cost depends on BC
        SetUp();
        cpu.RegA = 0;
        cpu.RegB = 0x55;
        Poke(0xE000, (kOrg + 2) & 255); // where RETN and RETI return to
        Poke(0xE001, (kOrg + 2) >> 8);
        const int32_t flags = Flags();
        const size_t unknown = UnknownOpcodes();
        const Cost c = Run({0xED, uint8_t(op), 0x04, 0x40}); // 04: INC B
        EXPECT_EQ(c.t, t) << "ED " << Hex({uint8_t(op)});
        EXPECT_EQ(c.r, r) << "ED " << Hex({uint8_t(op)});
        EXPECT_EQ(c.len, len) << "ED " << Hex({uint8_t(op)});
        EXPECT_EQ(UnknownOpcodes(), unknown + (t == 0)) << "ED " << Hex({uint8_t(op)});
        if (t) continue;
        EXPECT_EQ(cpu.RegA, 0) << "ED " << Hex({uint8_t(op)});
        EXPECT_EQ(Flags(), flags) << "ED " << Hex({uint8_t(op)});
        Continue();
        EXPECT_EQ(cpu.RegB, 0x56) << "ED " << Hex({uint8_t(op)});
    }
    EXPECT_EQ(tm.host.label1.back(), "Unknown Opcode!");
    EXPECT_TRUE(tm.host.messages.empty());
}

// Only RETN copies IFF2 into IFF1.
TEST_F(EdGroup, OnlyRetnCopiesIff2) {
    for (uint8_t op : {0x45, 0x4D}) {
        cpu.RegSP = 0xE000;
        cpu.IFF1 = 0;
        cpu.IFF2 = 1;
        Run({0xED, op});
        EXPECT_EQ(cpu.RegSP, 0xE002);
        EXPECT_EQ(cpu.IFF1, op == 0x45 ? 1 : 0) << Hex({op});
    }
}

// ADC HL and SBC HL count the carry that comes out of the operation in the
// 12-bit half-carry sum, not the one that went in. The other flags are
// the published ones, which the exerciser checks.
// clang-format off
TEST_F(EdGroup, AdcAndSbcHlTakeTheNewCarryIntoTheHalfCarry) {
    const struct {
        uint8_t op; // ADC HL,BC or SBC HL,BC
        int32_t hl, bc, carryIn, result, flags;
    } rows[] = {
        {0x4A, 0x0FFF, 0x0000, 1, 0x1000, 0}, /* published: H = 1 */
        {0x4A, 0xF0FF, 0x1F00, 0, 0x0FFF, fH | fC}, /* published: H = 0 */
        {0x42, 0x1000, 0x0000, 1, 0x0FFF, fN}, /* published: H = 1 */
    };
    for (const auto& row : rows) {
        cpu.SetHL(row.hl);
        cpu.SetBC(row.bc);
        cpu.SetFlagsByte(row.carryIn ? fC : 0);
        Run({0xED, row.op});
        EXPECT_EQ(cpu.HL(), row.result) << Hex({row.op}) << " " << row.hl << " " << row.bc;
        EXPECT_EQ(Flags(), row.flags) << Hex({row.op}) << " " << row.hl << " " << row.bc;
    }
}
// clang-format on

TEST_F(EdGroup, LdRAThenLdARReadsBackTheValueAsItStoodAndLdAICopiesIff2IntoP) {
    cpu.RegA = 0x5A;
    Run({0xED, 0x4F, 0xAF, 0xED, 0x5F}); // LD R,A; XOR A; LD A,R
    EXPECT_EQ(cpu.RegR, 0x5A);           // the write step of LD R,A is 0
    tm.Step();                           // XOR A: R 0x5B
    tm.Step();                           // LD A,R takes R before its own step of 2
    EXPECT_EQ(cpu.RegA, 0x5B);
    EXPECT_EQ(cpu.RegR, 0x5D);

    for (int32_t iff2 : {0, 1}) {
        cpu.RegI = 0x80;
        cpu.IFF2 = iff2;
        cpu.SetFlagsByte(fH | fN | fC);
        Run({0xED, 0x57});
        EXPECT_EQ(cpu.RegA, 0x80);
        EXPECT_EQ(Flags(), fS | fC | (iff2 ? fP : 0));
    }
}

// LDI and LDD pay 21 while BC is not zero afterwards, though they do not
// repeat; LDIR, LDDR and CPIR (until a match) repeat by leaving RegPC on the
// ED byte, CPIR with no RegR step. The exerciser checks what they move and
// their flags.
TEST_F(EdGroup, BlockMovesCostAndRepeat) {
    const struct {
        uint8_t op;
        int32_t bc, t, len, r = 1;
    } rows[] = {
        {0xA0, 2, 21, 2},    {0xA0, 1, 16, 2},    {0xA8, 2, 21, 2}, {0xA8, 1, 16, 2},
        {0xB0, 2, 21, 0},    {0xB0, 1, 16, 2},    {0xB8, 2, 21, 0}, {0xB8, 1, 16, 2},
        {0xB0, 0, 21, 0}, // BC 0 wraps to 65535 and runs on
        {0xB1, 2, 21, 0, 0}, {0xB1, 1, 16, 2, 0},
    };
    for (const auto& row : rows) {
        cpu.SetBC(row.bc);
        cpu.RegA = 2; // no match for CPIR in the zeroed memory
        const Cost c = Run({0xED, row.op});
        EXPECT_EQ(c.t, row.t) << Hex({row.op}) << " BC " << row.bc;
        EXPECT_EQ(c.r, row.r);
        EXPECT_EQ(c.len, row.len) << Hex({row.op}) << " BC " << row.bc;
        EXPECT_EQ(cpu.BC(), (row.bc - 1) & 0xFFFF);
    }
}

// A repeating instruction is one pass of the run loop per round, and an
// interrupt is taken between rounds with the ED byte as return address.
TEST_F(EdGroup, LdirRoundsAreSeparateInstructionsWithInterruptsBetween) {
    for (int32_t i = 0; i < 4; ++i)
        Poke(0x2000 + i, 0x10 + i);
    cpu.SetBC(4);
    cpu.IntMode = 1;
    const int32_t count0 = m.run.InstCount;
    Run({0xED, 0xB0});
    Continue();
    EXPECT_EQ(m.run.InstCount - count0, 2);
    EXPECT_EQ(cpu.RegPC, kOrg);
    EXPECT_EQ(cpu.BC(), 2);

    cpu.IFF1 = cpu.IFF2 = 1;
    cpu.IrqRequest = 1;
    Continue(); // round 3, then the interrupt
    EXPECT_EQ(cpu.RegPC, 56);
    EXPECT_EQ(cpu.BC(), 1);
    EXPECT_EQ(Peek(cpu.RegSP) | Peek(cpu.RegSP + 1) << 8, kOrg);
    EXPECT_EQ(Peek(0x3002), 0x12);
    EXPECT_EQ(Peek(0x3003), 0x00);

    Poke(56, 0xC9); // RET resumes the LDIR
    cpu.IrqRequest = 0;
    Continue(2);
    EXPECT_EQ(cpu.RegPC, kOrg + 2);
    EXPECT_EQ(Peek(0x3003), 0x13);
}

TEST_F(EdGroup, CpiAndCpdTakeXAndYFromTheByteRead) {
    Poke(0x2000, 0x28);
    cpu.RegA = 0x28;
    cpu.SetBC(1);
    cpu.SetFlagsByte(0);
    Run({0xED, 0xA1});
    EXPECT_EQ(Flags(), fZ | fY | fX | fN);
    EXPECT_EQ(cpu.HL(), 0x2001);
    Poke(0x2001, 0x00);
    cpu.SetBC(3);
    Run({0xED, 0xA9});
    EXPECT_EQ(Flags(), fP | fN);
    EXPECT_EQ(cpu.HL(), 0x2000);
}

TEST_F(EdGroup, InReadsThePortInCAloneAndSetsFlags) {
    m.crtc.CrtcReg[kCrtcSelect] = 14; // port 0x71 reads CRTC register 14
    m.crtc.CrtcReg[14] = 0x00;
    cpu.RegB = 0x12;
    cpu.RegC = 0x71;
    cpu.SetFlagsByte(fH | fN | fC);
    Run({0xED, 0x50}); // IN D,(C)
    EXPECT_EQ(cpu.RegD, 0);
    EXPECT_EQ(Flags(), fZ | fP | fC);
    m.crtc.CrtcReg[14] = 0x07;
    Run({0xED, 0x78}); // IN A,(C)
    EXPECT_EQ(cpu.RegA, 0x07);
    EXPECT_EQ(Flags(), fC);
}

// OUT (C),r hands the port the register itself: a CRTC data write masks it.
TEST_F(EdGroup, OutGivesThePortTheRegisterItselfAndOutiOutdCountB) {
    m.crtc.CrtcReg[kCrtcSelect] = 4; // R4 keeps 7 bits
    cpu.RegC = 0x71;
    cpu.RegE = 0xFF;
    Run({0xED, 0x59}); // OUT (C),E
    EXPECT_EQ(m.crtc.CrtcReg[4], 0x7F);
    EXPECT_EQ(cpu.RegE, 0x7F);

    // OUTI and OUTD send (HL) and count B.
    Poke(0x2000, 0x0A);
    Poke(0x1FFF, 0x0B);
    cpu.RegC = 0x03;
    cpu.RegB = 2;
    Run({0xED, 0xA3}); // OUTI
    EXPECT_EQ(m.bus.PortLatch[3], 0x0A);
    EXPECT_EQ(cpu.HL(), 0x2001);
    EXPECT_EQ(cpu.RegB, 1);
    EXPECT_EQ(Flags() & (fZ | fN), fN);
    cpu.SetHL(0x1FFF);
    Run({0xED, 0xAB}); // OUTD with B = 1
    EXPECT_EQ(m.bus.PortLatch[3], 0x0B);
    EXPECT_EQ(cpu.HL(), 0x1FFE);
    EXPECT_EQ(cpu.RegB, 0);
    EXPECT_EQ(Flags() & (fZ | fN), fZ | fN);
}

} // namespace
} // namespace tvc::test
