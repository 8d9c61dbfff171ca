// The base executor as a program sees it: cost, RegR step and where RegPC
// goes for the rows whose cost is not the published one, the conditional
// rows both ways, and the stack and program counter run-off cases.
#include <gtest/gtest.h>

#include "core/RunLoop.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"
#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

constexpr int32_t kOrg = 0x8000; // in RAM U2 with the test paging

// Where RegPC goes after each kind of transfer, both ways for the
// conditional ones; their costs and RegR steps are checked table-wide in
// base_timing_test.cpp and BaseRStep below.
TEST(BaseExecutor, BranchTargets) {
    const int32_t ret = 0x1234; // what RET and RET cc pop
    // clang-format off
    const struct { const char* name; std::vector<uint8_t> code; int Z, C, B; int32_t pcAfter; } cases[] = {
        {"RST 08", {0xCF}, 0, 0, 0, 0x08},                 {"RST 38", {0xFF}, 0, 0, 0, 0x38},
        {"RET", {0xC9}, 0, 0, 0, ret},                     {"RET NZ taken", {0xC0}, 0, 0, 0, ret},
        {"RET NZ not taken", {0xC0}, 1, 0, 0, kOrg + 1},   {"RET C taken", {0xD8}, 0, 1, 0, ret},
        {"JP nn", {0xC3, 0x00, 0x90}, 0, 0, 0, 0x9000},    {"JP NZ taken", {0xC2, 0x00, 0x90}, 0, 0, 0, 0x9000},
        {"JP NZ not taken", {0xC2, 0x00, 0x90}, 1, 0, 0, kOrg + 3},
        {"JP C taken", {0xDA, 0x00, 0x90}, 0, 1, 0, 0x9000},
        {"JP C not taken", {0xDA, 0x00, 0x90}, 0, 0, 0, kOrg + 3},
        {"JR e", {0x18, 0xFE}, 0, 0, 0, kOrg},             {"JR NZ taken", {0x20, 0x10}, 0, 0, 0, kOrg + 0x12},
        {"JR NZ not taken", {0x20, 0x10}, 1, 0, 0, kOrg + 2}, {"JR C back", {0x38, 0x80}, 0, 1, 0, kOrg + 2 - 128},
        {"DJNZ B=1 falls through", {0x10, 0x10}, 0, 0, 1, kOrg + 2},
        {"DJNZ B=0 wraps and jumps", {0x10, 0x10}, 0, 0, 0, kOrg + 0x12},
        {"CALL Z taken", {0xCC, 0x00, 0x90}, 1, 0, 0, 0x9000},
        {"CALL Z not taken", {0xCC, 0x00, 0x90}, 0, 0, 0, kOrg + 3}, {"HALT", {0x76}, 0, 0, 0, kOrg},
    };
    // clang-format on
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        TestMachine t;
        Z80& c = t.cpu();
        t.Load(kOrg, k.code);
        c.RegSP = 0xA000;
        MemWrite(t.m(), 0xA000, ret & 255);
        MemWrite(t.m(), 0xA001, ret >> 8);
        c.FlagZ = k.Z, c.FlagC = k.C, c.RegB = k.B;
        const int32_t t0 = c.TStates;
        t.Step();
        EXPECT_EQ(c.RegPC, k.pcAfter);
        if (k.B == 0 && k.code[0] == 0x10) { EXPECT_EQ(c.TStates - t0, 13); }
    }
}

TEST(BaseExecutor, PrefixStageCostsNothingAndOpensTheNextStage) {
    for (int prefix : {0xCB, 0xDD, 0xED, 0xFD}) {
        TestMachine t;
        Z80& c = t.cpu();
        t.Load(kOrg, {static_cast<uint8_t>(prefix)});
        c.RegR = 0;
        const int32_t t0 = c.TStates;
        c.CurOpcode = prefix;
        c.xx();
        EXPECT_EQ(c.PrefixState, prefix);
        EXPECT_EQ(c.RegPC, kOrg + 1);
        EXPECT_EQ(c.TStates, t0);
        EXPECT_EQ(c.RegR, 0);
    }
}

TEST(BaseExecutor, JpCarryLoopStopsTheClock) {
    TestMachine t;
    t.Load(kOrg, {0xDA, 0x00, 0x80}); // JP C,0x8000
    t.cpu().FlagC = 1;
    const int32_t t0 = t.cpu().TStates, f0 = t.m().run.FrameT;
    t.Step(1000);
    EXPECT_EQ(t.cpu().TStates, t0);
    EXPECT_EQ(t.m().run.FrameT, f0);
    EXPECT_EQ(t.m().run.InstCount, 1000);
}

TEST(BaseExecutor, PushPopAfKeepsAllEightFlags) {
    TestMachine t;
    Z80& c = t.cpu();
    t.Load(kOrg, {0xF5, 0xF1}); // PUSH AF; POP AF
    c.RegSP = 0xA000;
    for (int f : {0x00, 0xFF, 0x28, 0xD7, 0x01, 0x80}) {
        c.RegPC = kOrg;
        c.SetFlagsByte(f);
        t.Step();
        EXPECT_EQ(MemRead(t.m(), 0x9FFE), f);
        c.SetFlagsByte(f ^ 0xFF);
        t.Step();
        EXPECT_EQ(c.FlagsByte(), f);
    }
}

TEST(BaseExecutor, CallAndRetStepTheStackPointerWithoutWrap) {
    TestMachine t;
    Z80& c = t.cpu();
    t.Load(kOrg, {0xCD, 0x00, 0x90}); // CALL 0x9000
    c.RegSP = 0;
    t.Step();
    EXPECT_EQ(c.RegSP, -2);
    EXPECT_EQ(c.RegPC, 0x9000);

    t.Load(kOrg, {0xC5}); // PUSH BC wraps back into range
    t.Step();
    EXPECT_EQ(c.RegSP, 65532);

    // RET at 65535 reads 65535 and 65536 and leaves RegSP at 65537.
    t.Load(kOrg, {0xC9, 0xC1}); // RET; POP BC
    c.RegSP = 65535;
    MemWrite(t.m(), 65535, 0x00);
    t.m().bus.Mem[0x10000] = 0x80; // 65536 reads video page 0 with these page registers
    t.Step();
    EXPECT_EQ(c.RegSP, 65537);
    EXPECT_EQ(c.RegPC, 0x8000);
    c.RegPC = kOrg + 1;
    t.Step();
    EXPECT_EQ(c.RegSP, 3);
}

TEST(BaseExecutor, ProgramCounterRunsPastFFFFWithoutWrapping) {
    TestMachine t;
    Z80& c = t.cpu();
    t.Load(0xFFFF, {0x00});        // NOP at the top of RAM
    t.m().bus.Mem[0x10000] = 0x3C; // INC A, where address 65536 lands
    c.RegA = 1;
    t.Step(2);
    EXPECT_EQ(c.RegPC, 0x10001);
    EXPECT_EQ(c.RegA, 2);
}

TEST(BaseExecutor, RunAwayBeyondMemoryFetchesOpenBus) {
    TestMachine t;
    Z80& c = t.cpu();
    // With U3 mapped, an address is an index into Mem itself; past its end
    // the fetch sees 0xFF, RST 38H, which brings the program back.
    c.RegPC = 0x3C001;
    c.RegSP = 0xA000;
    t.Step();
    EXPECT_EQ(c.RegPC, 0x38);
    // The return address 0x3C002 is pushed as its low 16 bits.
    EXPECT_EQ(MemRead(t.m(), 0x9FFF), 0xC0);
    EXPECT_EQ(MemRead(t.m(), 0x9FFE), 0x02);
}

TEST(BaseExecutor, ExchangesSwapWholeSets) {
    TestMachine t;
    Z80& c = t.cpu();
    t.Load(kOrg, {0x08, 0xD9});
    c.RegA = 1, c.RegA2 = 2;
    c.SetFlagsByte(0x00);
    c.FlagS2 = c.FlagZ2 = c.FlagY2 = c.FlagH2 = c.FlagX2 = c.FlagP2 = c.FlagN2 = c.FlagC2 = 1;
    c.SetBC(0x1111), c.SetDE(0x2222), c.SetHL(0x3333);
    c.RegB2 = c.RegC2 = c.RegD2 = c.RegE2 = c.RegH2 = c.RegL2 = 0x44;
    t.Step(2);
    EXPECT_EQ(c.RegA, 2);
    EXPECT_EQ(c.RegA2, 1);
    EXPECT_EQ(c.FlagsByte(), 0xFF);
    EXPECT_EQ(c.FlagC2, 0);
    EXPECT_EQ(c.BC(), 0x4444);
    EXPECT_EQ(c.HL(), 0x4444);
    EXPECT_EQ(c.RegB2, 0x11);
    EXPECT_EQ(c.RegL2, 0x33);
}

TEST(BaseExecutor, CpuResetState) {
    TestMachine t;
    Z80& c = t.cpu();
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

class BaseRStep : public CpuTest {};

// RegR steps by 1 for every base instruction but the stated exceptions: RET cc
// taken or not 2, RST 2 (RST 38H 1), IN A,(n) 3, EX (SP),HL 2, JP NZ taken 0.
TEST_F(BaseRStep, EveryOpcodeFollowsTheRule) {
    for (int op = 0; op < 256; ++op) {
        if (op == 0xCB || op == 0xDD || op == 0xED || op == 0xFD)
            continue; // whole groups elsewhere
        for (int flags : {0x00, 0xFF}) {
            SetUp();
            cpu.SetFlagsByte(flags);
            cpu.SetHL(0x9100);
            cpu.RegB = 5;
            Poke(0xE000, 0x34);
            Poke(0xE001, 0x12);
            const bool retcc = (op & 0xC7) == 0xC0, rst = (op & 0xC7) == 0xC7 && op != 0xFF;
            const int step = retcc || rst || op == 0xE3    ? 2
                             : op == 0xDB                  ? 3
                             : op == 0xC2 && !(flags & fZ) ? 0
                                                           : 1;
            EXPECT_EQ(Run({uint8_t(op), 0x00, 0x90}).r, step)
                << Hex({uint8_t(op)}) << " F " << flags;
        }
    }
}

} // namespace
} // namespace tvc::test
