// The base executor as a program sees it: branch targets, the stack and
// program counter run-off cases, the exchanges and the reset state.
#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

class BaseExecutor : public CpuTest {};

// The targets the exerciser's own loop does not reach: the restarts, a
// backward JR and DJNZ's count through zero. Taken and not taken differ in
// cost, so the timing table checks every condition.
TEST_F(BaseExecutor, BranchTargets) {
    // clang-format off
    const struct { const char* name; std::vector<uint8_t> code; int C, B; int32_t pcAfter; } cases[] = {
        {"RST 08", {0xCF}, 0, 0, 0x08},                     {"RST 38", {0xFF}, 0, 0, 0x38},
        {"JR C back", {0x38, 0x80}, 1, 0, kOrg + 2 - 128},
        {"DJNZ B=1 falls through", {0x10, 0x10}, 0, 1, kOrg + 2},
        {"DJNZ B=0 wraps and jumps", {0x10, 0x10}, 0, 0, kOrg + 0x12},
    };
    // clang-format on
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        cpu.FlagC = k.C, cpu.RegB = k.B;
        const Cost c = Run(k.code);
        EXPECT_EQ(cpu.RegPC, k.pcAfter);
        if (k.B == 0 && k.code[0] == 0x10) { EXPECT_EQ(c.t, 13); }
    }
}

TEST_F(BaseExecutor, JpCarryLoopStopsTheClock) {
    cpu.FlagC = 1;
    const int32_t f0 = m.run.FrameT;
    EXPECT_EQ(Run({0xDA, 0x00, 0x10}, 1000).t, 0); // JP C,kOrg
    EXPECT_EQ(m.run.FrameT, f0);
    EXPECT_EQ(m.run.InstCount, 1000);
}

TEST_F(BaseExecutor, CallAndRetStepTheStackPointerWithoutWrap) {
    cpu.RegSP = 0;
    Run({0xCD, 0x00, 0x90}); // CALL 0x9000
    EXPECT_EQ(cpu.RegSP, -2);
    EXPECT_EQ(cpu.RegPC, 0x9000);
    Run({0xC5}); // PUSH BC wraps back into range
    EXPECT_EQ(cpu.RegSP, 65532);

    // RET at 65535 reads 65535 and 65536 and leaves RegSP at 65537.
    cpu.RegSP = 65535;
    Poke(65535, 0x00);
    m.bus.Mem[0x10000] = 0x80; // 65536 reads video page 0 with these page registers
    Run({0xC9, 0xC1});         // RET; POP BC
    EXPECT_EQ(cpu.RegSP, 65537);
    EXPECT_EQ(cpu.RegPC, 0x8000);
    cpu.RegPC = kOrg + 1;
    tm.Step();
    EXPECT_EQ(cpu.RegSP, 3);
}

TEST_F(BaseExecutor, ProgramCounterRunsPastFFFFAndBeyondMemoryFetchesOpenBus) {
    tm.Load(0xFFFF, {0x00});   // NOP at the top of RAM
    m.bus.Mem[0x10000] = 0x3C; // INC A, where address 65536 lands
    cpu.RegA = 1;
    tm.Step(2);
    EXPECT_EQ(cpu.RegPC, 0x10001);
    EXPECT_EQ(cpu.RegA, 2);

    // With U3 mapped, an address is an index into Mem itself; past its end
    // the fetch sees 0xFF, RST 38H, which brings the program back.
    cpu.RegPC = 0x3C001;
    cpu.RegSP = 0xA000;
    tm.Step();
    EXPECT_EQ(cpu.RegPC, 0x38);
    // The return address 0x3C002 is pushed as its low 16 bits.
    EXPECT_EQ(Peek(0x9FFF) << 8 | Peek(0x9FFE), 0xC002);
}

TEST_F(BaseExecutor, ExchangesSwapWholeSets) {
    cpu.RegA = 1, cpu.RegA2 = 2;
    cpu.SetFlagsByte(0x00);
    cpu.FlagS2 = cpu.FlagZ2 = cpu.FlagY2 = cpu.FlagH2 = cpu.FlagX2 = cpu.FlagP2 = cpu.FlagN2 =
        cpu.FlagC2 = 1;
    cpu.SetBC(0x1111), cpu.SetDE(0x2222), cpu.SetHL(0x3333);
    cpu.RegB2 = cpu.RegC2 = cpu.RegD2 = cpu.RegE2 = cpu.RegH2 = cpu.RegL2 = 0x44;
    Run({0x08, 0xD9}, 2); // EX AF,AF'; EXX
    EXPECT_EQ(cpu.RegA, 2);
    EXPECT_EQ(cpu.RegA2, 1);
    EXPECT_EQ(Flags(), 0xFF);
    EXPECT_EQ(cpu.FlagC2, 0);
    EXPECT_EQ(cpu.BC(), 0x4444);
    EXPECT_EQ(cpu.HL(), 0x4444);
    EXPECT_EQ(cpu.RegB2, 0x11);
    EXPECT_EQ(cpu.RegL2, 0x33);
}

TEST_F(BaseExecutor, CpuResetState) {
    Z80& c = cpu;
    c.RegPC = 0x1234, c.RegI = 5, c.IntMode = 1, c.IFF1 = c.IFF2 = 1, c.Halted = 1;
    const int32_t t0 = c.TStates;
    c.CpuReset();
    for (int32_t r : {c.RegA, c.RegB, c.RegC, c.RegD, c.RegE, c.RegH, c.RegL, c.RegA2, c.RegB2,
                      c.RegC2, c.RegD2, c.RegE2, c.RegH2, c.RegL2})
        EXPECT_EQ(r, 255);
    EXPECT_EQ(c.RegIX & c.RegIY & c.RegSP, 65535);
    EXPECT_EQ(c.FlagsByte(), 0xFF);
    EXPECT_EQ(c.FlagS2 & c.FlagZ2 & c.FlagY2 & c.FlagH2 & c.FlagX2 & c.FlagP2 & c.FlagN2 & c.FlagC2,
              1);
    EXPECT_EQ(c.RegPC | c.RegI | c.RegR | c.IntMode | c.IFF1 | c.IFF2 | c.Halted, 0);
    EXPECT_EQ(c.TStates, t0 + 3);
}

} // namespace
} // namespace tvc::test
