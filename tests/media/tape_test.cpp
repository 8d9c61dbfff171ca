// The tape: samples from the input file, edges into "save.wav", the wave
// headers, and conversion of a 16-bit stereo file.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>

#include "core/Numbers.h"
#include "media/Tape.h"
#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

std::vector<uint8_t> Wave(std::vector<uint8_t> samples, uint8_t levelByte = 0) {
    std::vector<uint8_t> f(44, 0);
    f[43] = levelByte;
    f.insert(f.end(), samples.begin(), samples.end());
    return f;
}

uint32_t Le32(const std::string& s, size_t at) {
    uint32_t v = 0;
    for (int i = 3; i >= 0; --i)
        v = v << 8 | uint8_t(s[at + size_t(i)]);
    return v;
}

TEST(TapeInput, SamplesAreByteOver180RoundedHalfToEven) {
    TestMachine t;
    std::vector<uint8_t> bytes;
    for (int b = 0; b < 256; ++b)
        bytes.push_back(uint8_t(b));
    t.dir->Write("in.wav", Wave(bytes, 77));
    ASSERT_TRUE(TapeOpenInput(t.m(), "in.wav"));
    EXPECT_EQ(t.m().tape.TapeLevel, 77); // the rewind's level byte
    for (int b = 0; b < 256; ++b) {
        t.cpu().TStates = b * 300;
        ASSERT_EQ(TapeSample(t.m()), RoundHalfEven(b / 180.0)) << b;
        EXPECT_EQ(t.m().sound.ToneSlots[std::min(b * 300 / 142, 440)],
                  16 + RoundHalfEven(b / 180.0));
    }
    EXPECT_EQ(TapeSample(t.m()), 0); // past the end
    TapeRewind(t.m());
    for (int b = 0; b < 92; ++b)
        TapeSample(t.m());
    EXPECT_EQ(TapeSample(t.m()), 1); // 92 after a rewind: samples begin again at 44
}

TEST(TapeInput, ShortAndMissingFilesGiveZero) {
    TestMachine t;
    t.dir->Write("short.wav", std::vector<uint8_t>(40, 255));
    ASSERT_TRUE(TapeOpenInput(t.m(), "short.wav"));
    EXPECT_EQ(t.m().tape.TapeLevel, 0);
    EXPECT_EQ(TapeSample(t.m()), 0);
    EXPECT_FALSE(TapeOpenInput(t.m(), "missing.wav"));
    EXPECT_EQ(TapeSample(t.m()), 0);
}

TEST(TapeInput, SixteenBitStereoIsConvertedToEightBitMono) {
    TestMachine t;
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open("st.wav", SFM_WRITE, &info);
    ASSERT_NE(f, nullptr);
    // Left and right differ; their mean decides: +20000 is high, -20000 low.
    const short frames[] = {30000, 10000, -30000, -10000, 30000, 10000, -20000, -20000};
    sf_writef_short(f, frames, 4);
    sf_close(f);
    ASSERT_TRUE(TapeOpenInput(t.m(), "st.wav"));
    EXPECT_TRUE(t.m().tape.In.Converted());
    const int expected[] = {1, 0, 1, 0};
    for (int e : expected)
        EXPECT_EQ(TapeSample(t.m()), e);
    EXPECT_EQ(TapeSample(t.m()), 0);
}

TEST(TapeOutput, RunLengthsAndWrap) {
    struct Case {
        int32_t last, now, samples; // samples 0: a pause, nothing written
    };
    const auto runOf = [](int32_t d) { return int32_t(RoundHalfEven(d / 80.0)) + 1; };
    const Case cases[] = {
        {1000, 1000, runOf(0)},   {1000, 1040, runOf(40)},  {1000, 1120, runOf(120)},
        {1000, 1200, runOf(200)}, {0, 62000, runOf(62000)}, {0, 62001, 0},
        {62000, 100, runOf(600)}, {40000, 39999, 0},
    };
    for (const Case& c : cases) {
        TestMachine t;
        TapeRecord(t.m(), true);
        ASSERT_TRUE(t.m().tape.Out);
        t.m().tape.TapeLastT = c.last;
        t.m().tape.TapeLevel = kTapeLow;
        t.cpu().TStates = c.now;
        TapeEdge(t.m());
        EXPECT_EQ(t.m().tape.TapeLastT, c.now);
        EXPECT_EQ(t.m().tape.TapePos, 45 + c.samples) << c.last << "->" << c.now;
        TapeRecord(t.m(), false);
        const std::string save = Slurp("save.wav");
        ASSERT_EQ(save.size(), 44u + size_t(c.samples));
        EXPECT_EQ(Le32(save, 4), save.size());
        EXPECT_EQ(Le32(save, 40), save.size() - 44);
        EXPECT_EQ(Le32(save, 24), uint32_t(kTapeSaveRate));
        EXPECT_EQ(std::count(save.begin() + 44, save.end(), char(kTapeHigh)), c.samples);
        const std::string rec = Slurp("record.wav");
        EXPECT_EQ(rec.substr(0, 4), "RIFF");
        EXPECT_EQ(uint8_t(rec[34]), 16); // 16-bit tone blocks
    }
}

TEST(TapeOutput, LevelsAlternateAndMarkTheToneSlot) {
    TestMachine t;
    t.m().tape.TapeLevel = kTapeLow;
    const uint8_t levels[] = {kTapeHigh, kTapeLow, kTapeHigh};
    for (int i = 0; i < 3; ++i) {
        t.cpu().TStates = 1000 * (i + 1);
        TapeEdge(t.m());
        EXPECT_EQ(t.m().tape.TapeLevel, levels[i]);
        EXPECT_EQ(t.m().sound.ToneSlots[1000 * (i + 1) / 142], levels[i] == kTapeHigh ? 17 : 16);
    }
    t.cpu().TStates = 62700; // an overrunning frame: the last slot, and a message
    TapeEdge(t.m());
    EXPECT_EQ(t.m().sound.ToneSlots[440], 16);
    ASSERT_EQ(t.host.messages.size(), 1u);
    EXPECT_EQ(t.host.messages[0].text, "hiba hang");
}

} // namespace
} // namespace tvc::test
