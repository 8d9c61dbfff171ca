// The YM2413: the latch mask, decode, the stepped three-level sine, keys,
// volumes, the panel's boxes and names.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/Numbers.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Reg(Machine& m, int r, int v) {
    PortOut(m, 0x3C, r);
    PortOut(m, 0x3D, v);
}

TEST(Ym2413, LatchMaskDecidesWhereWritesLand) {
    const struct {
        int address, lands; // -1: lost above the registers
    } cases[] = {{0x10, 0x10}, {0x12, 0x10}, {0x13, 0x11}, {0x1A, 0x10}, {0x18, 0x10},
                 {0x03, 0x01}, {0x0E, 0x04}, {0x3F, 0x35}, {0x40, -1},   {0xFF, -1}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, k.address, 0x5A);
        for (int r = 0; r < 64; ++r)
            ASSERT_EQ(m.ym2.Ym2Regs[r], r == k.lands ? 0x5A : 0) << k.address << " " << r;
    }
}

// Volume v, key on, F-number f in block b, channel c: the samples of two
// blocks by the rule, with the phase reckoned in float.
std::vector<int> Expected(int f, int b, int v, int blocks) {
    const double step = std::min(double(float(f * std::pow(2.0, b) / 21.276595)), 11000.0) / 11025;
    float p = 0;
    std::vector<int> out;
    for (int i = 0; i < 441 * blocks; ++i) {
        p = float(p + step);
        if (p >= 1) p -= 1;
        out.push_back(int(RoundHalfEven(double(RoundHalfEven(std::sin(p * 6.28))) * v)));
    }
    return out;
}

TEST(Ym2413, StepsOfTheSineAtTheProgrammedPitchAndVolume) {
    const struct {
        int channel, fnum, block, volume;
    } cases[] = {{0, 289, 4, 15}, {1, 511, 2, 7}, {4, 100, 7, 1}, {5, 0, 0, 9}, {0, 400, 7, 15}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 0x10 + k.channel, k.fnum & 255);
        Reg(m, 0x20 + k.channel, 0x10 | (k.block << 1) | (k.fnum >> 8));
        Reg(m, 0x30 + k.channel, 0x30 | k.volume);
        std::vector<int> got;
        for (int b = 0; b < 2; ++b) {
            Ym2Render(m);
            got.insert(got.end(), std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out));
        }
        EXPECT_EQ(got, Expected(k.fnum, k.block, k.volume, 2)) << k.fnum;
        EXPECT_EQ(m.ym2.Ym2Channel[k.channel].Volume, k.volume);
    }
}

TEST(Ym2413, SilenceKeysBoxesAndHalfWave) {
    TestMachine t;
    Machine& m = t.m();
    Reg(m, 0x20, 0x18); // key on, volume 0: exact silence, the phase stands
    Ym2Render(m);
    EXPECT_EQ(m.ym2.Ym2Phase[0], 0);
    Reg(m, 0x10, 200), Reg(m, 0x31, 5); // volume on a keyed-off channel
    Ym2Render(m);
    EXPECT_GT(m.ym2.Ym2Phase[0], 0);
    EXPECT_TRUE(std::all_of(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out),
                            [](int16_t v) { return v == 0; }));
    Reg(m, 0x30, 12);
    m.forms.FYM2413.Check7[0] = false; // box off: zero, phase runs on
    const float before = m.ym2.Ym2Phase[0];
    Ym2Render(m);
    EXPECT_NE(m.ym2.Ym2Phase[0], before);
    EXPECT_EQ(*std::max_element(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out)), 0);
    m.forms.FYM2413.Check7[0] = true;
    m.ym2.Ym2Regs[3] = 0x10; // only a direct change of the array sets it
    Ym2Render(m);
    EXPECT_EQ(*std::min_element(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out)), 0);
    EXPECT_EQ(*std::max_element(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out)), 12);
    for (int c = 0; c < 9; ++c) // all nine at full volume: +-135
        m.ym2.Ym2Regs[0x10 + c] = 200, m.ym2.Ym2Regs[0x20 + c] = 0x18,
                             m.ym2.Ym2Regs[0x30 + c] = 0xDF;
    m.ym2.Ym2Regs[3] = 0x0E;
    m.sound.BlockIndex = 4;
    Ym2Render(m);
    EXPECT_EQ(*std::max_element(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out)), 135);
    EXPECT_EQ(*std::min_element(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out)), -135);
    EXPECT_EQ(m.forms.FYM2413.Label8[8], "synt bass");
    EXPECT_EQ(m.forms.FYM2413.Label6[8], int(200 * 16 / 21.276595));
}

} // namespace
} // namespace tvc::test
