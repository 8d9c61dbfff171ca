#include "sound/Ym3812.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr float kMult[16] = {0.5f, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 10, 11, 11, 12, 12};
constexpr float kFeedback[8] = {0, 1.0f / 16, 1.0f / 8, 1.0f / 4, 1.0f / 2, 1, 2, 4};
constexpr double kTwoPi = 6.28318530718;
constexpr double kMaxHz = 11000, kRate = 11025;
constexpr int32_t kLimit = 126;

// A phase that cannot come out of range; the boxes stay as a guard, shown
// at most once per block each.
struct BlockErrors {
    bool error = false, hiba = false;
};

double Step(const Ym3812& y, int c, const YmOperator& op) {
    return std::min(double(y.YmChannel[c].Freq) / 2 * y.YmMult[op.Reg20 & 15], kMaxHz) / kRate;
}

int WaveSelect(const Ym3812& y, const YmOperator& op) {
    return (y.YmRegs[1] & 0x20) ? op.RegE0 & 3 : 0;
}

// Feedback is a constant phase advance per sample that depends only on the
// register, not on the operator's own output.
void Modulator(Ym3812& y, int c, BlockErrors& errors) {
    const YmOperator& op = y.YmMod[c];
    const double fb = y.YmFeedback[(y.YmRegs[0xC0 + c] >> 1) & 7];
    const double advance = Step(y, c, op) + std::sin(fb * 6.283185);
    const int w = WaveSelect(y, op);
    float& p = y.YmModPhase[c];
    float* col = y.ModColumn[c];
    for (int i = 0; i < Ym3812::kBlock; ++i) {
        p = static_cast<float>(p + advance);
        for (int k = 0; k < 4; ++k)
            if (p >= 1) p -= 1;
        if (p > 1) errors.error = true;
        if (w >= 2 && p >= 0.5f) p -= 0.5f;
        switch (w) {
        case 0: col[i] = p; break;
        case 1: col[i] = p <= 0.5f ? p : 0; break;
        case 2: col[i] = std::fabs(p); break;
        default: col[i] = p <= 0.25f ? p : 0; break;
        }
    }
}

void Carrier(Ym3812& y, int c, BlockErrors& errors) {
    const YmOperator& op = y.YmCar[c];
    const double ml = 1.0 / ((y.YmMod[c].Reg40 & 63) + 1);
    const double cl = 1.0 / ((op.Reg40 & 63) + 1);
    const double step = Step(y, c, op);
    const int cw = WaveSelect(y, op);
    float& p = y.YmCarPhase[c];
    const float* mod = y.ModColumn[c];
    float* col = y.CarColumn[c];
    for (int i = 0; i < Ym3812::kBlock; ++i) {
        p = static_cast<float>(p + step);
        if (p >= 1) p -= 1;
        double t = p + ml * std::sin(mod[i] * kTwoPi);
        double v = std::sin(t * kTwoPi);
        if (cw == 1 && v > 0) v = 0; // the negative half survives
        if (cw > 1) v = std::fabs(v);
        if (cw == 3) {
            if (t >= 1) t -= 1;
            if (t > 1) errors.hiba = true;
            if ((t > 0.25 && t < 0.5) || (t > 0.75 && t < 1)) v = 0;
        }
        col[i] = static_cast<float>(v * cl);
    }
}

// The port text as a number from 0 to 65,534, so that the data port (one
// above) is a port too.
bool DirectPort(const std::string& text, uint16_t& port) {
    const char* b = text.data();
    const char* e = b + text.size();
    while (b < e && *b == ' ')
        ++b;
    while (e > b && e[-1] == ' ')
        --e;
    uint32_t v = 0;
    const auto [end, ec] = std::from_chars(b, e, v);
    if (b == e || ec != std::errc() || end != e || v > 65534) return false;
    port = static_cast<uint16_t>(v);
    return true;
}

} // namespace

void YmInit(Machine& m) {
    std::copy(std::begin(kMult), std::end(kMult), m.ym.YmMult);
    std::copy(std::begin(kFeedback), std::end(kFeedback), m.ym.YmFeedback);
    YmReset(m);
}

void YmReset(Machine& m) {
    std::fill(std::begin(m.ym.YmRegs), std::end(m.ym.YmRegs), 0);
}

void YmWrite(Machine& m, uint8_t port, uint8_t value) {
    Ym3812& y = m.ym;
    if ((port & 1) == 0)
        y.YmLatch = value;
    else
        y.YmRegs[y.YmLatch] = value;
}

void YmDecode(Ym3812& y) {
    const uint8_t* r = y.YmRegs;
    for (int c = 0; c < Ym3812::kChannels; ++c) {
        const int32_t fnum = r[0xA0 + c] + (r[0xB0 + c] & 3) * 256;
        const int32_t block = (r[0xB0 + c] >> 2) & 7;
        y.YmChannel[c].Key = r[0xB0 + c] & 0x20;
        y.YmChannel[c].Freq = static_cast<float>(fnum * double(1 << block) / 21.23);
        const int mod = (c / 3) * 8 + c % 3;
        for (YmOperator* op : {&y.YmMod[c], &y.YmCar[c]}) {
            const int off = op == &y.YmMod[c] ? mod : mod + 3;
            *op = {r[0x20 + off], r[0x40 + off], r[0x60 + off], r[0x80 + off], r[0xE0 + off]};
        }
    }
}

void YmRender(Machine& m) {
    Ym3812& y = m.ym;
    YmDecode(y);
    uint8_t keys = 0; // as bytes: eight keys down wrap to 0 and are silent
    for (const YmChannelState& ch : y.YmChannel)
        keys = static_cast<uint8_t>(keys + ch.Key);
    if (keys == 0) {
        std::memcpy(y.Ym3812Out, SilentBlock, sizeof y.Ym3812Out);
        return;
    }
    std::memset(y.ModColumn, 0, sizeof y.ModColumn);
    std::memset(y.CarColumn, 0, sizeof y.CarColumn);
    BlockErrors errors;
    for (int c = 0; c < Ym3812::kChannels; ++c) {
        if (!y.YmChannel[c].Key) continue;
        Modulator(y, c, errors);
        Carrier(y, c, errors);
    }
    // The connection bit comes from 0xC9, behind the last channel's 0xC8,
    // once for all channels.
    const bool additive = y.YmRegs[0xC9] & 1;
    const bool* on = m.forms.FYM3812.Check1;
    for (int i = 0; i < Ym3812::kBlock; ++i) {
        double sum = 0;
        for (int c = 0; c < Ym3812::kChannels; ++c) {
            if (!on[c]) continue;
            sum += y.CarColumn[c][i];
            if (additive) sum += y.ModColumn[c][i];
        }
        y.Ym3812Out[i] = static_cast<int16_t>(RoundClamp(sum * 20, -kLimit, kLimit));
    }
    if (errors.error) m.host->MessageBox("error", kAppTitle, MsgKind::Plain);
    if (errors.hiba) m.host->MessageBox("hiba", kAppTitle, MsgKind::Plain);
}

void YmDirect(Machine& m, uint8_t port, uint8_t value) {
    FYM3812Controls& f = m.forms.FYM3812;
    Ym3812& y = m.ym;
    if (!f.Check3) return;
    uint16_t base = 0;
    if (!DirectPort(f.Text2, base)) {
        if (!y.DirectBadShown || y.DirectBadText != f.Text2) {
            y.DirectBadShown = true;
            y.DirectBadText = f.Text2;
            m.host->MessageBox("Direct I/O port: \"" + f.Text2 +
                                   "\" is not a port number from 0 to 65534",
                               kAppTitle, MsgKind::Exclamation);
        }
        return;
    }
    y.DirectBadShown = false;
    std::string error = "no direct port output in this program";
    if (y.DirectSink && y.DirectSink->Out(static_cast<uint16_t>(base + (port & 1)), value, error))
        return;
    // A write that cannot reach the port is never dropped silently: the box
    // is cleared and says why.
    f.Check3 = false;
    m.host->MessageBox("Direct I/O port: " + error, kAppTitle, MsgKind::Critical);
}

} // namespace tvc
