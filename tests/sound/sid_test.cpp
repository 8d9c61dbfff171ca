// The SID: ports and decode, envelope timing, waveforms, sync and ring, the
// chip and panel filters, the sweep, and dump playback from SIDX and DMP.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>

#include "core/Numbers.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Reg(Machine& m, int r, int v) {
    PortOut(m, 0x38, r);
    PortOut(m, 0x39, v);
}

// Voice v at frequency register f with control ctl; volume 15.
void Voice(Machine& m, int v, int f, int ctl, int ad = 0, int sr = 0xF0, int pw = 4095) {
    const int base = v * 7;
    Reg(m, base, f & 255), Reg(m, base + 1, f >> 8), Reg(m, base + 2, pw & 255),
        Reg(m, base + 3, pw >> 8), Reg(m, base + 4, ctl), Reg(m, base + 5, ad),
        Reg(m, base + 6, sr), Reg(m, 24, 15);
}

std::vector<float> Column(const Machine& m, int v) {
    return {std::begin(m.sid.SidColumns[v]), std::end(m.sid.SidColumns[v])};
}

TEST(Sid, PortsAndDecode) {
    TestMachine t;
    Machine& m = t.m();
    Reg(m, 28, 9), Reg(m, 29, 9), Reg(m, 255, 9); // beyond the 29 registers: lost
    EXPECT_EQ(m.sid.SidRegs[28], 9);
    const int regs[25] = {0x34, 0x12, 0x56, 0xF7, 0x41, 0x9A, 0x3C, 0, 0,    0,    0,    0,   0,
                          0,    0,    0,    0,    0,    0,    0,    0, 0xFF, 0x80, 0xA5, 0x6F};
    for (int r = 0; r < 25; ++r) {
        int32_t v = regs[r];
        PortOut(m, 0xE0 + r, v);
    }
    SidDecode(m);
    const SidVoiceState& v = m.sid.SidVoice[0];
    EXPECT_EQ(v.Freq, RoundHalfEven(0x1234 / 8.66));
    EXPECT_EQ(v.PulseWidth, 0x756);
    EXPECT_EQ(v.Control, 0x41);
    EXPECT_EQ(v.Attack * 1000 + v.Decay * 100 + v.Sustain * 10 + v.Release, 9000 + 1000 + 30 + 12);
    EXPECT_EQ(m.sid.SidCutoff, 7 + 0x80 * 8);
    EXPECT_EQ(m.sid.SidResonance * 100 + m.sid.SidRouting * 10 + m.sid.SidMode, 1000 + 50 + 6);
    EXPECT_EQ(m.sid.SidVolume, 15);
    EXPECT_EQ(m.sid.SidGate[0], 1);
    EXPECT_FLOAT_EQ(v.SustainLevel, 3 / 15.0f);
    EXPECT_FLOAT_EQ(v.AttackStep, 1 / (250 * 22.0f));
    EXPECT_FLOAT_EQ(v.ReleaseStep, 1 / (3000 * 22.0f));
}

// A pulse of width 4,095 at frequency 0 holds +1, so the column is the envelope.
TEST(Sid, EnvelopeTiming) {
    const struct {
        int attack, decay, sustain, release, scroll4, scroll5;
    } cases[] = {{0, 0, 8, 0, 440, 440},
                 {1, 0, 15, 0, 440, 440},
                 {0, 1, 0, 1, 880, 220},
                 {0, 0, 4, 2, 100, 1200},
                 {2, 0, 15, 0, 0, -5}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.HScroll4 = k.scroll4, m.forms.FSID.HScroll5 = k.scroll5;
        const double sa = std::clamp(k.scroll4, 1, 1200) / 20.0,
                     sd = std::clamp(k.scroll5, 1, 1200) / 20.0;
        const int ams[] = {2, 8, 16}, dms[] = {6, 24, 48};
        const double sl = k.sustain / 15.0, full = ams[k.attack] * sa;
        const double settle = full + (1 - sl) * dms[k.decay] * sd;
        Voice(m, 0, 0, 0x41, k.attack * 16 + k.decay, k.sustain * 16 + k.release);
        SidRender(m);
        const std::vector<float> up = Column(m, 0);
        for (int i = 0; i < 441; ++i) {
            const double want = i + 1 < full     ? (i + 1) / full
                                : i + 1 < settle ? 1 - (i + 1 - full) / (dms[k.decay] * sd)
                                                 : sl;
            ASSERT_NEAR(up[i], want, 0.02) << k.attack << " sample " << i;
        }
        Reg(m, 4, 0x40); // gate off: release from the sustain level
        SidRender(m);
        const double fall = dms[k.release] * sa;
        for (int i = 0; i < 441; ++i)
            ASSERT_NEAR(m.sid.SidColumns[0][i], std::max(0.0, sl - (i + 1) / fall), 0.02) << i;
    }
}

TEST(Sid, WaveformsWithTheEnvelopeOff) {
    const struct {
        int ctl, f, pw;
    } cases[] = {{0x20, 5000, 0}, {0x10, 3000, 0},   {0x40, 2000, 1024},
                 {0x40, 2000, 0}, {0x60, 700, 3072}, {0x00, 4000, 0}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.Check6 = false;
        Voice(m, 0, k.f, k.ctl, 0, 0, k.pw);
        SidRender(m);
        const double step = RoundHalfEven(k.f / 8.66) / 22050.0;
        float p = 0;
        for (int i = 0; i < 441; ++i) {
            p = float(p + step);
            double want = 0;
            if (k.ctl & 0x40) {
                if (k.pw / 2048.0 <= p) p -= 2;
                want = p >= 0 ? 1 : -1;
            } else {
                if (p >= 1) p -= 2;
                want = k.ctl & 0x20 ? p : k.ctl & 0x10 ? (std::fabs(p) - 0.5) * 2 : 0;
            }
            ASSERT_NEAR(m.sid.SidColumns[0][i], want, 1e-5) << k.ctl << " " << i;
        }
        EXPECT_EQ(m.sid.SidOut[7], RoundHalfEven(double(m.sid.SidColumns[0][7]) * 15 * 16));
    }
}

TEST(Sid, NoiseLevelsAndMutedVoice) {
    TestMachine t;
    Machine& m = t.m();
    m.forms.FSID.Check6 = false;
    Voice(m, 1, 600, 0x80);
    m.forms.FSID.Check9[2] = false;
    Voice(m, 2, 3000, 0x20);
    SidRender(m);
    for (float v : Column(m, 1)) {
        const double level = (v + 1) / 0.25;
        ASSERT_TRUE(v >= -1 && v <= 0.75 && level == std::floor(level)) << v;
    }
    const std::vector<float> noise = Column(m, 1);
    EXPECT_GT(std::count_if(noise.begin() + 1, noise.end(), [&](float v) { return v != noise[0]; }),
              0);
    EXPECT_EQ(*std::max_element(m.sid.SidColumns[2], m.sid.SidColumns[2] + 441), 0);
    const double twice = 2 * 441 * (RoundHalfEven(3000 / 8.66) / 22050.0); // the phase ran twice
    EXPECT_NEAR(m.sid.SidPhase[2], twice - 2 * std::floor((twice + 1) / 2), 1e-3);
}

TEST(Sid, SyncAndRing) {
    for (const bool box : {true, false}) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.Check6 = false;
        m.forms.FSID.Check10 = box;
        Voice(m, 0, 500, 0x22);   // sawtooth synced to voice 3
        Voice(m, 1, 900, 0x14);   // triangle ringed by voice 1
        Voice(m, 2, 19096, 0x20); // 2205: voice 1 restarts every 40 samples
        SidRender(m);
        const double step = RoundHalfEven(500 / 8.66) / 22050.0, sync = 2205 / 22050.0 / 4;
        float p = 0, tri = 0;
        double acc = 0;
        const double triStep = RoundHalfEven(900 / 8.66) / 22050.0;
        for (int i = 0; i < 441; ++i) {
            p = float(p + step);
            if (p >= 1) p -= 2;
            if (box && (acc += sync) >= 1) p = 0, acc = 0;
            tri = float(tri + triStep);
            if (tri >= 1) tri -= 2;
            const double ring = (std::fabs(tri) - 0.5) * 2;
            ASSERT_NEAR(m.sid.SidColumns[1][i], box ? ring * p : ring, 1e-5) << box << " " << i;
            ASSERT_EQ(m.sid.SidColumns[0][i], box ? 0 : p) << i;
        }
    }
}

TEST(Sid, ChipFilters) {
    const struct {
        int cutoff, routing, mode;
    } cases[] = {{0, 1, 1}, {16383, 1, 1}, {4400, 1, 1}, {0, 2, 4}, {8800, 4, 4}, {30000, 2, 4}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.Check6 = false;
        for (int v = 0; v < 3; ++v)
            Voice(m, v, 0, 0x40); // +1 on every voice
        Reg(m, 21, k.cutoff & 7), Reg(m, 22, std::min(k.cutoff >> 3, 255));
        Reg(m, 23, k.routing), Reg(m, 24, k.mode << 4 | 15);
        SidRender(m);
        const int cut = (k.cutoff & 7) + std::min(k.cutoff >> 3, 255) * 8;
        const double low = std::clamp(cut / 22000.0, 0.2, 1.0),
                     high = std::clamp(1 - cut / 22000.0, 0.0, 0.8);
        for (int i = 0; i < 441; i += 20) {
            const double want = k.mode == 1 ? 1 - std::pow(1 - low, i + 1) : std::pow(high, i + 1);
            ASSERT_NEAR(m.sid.SidColumns[0][i], want, 1e-5) << k.cutoff << " " << i;
        }
        EXPECT_EQ(m.forms.FSID.HScroll6, k.mode == 1 ? RoundHalfEven(low * 100) : 0);
        EXPECT_EQ(m.sid.SidColumns[k.routing / 2][5],
                  k.routing > 1 ? 1 : float(1 - std::pow(1 - low, 6)));
    }
}

TEST(Sid, PanelFiltersAndPasses) {
    const struct {
        bool high, low, band;
        int scroll, voices;
        std::vector<int> want; // the first samples
    } cases[] = {{true, false, false, 50, 1, {120, 60, 30, 15}},
                 {true, false, false, 0, 1, {240, 240, 240}},
                 {false, true, false, 50, 1, {120, 180, 210, 225}},
                 {false, true, false, 100, 3, {328, 328}}, // x 100 saturates in 16 bits
                 {false, false, true, 50, 1, {0, 240, 240}}};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        FSIDControls& f = m.forms.FSID;
        f.Check6 = false, f.Text1 = "0";
        f.Check1 = k.high, f.Check2 = k.low, f.Check3 = k.band;
        f.HScroll1 = f.HScroll2 = f.HScroll3 = k.scroll;
        for (int v = 0; v < k.voices; ++v)
            Voice(m, v, 0, 0x40);
        SidRender(m);
        for (size_t i = 0; i < k.want.size(); ++i)
            EXPECT_EQ(m.sid.SidOut[i], k.want[i]) << i;
    }
    const std::pair<const char*, int> passes[] = {
        {"1", 2},     {"0", 1},     {"abc", 1},
        {"", 1},      {"-4", 1},    {"7x", 8},
        {"100", 101}, {"101", 101}, {"99999999999999999999", 101}};
    for (const auto& [text, n] : passes)
        EXPECT_EQ(SidPanelPasses(text), n) << text;
}

TEST(Sid, WobblerSweep) {
    TestMachine t;
    Machine& m = t.m();
    Reg(m, 24, 15);
    m.forms.FSID.Check4 = true;
    SidRender(m);
    EXPECT_EQ(m.forms.FSID.Label15, 52);
    EXPECT_EQ(m.sid.SidVoice[0].Control, 17);
    m.sid.SidSweepFreq = 10500;
    SidRender(m);
    EXPECT_EQ(m.forms.FSID.Label15, 50);
    EXPECT_EQ(m.forms.FSID.Pic2Clears, 1u);
    ASSERT_EQ(m.forms.FSID.Pic2Points.size(), 1u);
    EXPECT_EQ(m.forms.FSID.Pic2Points[0].first, 4);
    m.forms.FSID.Check5 = true;
    SidRender(m);
    EXPECT_EQ(m.sid.SidVoice[0].Freq, 440);
}

// A SIDX line with the given text at 1-based columns, dots in every other field.
std::string Line(std::initializer_list<std::pair<int, const char*>> fields) {
    std::string line(107, ' ');
    auto put = [&](int col, std::string_view text) {
        line.replace(size_t(col - 1), text.size(), text);
    };
    for (int v = 0; v < 3; ++v)
        put(11 + 28 * v, "...."), put(25 + 28 * v, ".."), put(28 + 28 * v, "...."),
            put(33 + 28 * v, "...");
    put(95, "...."), put(100, ".."), put(103, "..."), put(107, ".");
    for (auto [col, text] : fields)
        put(col, text);
    return line;
}

TEST(Sid, SidxFields) {
    const struct {
        std::string line;
        std::vector<std::pair<int, int>> regs; // register, value after
    } cases[] = {
        {Line({{11, "1A2B"}, {25, "41"}, {28, "09F3"}, {33, "8C0"}}),
         {{1, 0x1A}, {0, 0x2B}, {4, 0x41}, {5, 0x09}, {6, 0xF3}, {3, 8}, {2, 0xC0}}},
        {Line({{39, "beef"}, {53, "11"}, {56, "A5C7"}, {61, "FFF"}}),
         {{8, 0xBE}, {7, 0xEF}, {11, 0x11}, {12, 0xA5}, {13, 0xC7}, {10, 15}, {9, 0xFF}}},
        {Line({{67, "0102"}, {81, "80"}, {84, ".123"}, {89, "abc"}}),
         {{15, 1}, {14, 2}, {18, 0x80}, {19, 0x77}, {17, 10}, {16, 0xBC}}},
        {Line({{95, "12F0"}, {100, "F1"}, {103, "L+H"}, {107, "9"}}),
         {{22, 0x12}, {21, 0xF0}, {23, 0xF1}, {24, 89}}},
        {Line({{103, "LBH"}, {107, "F"}}), {{24, 127}}},
        {Line({{103, "Hi "}, {107, "3"}}), {{24, 3}}},
        {Line({{103, "Typ"}, {107, "1"}}), {{24, 1}}},
        {Line({{103, "Low"}, {107, "."}}), {{24, 0x77}}},
        {Line({{11, "12G4"}, {25, "x1"}}), {{1, 0x12}, {0, 0}, {4, 0}}}, // per part
        {Line({}).substr(0, 105), {{24, 0}, {23, 0x77}}},            // cut: the volume field is 0
        {Line({}).substr(0, 12), {{1, 0}, {0, 0}, {4, 0}, {22, 0}}}, // "..": a cut freq is 0
    };
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        std::fill(std::begin(m.sid.SidRegs), std::end(m.sid.SidRegs), 0x77);
        SidApplySidxLine(m, k.line);
        for (auto [r, v] : k.regs)
            EXPECT_EQ(m.sid.SidRegs[r], v) << k.line << " reg " << r;
        EXPECT_TRUE(t.host.messages.empty());
    }
    TestMachine t;
    SidApplySidxLine(t.m(), Line({{103, "Bad"}}));
    SidApplySidxLine(t.m(), Line({{103, "Odd"}}));
    ASSERT_EQ(t.host.messages.size(), 1u); // once per file
    EXPECT_EQ(t.host.messages[0].text + t.host.messages[0].title, "hibaBad");
}

TEST(Sid, DumpPlaybackFromTheWorkingDirectory) {
    TestMachine t;
    Machine& m = t.m();
    std::vector<uint8_t> dump;
    for (int frame = 0; frame < 3; ++frame)
        for (int r = 0; r < 25; ++r)
            dump.push_back(uint8_t(r == 24 ? (frame == 1 ? 0 : 15) : frame * 25 + r));
    dump.insert(dump.end(), 24, 0xEE); // a short last frame is dropped
    for (const char* name : {"b.DMP", "a.dmp", "c.sidx", "d.dmpx"})
        t.dir->Write(name, dump);
    std::string error;
    ASSERT_TRUE(SidPlayFile(m, "a.dmp", error)) << error;
    EXPECT_EQ(m.forms.FSID.File1List, (std::vector<std::string>{"a.dmp", "b.DMP"}));
    for (int frame = 0; frame < 5; ++frame) {
        SidRender(m); // frame 1 has volume 0: silent, but the dump advances
        const int shown = std::min(frame, 2);
        EXPECT_EQ(m.sid.SidRegs[3], shown * 25 + 3) << frame;
        EXPECT_EQ(m.sid.SidVolume, shown == 1 ? 0 : 15) << frame;
    }
    EXPECT_FALSE(SidPlayFile(m, "d.dmpx", error));
    EXPECT_FALSE(SidPlayFile(m, "e.dmp", error));
    SidChooseOption(m, 0);
    EXPECT_TRUE(m.forms.FSID.File1.empty() && m.sid.PlayFile == nullptr);
    std::ofstream("s.sidx") << "1\n2\n3\n4\n5\n6\n7\n" << Line({{107, "5"}}) << "\r\n";
    ASSERT_TRUE(SidPlayFile(m, "s.sidx", error)) << error;
    SidRender(m);
    EXPECT_EQ(m.sid.SidRegs[24], 5);
}

} // namespace
} // namespace tvc::test
