// The YM3812: decode, the key sum, the two-operator render against the
// stated rule, muting and the connection bit, and the direct output.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/Numbers.h"
#include "hw/Ports.h"
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

void Program(Machine& m, const Voice& v, bool key = true) {
    const int mod = kModOffset[v.channel];
    Reg(m, 0x20 + mod, v.modMult), Reg(m, 0x20 + mod + 3, v.carMult);
    Reg(m, 0x40 + mod, v.modTl), Reg(m, 0x40 + mod + 3, v.carTl);
    Reg(m, 0xE0 + mod, v.modWave), Reg(m, 0xE0 + mod + 3, v.carWave);
    Reg(m, 0xC0 + v.channel, v.fb << 1);
    Reg(m, 0xA0 + v.channel, v.fnum & 255);
    Reg(m, 0xB0 + v.channel, (key ? 0x20 : 0) | (v.block << 2) | (v.fnum >> 8));
}

// One channel's samples by the rule: a modulator whose feedback is a fixed
// phase advance, a carrier phase-modulated by sin(2 pi m), levels
// 1 / (TL + 1), the wave selects, x 20, held to +-126.
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
        const float mcol = w == 0   ? mp
                           : w == 1 ? (mp <= 0.5f ? mp : 0)
                           : w == 2 ? std::fabs(mp)
                                    : (mp <= 0.25f ? mp : 0);
        cp = float(cp + step(v.carMult));
        if (cp >= 1) cp -= 1;
        double t = cp + 1.0 / (v.modTl + 1) * std::sin(mcol * kTwoPi), y = std::sin(t * kTwoPi);
        if (cw == 1) y = std::min(y, 0.0);
        if (cw > 1) y = std::fabs(y);
        if (cw == 3 && t >= 1) t -= 1;
        if (cw == 3 && ((t > 0.25 && t < 0.5) || (t > 0.75 && t < 1))) y = 0;
        const double sum = float(y / (v.carTl + 1)) + (additive ? mcol : 0.0f);
        out.push_back(RoundClamp(sum * 20, -126, 126));
    }
    return out;
}

TEST(Ym3812, DecodeTablesAndOperatorLayout) {
    TestMachine t;
    Machine& m = t.m();
    EXPECT_TRUE(std::equal(std::begin(kMult), std::end(kMult), m.ym.YmMult));
    for (int c = 0; c < 9; ++c) {
        const int fnum = 100 + 97 * c, block = c % 8;
        Program(m, {c, fnum, block, c, 15 - c, c + 1, 2 * c, 0, c & 3, 3 - (c & 3)}, c % 2);
        Reg(m, 0x60 + kModOffset[c], 0x60 + c), Reg(m, 0x80 + kModOffset[c] + 3, 0x80 + c);
    }
    YmDecode(m.ym);
    for (int c = 0; c < 9; ++c) {
        const YmChannelState& ch = m.ym.YmChannel[c];
        EXPECT_EQ(ch.Key, c % 2 ? 0x20 : 0) << c;
        EXPECT_FLOAT_EQ(ch.Freq, float((100 + 97 * c) * std::pow(2.0, c % 8) / 21.23)) << c;
        const YmOperator &mod = m.ym.YmMod[c], &car = m.ym.YmCar[c];
        EXPECT_EQ(mod.Reg20, c);
        EXPECT_EQ(car.Reg20, 15 - c);
        EXPECT_EQ(mod.Reg40, c + 1);
        EXPECT_EQ(car.Reg40, 2 * c);
        EXPECT_EQ(mod.RegE0, c & 3);
        EXPECT_EQ(car.RegE0, 3 - (c & 3));
        EXPECT_EQ(mod.Reg60, 0x60 + c);
        EXPECT_EQ(car.Reg80, 0x80 + c);
    }
    YmReset(m);
    EXPECT_TRUE(std::all_of(std::begin(m.ym.YmRegs), std::end(m.ym.YmRegs),
                            [](uint8_t r) { return r == 0; }));
}

TEST(Ym3812, KeySumModulo256SilencesEightKeys) {
    for (int keys = 0; keys <= 9; ++keys) {
        TestMachine t;
        Machine& m = t.m();
        for (int c = 0; c < keys; ++c)
            Program(m, {c, 584, 4, 1, 1, 0, 0, 0, 0, 0});
        YmRender(m);
        const bool silent = std::all_of(std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out),
                                        [](int16_t v) { return v == 0; });
        EXPECT_EQ(silent, keys == 0 || keys == 8) << keys;
        EXPECT_EQ(m.ym.YmCarPhase[0] == 0, keys == 0 || keys == 8) << keys;
    }
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
        {{3, 0, 0, 1, 1, 0, 0, 2, 0, 0}, false, true},       // F-number 0: carrier stands
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        Program(m, k.v);
        Reg(m, 1, k.waves ? 0x20 : 0);
        Reg(m, 0xC9, k.additive ? 1 : 0);
        std::vector<int> got;
        for (int b = 0; b < 3; ++b) {
            YmRender(m);
            got.insert(got.end(), std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out));
        }
        const std::vector<int> want = Expected(k.v, k.waves, k.additive, int(got.size()));
        int off = 0;
        for (size_t i = 0; i < got.size(); ++i)
            off += std::abs(got[i] - want[i]) > 1;
        EXPECT_EQ(off, 0) << "channel " << k.v.channel;
        EXPECT_TRUE(std::any_of(got.begin(), got.end(), [](int v) { return v != 0; }))
            << k.v.channel;
    }
}

TEST(Ym3812, MuteAndConnectionBit) {
    TestMachine t;
    Machine& m = t.m();
    Program(m, {1, 584, 4, 1, 1, 0, 0, 0, 0, 0});
    const std::vector<int> fm = Expected({1, 584, 4, 1, 1, 0, 0, 0, 0, 0}, false, false, 441);
    Reg(m, 0xC1, 1); // the channel's own connection bit is not consulted
    YmRender(m);
    EXPECT_NEAR(m.ym.Ym3812Out[100], fm[100], 1);
    m.forms.FYM3812.Check1[1] = false;
    Reg(m, 0xC9, 1);
    YmRender(m);
    EXPECT_TRUE(std::all_of(std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out),
                            [](int16_t v) { return v == 0; }));
}

struct RecordingSink : PortSink {
    std::vector<std::pair<int, int>> writes;
    bool fail = false;
    bool Out(uint16_t port, uint8_t value, std::string& error) override {
        if (fail)
            error = "no card";
        else
            writes.emplace_back(port, value);
        return !fail;
    }
};

TEST(Ym3812, DirectOutput) {
    const struct {
        bool check;
        std::string text;
        bool fail;
        std::vector<std::pair<int, int>> writes;
        size_t messages;
        bool checkAfter;
    } cases[] = {
        {false, "896", false, {}, 0, false},
        {true, "896", false, {{896, 0xB0}, {897, 0x21}, {896, 0xA0}, {897, 7}}, 0, true},
        {true, " 65534", false, {{65534, 0xB0}, {65535, 0x21}, {65534, 0xA0}, {65535, 7}}, 0, true},
        {true, "65535", false, {}, 1, true},
        {true, "abc", false, {}, 1, true},
        {true, "", false, {}, 1, true},
        {true, "-1", false, {}, 1, true},
        {true, "896", true, {}, 1, false},
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        RecordingSink sink;
        sink.fail = k.fail;
        m.ym.DirectSink = &sink;
        m.forms.FYM3812.Check3 = k.check;
        m.forms.FYM3812.Text2 = k.text;
        Reg(m, 0xB0, 0x21), Reg(m, 0xA0, 7);
        EXPECT_EQ(sink.writes, k.writes) << k.text;
        EXPECT_EQ(t.host.messages.size(), k.messages) << k.text;
        EXPECT_EQ(m.forms.FYM3812.Check3, k.checkAfter) << k.text;
        EXPECT_EQ(m.ym.YmRegs[0xA0] + m.ym.YmRegs[0xB0] * 256, 7 + 0x21 * 256) << k.text;
    }
}

} // namespace
} // namespace tvc::test
