// The YM2413: the latch mask, the stepped three-level sine at the programmed
// pitch and volume, keys, boxes and the panel's names.
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
    const std::pair<int, int> cases[] = {{0x10, 0x10}, {0x12, 0x10}, {0x13, 0x11}, {0x1A, 0x10},
                                         {0x0E, 0x04}, {0x3F, 0x35}, {0x40, -1},   {0xFF, -1}};
    for (const auto& [address, lands] : cases) { // -1: lost above the registers
        TestMachine t;
        Reg(t.m(), address, 0x5A);
        for (int r = 0; r < 64; ++r)
            ASSERT_EQ(t.m().ym2.Ym2Regs[r], r == lands ? 0x5A : 0) << address << " " << r;
    }
}

TEST(Ym2413, StepsOfTheSineAtThePitchAndVolume) {
    const struct {
        int channel, fnum, block, volume;
    } cases[] = {{0, 289, 4, 15}, {1, 511, 2, 7}, {4, 100, 7, 1}, {5, 0, 0, 9}, {0, 400, 7, 15}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg(m, 0x10 + k.channel, k.fnum & 255), Reg(m, 0x30 + k.channel, 0x30 | k.volume);
        Reg(m, 0x20 + k.channel, 0x10 | (k.block << 1) | (k.fnum >> 8));
        const double step =
            std::min(double(float(k.fnum * std::pow(2.0, k.block) / 21.276595)), 11000.0) / 11025;
        float p = 0;
        for (int b = 0; b < 2; ++b) {
            Ym2Render(m);
            for (int i = 0; i < 441; ++i) {
                p = float(p + step);
                p -= p >= 1 ? 1 : 0;
                ASSERT_EQ(m.ym2.Ym2413Out[i], RoundHalfEven(std::sin(p * 6.28)) * k.volume)
                    << k.fnum << " " << i;
            }
        }
    }
}

TEST(Ym2413, SilenceKeysBoxesAndHalfWave) {
    TestMachine t;
    Machine& m = t.m();
    auto range = [&] {
        return std::minmax_element(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out));
    };
    Reg(m, 0x20, 0x18); // key on, volume 0: exact silence, the phase stands
    Ym2Render(m);
    EXPECT_EQ(m.ym2.Ym2Phase[0], 0);
    Reg(m, 0x10, 200), Reg(m, 0x31, 5); // a volume on a keyed-off channel runs the phases
    Ym2Render(m);
    EXPECT_GT(m.ym2.Ym2Phase[0], 0);
    EXPECT_EQ(*range().second, 0);
    Reg(m, 0x30, 12);
    m.forms.FYM2413.Check7[0] = false;
    Ym2Render(m);
    EXPECT_EQ(*range().second, 0);
    m.forms.FYM2413.Check7[0] = true;
    m.ym2.Ym2Regs[3] = 0x10; // only a direct change of the array sets it
    Ym2Render(m);
    EXPECT_EQ(*range().first + *range().second * 100, 1200);
    for (int c = 0; c < 9; ++c) // all nine at full volume: +-135
        m.ym2.Ym2Regs[0x10 + c] = 200, m.ym2.Ym2Regs[0x20 + c] = 0x18,
                             m.ym2.Ym2Regs[0x30 + c] = 0xDF;
    m.ym2.Ym2Regs[3] = 0, m.ym2.Ym2Regs[0x0E] = 0x21, m.sound.BlockIndex = 4;
    Ym2Render(m);
    EXPECT_EQ(*range().first * 1000 + *range().second, -135000 + 135);
    EXPECT_EQ(m.forms.FYM2413.Label8[8], "synt bass");
    EXPECT_EQ(m.forms.FYM2413.Label6[8], int(200 * 16 / 21.276595));
    EXPECT_TRUE(m.forms.FYM2413.Check1 && m.forms.FYM2413.Check2to6[0] &&
                !m.forms.FYM2413.Check2to6[1]);
}

} // namespace
} // namespace tvc::test
