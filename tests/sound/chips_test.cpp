// The sound card's chips from outside: random port traffic, recordings of
// programs that play each chip, and the panel controls set from the command
// line.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

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
    const int ports[] = {0x30, 0x32, 0x33, 0x3A, 0x3B, 0xFD, 0xFE, 0xFF};
    TestMachine t;
    Machine& m = t.m();
    std::mt19937 rng(14);
    for (int i = 1; i <= 100000; ++i) {
        int32_t value = int32_t(rng() & 0xFF);
        PortOut(m, ports[rng() % 8], value);
        if (i % 50) continue;
        m.sound.BlockIndex = int32_t(rng() % 5);
        SoundMix(m);
        for (int k = 0; k < 441; ++k) {
            ASSERT_TRUE(m.saa.SaaLeft[k] >= 0 && m.saa.SaaLeft[k] <= 120);
            ASSERT_TRUE(m.saa.SaaRight[k] >= 0 && m.saa.SaaRight[k] <= 120);
            ASSERT_LE(std::abs(m.sn.Sn76489Out[k]), 1200);
            ASSERT_LE(std::abs(m.ay.AyOut[k]), 96);
        }
        for (int c = 0; c < 6; ++c)
            ASSERT_TRUE(m.saa.SaaTonePhase[c] >= 0 && m.saa.SaaTonePhase[c] < 2);
        for (float p : m.sn.SnPhase)
            ASSERT_TRUE(Normal(p) && p >= 0 && p < 2);
        for (float p : m.ay.AyPhase)
            ASSERT_TRUE(Normal(p) && p >= 0 && p < 2);
        ASSERT_TRUE(Normal(m.saa.SaaEnvPhase[0]) && Normal(m.saa.SaaEnvPhase[1]));
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
    HeadlessDir d;
    d.dir.Write("chip.bin", program);
    const RunResult r =
        d.Run(extra + " --port 2=0xB0 --load-bin chip.bin --frames 100 --audio chip.wav");
    EXPECT_EQ(r.status, 0) << r.out;
    return WavProbe(d.dir.path() / "chip.wav").Window(0.1); // past the first unit
}

TEST(SoundChips, RecordingsHoldThePredictedToneAndLevels) {
    // AY: period 254 gives 111861 / 254 = 440 Hz at AyVolume[15] x 16 = 16.
    // clang-format off
    const WavProbe ay = Record(Program({{0x3A, 0}, {0x3B, 254}, {0x3A, 1}, {0x3B, 0}, {0x3A, 7},
                                        {0x3B, 0x3E}, {0x3A, 8}, {0x3B, 15}}));
    // clang-format on
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
    // clang-format off
    const std::vector<uint8_t> saa = Program({{0xFF, 0}, {0xFE, 0xFF}, {0xFF, 8}, {0xFE, 0}, {0xFF, 16},
                                              {0xFE, 4}, {0xFF, 20}, {0xFE, 1}, {0xFF, 28}, {0xFE, 1}});
    const WavProbe saaWav = Record(saa);
    EXPECT_NEAR(saaWav.Frequency(129), saaHz * 11025.0 / 11000, 2);
    EXPECT_EQ(saaWav.Max(), 128 + high);
    EXPECT_EQ(saaWav.Min(), 128);
    EXPECT_EQ(Record(saa, "--control Fsaa.Check2=1").Max(), 128); // "Manual"

    // Channel 2 with its tone bit clear sounds only while "patch" is set.
    const std::vector<uint8_t> patch = Program({{0x33, 2}, {0x32, 0xFF}, {0x33, 10}, {0x32, 0},
                                                {0x33, 17}, {0x32, 4}, {0x33, 28}, {0x32, 1}});
    // clang-format on
    EXPECT_EQ(Record(patch).Max(), 128 + high);
    EXPECT_EQ(Record(patch, "--control Fsaa.Check11=0").Max(), 128);
}

} // namespace
} // namespace tvc::test
