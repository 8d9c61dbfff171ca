// The run loop around the instructions.
#include <gtest/gtest.h>

#include "core/RunLoop.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

constexpr int32_t kOrg = 0x8000;

// A machine running NOPs all over U2 and U3 (RAM is zero).
struct NopMachine : TestMachine {
    NopMachine() { cpu().RegPC = kOrg; }
};

TEST(RunLoop, ToneTimerRaisesTheSoundLineOnlyWhenEnabled) {
    const struct {
        bool check3;
        int p5;
        bool raised;
    } cases[] = {{true, 0x2F, true}, {false, 0x2F, false}, {true, 0x0F, false}};
    for (const auto& k : cases) {
        NopMachine t;
        t.m().forms.TVCmon.Check3 = k.check3;
        t.m().bus.PortLatch[5] = static_cast<uint8_t>(k.p5);
        t.m().bus.PortLatch[4] = 0xFF; // reload 16 T-states: four NOPs
        t.m().run.SoundTimer = 8;
        t.Step(1);
        EXPECT_EQ(t.m().run.SoundTimer, 4);
        EXPECT_EQ(t.m().bus.PortLatch[0x59] & 0x10, 0x10);
        t.Step(1); // runs out at 0: reloaded, the overshoot dropped
        EXPECT_EQ(t.m().run.SoundTimer, 16);
        EXPECT_EQ((t.m().bus.PortLatch[0x59] & 0x10) == 0, k.raised);
    }
}

// With rows on screen and a cursor start line below 4, the cursor (8 + 392
// = raster position 400) fires at positions 400 and 401 (FrameT 5440 to
// 5467): once per advance of FrameT, so once for each 4-T-state NOP there.
TEST(RunLoop, CursorInterruptFiresWhileTheRasterIsAtTheCursor) {
    const struct {
        int rows, start;
        std::vector<int32_t> fired;
    } cases[] = {{10, 0, {5440, 5444, 5448, 5452, 5456, 5460, 5464}}, {0, 0, {}}, {10, 4, {}}};
    for (const auto& k : cases) {
        NopMachine t;
        int32_t* reg = t.m().crtc.CrtcReg;
        reg[6] = k.rows, reg[10] = k.start, reg[14] = 0, reg[15] = 8;
        t.m().run.SoundTimer = 1 << 30;
        std::vector<int32_t> firedAt;
        for (int i = 0; i < 62500 / 4; ++i) {
            t.Step();
            if (!(t.m().bus.PortLatch[0x59] & 0x10)) {
                firedAt.push_back(t.m().run.FrameT);
                t.m().bus.PortLatch[0x59] |= 0x10; // acknowledged at once
            }
        }
        EXPECT_EQ(firedAt, k.fired) << k.rows << " " << k.start;
    }
}

TEST(RunLoop, FrameBoundaryWork) {
    NopMachine t;
    RunState& r = t.m().run;
    const int32_t instructionsPerFrame = 62500 / 4 + 1; // detected one instruction late
    t.Step(instructionsPerFrame);
    EXPECT_EQ(r.FrameCount, 1u);
    EXPECT_EQ(r.FrameT, 4);
    EXPECT_EQ(r.LastCursorIrqT, 4);
    EXPECT_EQ(r.TotalT, 62500LL * 10000);
    EXPECT_EQ(t.host.doEvents, 2);
    EXPECT_EQ(t.m().sound.BlockIndex, 1);

    // Pictures come when BlockIndex is 1 or 3: two in every five frames.
    t.Step(instructionsPerFrame * 10);
    EXPECT_EQ(r.FrameCount, 11u);
    EXPECT_EQ(t.host.pictures, 4);
    EXPECT_GE(t.cpu().TStates, 0);
    EXPECT_LE(t.cpu().TStates, 62500 + 4);
}

TEST(RunLoop, HaltWithInterruptsOffRunsOnThroughFrames) {
    TestMachine t;
    t.Load(kOrg, {0x76});
    t.Step(62500 / 4 * 3);
    EXPECT_EQ(t.m().run.FrameCount, 2u);
    EXPECT_EQ(t.cpu().RegPC, kOrg);
    EXPECT_EQ(t.cpu().Halted, 1);
}

TEST(RunLoop, BreakpointStopsOnTheNextInstructionsAddress) {
    const struct {
        uint8_t armed;
        bool check2;
        const char* text;
        bool stops;
    } cases[] = {{1, true, "32770", true},
                 {0, true, "32770", false},
                 {1, false, "32770", false},
                 {1, true, "65536", false}};
    for (const auto& k : cases) {
        NopMachine t;
        t.m().run.BreakpointArmed = k.armed;
        t.m().forms.CPUmon.Check2 = k.check2;
        t.m().forms.CPUmon.Text5 = k.text;
        t.Step(1);
        EXPECT_EQ(t.m().run.RunFlag, 1);
        t.Step(1);
        EXPECT_EQ(t.m().run.RunFlag == 0, k.stops) << k.text;
        EXPECT_EQ(t.host.monitorRedraws, k.stops ? 1 : 0);
    }
}

TEST(RunLoop, LastTenAddressesAndInstructionCount) {
    TestMachine t;
    // DD 00 is one instruction of two bytes, whatever xxDD makes of it.
    std::vector<uint8_t> code(12, 0x00);
    code[3] = 0xDD;
    t.Load(kOrg, code);
    t.Step(11);
    EXPECT_EQ(t.m().run.InstCount, 11);
    EXPECT_EQ(t.m().run.LastPcRing(9), kOrg + 11);
    EXPECT_EQ(t.m().run.LastPcRing(7), kOrg + 4 + 5);
    EXPECT_EQ(t.m().run.LastPcRing(0), kOrg + 1);
    EXPECT_EQ(t.m().run.LastPcRing(2), kOrg + 3); // the DD sequence counts once
}

TEST(RunLoop, WithRunFlagClearItPerformsOnePassAndShowsTheStop) {
    NopMachine t;
    t.m().run.RunFlag = 0;
    t.m().forms.CPUmon.Command6Color = -1;
    RunLoop(t.m());
    EXPECT_EQ(t.cpu().RegPC, kOrg + 1);
    EXPECT_EQ(t.m().forms.CPUmon.Command6Color, 255);
    EXPECT_EQ(t.host.monitorRedraws, 1);

    t.cpu().PrefixState = 12345; // an impossible prefix state is fatal
    RunLoop(t.m());
    ASSERT_EQ(t.host.fatals.size(), 1u);
    EXPECT_EQ(t.host.fatals[0].text, "12345=Unknown prefix");
    EXPECT_EQ(t.host.fatals[0].title, "CPU ERROR!");
    EXPECT_EQ(t.m().run.RunFlag, 0);
}

// A handler at a yield point that starts the loop again gets no second loop:
// its call returns at once and the running loop goes on to its own test.
TEST(RunLoop, AnotherCallWhileRunningReturnsAtOnce) {
    struct ReenteringHost : RecordingHost {
        Machine* m = nullptr;
        int nestedPasses = -1;
        void DoEvents() override {
            if (nestedPasses >= 0) return;
            const int32_t before = m->run.InstCount;
            RunLoop(*m);
            nestedPasses = m->run.InstCount - before;
            m->run.RunFlag = 0;
        }
    };
    ReenteringHost host;
    ScratchDir dir;
    WriteRomSet(dir);
    Machine m(host);
    host.m = &m;
    MachineInit(m);
    MachineReset(m);
    m.bus.PortLatch[2] = 0xB0;
    m.cpu.RegPC = kOrg;
    m.run.RunFlag = 1;
    RunLoop(m);
    EXPECT_EQ(host.nestedPasses, 0);
    EXPECT_FALSE(m.run.Running);
    EXPECT_EQ(host.monitorRedraws, 1); // one stop, shown once
}

TEST(RunLoop, RegisterRIsMaskedAfterEachInstruction) {
    TestMachine t;
    t.Load(kOrg, {0x00, 0xED, 0x5F}); // NOP; LD A,R
    t.cpu().RegR = 255;
    t.Step();
    EXPECT_EQ(t.cpu().RegR, 0);
}

} // namespace
} // namespace tvc::test
