#include "sound/ChipPanels.h"

#include <algorithm>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr uint8_t kSaaAddress = 0xFF, kSaaData = 0xFE;
constexpr uint8_t kSnPort = 0xFD;
constexpr int32_t kSnClock = 3579545;

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

int ScopeCount(Scope s) {
    switch (s) {
    case Scope::Saa: return Saa1099::kChannels;
    case Scope::Sn: return 4;
    case Scope::Ay: return 5;
    }
    return 0;
}

uint32_t ScopeSerial(const Machine& m, Scope s) {
    switch (s) {
    case Scope::Saa: return m.saa.ScopeBlocks;
    case Scope::Sn: return m.sn.ScopeBlocks;
    case Scope::Ay: return m.ay.ScopeBlocks;
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
        }
        y[x] = v + kTraceMid;
    }
    return y;
}

} // namespace tvc
