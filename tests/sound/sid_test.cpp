// The SID through its ports, its panel and its dump files.
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

// Voice v at frequency register f with control ctl, by the direct ports; volume 15.
void Voice(Machine& m, int v, int f, int ctl, int ad = 0, int sr = 0xF0, int pw = 4095) {
    int32_t regs[] = {f & 255, f >> 8, pw & 255, pw >> 8, ctl, ad, sr};
    for (int r = 0; r < 7; ++r)
        PortOut(m, 0xE0 + v * 7 + r, regs[r]);
    Reg(m, 24, 15);
}

double Step(int f) {
    return RoundHalfEven(f / 8.66) / 22050.0;
}

TEST(Sid, PortsAndDecode) {
    TestMachine t;
    Machine& m = t.m();
    Reg(m, 28, 9), Reg(m, 29, 9); // beyond the 29 registers: lost
    Voice(m, 0, 0x1234, 0x41, 0x9A, 0x3C, 0xF756);
    Reg(m, 21, 0xFF), Reg(m, 22, 0x80), Reg(m, 23, 0xA5), Reg(m, 24, 0x6F);
    SidDecode(m);
    const SidVoiceState& v = m.sid.SidVoice[0];
    const Sid& s = m.sid;
    EXPECT_EQ(v.Freq, RoundHalfEven(0x1234 / 8.66));
    EXPECT_EQ(std::vector<int>({s.SidRegs[28], v.PulseWidth, v.Control, v.Attack, v.Decay,
                                v.Sustain, v.Release, s.SidCutoff, s.SidResonance, s.SidRouting,
                                s.SidMode, int(s.SidVolume)}),
              std::vector<int>({9, 0x756, 0x41, 9, 10, 3, 12, 7 + 0x80 * 8, 10, 5, 6, 15}));
    EXPECT_FLOAT_EQ(v.AttackStep * v.ReleaseStep, 1 / (250 * 22.0f) / (3000 * 22.0f));
    m.sid.SidPhase[2] = 0.5f;
    SidReset(m);
    EXPECT_TRUE(std::all_of(s.SidRegs, s.SidRegs + 29, [](int32_t r) { return r == 0; }) &&
                s.SidPhase[2] == 0);
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
    const int ams[] = {2, 8, 16}, dms[] = {6, 24, 48};
    for (const auto& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.HScroll4 = k.scroll4, m.forms.FSID.HScroll5 = k.scroll5;
        const double sa = std::clamp(k.scroll4, 1, 1200) / 20.0,
                     sd = std::clamp(k.scroll5, 1, 1200) / 20.0;
        const double sl = k.sustain / 15.0, full = ams[k.attack] * sa, decay = dms[k.decay] * sd;
        Voice(m, 0, 0, 0x41, k.attack * 16 + k.decay, k.sustain * 16 + k.release);
        SidRender(m);
        for (int i = 0; i < 441; ++i) {
            const double want =
                i + 1 < full ? (i + 1) / full : std::max(sl, 1 - (i + 1 - full) / decay);
            ASSERT_NEAR(m.sid.SidColumns[0][i], want, 0.02) << k.attack << " sample " << i;
        }
        Reg(m, 4, 0x40); // gate off: release from the sustain level
        SidRender(m);
        for (int i = 0; i < 441; ++i)
            ASSERT_NEAR(m.sid.SidColumns[0][i], std::max(0.0, sl - (i + 1) / (dms[k.release] * sa)),
                        0.02)
                << i;
    }
}

TEST(Sid, SyncAndRing) {
    for (const bool box : {true, false}) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.Check6 = false, m.forms.FSID.Check10 = box;
        Voice(m, 0, 500, 0x22);   // sawtooth synced to voice 3
        Voice(m, 1, 900, 0x14);   // triangle ringed by voice 1
        Voice(m, 2, 19096, 0x20); // Freq 2205: voice 1 restarts every 40 samples
        SidRender(m);
        float p = 0, tri = 0;
        double acc = 0;
        for (int i = 0; i < 441; ++i) {
            p = float(p + Step(500)), tri = float(tri + Step(900));
            p -= p >= 1 ? 2 : 0, tri -= tri >= 1 ? 2 : 0;
            if (box && (acc += 2205 / 22050.0 / 4) >= 1) p = 0, acc = 0;
            const double ring = (std::fabs(tri) - 0.5) * 2;
            ASSERT_NEAR(m.sid.SidColumns[1][i], box ? ring * p : ring, 1e-5) << box << " " << i;
            ASSERT_EQ(m.sid.SidColumns[0][i], box ? 0 : p) << i;
        }
    }
}

TEST(Sid, ChipAndPanelFilters) {
    // Every voice +1: the low pass of voice 1 rises as 1 - (1 - 0.2)^n; the high
    // pass of voice 2 falls as 0.8^n and lands in voice 1's column.
    for (const int mode : {1, 4}) {
        TestMachine t;
        Machine& m = t.m();
        m.forms.FSID.Check6 = false;
        for (int v = 0; v < 3; ++v)
            Voice(m, v, 0, 0x40);
        Reg(m, 21, 7), Reg(m, 22, 255), Reg(m, 23, mode == 1 ? 1 : 2), Reg(m, 24, mode << 4 | 15);
        SidRender(m);
        for (int i = 0; i < 441; i += 20)
            ASSERT_NEAR(m.sid.SidColumns[0][i],
                        mode == 1 ? 1 - std::pow(0.8, i + 1) : std::pow(0.8, i + 1), 1e-5);
        EXPECT_EQ(m.forms.FSID.HScroll6 + m.sid.SidColumns[1][5], mode == 1 ? 21 : 1);
    }
    const std::pair<const char*, int> passes[] = {
        {"abc", 1}, {"-4", 1}, {" 7x", 8}, {"101", 101}, {"99999999999999999999", 101}};
    for (const auto& [text, n] : passes)
        EXPECT_EQ(SidPanelPasses(text), n) << text;
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
        std::vector<std::pair<int, int>> regs; // register, value after (0x77 before)
    } cases[] = {
        {Line({{11, "1A2B"}, {25, "41"}, {28, "09F3"}, {33, "8C0"}}),
         {{1, 0x1A}, {0, 0x2B}, {4, 0x41}, {5, 9}, {6, 0xF3}, {3, 8}, {2, 0xC0}}},
        {Line({{39, "beef"}, {53, "11"}, {56, "A5C7"}, {89, "abc"}}),
         {{8, 0xBE}, {7, 0xEF}, {11, 0x11}, {12, 0xA5}, {13, 0xC7}, {17, 10}, {16, 0xBC}}},
        {Line({{67, "0102"}, {81, "80"}, {84, ".123"}, {95, "12F0"}, {100, "F1"}}),
         {{15, 1}, {14, 2}, {18, 0x80}, {19, 0x77}, {22, 0x12}, {21, 0xF0}, {23, 0xF1}}},
        {Line({{11, "12G4"}, {25, "x1"}}), {{1, 0x12}, {0, 0}, {4, 0}}}, // by part
        {Line({}).substr(0, 105), {{24, 0}, {23, 0x77}}},                // cut: the volume is 0
        {Line({}).substr(0, 12), {{1, 0}, {0, 0}, {4, 0}, {22, 0}}},     // "..  " is not dots
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
    const std::pair<const char*, int> words[] = {
        {"Low", 16}, {"L+H", 80}, {"B+H", 96}, {"L+B", 48}, {"LBH", 112}, {"Hi ", 0}, {"...", 0}};
    TestMachine t;
    for (const auto& [word, value] : words) { // register 24 = volume digit + type
        SidApplySidxLine(t.m(), Line({{103, word}, {107, "3"}}));
        EXPECT_EQ(t.m().sid.SidRegs[24], value + 3) << word;
    }
    SidApplySidxLine(t.m(), Line({{103, "Low"}, {107, "."}}));
    EXPECT_EQ(t.m().sid.SidRegs[24], 3);
    SidApplySidxLine(t.m(), Line({{103, "Bad"}, {107, "2"}}));
    EXPECT_EQ(t.m().sid.SidRegs[24], 2);
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
        EXPECT_EQ(m.sid.SidRegs[3] * 100 + m.sid.SidVolume,
                  std::min(frame, 2) * 2500 + 300 + (frame == 1 ? 0 : 15));
    }
    EXPECT_FALSE(SidPlayFile(m, "d.dmpx", error) || SidPlayFile(m, "e.dmp", error));
    SidChooseOption(m, 0);
    EXPECT_TRUE(m.forms.FSID.File1.empty() && m.sid.PlayFile == nullptr);
    std::ofstream("s.sidx") << "1\n2\n3\n4\n5\n6\n7\n" << Line({{107, "5"}}) << "\r\n";
    ASSERT_TRUE(SidPlayFile(m, "s.sidx", error)) << error;
    SidRender(m);
    EXPECT_EQ(m.sid.SidRegs[24], 5);
}

} // namespace
} // namespace tvc::test
