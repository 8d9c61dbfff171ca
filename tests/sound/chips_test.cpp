// The sound card's chips from outside: random port traffic, recordings of
// programs that play each chip, and the panel controls set from the command
// line.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>

#include "core/ControlItems.h"
#include "core/Numbers.h"
#include "hw/Ports.h"
#include "support/Headless.h"
#include "support/TestMachine.h"
#include "support/WavProbe.h"

namespace tvc::test {
namespace {

bool Normal(float v) {
    return std::isfinite(v) && std::fpclassify(v) != FP_SUBNORMAL;
}

TEST(SoundChips, RandomPortTrafficStaysInBounds) {
    std::vector<int> ports = {0x30, 0x32, 0x33, 0x3A, 0x3B, 0xFD, 0xFE,
                              0xFF, 0x34, 0x35, 0x38, 0x39, 0x3C, 0x3D};
    for (int p = 0xE0; p <= 0xF8; ++p)
        ports.push_back(p);
    TestMachine t;
    Machine& m = t.m();
    std::mt19937 rng(14);
    const char* passes[] = {"1", "abc", "99999999999", "-7", "3"};
    for (int i = 1; i <= 100000; ++i) {
        int32_t value = int32_t(rng() & 0xFF);
        PortOut(m, ports[rng() % ports.size()], value);
        if (i % 50) continue;
        m.sound.BlockIndex = int32_t(rng() % 5);
        FSIDControls& f = m.forms.FSID; // panel values out of range as well
        f.HScroll1 = int32_t(rng() % 300) - 100, f.HScroll2 = int32_t(rng() % 300) - 100;
        f.HScroll3 = int32_t(rng() % 300) - 100, f.HScroll4 = int32_t(rng() % 2000) - 100;
        f.HScroll5 = int32_t(rng() % 2000) - 100, f.Text1 = passes[rng() % 5];
        f.Check1 = rng() & 1, f.Check2 = rng() & 1, f.Check3 = rng() & 1, f.Check6 = rng() & 1;
        f.Check4 = (rng() % 8) == 0;
        SoundMix(m);
        for (int k = 0; k < 441; ++k) {
            ASSERT_TRUE(m.saa.SaaLeft[k] >= 0 && m.saa.SaaLeft[k] <= 120);
            ASSERT_TRUE(m.saa.SaaRight[k] >= 0 && m.saa.SaaRight[k] <= 120);
            ASSERT_LE(std::abs(m.sn.Sn76489Out[k]), 1200);
            ASSERT_LE(std::abs(m.ay.AyOut[k]), 96);
            ASSERT_LE(std::abs(m.ym.Ym3812Out[k]), 126);
            ASSERT_LE(std::abs(m.ym2.Ym2413Out[k]), 135);
        }
        const Sid& s = m.sid;
        for (int v = 0; v < 3; ++v)
            ASSERT_TRUE(Normal(s.SidPhase[v]) && s.SidPhase[v] >= -2.5f && s.SidPhase[v] < 2 &&
                        s.SidVoice[v].EnvLevel >= 0 && s.SidVoice[v].EnvLevel <= 1 &&
                        Normal(float(s.SidLow[v].Out)) && Normal(float(s.SidHigh[v].Out)));
        for (const SidHistory& h : {s.PanelHigh, s.PanelLow, s.PanelBand})
            ASSERT_TRUE(Normal(float(h.Out)) && std::fabs(h.Out) <= 3276700);
        if (f.Check1 || f.Check2 || f.Check3) continue;
        for (int16_t v : s.SidOut) // three voices, the high pass at most 1.6, x 15 x 16
            ASSERT_LE(std::abs(v), 864);
    }
}

TEST(SoundChips, ControlsByName) {
    Controls c;
    std::string error;
    EXPECT_TRUE(SetControl(c, "Fsaa.Check2", 1, error));
    EXPECT_TRUE(c.Fsaa.Check2);
    EXPECT_TRUE(SetControl(c, "Fsaa.Check11", 0, error));
    EXPECT_FALSE(c.Fsaa.Check11);
    for (const char* bad : {"Fsaa.Check2(0)", "Fsaa.Nothing", "Fsaa.Check2(", "Check2"})
        EXPECT_FALSE(FindControl(bad)) << bad;
    EXPECT_FALSE(SetControl(c, "FSN76489.Check3", 2, error));
    EXPECT_EQ(error, "FSN76489.Check3 takes 0 to 1");
    for (const char* bad : {"Fsaa.Nothing=1", "Fsaa.Check2=2", "Fsaa.Check2"})
        EXPECT_EQ(RunHeadless(std::string("--control ") + bad).status, 2) << bad;
    for (const ControlItem& item : ControlItems()) // every row reads back what it set
        for (int i = 0; i < std::max(item.count, 1); ++i) {
            item.set(c, i, item.hi);
            EXPECT_EQ(item.get(c, i), item.hi) << item.name;
        }
}

// A program of OUT (port),A pairs, then a loop on itself.
using Outs = std::vector<std::pair<int, int>>;
std::vector<uint8_t> Program(const Outs& outs) {
    std::vector<uint8_t> code;
    for (auto [port, value] : outs)
        code.insert(code.end(), {0x3E, uint8_t(value), 0xD3, uint8_t(port)});
    code.insert(code.end(), {0x18, 0xFE});
    return code;
}

// Register writes through an address port and a data port.
Outs Regs(int address, int data, std::initializer_list<std::pair<int, int>> regs) {
    Outs outs;
    for (auto [r, v] : regs)
        outs.insert(outs.end(), {{address, r}, {data, v}});
    return outs;
}

// Programs and panel settings recorded by the headless runner past the first
// unit: the pitch and the extremes the chip's rule and its weight give. (Each
// chip's own rule is checked on its render; these are the paths around it.)
TEST(SoundChips, RecordingsHoldThePredictedToneAndLevels) {
    // SAA: octave 4, byte 0, both sides 15 is a square of 0 and
    // round(round(255 / 31 x 15) / 8) over 128, its phase at 11,000 a second.
    const double saaHz = RoundHalfEven(15625.0 * 16 / 511) * 11025.0 / 11000;
    const int saaHigh = 128 + int(RoundHalfEven(123 / 8.0));
    // Channel 2 with its tone bit clear sounds only while "patch" is set.
    const Outs patch = Regs(0x33, 0x32, {{2, 0xFF}, {10, 0}, {17, 4}, {28, 1}});
    const struct {
        Outs outs;
        std::string extra;
        double hz;
        int threshold, low, high, slack;
    } rows[] = {
        {patch, "", saaHz, 129, 128, saaHigh, 0},
        {patch, "--control Fsaa.Check11=0", 0, 129, 128, 128, 0},
        // The panel's "Manual" from the command line: octave 3, byte 33.
        {{},
         "--control Fsaa.Check2=1 --control 'Fsaa.Check1(0)=1' --control 'Fsaa.HScroll1(0)=15' "
         "--control 'Fsaa.HScroll3(0)=3' --control 'Fsaa.HScroll4(0)=33'",
         RoundHalfEven(std::floor(15625.0 * 8 / (511 - 33) * 8192) / 8192) * 11025.0 / 11000,
         129,
         128,
         saaHigh,
         0},
        // YM3812: F-number 584 in block 4 is 584 x 16 / 21.23 Hz; 20 weighed by 0.5.
        {Regs(0x34, 0x35,
              {{0x20, 1}, {0x23, 1}, {0x40, 0x3F}, {0x43, 0}, {0xA0, 0x48}, {0xB0, 0x32}}),
         "--ym-direct log.txt", 584 * 16 / 21.23, 128, 118, 138, 1},
    };
    for (const auto& k : rows) {
        HeadlessDir d;
        d.dir.Write("chip.bin", Program(k.outs));
        const RunResult r =
            d.Run(k.extra + " --port 2=0xB0 --load-bin chip.bin --frames 100 --audio chip.wav");
        ASSERT_EQ(r.status, 0) << r.out;
        const WavProbe wav = WavProbe(d.dir.path() / "chip.wav").Window(0.1);
        SCOPED_TRACE(k.extra + (k.outs.empty() ? "" : std::to_string(k.outs[0].first)));
        EXPECT_NEAR(wav.Frequency(k.threshold), k.hz, 3);
        EXPECT_NEAR(wav.Min(), k.low, k.slack);
        EXPECT_NEAR(wav.Max(), k.high, k.slack);
        if (k.extra.find("ym-direct") == std::string::npos) continue;
        // The direct output logs every write with its frame time.
        std::istringstream log(d.Read("log.txt"));
        long frame = 0, t = 0, port = 0, value = 0, lines = 0;
        for (; log >> frame >> t >> port >> value; ++lines) {
            ASSERT_LT(size_t(lines), k.outs.size());
            EXPECT_EQ(port, 896 + lines % 2);
            EXPECT_EQ(value, k.outs[size_t(lines)].second);
            EXPECT_TRUE(t >= 0 && t < 62500);
        }
        EXPECT_EQ(size_t(lines), k.outs.size());
    }
}

TEST(SoundChips, DmpPlaysFromTheCommandLine) {
    HeadlessDir d;
    d.dir.Write("chip.bin", Program({}));
    std::vector<uint8_t> dump;
    for (int frame = 0; frame < 100; ++frame) {
        const int reg = frame < 50 ? 7621 : 11431; // 440 Hz, then 660 Hz
        const uint8_t head[] = {uint8_t(reg & 255), uint8_t(reg >> 8), 0, 8, 0x41, 0, 0xF0};
        dump.insert(dump.end(), std::begin(head), std::end(head));
        dump.resize(dump.size() + 17);
        dump.push_back(15);
    }
    d.dir.Write("tune.dmp", dump);
    const RunResult r = d.Run(
        "--port 2=0xB0 --load-bin chip.bin --frames 100 --audio chip.wav --sid-file tune.dmp");
    ASSERT_EQ(r.status, 0) << r.out;
    const WavProbe wav(d.dir.path() / "chip.wav");
    EXPECT_NEAR(wav.Window(0.1, 0.8).Frequency(), 440, 3);
    EXPECT_NEAR(wav.Window(1.1, 0.8).Frequency(), 660, 3);
    EXPECT_NE(d.Run("--sid-file none.dmp").status, 0);
}

} // namespace
} // namespace tvc::test
