// The square-wave generators: the AY-3-8910, the SN76489 and the machine's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/Numbers.h"
#include "hw/Ports.h"
#include "sound/SoundFX.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Reg(Machine& m, int reg, int value) {
    int32_t r = reg, v = value; // through the machine's ports
    PortOut(m, 0x3A, r);
    PortOut(m, 0x3B, v);
}

TEST(Ay8910, DecodeMasksInPlaceAndIgnoresHighLatches) {
    TestMachine t;
    Machine& m = t.m();
    EXPECT_EQ(m.ay.AyRegs[7], 255); // the mixer starts all off
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
        {9, 1 - 2 * p1, 0, 0},
        {4, 2 * p1, 0, 2 * p1},
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

void Bytes(Machine& m, std::initializer_list<int> bytes) {
    for (int b : bytes)
        PortOut(m, 0x30, b); // through the machine's ports
}

TEST(Sn76489, ByteProtocolAndReset) {
    TestMachine t;
    Machine& m = t.m();
    const Sn76489& s = m.sn;
    Bytes(m, {0xC7, 0x15, 0xB4, 0xE6, 0x2A, 0xF9, 0x81, 0x9F, 0x3C});
    EXPECT_EQ(s.SnChannel[2].Low, 7);
    EXPECT_EQ(s.SnChannel[2].High, 0x15);
    EXPECT_EQ(s.SnChannel[1].Attenuation, 4);
    EXPECT_EQ(s.SnNoise.NoiseRate, 2);
    EXPECT_EQ(s.SnNoise.NoiseType, 4);
    EXPECT_EQ(s.SnChannel[1].High, 0x2A); // after a noise write: the tone last named
    EXPECT_EQ(s.SnNoise.NoiseAttenuation, 9);
    EXPECT_EQ(s.SnChannel[0].Low, 1);
    EXPECT_EQ(s.SnChannel[0].Attenuation, 15); // 0x9F: tone 0 silent and named
    EXPECT_EQ(s.SnChannel[0].High, 0x3C);

    SnRender(m); // a reset silences the chip, its phases standing
    const float phase = s.SnPhase[0];
    SnReset(m);
    SnRender(m);
    EXPECT_TRUE(std::all_of(std::begin(s.Sn76489Out), std::end(s.Sn76489Out),
                            [](int16_t v) { return v == 0; }));
    EXPECT_EQ(s.SnPhase[0], phase);
}

TEST(Sn76489, PeriodicNoiseReplaysFromSeedOneEveryTenBlocks) {
    // Two chips with different random histories meet at the restart.
    TestMachine a, b;
    for (Machine* m : {&a.m(), &b.m()})
        Bytes(*m, {0xE4, 0xF0});
    b.m().sn.rnd.Next();
    std::vector<int16_t> blocksA, blocksB;
    for (int block = 0; block < 20; ++block) {
        SnRender(a.m()), SnRender(b.m());
        const bool same = std::equal(std::begin(a.m().sn.Sn76489Out), std::end(a.m().sn.Sn76489Out),
                                     b.m().sn.Sn76489Out);
        EXPECT_EQ(same, block >= 10)
            << block; // restarted at block 9, levels meet at its first draw
    }
}

// Rising edges over a second of blocks and the extremes of the last block.
struct Heard {
    int edges = 0, low = 0, high = 0;
};
Heard Listen(Machine& m, void (*render)(Machine&), const int16_t* out) {
    Heard h;
    int16_t prev = 0;
    for (int b = 0; b < 50; ++b) {
        render(m);
        for (int i = 0; i < 441; ++i)
            h.edges += prev < 0 && out[i] > 0, prev = out[i];
    }
    const auto [lo, hi] = std::minmax_element(out, out + 441);
    h.low = *lo, h.high = *hi;
    return h;
}

// The square waves of the AY, the SN and the machine's own tone generator:
// the pitch each one's divider gives, capped at 11,000 Hz, at its level law.
TEST(SquareWaves, PitchAndLevelFollowEachGeneratorsRule) {
    enum Chip { Ay, Sn, Tone };
    const struct {
        Chip chip;
        int divider, level;
    } rows[] = {{Ay, 1000, 3}, {Ay, 1, 9}, {Sn, 1023, 6}, {Sn, 1, 0}, {Tone, 3072, 15}, {Tone, 4080, 15}};
    for (const auto& k : rows) {
        TestMachine t;
        Machine& m = t.m();
        double edges = 0;
        int peak = 0;
        Heard h;
        if (k.chip == Ay) {
            Reg(m, 2, k.divider & 255), Reg(m, 3, k.divider >> 8), Reg(m, 7, 0x3D);
            Reg(m, 9, k.level);
            const int hz =
                int(std::min<int64_t>(RoundHalfEven(111861.0 / std::max(k.divider * 2, 1)), 11000));
            // Each turn of the phase is a whole period at 22,050 Hz, so the
            // square turns twice per step's hertz, folded about the sample rate.
            edges = std::abs(2 * hz - 22050 * int(std::lround(2 * hz / 22050.0)));
            peak = int(RoundHalfEven(std::pow(0.75, 15 - k.level) * 16));
            h = Listen(m, AyRender, m.ay.AyOut);
        } else if (k.chip == Sn) {
            Bytes(m, {0x80 | (k.divider & 15), k.divider >> 4, 0x90 | k.level});
            edges = std::min(3579545 / std::max(k.divider, 1) / 32, 11000);
            peak = (15 - k.level) * 20;
            h = Listen(m, SnRender, m.sn.Sn76489Out);
        } else {
            m.bus.PortLatch[4] = uint8_t(k.divider & 255);
            m.bus.PortLatch[5] = uint8_t(k.divider >> 8 | 0x10); // on
            m.bus.PortLatch[6] = uint8_t(k.level << 2);
            edges = std::min(195312.5 / (4096 - k.divider), 11000.0);
            peak = 105;
            h = Listen(m, TvcToneBlock, m.sound.TvcToneOut);
        }
        EXPECT_NEAR(h.edges, edges, edges * 0.01 + 1) << k.chip << " " << k.divider;
        EXPECT_EQ(h.high, peak) << k.chip << " " << k.divider;
        EXPECT_EQ(h.low, -peak) << k.chip << " " << k.divider;
    }
}

} // namespace
} // namespace tvc::test
