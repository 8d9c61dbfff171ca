// The sound card's chips from outside: the panel controls and the command line.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "asm/TextLib.h"
#include "core/ControlItems.h"
#include "core/RunLoop.h"
#include "hw/Ports.h"
#include "sound/ChipPanels.h"
#include "sound/Ym3812.h"
#include "support/Headless.h"
#include "support/TestMachine.h"
#include "support/WavProbe.h"

namespace tvc::test {
namespace {

TEST(SoundChips, ControlsByName) {
    Controls c;
    std::string error;
    for (const char* bad : {"Fsaa.Check2(0)", "Fsaa.Nothing", "Check2"})
        EXPECT_FALSE(FindControl(bad)) << bad;
    EXPECT_FALSE(SetControl(c, "FSN76489.Check3", 2, error));
    EXPECT_EQ(error, "FSN76489.Check3 takes 0 to 1");
    EXPECT_EQ(RunHeadless("--control Fsaa.Check2=2").status, 2);
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

// The headless runner's own part: --ym-direct logs every write with its frame
// time, and --sid-file plays a dump into the recording. (The chips' renders
// are checked on their own; this is the path around them.)
TEST(SoundChips, DirectLogAndDumpFromTheCommandLine) {
    const Outs outs = Regs(0x34, 0x35, {{0x20, 1}, {0xA0, 0x48}, {0x40, 0x3F}}); // no key
    HeadlessDir d;
    d.dir.Write("chip.bin", Program(outs));
    std::vector<uint8_t> dump;
    for (int frame = 0; frame < 100; ++frame) {
        const uint8_t head[] = {7621 & 255, 7621 >> 8, 0, 8, 0x41, 0, 0xF0}; // 440 Hz
        dump.insert(dump.end(), std::begin(head), std::end(head));
        dump.resize(dump.size() + 17);
        dump.push_back(15);
    }
    d.dir.Write("tune.dmp", dump);
    const RunResult r = d.Run("--control Fsaa.Check11=0 --ym-direct log.txt --port 2=0xB0 "
                              "--load-bin chip.bin --frames 100 --audio chip.wav "
                              "--sid-file tune.dmp");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_NEAR(WavProbe(d.dir.path() / "chip.wav").Window(0.1, 0.8).Frequency(), 440, 3);
    EXPECT_NE(d.Run("--sid-file none.dmp").status, 0);
    std::istringstream log(d.Read("log.txt"));
    long frame = 0, t = 0, port = 0, value = 0, lines = 0;
    for (; log >> frame >> t >> port >> value; ++lines) {
        ASSERT_LT(size_t(lines), outs.size());
        EXPECT_EQ(port, 896 + lines % 2);
        EXPECT_EQ(value, outs[size_t(lines)].second);
        EXPECT_TRUE(t >= 0 && t < 62500);
    }
    EXPECT_EQ(size_t(lines), outs.size());
}

// The whole chip from the panel: each bar and box lands in its register's
// field, only with "Manual".
TEST(ChipPanels, SaaManualTickSetsTheWholeChip) {
    FsaaControls b;
    for (int n = 0; n < 6; ++n) {
        b.HScroll4[n] = 40 * n + 15, b.HScroll3[n] = 7 - n;
        b.HScroll1[n] = n + 9, b.HScroll2[n] = 15 - 2 * n;
        b.Check1[n] = n % 2, b.Check3[n] = n < 2;
    }
    b.HScroll5[0] = 3, b.HScroll5[1] = 2, b.HScroll6[0] = 5, b.HScroll6[1] = 7;
    b.Check7[1] = b.Check4[0] = b.Check5[1] = b.Check6[0] = true;
    b.Check8 = false, b.Check9 = true;
    TestMachine t;
    Machine& m = t.m();
    m.forms.Fsaa = b;
    m.forms.Fsaa.Check2 = false;
    ChipPanelsTick(m);
    EXPECT_EQ(m.saa.SaaFreq[5], 0);
    m.forms.Fsaa.Check2 = true;
    ChipPanelsTick(m);
    const Saa1099& s = m.saa;
    for (int n = 0; n < 6; ++n)
        EXPECT_EQ(std::vector<int>({s.SaaFreq[n], s.SaaOctave[n], s.SaaAmp[n], s.SaaAmp[n + 6],
                                    s.SaaToneEnable[n], s.SaaNoiseEnable[n]}),
                  std::vector<int>({b.HScroll4[n], b.HScroll3[n], b.HScroll1[n], b.HScroll2[n],
                                    b.Check1[n], b.Check3[n]}))
            << n;
    for (int e = 0; e < 2; ++e) {
        const SaaEnvelope& k = s.SaaEnv[e];
        EXPECT_EQ(std::vector<int>({s.SaaNoiseRate[e], k.Shape, k.Enable, k.InvertRight, k.Fine,
                                    k.ExternalClock}),
                  std::vector<int>({b.HScroll5[e], b.HScroll6[e], b.Check7[e], b.Check4[e],
                                    b.Check5[e], b.Check6[e]}))
            << e;
    }
    EXPECT_EQ(s.SaaAllEnable * 2 + s.SaaSync, 1);
}

TEST(ChipPanels, SnManualBytesKeepTheReversedSplit) {
    const int freq[4] = {1, 1023, 512, 3}, volume[4] = {15, 1, 7, 15};
    TestMachine t;
    Machine& m = t.m();
    FSN76489Controls& c = m.forms.FSN76489;
    std::copy(std::begin(freq), std::end(freq), c.HScroll3);
    std::copy(std::begin(volume), std::end(volume), c.HScroll4);
    c.Check2 = true;
    std::vector<uint8_t> want;
    for (int n = 0; n < 3; ++n) {
        const int N = 1024 - freq[n], high = (N >> 6) & 15;
        want.push_back(uint8_t(high + 0x80 + 0x20 * n));
        want.push_back(uint8_t(N - high * 64));
        EXPECT_EQ(SnFreqLabel(freq[n]), int(std::floor(3579545.0 / (1024 - freq[n]) / 32)));
    }
    for (int n = 0; n < 4; ++n)
        want.push_back(uint8_t(0x9F + 0x20 * n - volume[n]));
    want.push_back(uint8_t(0xE4 + freq[3]));
    EXPECT_EQ(SnManualBytes(c), want);
    c.Check3 = true; // the tick sends them through the chip's own path
    ChipPanelsTick(m);
    EXPECT_EQ(m.sn.SnChannel[2].Attenuation, 15 - volume[2]);
    EXPECT_EQ(m.sn.SnNoise.NoiseType, 4);
}

TEST(ChipPanels, YmEditorPacksTheInstrument) {
    FYM3812Controls c;
    int* s = c.HScroll1;
    const int mod[8] = {5, 40, 2, 12, 3, 9, 6, 1}, car[8] = {15, 0, 3, 1, 15, 0, 2, 3};
    std::copy(mod, mod + 8, s);
    std::copy(car, car + 8, s + 8);
    s[16] = 6;
    const bool flags[8] = {true, false, true, false, false, true, false, true};
    std::copy(flags, flags + 8, c.Check2);
    auto pack = [&](const int* op, const bool* f) {
        return std::array<uint8_t, 5>{uint8_t((f[0] * 8 + f[1] * 4 + f[2] * 2 + f[3]) * 16 + op[0]),
                                      uint8_t(op[2] * 32 + 63 - op[1]), uint8_t(op[3] * 16 + op[4]),
                                      uint8_t(op[5] * 16 + op[6]), uint8_t(op[7])};
    };
    const auto m = pack(mod, flags), k = pack(car, flags + 4);
    const std::vector<RegWrite> want = {{0x01, 32},   {0xBD, 0xC0}, {0x20, m[0]}, {0x23, k[0]},
                                        {0x40, m[1]}, {0x43, k[1]}, {0xC0, 12},   {0x60, m[2]},
                                        {0x80, m[3]}, {0x63, k[2]}, {0x83, k[3]}, {0xE0, m[4]},
                                        {0xE3, k[4]}};
    EXPECT_EQ(YmInstrumentWrites(c), want);
    const int mirrored[8] = {m[0], k[0], m[1], k[1], m[2], m[3], k[2], k[3]};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(YmTextValue(c, i), mirrored[i]) << i;

    // Enter in a mirror box sets its register's sliders so that the box reads
    // back what was typed; a level the sliders cannot pack stops at 3 x 32 + 63.
    for (int box = 0; box < 8; ++box)
        for (int v = 0; v < 256; ++v) {
            YmTextEnter(c, box, Hex2(v));
            ASSERT_EQ(YmTextValue(c, box), box == 2 || box == 3 ? std::min(v, 159) : v) << box;
        }
}

} // namespace
} // namespace tvc::test
