// The index groups DD, FD, DDCB and FDCB (the DD and FD costs are checked
// in base_timing_test.cpp): the DDCB and FDCB costs, the gated rows on the
// index halves, the undefined rows and the prefix chains, the byte that runs
// after FDCB's SLL and after an undefined DDCB/FDCB row, and the emulator's
// own FD opcodes.
#include <set>

#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

constexpr uint8_t DD = 0xDD, FD = 0xFD;

// The index rows as published in the tables, for the undefined-row sweep.
const std::set<int> kDocumented = {0x09, 0x19, 0x29, 0x39, 0x21, 0x22, 0x23, 0x2A, 0x2B, 0x34,
                                   0x35, 0x36, 0x46, 0x4E, 0x56, 0x5E, 0x66, 0x6E, 0x7E, 0x70,
                                   0x71, 0x72, 0x73, 0x74, 0x75, 0x77, 0x86, 0x8E, 0x96, 0x9E,
                                   0xA6, 0xAE, 0xB6, 0xBE, 0xE1, 0xE3, 0xE5, 0xE9, 0xF9, 0xCB};
const std::set<int> kHalves = {
    0x24, 0x25, 0x26, 0x2C, 0x2D, 0x2E, 0x44, 0x45, 0x4C, 0x4D, 0x54, 0x55, 0x5C, 0x5D, 0x60, 0x61,
    0x62, 0x63, 0x64, 0x65, 0x67, 0x68, 0x69, 0x6A, 0x6B, 0x6C, 0x6D, 0x6F, 0x7C, 0x7D, 0x84, 0x85,
    0x8C, 0x8D, 0x94, 0x95, 0x9C, 0x9D, 0xA4, 0xA5, 0xAC, 0xAD, 0xB4, 0xB5, 0xBC, 0xBD};
const std::set<int> kOwnFd = {0xF0, 0xF1, 0xF2, 0xF3};

class IndexGroup : public CpuTest {
  protected:
    void SetUp() override {
        CpuTest::SetUp();
        cpu.RegIX = 0x2000;
        cpu.RegIY = 0x2100;
        cpu.SetHL(0x2200);
        cpu.RegSP = 0xE000;
    }
};

// Every row the tables do not list: the second byte is stepped over at no
// cost, with "Unknown Opcode!", and the byte after it runs as a new
// instruction (so DD DD, DD FD, DD ED and DD 40 do not chain). The 46 rows on
// the halves cost 8 T-states (11 for the immediate loads) with a RegR step
// of 2 while UndocEnabled is 1, and are undefined rows otherwise.
TEST_F(IndexGroup, UndefinedAndGatedRowsStepOverTheSecondByteOnly) {
    for (uint8_t prefix : {DD, FD}) {
        for (int32_t undoc : {1, 0}) {
            for (int op = 0; op < 256; ++op) {
                const bool half = kHalves.count(op) && undoc, imm = op == 0x26 || op == 0x2E;
                if (kDocumented.count(op) || (kHalves.count(op) && undoc && imm) ||
                    (prefix == FD && kOwnFd.count(op)))
                    continue;
                SetUp();
                cpu.UndocEnabled = undoc;
                cpu.RegB = 0x41;
                const size_t unknown = UnknownOpcodes();
                const Cost c = Run({prefix, uint8_t(op), 0x04}); // then INC B
                const std::string what = Hex({prefix, uint8_t(op)}) + (undoc ? " undoc" : "");
                EXPECT_EQ(c.t, half ? 8 : 0) << what;
                EXPECT_EQ(c.r, half ? 2 : 0) << what;
                EXPECT_EQ(c.len, 2) << what;
                EXPECT_EQ(cpu.PrefixState, 0) << what;
                EXPECT_EQ(UnknownOpcodes(), unknown + !half) << what;
                if (half) continue;
                EXPECT_EQ(cpu.RegB, 0x41) << what;
                Continue();
                EXPECT_EQ(cpu.RegB, 0x42) << what;
            }
        }
    }
    cpu.UndocEnabled = 1;
    for (uint8_t op : {0x26, 0x2E}) { // LD IXH,n and LD IXL,n
        const Cost c = Run({DD, op, 0x00});
        EXPECT_EQ(c.t, 11);
        EXPECT_EQ(c.r, 2);
        EXPECT_EQ(c.len, 3);
    }
    EXPECT_EQ(tm.host.label1.back(), "Unknown Opcode!");
    EXPECT_TRUE(tm.host.messages.empty());
    EXPECT_TRUE(tm.host.fatals.empty());
}

// The loads between halves and registers; the exerciser's group for them
// fails on purpose (DD 40 and the like are undefined), so they are checked
// here. Its other half groups (loads of n, INC, DEC, ALU) pass.
TEST_F(IndexGroup, HalvesAreTheHighAndLowBytesOfTheIndexRegister) {
    cpu.RegIX = 0x1234;
    Run({DD, 0x65}); // LD IXH,IXL
    EXPECT_EQ(cpu.RegIX, 0x3434);
    cpu.RegE = 0x77;
    Run({DD, 0x6B}); // LD IXL,E
    EXPECT_EQ(cpu.RegIX, 0x3477);
    Run({DD, 0x7C}); // LD A,IXH
    EXPECT_EQ(cpu.RegA, 0x34);
    cpu.RegIY = 0x00FF;
    Run({FD, 0x67}); // LD IYH,A
    EXPECT_EQ(cpu.RegIY, 0x34FF);
    EXPECT_EQ(cpu.HL(), 0x2200); // H and L untouched throughout
}

// ADD IY takes its half carry from RegIX, whatever RegIY holds.
TEST_F(IndexGroup, AddIyTakesItsHalfCarryFromIx) {
    const struct {
        uint8_t prefix;
        int32_t ix, iy, bc, result, h;
    } rows[] = {
        {DD, 0x0FFF, 0x0000, 0x0001, 0x1000, 1},
        {FD, 0x0FFF, 0x0000, 0x0001, 0x0001, 1},
        {FD, 0x0000, 0x0FFF, 0x0001, 0x1000, 0},
        {FD, 0x0000, 0xFFFF, 0x0001, 0x0000, 0},
    };
    for (const auto& row : rows) {
        cpu.RegIX = row.ix;
        cpu.RegIY = row.iy;
        cpu.SetBC(row.bc);
        cpu.SetFlagsByte(fS | fZ | fP | fN);
        Run({row.prefix, 0x09});
        EXPECT_EQ(row.prefix == DD ? cpu.RegIX : cpu.RegIY, row.result);
        const int32_t carry = (row.prefix == DD ? row.ix : row.iy) + row.bc > 0xFFFF;
        EXPECT_EQ(Flags(), fS | fZ | fP | (row.h ? fH : 0) | (carry ? fC : 0))
            << Hex({row.prefix}) << " IX " << row.ix << " IY " << row.iy;
    }
}

// The exerciser has no group for these (its own loop pushes and pops IX
// and IY).
TEST_F(IndexGroup, ExchangeWithTheStackAndLdSp) {
    // EX (SP),HL, EX (SP),IX and EX (SP),IY swap the word at SP, low byte first.
    for (uint8_t prefix : {uint8_t(0), DD, FD}) {
        cpu.SetHL(0xBEEF), cpu.RegIX = 0xBEEF, cpu.RegIY = 0xBEEF;
        Poke(0xE000, 0x34);
        Poke(0xE001, 0x12);
        Run(prefix ? std::vector<uint8_t>{prefix, 0xE3} : std::vector<uint8_t>{0xE3});
        EXPECT_EQ(prefix == DD   ? cpu.RegIX
                  : prefix == FD ? cpu.RegIY
                                 : cpu.HL(),
                  0x1234)
            << +prefix;
        EXPECT_EQ(Peek(0xE000) | Peek(0xE001) << 8, 0xBEEF) << +prefix;
    }
    Run({FD, 0xF9}); // LD SP,IY
    EXPECT_EQ(cpu.RegSP, 0x1234);
}

// The exerciser's shift group fails on purpose (FDCB SLL), so a shift on
// (IX+d) is checked here; its BIT, SET and RES groups pass. SLL (IX+d): the
// result goes to memory and to the register of the low three bits. In FDCB
// it moves RegPC only 2, so the last byte runs on its own.
TEST_F(IndexGroup, ShiftsOnTheDisplacedByteAndFdcbSllRunsItsLastByte) {
    Poke(0x2000 - 3, 0x81);
    cpu.SetFlagsByte(0);
    Run({DD, 0xCB, 0xFD, 0x06}); // RLC (IX-3)
    EXPECT_EQ(Peek(0x1FFD), 0x03);
    EXPECT_EQ(Flags(), fP | fC);

    Poke(0x2002, 0x40);
    Cost c = Run({DD, 0xCB, 0x02, 0x30}); // SLL (IX+2),B
    EXPECT_EQ(Peek(0x2002), 0x81);
    EXPECT_EQ(cpu.RegB, 0x81);
    EXPECT_EQ(c.t, 23);
    EXPECT_EQ(c.len, 4);
    cpu.RegB = 0;
    Run({DD, 0xCB, 0x02, 0x36}); // SLL (IX+2): memory only
    EXPECT_EQ(Peek(0x2002), 0x03);
    EXPECT_EQ(cpu.RegB, 0);

    Poke(0x2102, 0x01);
    c = Run({FD, 0xCB, 0x02, 0x36, 0x5A}); // then 36 5A: LD (HL),5A
    EXPECT_EQ(c.t, 23);
    EXPECT_EQ(c.r, 1);
    EXPECT_EQ(c.len, 3);
    EXPECT_EQ(Peek(0x2102), 0x03);
    Continue();
    EXPECT_EQ(Peek(0x2200), 0x5A);
    EXPECT_EQ(cpu.RegPC, kOrg + 5);

    cpu.UndocEnabled = 0;
    Poke(0x2002, 0x40);
    c = Run({DD, 0xCB, 0x02, 0x37}); // gated off: undefined
    EXPECT_EQ(c.t, 0);
    EXPECT_EQ(c.len, 3);
    EXPECT_EQ(Peek(0x2002), 0x40);
}

// The rows on (IX+d) of DDCB cost 23 (BIT 20; SLA, SRA and SRL 6) and those
// of FDCB 20 (RRC, RL, RR, SLA, SRA and SRL 23), with a RegR step of 1 (6 for
// FDCB RRC). After an undefined DDCB row RegPC stands on the opcode byte,
// after an undefined FDCB row on the displacement; that byte runs as a base
// opcode.
TEST_F(IndexGroup, DdcbAndFdcbCostsAndUndefinedRowsFallThrough) {
    for (uint8_t prefix : {DD, FD}) {
        for (int op = 0; op < 256; ++op) {
            if (op >= 0x30 && op <= 0x37) continue;
            if ((op & 7) == 6) {
                const bool shift = op == 0x26 || op == 0x2E || op == 0x3E,
                           bit = op >= 0x40 && op < 0x80;
                int t = bit ? 20 : shift ? 6 : 23;
                if (prefix == FD) t = (op >= 0x0E && op < 0x40) ? 23 : 20;
                const Cost c = Run({prefix, 0xCB, 0x03, uint8_t(op)});
                EXPECT_EQ(c.t, t) << Hex({prefix, 0xCB, uint8_t(op)});
                EXPECT_EQ(c.r, prefix == FD && op == 0x0E ? 6 : 1)
                    << Hex({prefix, 0xCB, uint8_t(op)});
                EXPECT_EQ(c.len, 4) << Hex({prefix, 0xCB, uint8_t(op)});
                continue;
            }
            cpu.RegB = cpu.RegC = 0x10;
            const size_t unknown = UnknownOpcodes();
            const std::vector<uint8_t> bytes{prefix, 0xCB, 0x0C, uint8_t(op)}; // 0C: INC C
            Poke(0x2000 + 0x0C, 0x99);
            Poke(0x2100 + 0x0C, 0x99);
            const Cost c = Run(bytes);
            EXPECT_EQ(c.t, 0) << Hex(bytes);
            EXPECT_EQ(c.r, 0) << Hex(bytes);
            EXPECT_EQ(c.len, prefix == DD ? 3 : 2) << Hex(bytes);
            EXPECT_EQ(UnknownOpcodes(), unknown + 1) << Hex(bytes);
            EXPECT_EQ(Peek(prefix == DD ? 0x200C : 0x210C), 0x99) << Hex(bytes);
            if (prefix == FD) {
                Continue();
                EXPECT_EQ(cpu.RegC, 0x11) << Hex(bytes);
                EXPECT_EQ(cpu.RegPC, kOrg + 3);
            }
        }
    }
    // DD CB d 04: the 04 then runs as INC B.
    cpu.RegB = 1;
    Run({DD, 0xCB, 0x00, 0x04}, 2);
    EXPECT_EQ(cpu.RegB, 2);
    EXPECT_EQ(cpu.RegPC, kOrg + 4);
}

TEST_F(IndexGroup, OwnFdOpcodesRaiseLinesAndStopTheRun) {
    // F0 without interrupts enabled: nothing.
    Cost c = Run({FD, 0xF0});
    EXPECT_EQ(c.t, 0);
    EXPECT_EQ(c.r, 0);
    EXPECT_EQ(c.len, 2);
    EXPECT_EQ(cpu.IrqRequest, 0);
    // F0 with IFF1 = 1: the interrupt is taken after it.
    cpu.IFF1 = cpu.IFF2 = 1;
    cpu.IntMode = 1;
    Run({FD, 0xF0});
    EXPECT_EQ(cpu.IrqRequest, 1);
    EXPECT_EQ(cpu.RegPC, 56);
    EXPECT_EQ(Peek(cpu.RegSP) | Peek(cpu.RegSP + 1) << 8, kOrg + 2);
    EXPECT_TRUE(tm.host.beeps.empty());
    cpu.IrqRequest = 0;

    Run({FD, 0xF1});
    EXPECT_EQ(cpu.NmiRequest, 1);
    EXPECT_EQ(cpu.RegPC, 102);
    ASSERT_EQ(tm.host.beeps.size(), 1u);
    EXPECT_EQ(tm.host.beeps.back(), std::make_pair(600, 500));

    m.run.RunFlag = 1;
    cpu.NmiRequest = 0;
    c = Run({FD, 0xF3});
    EXPECT_EQ(m.run.RunFlag, 0);
    EXPECT_EQ(c.t, 0);
    EXPECT_EQ(c.len, 2);
    EXPECT_EQ(tm.host.beeps.back(), std::make_pair(600, 200));

    Run({FD, 0xF2});
    EXPECT_EQ(cpu.RegPC, 0); // reset
    EXPECT_EQ(cpu.ResetRequest, 0);
    EXPECT_EQ(tm.host.beeps.back(), std::make_pair(600, 500));
    EXPECT_EQ(tm.host.beeps.size(), 3u);
}

} // namespace
} // namespace tvc::test
