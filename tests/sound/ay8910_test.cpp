// The AY-3-8910: volume law, decode and masks, tones, the envelope shapes
// and their restarts, mixing and levels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/Numbers.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Reg(Machine& m, int reg, int value) {
    AyWrite(m, 0x3A, static_cast<uint8_t>(reg));
    AyWrite(m, 0x3B, static_cast<uint8_t>(value));
}

TEST(Ay8910, VolumeLawAndReset) {
    TestMachine t;
    Machine& m = t.m();
    EXPECT_EQ(m.ay.AyVolume[0], 0);
    for (int k = 1; k < 16; ++k)
        EXPECT_FLOAT_EQ(m.ay.AyVolume[k], std::pow(0.75, 15 - k)) << k;
    EXPECT_EQ(m.ay.AyRegs[7], 255);
    Reg(m, 8, 15);
    AyRender(m); // mixer all off: exact silence
    EXPECT_TRUE(std::all_of(std::begin(m.ay.AyOut), std::end(m.ay.AyOut),
                            [](int16_t v) { return v == 0; }));
    EXPECT_EQ(m.ay.AyPhase[0], 0);
}

TEST(Ay8910, DecodeMasksInPlaceAndIgnoresHighLatches) {
    TestMachine t;
    Machine& m = t.m();
    for (int r : {1, 3, 5, 6})
        Reg(m, r, 0xFF);
    Reg(m, 16, 0x55); // no such register
    Reg(m, 0, 0x34), Reg(m, 11, 0x10), Reg(m, 12, 0x02), Reg(m, 7, 0x2A);
    AyRender(m);
    const int32_t* r = m.ay.AyRegs;
    EXPECT_EQ(r[1] + r[3] * 16 + r[5] * 256 + r[6] * 4096, 15 + 15 * 16 + 15 * 256 + 31 * 4096);
    EXPECT_EQ(m.ay.AyChannel[0].Period, (0x34 + 15 * 256) * 2);
    EXPECT_EQ(m.ay.AyNoise.NoisePeriod, 62);
    EXPECT_EQ(m.ay.AyEnv.EnvPeriod, (0x10 + 0x200) * 2);
    const int mixes[] = {~0x2A & 9, ~0x2A & 18, ~0x2A & 36};
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(m.ay.AyChannel[c].Mix, mixes[c]);
}

TEST(Ay8910, ToneFrequencyAndLevels) {
    const struct { int period, amp; } cases[] = {{254, 15}, {0, 15}, {1, 9}, {1000, 3}, {4095, 15}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 2, k.period & 255), Reg(m, 3, k.period >> 8), Reg(m, 7, 0x3D), Reg(m, 9, k.amp);
        const int hz =
            int(std::min<int64_t>(RoundHalfEven(111861.0 / std::max(k.period * 2, 1)), 11000));
        int edges = 0;
        int16_t prev = 0;
        for (int b = 0; b < 50; ++b) {
            AyRender(m);
            for (int16_t v : m.ay.AyOut)
                edges += prev < 0 && v > 0, prev = v;
        }
        EXPECT_EQ(m.ay.AyChannel[1].Freq, hz);
        // Each turn of the phase is a whole period at 22,050 Hz, so the square
        // turns twice per step's hertz, folded about the sample rate.
        const int turns = 2 * hz,
                  folded = std::abs(turns - 22050 * int(std::lround(turns / 22050.0)));
        EXPECT_NEAR(edges, folded, folded * 0.01 + 1) << k.period;
        const int peak = int(RoundHalfEven(std::pow(0.75, 15 - k.amp) * 16));
        EXPECT_EQ(*std::max_element(std::begin(m.ay.AyOut), std::end(m.ay.AyOut)), peak);
        EXPECT_EQ(*std::min_element(std::begin(m.ay.AyOut), std::end(m.ay.AyOut)), -peak);
    }
}

// The envelope level at samples 100 and 440 of the first block and at
// sample 100 of the second, with a step of 14 / 11025 (period register 256:
// round(111861 / 512 / 16) = 14 Hz). Shapes that fall back to 0 start again
// at each block; the others run on or hold.
TEST(Ay8910, EnvelopeShapesFollowTheTable) {
    const double step = 14 / 11025.0, p1 = 101 * step, p2 = 441 * step, p3 = 542 * step;
    const struct {
        int shape;
        double at100, at440, again;
    } cases[] = {
        {0, 1 - 2 * p1, 0, 0},
        {9, 1 - 2 * p1, 0, 0},
        {4, 2 * p1, 0, 2 * p1},
        {15, 2 * p1, 0, 2 * p1},
        {8, 1 - 2 * p1, 2 - 2 * p2, 2 - 2 * p3},
        {10, 1 - 2 * p1, 2 * p2 - 1, 2 * p3 - 1},
        {11, 1 - 2 * p1, 1, 1 - 2 * p1},
        {12, 2 * p1, 2 * p2 - 1, 2 * p3 - 1},
        {13, 2 * p1, 1, 1},
        {14, 2 * p1, 2 - 2 * p2, 2 - 2 * p3},
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 12, 1), Reg(m, 13, k.shape), Reg(m, 7, 0x3E), Reg(m, 8, 16);
        AyRender(m);
        EXPECT_NEAR(m.ay.AyColumns[4][100], k.at100, 1e-3) << k.shape;
        EXPECT_NEAR(m.ay.AyColumns[4][440], k.at440, 1e-3) << k.shape;
        const float env = m.ay.AyColumns[4][440];
        const double level = m.ay.AyVolume[RoundHalfEven(env * 15)] * 16;
        EXPECT_EQ(std::abs(m.ay.AyOut[440]), RoundHalfEven(level)) << k.shape;
        AyRender(m);
        EXPECT_NEAR(m.ay.AyColumns[4][100], k.again, 1e-3) << k.shape;
    }
}

TEST(Ay8910, EnvelopeRestarts) {
    const struct {
        const char* what;
        int reg, value;
        bool restarts;
    } cases[] = {
        {"envelope bit rises", 9, 16, true}, {"envelope bit falls", 8, 0, false},
        {"period changes", 11, 7, true},     {"mix grows", 7, 0x30, true},
        {"mix shrinks", 7, 0x3C, false},     {"shape changes", 13, 10, true},
        {"same shape again", 13, 14, false},
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 12, 1), Reg(m, 13, 14), Reg(m, 7, 0x34), Reg(m, 8, 16);
        AyRender(m);
        const float once = m.ay.AyPhase[4];
        Reg(m, k.reg, k.value);
        AyRender(m);
        const double step = m.ay.AyEnv.EnvFreq / 11025.0;
        const double expected = k.restarts ? 441 * step : std::fmod(once + 441 * step, 1.0);
        EXPECT_NEAR(m.ay.AyPhase[4], expected, 1e-3) << k.what;
    }
}

TEST(Ay8910, MixingNoiseAndTone) {
    const struct {
        int mixer, low, high;
        bool noisy;
    } cases[] = {
        {0x36, -32, 32, true}, {0x3E, -16, 16, false}, {0x37, -16, 16, true}, {0x3F, 0, 0, false}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 0, 100), Reg(m, 6, 3), Reg(m, 7, k.mixer), Reg(m, 8, 15);
        int lo = 0, hi = 0;
        bool between = false;
        for (int b = 0; b < 10; ++b) {
            AyRender(m);
            for (int16_t v : m.ay.AyOut) {
                lo = std::min<int>(lo, v), hi = std::max<int>(hi, v);
                between |= std::abs(v) != 16 && v != 0;
            }
        }
        EXPECT_GE(lo, k.low) << k.mixer;
        EXPECT_LE(hi, k.high) << k.mixer;
        EXPECT_LE(lo, k.low / 2) << k.mixer;
        EXPECT_EQ(between, k.noisy) << k.mixer; // noise takes any level
    }
}

} // namespace
} // namespace tvc::test
