// The SN76489: its byte protocol, tone and noise frequencies, the periodic
// noise's replay.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Bytes(Machine& m, std::initializer_list<int> bytes) {
    for (int b : bytes)
        SnWrite(m, 0x30, static_cast<uint8_t>(b));
}

TEST(Sn76489, ByteProtocol) {
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

    m.forms.FSN76489.Check3 = true; // "Manual"
    Bytes(m, {0x90});
    EXPECT_EQ(s.SnChannel[0].Attenuation, 15);
    SnDecode(m, 0xFD, 0x90); // the panel's own path
    EXPECT_EQ(s.SnChannel[0].Attenuation, 0);
}

// Rising edges of the output over `blocks` blocks.
int RisingEdges(Machine& m, int blocks) {
    int edges = 0;
    int16_t prev = 0;
    for (int b = 0; b < blocks; ++b) {
        SnRender(m);
        for (int16_t v : m.sn.Sn76489Out)
            edges += prev < 0 && v > 0, prev = v;
    }
    return edges;
}

TEST(Sn76489, ToneFrequencyAndLinearVolume) {
    const int dividers[] = {0, 1, 254, 1023, 300};
    for (int n : dividers) {
        for (int att : {0, 6}) {
            TestMachine t;
            Bytes(t.m(), {0x80 | (n & 15), n >> 4, 0x90 | att});
            const int hz = std::min(3579545 / std::max(n, 1) / 32, 11000);
            EXPECT_NEAR(RisingEdges(t.m(), 50), hz, hz * 0.01 + 1) << n;
            const auto [lo, hi] =
                std::minmax_element(std::begin(t.m().sn.Sn76489Out), std::end(t.m().sn.Sn76489Out));
            EXPECT_EQ(*hi, (15 - att) * 20) << n;
            EXPECT_EQ(*lo, -(15 - att) * 20);
        }
    }
}

TEST(Sn76489, NoiseRatesCountTheirFlips) {
    // Rate 3 takes tone 2's High times 64.
    const struct {
        int rate, high, low, divider;
    } cases[] = {{0, 0, 0, 20}, {1, 0, 0, 40}, {2, 0, 0, 80}, {3, 5, 3, 5 * 64 + 3}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Bytes(m, {0xC0 | k.low, k.high, 0xE0 | k.rate, 0xF0});
        const double hz = std::min(3579545 / k.divider / 32, 11000);
        SnRender(m);
        const double turns = 441 * hz / 11025; // the phase's advance in one block
        EXPECT_NEAR(m.sn.SnPhase[3], turns - std::floor(turns), 1e-3) << k.rate;
        EXPECT_EQ(std::abs(m.sn.SnMatrix[100][3]), 300);
    }
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
    TestMachine white; // bit 2 clear: the counter runs on, the generator does not restart
    Bytes(white.m(), {0xE0, 0xF0});
    white.m().sn.SnSeedCounter = 10;
    Rnd fresh(1);
    fresh.Next();
    SnRender(white.m());
    EXPECT_EQ(white.m().sn.SnSeedCounter, 1);
    EXPECT_NE(white.m().sn.rnd.Next(), fresh.Next());
}

TEST(Sn76489, SilentAfterResetWithPhasesStanding) {
    TestMachine t;
    Machine& m = t.m();
    Bytes(m, {0x85, 0x02, 0x90});
    SnRender(m);
    const float phase = m.sn.SnPhase[0];
    SnReset(m);
    SnRender(m);
    EXPECT_TRUE(std::all_of(std::begin(m.sn.Sn76489Out), std::end(m.sn.Sn76489Out),
                            [](int16_t v) { return v == 0; }));
    EXPECT_EQ(m.sn.SnPhase[0], phase);
}

} // namespace
} // namespace tvc::test
