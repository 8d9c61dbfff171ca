// Interrupt sampling between instructions: order, HALT, acceptance and the
// lines that stay raised.
#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

class Interrupts : public CpuTest {
  protected:
    void SetUp() override {
        CpuTest::SetUp();
        cpu.RegSP = 0xA000;
        cpu.IntMode = 1;
    }
    int32_t Stacked() { return Peek(cpu.RegSP) + 256 * Peek(cpu.RegSP + 1); }
};

TEST_F(Interrupts, HaltRepeatsUntilAnInterruptMovesPastIt) {
    tm.Load(kOrg, {0x76});
    cpu.RegR = 0;
    const int32_t t0 = cpu.TStates;
    tm.Step(3);
    EXPECT_EQ(cpu.RegPC, kOrg);
    EXPECT_EQ(cpu.Halted, 1);
    EXPECT_EQ(cpu.TStates - t0, 12);
    EXPECT_EQ(cpu.RegR, 3);

    cpu.IFF1 = cpu.IFF2 = 1;
    cpu.IrqRequest = 1;
    tm.Step(); // InterruptSampling checks where it goes and what it stacks
    EXPECT_EQ(cpu.TStates - t0, 12 + 4 + 11);
    EXPECT_EQ(cpu.RegR, 5);
    EXPECT_EQ(cpu.IFF1 + cpu.IFF2, 0);
    EXPECT_EQ(cpu.IrqRequest, 1); // stays until port 7 is written
}

// A pending line raises the request only after the instruction; EI takes
// effect at once.
TEST_F(Interrupts, PendingLineRaisesTheRequestAfterTheInstructionAndEiHasNoDelay) {
    tm.Load(kOrg, {0x00, 0x00, 0xFB, 0x00});
    cpu.IFF1 = cpu.IFF2 = 1;
    m.bus.PortLatch[0x59] &= ~0x01; // slot 0 line pending
    tm.Step();
    EXPECT_EQ(cpu.IrqRequest, 1);
    EXPECT_EQ(cpu.RegPC, kOrg + 1); // sampled before the line was looked at
    tm.Step();
    EXPECT_EQ(cpu.RegPC, 56);

    cpu.RegPC = kOrg + 2; // EI with the request still raised
    tm.Step();
    EXPECT_EQ(cpu.RegPC, 56);
    EXPECT_EQ(Stacked(), kOrg + 3);
}

TEST_F(Interrupts, NmiIsTakenAfterEveryInstructionUntilReset) {
    tm.Load(kOrg, {0x00});
    cpu.IFF1 = 1;
    cpu.NmiRequest = 1;
    tm.Step();
    EXPECT_EQ(cpu.RegPC, 102);
    EXPECT_EQ(cpu.IFF1, 0);
    EXPECT_EQ(cpu.IFF2, 1);
    tm.Step(); // the NOP at 102, then the NMI again
    EXPECT_EQ(cpu.RegPC, 102);
    EXPECT_EQ(Stacked(), 103);
    EXPECT_EQ(cpu.RegSP, 0xA000 - 4);
    EXPECT_EQ(cpu.NmiRequest, 1);
}

TEST(InterruptSampling, ResetThenNmiThenIrq) {
    struct Case {
        int reset, nmi, irq;
        int32_t pc;
    } cases[] = {{1, 1, 1, 0}, {0, 1, 1, 102}, {0, 0, 1, 56}, {1, 0, 0, 0}};
    for (const Case& k : cases) {
        TestMachine t;
        Z80& c = t.cpu();
        c.RegSP = 0xA000;
        c.IntMode = 1;
        t.Load(0x8000, {0x76}); // halted: each acceptance moves past the HALT
        t.Step();
        c.IFF1 = 1;
        c.ResetRequest = k.reset, c.NmiRequest = k.nmi, c.IrqRequest = k.irq;
        t.Step();
        EXPECT_EQ(c.RegPC, k.pc);
        EXPECT_EQ(c.Halted, 0);
        if (k.reset) {
            EXPECT_EQ(t.m().bus.PortLatch[2], 0); // paged back to ROM
            EXPECT_EQ(c.ResetRequest + c.NmiRequest + c.IrqRequest, 0);
        } else {
            EXPECT_EQ(MemRead(t.m(), 0x9FFE) | MemRead(t.m(), 0x9FFF) << 8, 0x8001);
        }
    }
}

TEST_F(Interrupts, ModeZeroOrTwoStopsTheMachine) {
    for (int mode : {0, 2}) {
        tm.host.messages.clear();
        cpu.RegSP = 0xA000;
        tm.Load(kOrg, {0x00, 0x00});
        cpu.IntMode = mode;
        cpu.IFF1 = cpu.IFF2 = 1;
        cpu.IrqRequest = 1;
        tm.Step();
        EXPECT_EQ(m.run.RunFlag, 0);
        EXPECT_EQ(cpu.RegPC, kOrg + 1);
        EXPECT_EQ(cpu.RegSP, 0xA000);
        EXPECT_EQ(cpu.IFF1 + cpu.IFF2, 0);
        ASSERT_EQ(tm.host.messages.size(), 1u);
        EXPECT_EQ(tm.host.messages[0].text, "IM MODE 0 or 2 not allowed!");
    }
}

TEST_F(Interrupts, PortSevenAcknowledges) {
    tm.Load(kOrg, {0xD3, 0x07, 0xD3, 0x07}); // OUT (7),A twice
    cpu.IrqRequest = 1;
    m.run.SoundTimer = 100000;      // keep the tone generator's interrupt out of the way
    m.bus.PortLatch[0x59] &= ~0x10; // cursor/sound line pending
    tm.Step();
    EXPECT_EQ(cpu.IrqRequest, 0);
    EXPECT_EQ(m.bus.PortLatch[0x59] & 0x10, 0x10);
}

} // namespace
} // namespace tvc::test
