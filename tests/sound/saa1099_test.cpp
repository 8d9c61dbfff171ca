// The SAA1099: its frequency table, write path, level and envelope passes.
#include <gtest/gtest.h>

#include <cmath>

#include "core/Numbers.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Reg(Machine& m, int reg, int value) {
    int32_t r = reg, v = value; // through the machine's ports
    PortOut(m, 0xFF, r);
    PortOut(m, 0xFE, v);
}

int TableRule(int oct, int f) {
    const double fixed = std::floor(15625.0 * std::pow(2, oct) / (511 - f) * 8192);
    return int(RoundHalfEven(fixed / 8192));
}

TEST(Saa1099, FrequencyTableAndWritePath) {
    TestMachine t;
    Machine& m = t.m();
    const Saa1099& s = m.saa;
    EXPECT_EQ(s.SaaFreqTable[2047], 7812); // 64,000,000 / 8192 = 7812.5, to even
    for (int i = 0; i < 2048; ++i)
        ASSERT_EQ(s.SaaFreqTable[i], TableRule(i / 256, i % 256)) << i;
    Reg(m, 3, 0x9C);
    Reg(m, 0x20 | 12, 0xAB); // the latch keeps five bits
    Reg(m, 17, 0x53);
    Reg(m, 20, 0x25);
    Reg(m, 21, 0x3A);
    Reg(m, 22, 0x21);
    Reg(m, 25, 0xBB);
    Reg(m, 28, 0x03);
    Reg(m, 6, 0xFF); // not a register: ignored
    EXPECT_EQ(std::vector<int>(s.SaaAmp, s.SaaAmp + 12),
              std::vector<int>({0, 0, 0, 0xC, 0, 0, 0, 0, 0, 0x9, 0, 0}));
    EXPECT_EQ(s.SaaFreq[4], 0xAB);
    EXPECT_EQ(s.SaaOctave[2] * 16 + s.SaaOctave[3], 0x35);
    EXPECT_EQ(std::vector<int>(s.SaaToneEnable, s.SaaToneEnable + 6),
              std::vector<int>({1, 0, 1, 0, 0, 1}));
    EXPECT_EQ(std::vector<int>(s.SaaNoiseEnable, s.SaaNoiseEnable + 6),
              std::vector<int>({0, 1, 0, 1, 1, 1}));
    EXPECT_EQ(s.SaaNoiseRate[0] * 16 + s.SaaNoiseRate[1], 0x12);
    const SaaEnvelope& e = s.SaaEnv[1];
    EXPECT_EQ(e.Enable + e.InvertRight * 2 + e.ExternalClock * 4 + e.Fine * 8 + e.Shape * 16,
              1 + 2 + 4 + 8 + 5 * 16);
    EXPECT_EQ(s.SaaAllEnable + s.SaaSync, 2);

    m.forms.Fsaa.Check2 = true; // "Manual": both ports dropped
    Reg(m, 0, 0x77);
    EXPECT_EQ(s.SaaAmp[0], 0);
    EXPECT_EQ(s.SaaLatch, 6);
}

TEST(Saa1099, SilenceAllEnableAndSyncLeaveThePhasesStanding) {
    const struct {
        const char* what;
        int amp, reg28;
    } cases[] = {{"no amplitude", 0, 1}, {"all-enable clear", 0xFF, 0}, {"sync", 0xFF, 3}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 8, 200), Reg(m, 0, 0xFF), Reg(m, 20, 1), Reg(m, 28, 1);
        m.saa.SaaTonePhase[0] = 0.25;
        SaaRender(m); // a loud block first: nothing of it may stay
        Reg(m, 0, k.amp);
        Reg(m, 28, k.reg28);
        m.saa.SaaTonePhase[0] = 0.25;
        SaaRender(m);
        for (int i = 0; i < 441; ++i)
            ASSERT_EQ(m.saa.SaaLeft[i] | m.saa.SaaRight[i], 0) << k.what;
        EXPECT_EQ(m.saa.SaaTonePhase[0], 0.25) << k.what;
    }
    TestMachine t; // sync: the register file cleared, all-enable and rates kept, bit cleared
    Reg(t.m(), 0, 0xFF), Reg(t.m(), 22, 0x33), Reg(t.m(), 28, 3);
    SaaRender(t.m());
    EXPECT_EQ(t.m().saa.SaaAmp[0], 0);
    EXPECT_EQ(t.m().saa.SaaSync, 0);
    EXPECT_EQ(t.m().saa.SaaAllEnable, 1);
    EXPECT_EQ(t.m().saa.SaaNoiseRate[1], 3);
}

// Envelope 0 clocked by channel 1 at octave 4, byte 255, "Fine".
TEST(Saa1099, EnvelopeShapesOverTwoBlocks) {
    const double adv = TableRule(4, 255) / 4.0 / 11025;
    auto expected = [&](int shape, int i, int block) {
        const double one = i * adv, run = (block * 441 + i) * adv;
        const double kept = run - std::floor(run);
        switch (shape) {
        case 0: return 0.0;
        case 1: return 250.0;
        case 2: return one < 1 ? (1 - one) * 250 : 0;
        case 3: return (1 - kept) * 250;
        case 4: return one < 1 ? (one <= 0.5 ? 500 * one : 500 * (1 - one)) : 0;
        case 5: return std::fabs(kept - 0.5) * 500;
        case 6: return one < 1 ? 250 * one : 0;
        default: return kept * 250;
        }
    };
    for (int shape = 0; shape < 8; ++shape) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 9, 255), Reg(m, 16, 0x40), Reg(m, 2, 0xFF), Reg(m, 28, 1);
        Reg(m, 24, 0x90 | shape << 1);
        for (int block = 0; block < 2; ++block) {
            SaaRender(m);
            for (int i = 0; i < 441; i += 3)
                ASSERT_NEAR(m.saa.Env[0][i], expected(shape, i, block), 1.01)
                    << shape << " " << block << " " << i;
        }
        EXPECT_EQ(m.forms.Fsaa.Label8, kSaaShapeNames[shape]);
        EXPECT_EQ(m.saa.LeftMatrix[2][0],
                  RoundHalfEven(m.saa.Env[0][0] * (RoundHalfEven(255 / 31.0 * 15) / 255.0)));
    }
}

TEST(Saa1099, NoiseRatesAndTheBorrowedRule) {
    const struct {
        int reg22;
        double hz0, hz1;
    } cases[] = {
        {0x00, 10500, 10500},
        {0x21, 6500, 4000},
        {0x03, 2 * 7812.0, 2 * 31.0},
        {0x32, 4000, 4000 / 11025.0}, // noise 1 takes noise 0's step as its rate
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 8, 255), Reg(m, 16, 7), Reg(m, 0, 1), Reg(m, 28, 1), Reg(m, 22, k.reg22);
        SaaRender(m);
        const double hz[] = {k.hz0, k.hz1};
        for (int g = 0; g < 2; ++g) {
            int changes = 0;
            for (int i = 1; i < 441; ++i)
                changes += m.saa.Noise[g][i] != m.saa.Noise[g][i - 1];
            // a new value at every toggle, but for the odd repeated byte
            const double toggles = std::min(441.0, std::floor(440 * hz[g] / 11025 + 1e-9));
            EXPECT_NEAR(changes, toggles, toggles * 0.03 + 2) << k.reg22 << " " << g;
        }
    }
}

} // namespace
} // namespace tvc::test
