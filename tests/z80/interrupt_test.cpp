// Interrupt sampling between instructions: order, HALT, acceptance and the
// lines that stay raised.
#include <gtest/gtest.h>

#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

constexpr int32_t kOrg = 0x8000;

struct IrqSetup {
    TestMachine t;
    IrqSetup() {
        t.cpu().RegSP = 0xA000;
        t.cpu().IntMode = 1;
    }
    int32_t Stacked() {
        return MemRead(t.m(), t.cpu().RegSP) + 256 * MemRead(t.m(), t.cpu().RegSP + 1);
    }
};

TEST(Interrupts, HaltRepeatsUntilAnInterruptMovesPastIt) {
    IrqSetup s;
    Z80& c = s.t.cpu();
    s.t.Load(kOrg, {0x76});
    c.RegR = 0;
    const int32_t t0 = c.TStates;
    s.t.Step(3);
    EXPECT_EQ(c.RegPC, kOrg);
    EXPECT_EQ(c.Halted, 1);
    EXPECT_EQ(c.TStates - t0, 12);
    EXPECT_EQ(c.RegR, 3);

    c.IFF1 = c.IFF2 = 1;
    c.IrqRequest = 1;
    s.t.Step();
    EXPECT_EQ(c.RegPC, 56);
    EXPECT_EQ(c.Halted, 0);
    EXPECT_EQ(s.Stacked(), kOrg + 1);
    EXPECT_EQ(c.TStates - t0, 12 + 4 + 11);
    EXPECT_EQ(c.RegR, 5);
    EXPECT_EQ(c.IFF1 + c.IFF2, 0);
    EXPECT_EQ(c.IrqRequest, 1); // stays until port 7 is written
}

TEST(Interrupts, PendingLineRaisesTheRequestAfterTheInstruction) {
    IrqSetup s;
    Z80& c = s.t.cpu();
    s.t.Load(kOrg, {0x00, 0x00});
    c.IFF1 = c.IFF2 = 1;
    s.t.m().bus.PortLatch[0x59] &= ~0x01; // slot 0 line pending
    s.t.Step();
    EXPECT_EQ(c.IrqRequest, 1);
    EXPECT_EQ(c.RegPC, kOrg + 1); // sampled before the line was looked at
    s.t.Step();
    EXPECT_EQ(c.RegPC, 56);
}

TEST(Interrupts, EiHasNoDelay) {
    IrqSetup s;
    Z80& c = s.t.cpu();
    s.t.Load(kOrg, {0xFB, 0x00});
    c.IrqRequest = 1;
    s.t.Step();
    EXPECT_EQ(c.RegPC, 56);
    EXPECT_EQ(s.Stacked(), kOrg + 1);
}

TEST(Interrupts, NmiIsTakenAfterEveryInstructionUntilReset) {
    IrqSetup s;
    Z80& c = s.t.cpu();
    s.t.Load(kOrg, {0x00});
    c.IFF1 = 1;
    c.NmiRequest = 1;
    s.t.Step();
    EXPECT_EQ(c.RegPC, 102);
    EXPECT_EQ(c.IFF1, 0);
    EXPECT_EQ(c.IFF2, 1);
    s.t.Step(); // the NOP at 102, then the NMI again
    EXPECT_EQ(c.RegPC, 102);
    EXPECT_EQ(s.Stacked(), 103);
    EXPECT_EQ(c.RegSP, 0xA000 - 4);
    EXPECT_EQ(c.NmiRequest, 1);
}

TEST(Interrupts, SamplingOrderResetThenNmiThenIrq) {
    struct Case {
        int reset, nmi, irq;
        int32_t pc;
    } cases[] = {{1, 1, 1, 0}, {0, 1, 1, 102}, {0, 0, 1, 56}, {1, 0, 0, 0}};
    for (const Case& k : cases) {
        IrqSetup s;
        Z80& c = s.t.cpu();
        s.t.Load(kOrg, {0x76}); // halted: each acceptance moves past the HALT
        s.t.Step();
        c.IFF1 = 1;
        c.ResetRequest = k.reset, c.NmiRequest = k.nmi, c.IrqRequest = k.irq;
        s.t.Step();
        EXPECT_EQ(c.RegPC, k.pc);
        EXPECT_EQ(c.Halted, 0);
        if (k.reset) {
            EXPECT_EQ(s.t.m().bus.PortLatch[2], 0); // paged back to ROM
            EXPECT_EQ(c.ResetRequest + c.NmiRequest + c.IrqRequest, 0);
        } else {
            EXPECT_EQ(s.Stacked(), kOrg + 1);
        }
    }
}

TEST(Interrupts, ModeZeroOrTwoStopsTheMachine) {
    for (int mode : {0, 2}) {
        IrqSetup s;
        Z80& c = s.t.cpu();
        s.t.Load(kOrg, {0x00, 0x00});
        c.IntMode = mode;
        c.IFF1 = c.IFF2 = 1;
        c.IrqRequest = 1;
        s.t.Step();
        EXPECT_EQ(s.t.m().run.RunFlag, 0);
        EXPECT_EQ(c.RegPC, kOrg + 1);
        EXPECT_EQ(c.RegSP, 0xA000);
        EXPECT_EQ(c.IFF1 + c.IFF2, 0);
        ASSERT_EQ(s.t.host.messages.size(), 1u);
        EXPECT_EQ(s.t.host.messages[0].text, "IM MODE 0 or 2 not allowed!");
    }
}

TEST(Interrupts, PortSevenAcknowledges) {
    IrqSetup s;
    Z80& c = s.t.cpu();
    s.t.Load(kOrg, {0xD3, 0x07, 0xD3, 0x07}); // OUT (7),A twice
    c.IrqRequest = 1;
    s.t.m().run.SoundTimer = 100000;      // keep the tone generator's interrupt out of the way
    s.t.m().bus.PortLatch[0x59] &= ~0x10; // cursor/sound line pending
    s.t.Step();
    EXPECT_EQ(c.IrqRequest, 0);
    EXPECT_EQ(s.t.m().bus.PortLatch[0x59] & 0x10, 0x10);

    // With interrupts enabled and a card line still pending, the request is
    // raised again by the end of the same pass.
    c.IFF1 = 1;
    s.t.m().bus.PortLatch[0x59] &= ~0x02;
    c.IrqRequest = 1;
    c.IntMode = 1;
    s.t.Step();
    EXPECT_EQ(c.IrqRequest, 1);
}

} // namespace
} // namespace tvc::test
