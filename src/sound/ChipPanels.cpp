#include "sound/ChipPanels.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/Machine.h"
#include "core/MonitorText.h"
#include "core/Numbers.h"
#include "hw/Ports.h"

namespace tvc {

namespace {

constexpr uint8_t kSaaAddress = 0xFF, kSaaData = 0xFE;
constexpr uint8_t kSnPort = 0xFD;
constexpr int32_t kSnClock = 3579545;
constexpr double kSidScale = 30; // a voice column runs -1 to 1

// Two lower-case hexadecimal digits, as the instrument boxes show them.
std::string Hex2Lower(int v) {
    char text[3];
    std::snprintf(text, sizeof text, "%02x", v & 0xFF);
    return text;
}

// A scroll bar's value as the chip takes it: a value from outside (the
// command line, a snapshot of the form) is held to the bar's range.
int Held(int v, int lo, int hi) {
    return std::clamp(v, lo, hi);
}

uint8_t Nibbles(int low, int high) {
    return static_cast<uint8_t>(Held(low, 0, 15) + Held(high, 0, 15) * 16);
}

uint8_t Bits(const bool* boxes, int n) {
    int v = 0;
    for (int i = 0; i < n; ++i)
        v |= boxes[i] ? 1 << i : 0;
    return static_cast<uint8_t>(v);
}

} // namespace

const SaaNote kSaaNotes[kSaaNoteKeys] = {
    {3, 33},  {3, 60},  {3, 85},  {3, 109}, {3, 132}, {3, 153}, {3, 173},
    {3, 192}, {3, 210}, {3, 227}, {3, 243}, {4, 5},   {4, 33},
};

std::vector<PortWrite> SaaManualWrites(const FsaaControls& c) {
    std::vector<PortWrite> out;
    auto reg = [&out](int r, int v) {
        out.push_back({kSaaAddress, static_cast<uint8_t>(r)});
        out.push_back({kSaaData, static_cast<uint8_t>(v)});
    };
    for (int n = 0; n < 6; ++n)
        reg(8 + n, Held(c.HScroll4[n], 0, 255));
    for (int k = 0; k < 3; ++k)
        reg(16 + k, Nibbles(Held(c.HScroll3[2 * k], 0, 7), Held(c.HScroll3[2 * k + 1], 0, 7)));
    for (int n = 0; n < 6; ++n)
        reg(n, Nibbles(c.HScroll1[n], c.HScroll2[n]));
    reg(20, Bits(c.Check1, 6));
    reg(21, Bits(c.Check3, 6));
    reg(22, Nibbles(Held(c.HScroll5[0], 0, 3), Held(c.HScroll5[1], 0, 3)));
    for (int e = 0; e < 2; ++e)
        reg(24 + e, Held(c.HScroll6[e], 0, 7) * 2 + (c.Check7[e] ? 0x80 : 0) +
                        (c.Check4[e] ? 1 : 0) + (c.Check5[e] ? 0x10 : 0) +
                        (c.Check6[e] ? 0x20 : 0));
    reg(28, (c.Check8 ? 1 : 0) + (c.Check9 ? 2 : 0));
    return out;
}

void SaaPanelTick(Machine& m) {
    if (!m.forms.Fsaa.Check2) return;
    for (const PortWrite& w : SaaManualWrites(m.forms.Fsaa))
        SaaRegisterWrite(m, w.port, w.value);
}

void SaaNoteKey(FsaaControls& c, int k) {
    if (k < 0 || k >= kSaaNoteKeys) return;
    c.HScroll3[0] = kSaaNotes[k].octave;
    c.HScroll4[0] = kSaaNotes[k].freq;
}

// The tone's divider goes out with its high part in the latch byte, the
// reverse of what the chip expects: the panel has always sent it so.
std::vector<uint8_t> SnManualBytes(const FSN76489Controls& c) {
    std::vector<uint8_t> out;
    for (int n = 0; n < 3; ++n) {
        const int32_t divider = 1024 - Held(c.HScroll3[n], 1, 1023);
        const int32_t high = (divider >> 6) & 15;
        out.push_back(static_cast<uint8_t>(high + 0x80 + n * 0x20));
        out.push_back(static_cast<uint8_t>(divider - high * 64));
    }
    for (int n = 0; n < 4; ++n)
        out.push_back(static_cast<uint8_t>(0x9F + n * 0x20 - Held(c.HScroll4[n], 0, 15)));
    out.push_back(static_cast<uint8_t>((c.Check2 ? 0xE4 : 0xE0) + Held(c.HScroll3[3], 0, 3)));
    return out;
}

void SnPanelTick(Machine& m) {
    if (!m.forms.FSN76489.Check3) return;
    for (uint8_t b : SnManualBytes(m.forms.FSN76489))
        SnDecode(m, kSnPort, b);
}

int32_t SnFreqLabel(int32_t hscroll) {
    return kSnClock / (1024 - Held(hscroll, 1, 1023)) / 32;
}

void ChipPanelsTick(Machine& m) {
    SaaPanelTick(m);
    SnPanelTick(m);
}

namespace {

constexpr int kYmOp = 8;        // sliders per operator in HScroll1
constexpr int kYmFeedback = 16; // HScroll1(16)
enum YmSlider { kMult, kLevel, kKeyScale, kAttack, kDecay, kSustain, kRelease, kWave };
// The slider ranges, by YmSlider.
constexpr int kYmHi[kYmOp] = {15, 63, 3, 15, 15, 15, 15, 3};
constexpr uint8_t kYmTextRegs[kYmTextBoxes] = {0x20, 0x23, 0x40, 0x43, 0x60, 0x80, 0x63, 0x83};
constexpr int kYmKeyValues[8] = {343, 385, 432, 458, 514, 577, 647, 686};
constexpr char kYmKeys[] = "ASDFGHJK";

int YmSlide(const FYM3812Controls& c, int op, int k) {
    return Held(c.HScroll1[op * kYmOp + k], 0, kYmHi[k]);
}

uint8_t YmFlags(const FYM3812Controls& c, int op) {
    int flags = 0;
    for (int k = 0; k < 4; ++k)
        flags = flags * 2 + (c.Check2[op * 4 + k] ? 1 : 0);
    return static_cast<uint8_t>(flags * 16 + YmSlide(c, op, kMult));
}

uint8_t YmLevel(const FYM3812Controls& c, int op) {
    return static_cast<uint8_t>(YmSlide(c, op, kKeyScale) * 32 + (63 - YmSlide(c, op, kLevel)));
}

uint8_t YmRates(const FYM3812Controls& c, int op, int first) {
    return static_cast<uint8_t>(YmSlide(c, op, first) * 16 + YmSlide(c, op, first + 1));
}

} // namespace

std::vector<RegWrite> YmInstrumentWrites(const FYM3812Controls& c) {
    return {{0x01, 32},
            {0xBD, 0xC0},
            {0x20, YmFlags(c, 0)},
            {0x23, YmFlags(c, 1)},
            {0x40, YmLevel(c, 0)},
            {0x43, YmLevel(c, 1)},
            {0xC0, static_cast<uint8_t>(Held(c.HScroll1[kYmFeedback], 0, 7) * 2)},
            {0x60, YmRates(c, 0, kAttack)},
            {0x80, YmRates(c, 0, kSustain)},
            {0x63, YmRates(c, 1, kAttack)},
            {0x83, YmRates(c, 1, kSustain)},
            {0xE0, static_cast<uint8_t>(YmSlide(c, 0, kWave))},
            {0xE3, static_cast<uint8_t>(YmSlide(c, 1, kWave))}};
}

uint8_t YmTextValue(const FYM3812Controls& c, int k) {
    for (const RegWrite& w : YmInstrumentWrites(c))
        if (w.reg == kYmTextRegs[std::clamp(k, 0, kYmTextBoxes - 1)]) return w.value;
    return 0;
}

// The packing is many-to-one (a level of 32 * a + r): any split that packs
// back to the typed value will do, and a value past what the sliders can
// pack stops at their largest.
void YmTextEnter(FYM3812Controls& c, int k, std::string_view text) {
    if (k < 0 || k >= kYmTextBoxes) return;
    const int v = HexClamped(text, 0, 255);
    const int reg = kYmTextRegs[k], op = reg & 3 ? 1 : 0;
    int* s = c.HScroll1 + op * kYmOp;
    switch (reg & 0xFC) {
    case 0x20:
        for (int b = 0; b < 4; ++b)
            c.Check2[op * 4 + b] = (v >> (7 - b)) & 1;
        s[kMult] = v & 15;
        break;
    case 0x40: {
        const int a = std::min(v / 32, 3);
        s[kKeyScale] = a;
        s[kLevel] = 63 - std::min(v - 32 * a, 63);
        break;
    }
    case 0x60: s[kAttack] = v >> 4, s[kDecay] = v & 15; break;
    default: s[kSustain] = v >> 4, s[kRelease] = v & 15; break;
    }
}

void YmPanelWrite(Machine& m, uint8_t reg, uint8_t value) {
    int32_t a = reg, d = value;
    PortOut(m, 0x34, a);
    PortOut(m, 0x35, d);
}

void YmInstrumentChanged(Machine& m) {
    FYM3812Controls& c = m.forms.FYM3812;
    for (int k = 0; k < kYmTextBoxes; ++k)
        c.Text1[k] = Hex2Lower(YmTextValue(c, k));
    for (const RegWrite& w : YmInstrumentWrites(c))
        YmPanelWrite(m, w.reg, w.value);
}

bool YmKeyDown(Machine& m, char key) {
    const char* at = std::strchr(kYmKeys, std::toupper(static_cast<unsigned char>(key)));
    if (!key || !at) return false;
    YmPanelWrite(m, 0xA0, static_cast<uint8_t>(kYmKeyValues[at - kYmKeys] / 3));
    YmPanelWrite(m, 0xB0, 0x30);
    return true;
}

void YmKeyUp(Machine& m) {
    YmPanelWrite(m, 0xB0, 16);
}

void YmResetButton(Machine& m) {
    for (int r = 0; r <= 254; ++r)
        YmPanelWrite(m, static_cast<uint8_t>(r), 0);
}

std::vector<PortWrite> SidBoxWrites(const FSIDControls& c) {
    constexpr int64_t kSidBase = 54272; // where the home machine maps the chip
    const auto address = std::clamp<int64_t>(DecimalValue(c.Text2) - kSidBase, 0, 255);
    const auto value = std::clamp<int64_t>(DecimalValue(c.Text3), 0, 255);
    return {{0x38, static_cast<uint8_t>(address)}, {0x39, static_cast<uint8_t>(value)}};
}

const char* SidModeName(int mode) {
    static const char* const kNames[7] = {"Off", "Low", "Bnd", "Hi ", "L+H", "B+H", "L+B"};
    return mode >= 0 && mode < 7 ? kNames[mode] : "";
}

void SidWriteButton(Machine& m) {
    for (const PortWrite& w : SidBoxWrites(m.forms.FSID)) {
        int32_t v = w.value;
        PortOut(m, w.port, v);
    }
}

int ScopeCount(Scope s) {
    switch (s) {
    case Scope::Saa: return Saa1099::kChannels;
    case Scope::Sn: return 4;
    case Scope::Ay: return 5;
    case Scope::Ym2413: return Ym2413::kChannels;
    case Scope::Sid: return Sid::kVoices;
    }
    return 0;
}

uint32_t ScopeSerial(const Machine& m, Scope s) {
    switch (s) {
    case Scope::Saa: return m.saa.ScopeBlocks;
    case Scope::Sn: return m.sn.ScopeBlocks;
    case Scope::Ay: return m.ay.ScopeBlocks;
    case Scope::Ym2413: return m.ym2.ScopeBlocks;
    case Scope::Sid: return m.sid.ScopeBlocks;
    }
    return 0;
}

// The factors: the SAA1099's right side over 10 (0 to 25) and the SN76489's
// columns over 20, truncated (+-15), as the panels have them; the AY-3-8910's
// tone columns (+-16) doubled, its noise (+-1) and envelope (0 to 1) by 30.
Trace ScopeTrace(const Machine& m, Scope s, int n) {
    Trace y{};
    for (int x = 0; x < kTracePoints; ++x) {
        int32_t v = 0;
        switch (s) {
        case Scope::Saa:
            v = static_cast<int32_t>(RoundHalfEven(m.saa.RightMatrix[n][x] / 10.0));
            break;
        case Scope::Sn: v = m.sn.SnMatrix[x][n] / 20; break;
        case Scope::Ay:
            v = RoundClamp(double(m.ay.AyColumns[n][x]) * (n < 3 ? 2 : 30), -32, 32);
            break;
        case Scope::Ym2413: v = m.ym2.Ym2Matrix[n][x] / 8; break;
        case Scope::Sid: v = RoundClamp(double(m.sid.SidColumns[n][x]) * kSidScale, -32, 32); break;
        }
        y[x] = v + kTraceMid;
    }
    return y;
}

} // namespace tvc
