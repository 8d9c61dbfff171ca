// The two FM chips, the YM3812 and the YM2413, through their ports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/Numbers.h"
#include "hw/Ports.h"
#include "sound/ChipPanels.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

constexpr int kModOffset[9] = {0, 1, 2, 8, 9, 10, 16, 17, 18}; // the chip's operator layout
constexpr float kMult[16] = {0.5f, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 10, 11, 11, 12, 12};
constexpr double kFeedback[8] = {0, 1.0 / 16, 1.0 / 8, 1.0 / 4, 1.0 / 2, 1, 2, 4};
constexpr double kTwoPi = 6.28318530718;

void Reg(Machine& m, int r, int v) {
    PortOut(m, 0x34, r);
    PortOut(m, 0x35, v);
}

struct Voice {
    int channel, fnum, block, modMult, carMult, modTl, carTl, fb, modWave, carWave;
};

void Program(Machine& m, const Voice& v) {
    const int mod = kModOffset[v.channel];
    Reg(m, 0x20 + mod, v.modMult), Reg(m, 0x23 + mod, v.carMult), Reg(m, 0x40 + mod, v.modTl);
    Reg(m, 0x43 + mod, v.carTl), Reg(m, 0xE0 + mod, v.modWave), Reg(m, 0xE3 + mod, v.carWave);
    Reg(m, 0xC0 + v.channel, v.fb << 1), Reg(m, 0xA0 + v.channel, v.fnum & 255);
    Reg(m, 0xB0 + v.channel, 0x20 | (v.block << 2) | (v.fnum >> 8));
}

// One channel by the rule: a modulator whose feedback is a fixed phase
// advance, a carrier phase-modulated by sin(2 pi m), levels 1 / (TL + 1), the
// wave selects, x 20, held to +-126.
std::vector<int> Expected(const Voice& v, bool waves, bool additive, int samples) {
    const double freq = float(v.fnum * std::pow(2.0, v.block) / 21.23);
    auto step = [&](int mult) { return std::min(freq / 2 * kMult[mult], 11000.0) / 11025; };
    const int w = waves ? v.modWave : 0, cw = waves ? v.carWave : 0;
    float mp = 0, cp = 0;
    std::vector<int> out;
    for (int i = 0; i < samples; ++i) {
        mp = float(mp + step(v.modMult) + std::sin(kFeedback[v.fb] * 6.283185));
        while (mp >= 1)
            mp -= 1;
        if (w >= 2 && mp >= 0.5f) mp -= 0.5f;
        const float mcol = w == 1   ? (mp <= 0.5f ? mp : 0)
                           : w == 3 ? (mp <= 0.25f ? mp : 0)
                                    : std::fabs(mp);
        cp = float(cp + step(v.carMult));
        if (cp >= 1) cp -= 1;
        double t = cp + 1.0 / (v.modTl + 1) * std::sin(mcol * kTwoPi), y = std::sin(t * kTwoPi);
        y = cw == 1 ? std::min(y, 0.0) : cw > 1 ? std::fabs(y) : y;
        if (cw == 3 && t >= 1) t -= 1;
        if (cw == 3 && ((t > 0.25 && t < 0.5) || (t > 0.75 && t < 1))) y = 0;
        const double sum = float(y / (v.carTl + 1)) + (additive ? mcol : 0.0f);
        out.push_back(RoundClamp(sum * 20, -126, 126));
    }
    return out;
}

TEST(Ym3812, RenderFollowsTheRule) {
    const struct {
        Voice v;
        bool waves, additive;
    } cases[] = {
        {{0, 584, 4, 1, 1, 63, 0, 0, 0, 0}, false, false},   // 440 Hz, a plain sine
        {{4, 584, 4, 1, 2, 0, 3, 1, 0, 0}, false, false},    // deep FM, feedback 1/16
        {{8, 300, 5, 0, 3, 5, 1, 3, 2, 1}, true, false},     // half waves
        {{2, 700, 3, 2, 1, 2, 0, 2, 3, 3}, true, true},      // quarter waves, additive
        {{5, 500, 2, 4, 5, 0, 0, 7, 1, 2}, false, true},     // selects off without bit 5
        {{7, 1023, 7, 15, 15, 0, 0, 0, 0, 0}, false, false}, // capped at 11,000 Hz
        {{3, 0, 0, 1, 1, 0, 0, 2, 0, 0}, false, true},       // F-number 0: the carrier stands
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Program(m, k.v);
        Reg(m, 1, k.waves ? 0x20 : 0), Reg(m, 0xC9, k.additive ? 1 : 0);
        std::vector<int> got;
        for (int b = 0; b < 3; ++b) {
            YmRender(m);
            got.insert(got.end(), std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out));
        }
        const std::vector<int> want = Expected(k.v, k.waves, k.additive, int(got.size()));
        for (size_t i = 0; i < got.size(); ++i)
            ASSERT_NEAR(got[i], want[i], 1) << "channel " << k.v.channel << " sample " << i;
        EXPECT_TRUE(std::any_of(got.begin(), got.end(), [](int v) { return v != 0; }));
    }
}

TEST(Ym3812, KeySumModulo256SilencesEightKeysAndBoxesMute) {
    for (int keys = 0; keys <= 9; ++keys) {
        TestMachine t;
        Machine& m = t.m();
        for (int c = 0; c < keys; ++c)
            Program(m, {c, 584, 4, 1, 1, 0, 0, 0, 0, 0});
        Reg(m, 0xC0, 1); // channel 0's own connection bit is not consulted
        YmRender(m);
        const bool silent = std::all_of(std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out),
                                        [](int16_t v) { return v == 0; });
        EXPECT_EQ(silent, keys == 0 || keys == 8) << keys;
        EXPECT_EQ(m.ym.YmCarPhase[0] == 0, keys == 0 || keys == 8) << keys;
        if (keys == 1) { // still FM, without the modulator in the sum
            EXPECT_EQ(m.ym.Ym3812Out[50],
                      Expected({0, 584, 4, 1, 1, 0, 0, 0, 0, 0}, false, false, 51)[50]);
        }
        std::fill(std::begin(m.forms.FYM3812.Check1), std::end(m.forms.FYM3812.Check1), false);
        Reg(m, 0xC9, 1);
        YmRender(m);
        EXPECT_TRUE(std::all_of(std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out),
                                [](int16_t v) { return v == 0; }));
    }
}

struct RecordingSink : PortSink {
    std::vector<std::pair<int, int>> writes;
    bool fail = false;
    bool Out(uint16_t port, uint8_t value, std::string& error) override {
        fail ? void(error = "no card") : void(writes.emplace_back(port, value));
        return !fail;
    }
};

TEST(Ym3812, DirectOutput) {
    using W = std::vector<std::pair<int, int>>;
    const struct {
        bool check;
        std::string text;
        bool fail;
        W writes;
        size_t messages;
    } cases[] = {
        {false, "896", false, {}, 0},
        {true, " 65534", false, {{65534, 0xB0}, {65535, 0x21}, {65534, 0xA0}, {65535, 7}}, 0},
        {true, "65535", false, {}, 1},
        {true, "abc", false, {}, 1},
        {true, "896", true, {}, 1},
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        RecordingSink sink;
        sink.fail = k.fail;
        m.ym.DirectSink = &sink;
        m.forms.FYM3812.Check3 = k.check, m.forms.FYM3812.Text2 = k.text;
        Reg(m, 0xB0, 0x21), Reg(m, 0xA0, 7);
        EXPECT_EQ(sink.writes, k.writes) << k.text;
        EXPECT_EQ(t.host.messages.size(), k.messages) << k.text;
        EXPECT_EQ(m.forms.FYM3812.Check3, k.check && !k.fail) << k.text; // a failed write unticks
        EXPECT_EQ(m.ym.YmRegs[0xA0] + m.ym.YmRegs[0xB0] * 256, 7 + 0x21 * 256) << k.text;
    }
}

TEST(ChipPanels, YmKeyboardAndResetGoThroughThePorts) {
    TestMachine t;
    Machine& m = t.m();
    RecordingSink sink;
    m.ym.DirectSink = &sink;
    m.forms.FYM3812.Check3 = true;
    ASSERT_TRUE(YmKeyDown(m, 'K'));
    EXPECT_EQ(m.ym.YmRegs[0xA0], 686 / 3);
    EXPECT_TRUE(YmKeyDown(m, 'g'));
    EXPECT_FALSE(YmKeyDown(m, 'Q'));
    EXPECT_FALSE(YmKeyDown(m, 0));
    YmKeyUp(m);
    EXPECT_EQ(m.ym.YmRegs[0xB0], 16);
    const std::vector<std::pair<int, int>> keyed = {
        {896, 0xA0}, {897, 514 / 3}, {896, 0xB0}, {897, 0x30}};
    ASSERT_GE(sink.writes.size(), 4u);
    EXPECT_EQ(std::vector(sink.writes.end() - 6, sink.writes.end() - 2), keyed);

    sink.writes.clear();
    for (int r = 0; r < 256; ++r)
        m.ym.YmRegs[r] = 0x55;
    YmResetButton(m);
    ASSERT_EQ(sink.writes.size(), 255u * 2);
    for (int r = 0; r < 255; ++r) {
        EXPECT_EQ(sink.writes[2 * r], std::pair(896, r));
        EXPECT_EQ(sink.writes[2 * r + 1], std::pair(897, 0));
        EXPECT_EQ(m.ym.YmRegs[r], 0);
    }
    EXPECT_EQ(m.ym.YmRegs[255], 0x55);
    m.ym.DirectSink = nullptr;
}

// The YM2413 through its own ports.
void Reg2(Machine& m, int r, int v) {
    PortOut(m, 0x3C, r);
    PortOut(m, 0x3D, v);
}

TEST(Ym2413, StepsOfTheSineAtThePitchAndVolume) {
    const struct {
        int channel, fnum, block, volume;
    } cases[] = {{0, 289, 4, 15}, {1, 511, 2, 7}, {4, 100, 7, 1}, {5, 0, 0, 9}, {0, 400, 7, 15}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Reg2(m, 0x10 + k.channel, k.fnum & 255), Reg2(m, 0x30 + k.channel, 0x30 | k.volume);
        Reg2(m, 0x20 + k.channel, 0x10 | (k.block << 1) | (k.fnum >> 8));
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
    Reg2(m, 0x20, 0x18); // key on, volume 0: exact silence, the phase stands
    Ym2Render(m);
    EXPECT_EQ(m.ym2.Ym2Phase[0], 0);
    Reg2(m, 0x10, 200), Reg2(m, 0x31, 5); // a volume on a keyed-off channel runs the phases
    Ym2Render(m);
    EXPECT_GT(m.ym2.Ym2Phase[0], 0);
    EXPECT_EQ(*range().second, 0);
    Reg2(m, 0x30, 12);
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
}

} // namespace
} // namespace tvc::test
