// The chip panels' hand control: the bytes each "Manual" tick writes, the
// note keys, the timers at the yield points, and the pictures' points.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "core/ControlItems.h"
#include "core/Numbers.h"
#include "core/RunLoop.h"
#include "hw/Ports.h"
#include "sound/ChipPanels.h"
#include "support/Headless.h"
#include "support/TestMachine.h"
#include "support/WavProbe.h"

namespace tvc::test {
namespace {

// Register -> value as the panel's table packs the controls.
std::map<int, int> SaaRule(const FsaaControls& c) {
    std::map<int, int> r;
    for (int n = 0; n < 6; ++n) {
        r[8 + n] = c.HScroll4[n];
        r[n] = c.HScroll1[n] | c.HScroll2[n] << 4;
        r[20] |= c.Check1[n] << n;
        r[21] |= c.Check3[n] << n;
    }
    for (int k = 0; k < 3; ++k)
        r[16 + k] = c.HScroll3[2 * k] + c.HScroll3[2 * k + 1] * 16;
    r[22] = c.HScroll5[0] + c.HScroll5[1] * 16;
    for (int e = 0; e < 2; ++e)
        r[24 + e] = c.HScroll6[e] * 2 + 0x80 * c.Check7[e] + c.Check4[e] + 0x10 * c.Check5[e] +
                    0x20 * c.Check6[e];
    r[28] = c.Check8 + 2 * c.Check9;
    return r;
}

TEST(ChipPanels, SaaManualTickWritesTheWholeChipByTheTable) {
    FsaaControls a; // the form's defaults
    FsaaControls b;
    for (int n = 0; n < 6; ++n) {
        b.HScroll4[n] = 40 * n + 15, b.HScroll3[n] = 7 - n;
        b.HScroll1[n] = n + 9, b.HScroll2[n] = 15 - 2 * n;
        b.Check1[n] = n % 2, b.Check3[n] = n < 2;
    }
    b.HScroll5[0] = 3, b.HScroll5[1] = 2, b.HScroll6[0] = 5, b.HScroll6[1] = 7;
    b.Check7[1] = b.Check4[0] = b.Check5[1] = b.Check6[0] = true;
    b.Check8 = false, b.Check9 = true;
    const int order[] = {8, 9, 10, 11, 12, 13, 16, 17, 18, 0, 1,
                         2, 3, 4,  5,  20, 21, 22, 24, 25, 28};
    for (const FsaaControls* c : {&a, &b}) {
        const std::vector<PortWrite> w = SaaManualWrites(*c);
        std::map<int, int> rule = SaaRule(*c);
        ASSERT_EQ(w.size(), std::size(order) * 2);
        for (size_t i = 0; i < std::size(order); ++i) {
            EXPECT_EQ(w[2 * i], (PortWrite{0xFF, uint8_t(order[i])})) << i;
            EXPECT_EQ(w[2 * i + 1], (PortWrite{0xFE, uint8_t(rule[order[i]])})) << order[i];
        }
    }

    // Through the tick: only with "Manual", and then past its drop.
    TestMachine t;
    Machine& m = t.m();
    m.forms.Fsaa = b;
    m.forms.Fsaa.Check2 = false;
    ChipPanelsTick(m);
    EXPECT_EQ(m.saa.SaaFreq[5], 0);
    m.forms.Fsaa.Check2 = true;
    ChipPanelsTick(m);
    for (int n = 0; n < 6; ++n) {
        EXPECT_EQ(m.saa.SaaFreq[n], b.HScroll4[n]);
        EXPECT_EQ(m.saa.SaaOctave[n], b.HScroll3[n]);
        EXPECT_EQ(m.saa.SaaAmp[n], b.HScroll1[n]);
        EXPECT_EQ(m.saa.SaaAmp[n + 6], b.HScroll2[n]);
    }
    EXPECT_EQ(m.saa.SaaEnv[0].Shape, 5);
    EXPECT_EQ(m.saa.SaaSync, 1);
    EXPECT_EQ(m.saa.SaaAllEnable, 0);
    int32_t v = 0x55;
    PortOut(m, 0xFF, v = 8); // the program's writes are lost meanwhile
    PortOut(m, 0xFE, v = 0x55);
    EXPECT_EQ(m.saa.SaaFreq[0], b.HScroll4[0]);

    // Values from outside the bars' ranges are held to them.
    FsaaControls wild;
    wild.HScroll4[0] = 300, wild.HScroll3[0] = -4, wild.HScroll1[0] = 99, wild.HScroll5[1] = 9;
    std::map<int, int> got;
    const auto w = SaaManualWrites(wild);
    for (size_t i = 0; i < w.size(); i += 2)
        got[w[i].value] = w[i + 1].value;
    EXPECT_EQ(got[8], 255);
    EXPECT_EQ(got[16], 0);
    EXPECT_EQ(got[0], 15);
    EXPECT_EQ(got[22], 0x30);
}

TEST(ChipPanels, NoteKeysTuneChannelZero) {
    const int octave[13] = {3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 4, 4};
    const int freq[13] = {33, 60, 85, 109, 132, 153, 173, 192, 210, 227, 243, 5, 33};
    FsaaControls c;
    for (int k = 0; k < 13; ++k) {
        SaaNoteKey(c, k);
        EXPECT_EQ(c.HScroll3[0], octave[k]) << k;
        EXPECT_EQ(c.HScroll4[0], freq[k]) << k;
    }
    SaaNoteKey(c, 13); // no such key
    SaaNoteKey(c, -1);
    EXPECT_EQ(c.HScroll4[0], 33);
    EXPECT_EQ(c.HScroll3[1], 0);
}

TEST(ChipPanels, SnManualBytesKeepTheReversedSplit) {
    const struct {
        int freq[4], volume[4];
        bool periodic;
    } rows[] = {{{666, 666, 666, 0}, {0, 0, 0, 0}, false},
                {{1, 1023, 512, 3}, {15, 1, 7, 15}, true},
                {{1000, 24, 960, 2}, {3, 4, 5, 6}, false}};
    for (const auto& r : rows) {
        FSN76489Controls c;
        std::copy(std::begin(r.freq), std::end(r.freq), c.HScroll3);
        std::copy(std::begin(r.volume), std::end(r.volume), c.HScroll4);
        c.Check2 = r.periodic;
        std::vector<uint8_t> want;
        for (int n = 0; n < 3; ++n) {
            const int N = 1024 - r.freq[n], high = (N >> 6) & 15;
            want.push_back(uint8_t(high + 0x80 + 0x20 * n));
            want.push_back(uint8_t(N - high * 64));
        }
        for (int n = 0; n < 4; ++n)
            want.push_back(uint8_t(0x9F + 0x20 * n - r.volume[n]));
        want.push_back(uint8_t((r.periodic ? 0xE4 : 0xE0) + r.freq[3]));
        EXPECT_EQ(SnManualBytes(c), want) << r.freq[0];

        TestMachine t;
        Machine& m = t.m();
        m.forms.FSN76489 = c;
        m.forms.FSN76489.Check3 = true;
        ChipPanelsTick(m);
        for (int n = 0; n < 3; ++n) {
            const int N = 1024 - r.freq[n];
            EXPECT_EQ(m.sn.SnChannel[n].Low, (N >> 6) & 15);
            EXPECT_EQ(m.sn.SnChannel[n].High, N & 63);
            EXPECT_EQ(m.sn.SnChannel[n].Attenuation, 15 - r.volume[n]);
            EXPECT_EQ(SnFreqLabel(r.freq[n]), int(std::floor(3579545.0 / N / 32)));
        }
        EXPECT_EQ(m.sn.SnNoise.NoiseRate, r.freq[3]);
        EXPECT_EQ(m.sn.SnNoise.NoiseType, r.periodic ? 4 : 0);
    }
    FSN76489Controls wild; // held to the bars' ranges
    wild.HScroll3[0] = 0, wild.HScroll3[3] = 7, wild.HScroll4[1] = 40;
    const auto b = SnManualBytes(wild);
    EXPECT_EQ(b[0], 0x80 + 15);
    EXPECT_EQ(b[1], 63);
    EXPECT_EQ(b[7], 0xBF - 15);
    EXPECT_EQ(b[10], 0xE3);
}

TEST(ChipPanels, PicturesScaleTheLastBlock) {
    TestMachine t;
    Machine& m = t.m();
    for (int x = 0; x < 441; ++x) {
        m.saa.RightMatrix[4][x] = uint8_t(x % 256);
        m.sn.SnMatrix[x][2] = int16_t(x - 220);
        m.ay.AyColumns[1][x] = float(x % 33 - 16);
        m.ay.AyColumns[4][x] = float(x % 2);
    }
    const Trace saa = ScopeTrace(m, Scope::Saa, 4), sn = ScopeTrace(m, Scope::Sn, 2),
                ay = ScopeTrace(m, Scope::Ay, 1), env = ScopeTrace(m, Scope::Ay, 4);
    for (int x = 0; x < kTracePoints; ++x) {
        EXPECT_EQ(saa[x], RoundHalfEven(x / 10.0) + 32) << x;
        EXPECT_EQ(sn[x], std::trunc((x - 220) / 20.0) + 32) << x;
        EXPECT_EQ(ay[x], (x % 33 - 16) * 2 + 32) << x;
        EXPECT_EQ(env[x], x % 2 * 30 + 32) << x;
    }
    EXPECT_EQ(ScopeCount(Scope::Saa), 6);
    EXPECT_EQ(ScopeCount(Scope::Sn), 4);
    EXPECT_EQ(ScopeCount(Scope::Ay), 5);
}

TEST(ChipPanels, HeadlessManualPlaysTheSlidersTone) {
    ScratchDir dir;
    WriteRomSet(dir);
    const RunResult r = RunHeadless(
        "--dir " + dir.path().string() +
        " --control Fsaa.Check2=1 --control 'Fsaa.Check1(0)=1' --control 'Fsaa.HScroll1(0)=15'"
        " --control 'Fsaa.HScroll3(0)=3' --control 'Fsaa.HScroll4(0)=33' --frames 60"
        " --audio saa.wav");
    ASSERT_EQ(r.status, 0) << r.out;
    // Octave 3, byte 33: the chip's table in whole hertz; the phase runs at
    // 11,000 a second over 11,025 half periods.
    const double hz = RoundHalfEven(std::floor(15625.0 * 8 / (511 - 33) * 8192) / 8192);
    const WavProbe left(dir.path() / "saa.wav", 0), right(dir.path() / "saa.wav", 1);
    const WavProbe heard = left.Window(0.2);
    EXPECT_NEAR(heard.Frequency(129), hz * 11025.0 / 11000, 2);
    EXPECT_EQ(heard.Max(), 128 + RoundHalfEven(RoundHalfEven(255 / 31.0 * 15) / 8.0));
    EXPECT_EQ(heard.Min(), 128);
    EXPECT_EQ(right.Window(0.2).Max(), 128); // the right amplitude stays 0
    // Nothing before the first tick at the fifth frame.
    EXPECT_EQ(left.Window(0, 0.08).Max(), 128);
}

} // namespace
} // namespace tvc::test
