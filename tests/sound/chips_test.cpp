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
        for (int c = 0; c < 6; ++c)
            ASSERT_TRUE(m.saa.SaaTonePhase[c] >= 0 && m.saa.SaaTonePhase[c] < 2);
        for (float p : m.sn.SnPhase)
            ASSERT_TRUE(Normal(p) && p >= 0 && p < 2);
        for (float p : m.ay.AyPhase)
            ASSERT_TRUE(Normal(p) && p >= 0 && p < 2);
        ASSERT_TRUE(Normal(m.saa.SaaEnvPhase[0]) && Normal(m.saa.SaaEnvPhase[1]));
        for (int c = 0; c < 9; ++c)
            ASSERT_TRUE(std::isfinite(m.ym.YmModPhase[c]) && m.ym.YmCarPhase[c] >= 0 &&
                        m.ym.YmCarPhase[c] < 1 && m.ym2.Ym2Phase[c] >= 0 && m.ym2.Ym2Phase[c] < 1);
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
std::vector<uint8_t> Program(std::initializer_list<std::pair<int, int>> outs) {
    std::vector<uint8_t> code;
    for (auto [port, value] : outs)
        code.insert(code.end(), {0x3E, uint8_t(value), 0xD3, uint8_t(port)});
    code.insert(code.end(), {0x18, 0xFE});
    return code;
}

WavProbe Record(const std::vector<uint8_t>& program, const std::string& extra = "") {
    ScratchDir dir;
    WriteRomSet(dir);
    dir.Write("chip.bin", program);
    const RunResult r =
        RunHeadless("--dir " + dir.path().string() + " " + extra +
                    " --port 2=0xB0 --load-bin chip.bin --frames 100 --audio chip.wav");
    EXPECT_EQ(r.status, 0) << r.out;
    return WavProbe(dir.path() / "chip.wav").Window(0.1); // past the first unit
}

TEST(SoundChips, RecordingsHoldThePredictedToneAndLevels) {
    // AY: period 254 gives 111861 / 254 = 440 Hz at AyVolume[15] x 16 = 16.
    const WavProbe ay = Record(Program({{0x3A, 0},
                                        {0x3B, 254},
                                        {0x3A, 1},
                                        {0x3B, 0},
                                        {0x3A, 7},
                                        {0x3B, 0x3E},
                                        {0x3A, 8},
                                        {0x3B, 15}}));
    EXPECT_NEAR(ay.Frequency(), 111861.0 / 254, 2);
    EXPECT_EQ(ay.Min(), 128 - 16);
    EXPECT_EQ(ay.Max(), 128 + 16);
    EXPECT_NEAR(ay.Duty(129), 0.5, 0.02);

    // SN: divider 254 gives Int(3579545 / 254 / 32) = 440 Hz; weight 0.1 of 300.
    const std::vector<uint8_t> sn =
        Program({{0x30, 0x80 | (254 & 15)}, {0x30, 254 >> 4}, {0x30, 0x90}});
    const WavProbe snWav = Record(sn);
    EXPECT_NEAR(snWav.Frequency(), 3579545 / 254 / 32, 2);
    const auto levels = snWav.Levels();
    ASSERT_EQ(levels.size(), 2u);
    EXPECT_EQ(levels.begin()->first, 128 - 30);
    EXPECT_EQ(levels.rbegin()->first, 128 + 30);
    EXPECT_EQ(Record(sn, "--control FSN76489.Check3=1").Max(), 128); // "Manual"

    // SAA: channel 0 at octave 4, byte 0, both sides 15: a square of
    // 0 and round(round(255 / 31 x 15) / 8) over 128.
    const int saaHz = int(RoundHalfEven(15625.0 * 16 / 511)), high = int(RoundHalfEven(123 / 8.0));
    const std::vector<uint8_t> saa = Program({{0xFF, 0},
                                              {0xFE, 0xFF},
                                              {0xFF, 8},
                                              {0xFE, 0},
                                              {0xFF, 16},
                                              {0xFE, 4},
                                              {0xFF, 20},
                                              {0xFE, 1},
                                              {0xFF, 28},
                                              {0xFE, 1}});
    const WavProbe saaWav = Record(saa);
    EXPECT_NEAR(saaWav.Frequency(129), saaHz * 11025.0 / 11000, 2);
    EXPECT_EQ(saaWav.Max(), 128 + high);
    EXPECT_EQ(saaWav.Min(), 128);
    EXPECT_EQ(Record(saa, "--control Fsaa.Check2=1").Max(), 128); // "Manual"

    // Channel 2 with its tone bit clear sounds only while "patch" is set.
    const std::vector<uint8_t> patch = Program({{0x33, 2},
                                                {0x32, 0xFF},
                                                {0x33, 10},
                                                {0x32, 0},
                                                {0x33, 17},
                                                {0x32, 4},
                                                {0x33, 28},
                                                {0x32, 1}});
    EXPECT_EQ(Record(patch).Max(), 128 + high);
    EXPECT_EQ(Record(patch, "--control Fsaa.Check11=0").Max(), 128);
}

TEST(SoundChips, RecordingsOfTheFmChipsAndTheSid) {
    // YM3812: F-number 584 in block 4 is 584 x 16 / 21.23 = 440 Hz; carrier
    // level 1 x 20, weighed by 0.5.
    const std::vector<std::pair<int, int>> ymWrites = {{0x20, 1}, {0x23, 1},    {0x40, 0x3F},
                                                       {0x43, 0}, {0xA0, 0x48}, {0xB0, 0x32}};
    std::vector<uint8_t> ym;
    for (auto [r, v] : ymWrites) {
        const std::vector<uint8_t> pair = Program({{0x34, r}, {0x35, v}});
        ym.insert(ym.end(), pair.begin(), pair.end() - 2);
    }
    ym.insert(ym.end(), {0x18, 0xFE});
    {
        ScratchDir dir;
        WriteRomSet(dir);
        dir.Write("chip.bin", ym);
        const RunResult r = RunHeadless("--dir " + dir.path().string() +
                                        " --port 2=0xB0 --load-bin chip.bin --frames 100 "
                                        "--audio chip.wav --ym-direct log.txt");
        ASSERT_EQ(r.status, 0) << r.out;
        const WavProbe wav = WavProbe(dir.path() / "chip.wav").Window(0.1);
        EXPECT_NEAR(wav.Frequency(), 584 * 16 / 21.23, 3);
        EXPECT_NEAR(wav.Max(), 138, 1);
        EXPECT_NEAR(wav.Min(), 118, 1);
        std::istringstream log(Slurp(dir.path() / "log.txt"));
        long frame = 0, t = 0, port = 0, value = 0, lines = 0;
        for (; log >> frame >> t >> port >> value; ++lines) {
            ASSERT_LT(lines, 12);
            const auto [reg, data] = ymWrites[size_t(lines / 2)];
            EXPECT_EQ(port, 896 + lines % 2);
            EXPECT_EQ(value, lines % 2 ? data : reg);
            EXPECT_TRUE(t >= 0 && t < 62500);
        }
        EXPECT_EQ(lines, 12);
    }

    // YM2413: F-number 289 in block 4 sounds at twice 289 x 16 / 21.276595;
    // three levels, +-15 weighed by 0.5 and rounded half to even.
    const WavProbe ym2 = Record(Program(
        {{0x3C, 0x10}, {0x3D, 289 & 255}, {0x3C, 0x20}, {0x3D, 0x19}, {0x3C, 0x30}, {0x3D, 15}}));
    EXPECT_NEAR(ym2.Frequency(129), 2 * 289 * 16 / 21.276595, 3);
    const auto levels = ym2.Levels();
    EXPECT_EQ(levels.size(), 3u);
    EXPECT_EQ(ym2.Max(), 136);
    EXPECT_EQ(ym2.Min(), 120);

    // SID: register 7,621 is Freq 880, a pulse of 440 Hz at width 2,048, +-240 by 0.1.
    const WavProbe sid = Record(Program({{0xE0, 7621 & 255},
                                         {0xE1, 7621 >> 8},
                                         {0xE3, 8},
                                         {0xE6, 0xF0},
                                         {0xF8, 15},
                                         {0xE4, 0x41}}));
    EXPECT_NEAR(sid.Frequency(), 440, 3);
    EXPECT_EQ(sid.Max(), 152);
    EXPECT_EQ(sid.Min(), 104);
    EXPECT_NEAR(sid.Duty(), 0.5, 0.02);
}

TEST(SoundChips, DmpPlaysFromTheCommandLine) {
    ScratchDir dir;
    WriteRomSet(dir);
    dir.Write("chip.bin", Program({}));
    std::vector<uint8_t> dump;
    for (int frame = 0; frame < 100; ++frame) {
        const int reg = frame < 50 ? 7621 : 11431; // 440 Hz, then 660 Hz
        const uint8_t head[] = {uint8_t(reg & 255), uint8_t(reg >> 8), 0, 8, 0x41, 0, 0xF0};
        dump.insert(dump.end(), std::begin(head), std::end(head));
        dump.resize(dump.size() + 17);
        dump.push_back(15);
    }
    dir.Write("tune.dmp", dump);
    const RunResult r =
        RunHeadless("--dir " + dir.path().string() +
                    " --port 2=0xB0 --load-bin chip.bin --frames 100 --audio chip.wav "
                    "--sid-file tune.dmp");
    ASSERT_EQ(r.status, 0) << r.out;
    const WavProbe wav(dir.path() / "chip.wav");
    EXPECT_NEAR(wav.Window(0.1, 0.8).Frequency(), 440, 3);
    EXPECT_NEAR(wav.Window(1.1, 0.8).Frequency(), 660, 3);
    EXPECT_NE(RunHeadless("--dir " + dir.path().string() + " --sid-file none.dmp").status, 0);
}

} // namespace
} // namespace tvc::test
