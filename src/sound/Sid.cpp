#include "sound/Sid.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

const int32_t kSidAttackMs[16] = {2,   8,   16,  24,  38,   56,   68,   80,
                                  100, 250, 500, 800, 1000, 3000, 5000, 8000};
const int32_t kSidDecayMs[16] = {6,   24,  48,   72,   114,  168,  204,   240,
                                 300, 750, 1500, 2400, 3000, 9000, 15000, 24000};

namespace {

constexpr double kRate = 22050;
constexpr double kTiny = 1e-20; // a decaying history below this is 0, never a denormal

double Flush(double v) {
    return std::fabs(v) < kTiny ? 0 : v;
}

// Panel scroll bars are held to their ranges when read, whatever a panel
// or a command line put in them.
double Scroll(int32_t v, int32_t lo, int32_t hi) {
    return std::clamp(v, lo, hi);
}

void Envelope(Machine& m, int v) {
    Sid& s = m.sid;
    SidVoiceState& vo = s.SidVoice[v];
    if (!m.forms.FSID.Check6) {
        vo.EnvLevel = 1;
        return;
    }
    int32_t& state = s.SidEnvState[v];
    switch (state) {
    case 0:
        vo.EnvLevel += vo.AttackStep;
        if (vo.EnvLevel >= 1) vo.EnvLevel = 1, state = 1;
        return;
    case 1:
        if (vo.EnvLevel > vo.SustainLevel) {
            vo.EnvLevel = std::max(vo.EnvLevel - vo.DecayStep, 0.0f);
            return;
        }
        state = 2;
        [[fallthrough]];
    case 2:
        if (vo.Control & 1) {
            vo.EnvLevel = vo.SustainLevel;
            return;
        }
        state = 3;
        [[fallthrough]];
    default: vo.EnvLevel = std::max(vo.EnvLevel - vo.ReleaseStep, 0.0f); return;
    }
}

struct Sync {
    double step[3] = {};
    bool on[3] = {};
    double acc[3] = {};
};

// One voice's column; a muted voice runs the same way with zero samples.
void Voice(Machine& m, int v, Sync& sync, bool mute) {
    Sid& s = m.sid;
    SidVoiceState& vo = s.SidVoice[v];
    float& p = s.SidPhase[v];
    float* col = s.SidColumns[v];
    const double step = vo.Freq / kRate;
    const uint8_t ctl = vo.Control;
    const double width = vo.PulseWidth / 2048.0;
    const double noiseStep = std::min(vo.Freq / 11000.0 * 8, 1.0);
    auto syncStep = [&] {
        if (!sync.on[v]) return;
        sync.acc[v] += sync.step[v];
        if (sync.acc[v] >= 1) p = 0, sync.acc[v] = 0;
    };
    for (int i = 0; i < Sid::kBlock; ++i) {
        double x;
        if (ctl & 0x80) {
            p = static_cast<float>(p + noiseStep);
            if (p >= 0) {
                p -= 2;
                s.SidNoiseValue[v] = static_cast<float>((int32_t(s.rnd.Next() * 8) - 4) * 0.25);
            }
            x = s.SidNoiseValue[v];
        } else if (ctl & 0x40) {
            p = static_cast<float>(p + step);
            if (width <= p) p -= 2;
            syncStep();
            x = p >= 0 ? 1 : -1;
        } else {
            p = static_cast<float>(p + step);
            if (p >= 1) p -= 2;
            if (!(ctl & 0x30)) { // no waveform: silence and a frozen envelope
                col[i] = 0;
                continue;
            }
            syncStep();
            x = (ctl & 0x20) ? p : (std::fabs(p) - 0.5) * 2;
        }
        Envelope(m, v);
        col[i] = mute ? 0 : static_cast<float>(x * vo.EnvLevel);
    }
}

// The chip filters. The high pass always stores its result in voice 1's
// column, whichever voice it filtered.
void LowPass(Machine& m, int v) {
    Sid& s = m.sid;
    const double a = std::clamp(s.SidCutoff / 22000.0, 0.2, 1.0);
    m.forms.FSID.HScroll6 = RoundClamp(a * 100, 0, 100);
    SidHistory& h = s.SidLow[v];
    float* col = s.SidColumns[v];
    double y = h.Out;
    for (int i = 0; i < Sid::kBlock; ++i) {
        h.In = col[i];
        y = (1 - a) * y + col[i] * a;
        col[i] = static_cast<float>(y);
    }
    h.Out = Flush(y), h.In = Flush(h.In);
}

void HighPass(Machine& m, int v) {
    Sid& s = m.sid;
    const double a = std::clamp(1 - s.SidCutoff / 22000.0, 0.0, 0.8);
    SidHistory& h = s.SidHigh[v];
    const float* in = s.SidColumns[v];
    float* out = s.SidColumns[0];
    double x1 = h.In, y = h.Out;
    for (int i = 0; i < Sid::kBlock; ++i) {
        const double x = in[i];
        y = (x - x1) * a + y * a;
        x1 = x;
        out[i] = static_cast<float>(y);
    }
    h.In = Flush(x1), h.Out = Flush(y);
}

int16_t Clamp16(double v) {
    return static_cast<int16_t>(RoundClamp(v, -32768, 32767));
}

void PanelHighPass(Machine& m) {
    Sid& s = m.sid;
    const double a = 1 - Scroll(m.forms.FSID.HScroll1, 0, 100) / 100;
    SidHistory& h = s.PanelHigh;
    for (int16_t& out : s.SidOut) {
        const double x = out;
        h.Out = (x - h.In) * a + h.Out * a;
        h.In = x;
        out = Clamp16(h.Out);
    }
    h.Out = Flush(h.Out);
}

void PanelLowPass(Machine& m) {
    Sid& s = m.sid;
    const double a = Scroll(m.forms.FSID.HScroll2, 0, 100) / 100;
    SidHistory& h = s.PanelLow;
    for (int16_t& out : s.SidOut) {
        const double x = Clamp16(out * 100.0); // x 100 in 16 bits
        h.Out = (1 - a) * h.Out + x * a;
        h.In = x;
        out = Clamp16(h.Out / 100);
    }
    h.Out = Flush(h.Out);
}

void PanelBandFilter(Machine& m) {
    Sid& s = m.sid;
    const double a = Scroll(m.forms.FSID.HScroll3, 0, 100) / 100;
    SidHistory& h = s.PanelBand;
    for (int16_t& out : s.SidOut) {
        const double x = Clamp16(out * 2.0);
        const double y = (1 - a) * h.Out + a * x - ((x - h.In) * a + a * h.Out);
        h.Out = std::clamp(y, -65000.0, 65000.0);
        h.In = x;
        out = Clamp16(h.Out);
    }
    h.Out = Flush(h.Out);
}

void Sweep(Machine& m) {
    Sid& s = m.sid;
    FSIDControls& f = m.forms.FSID;
    if (s.SidSweepFreq == 0) s.SidSweepFreq = 50;
    s.SidSweepFreq *= 1.05f;
    if (f.Check5) s.SidSweepFreq = 440;
    if (s.SidSweepFreq > 11000) {
        s.SidSweepFreq = 50;
        m.host->Sleep(2);
        f.Pic2Points.clear();
        ++f.Pic2Clears;
    }
    f.Label15 = static_cast<int32_t>(s.SidSweepFreq);
    s.SidVoice[0].Freq = static_cast<int32_t>(s.SidSweepFreq);
    s.SidVoice[0].Control = 17;
    s.SidVoice[0].PulseWidth = 2048;
    s.SidVoice[1].Control = s.SidVoice[2].Control = 0;
}

void Plot(Machine& m) {
    FSIDControls& f = m.forms.FSID;
    double sum = 0;
    for (int16_t v : m.sid.SidOut)
        sum += std::abs(v);
    constexpr size_t kMaxPoints = 4096; // a plot without a sweep would grow for ever
    if (f.Pic2Points.size() >= kMaxPoints) f.Pic2Points.clear();
    f.Pic2Points.emplace_back(static_cast<int32_t>(m.sid.SidSweepFreq / 12),
                              RoundClamp(f.Pic2ScaleHeight - sum / 440 * 2 - 4, -32768, 32767));
}

} // namespace

int32_t SidPanelPasses(const std::string& text) {
    const char* b = text.data();
    const char* e = b + text.size();
    while (b < e && *b == ' ')
        ++b;
    int64_t v = 0;
    const auto [end, ec] = std::from_chars(b, e, v);
    if (ec == std::errc::result_out_of_range)
        v = *b == '-' ? 0 : 100;
    else if (ec != std::errc())
        v = 0;
    return static_cast<int32_t>(std::clamp<int64_t>(v, 0, 100)) + 1;
}

Sid::~Sid() {
    if (PlayFile) std::fclose(PlayFile);
}

void SidInit(Machine& m) {
    Sid& s = m.sid;
    if (s.PlayFile) std::fclose(s.PlayFile);
    // "ninja.txt" is opened as the SIDX player would, but nothing is read
    // from it until a file is chosen; a missing file is no error.
    s.PlayFile = std::fopen("ninja.txt", "r");
    for (int n = 0; s.PlayFile && n < 7;) {
        const int c = std::fgetc(s.PlayFile);
        if (c == EOF) break;
        if (c == '\n') ++n;
    }
    SidReset(m);
}

void SidReset(Machine& m) {
    Sid& s = m.sid;
    std::fill(std::begin(s.SidRegs), std::end(s.SidRegs), 0);
    std::fill(std::begin(s.SidEnvState), std::end(s.SidEnvState), 0);
    std::fill(std::begin(s.SidGate), std::end(s.SidGate), 0);
    std::fill(std::begin(s.SidPrevGate), std::end(s.SidPrevGate), 0);
    std::fill(std::begin(s.SidPhase), std::end(s.SidPhase), 0.0f);
}

void SidWrite(Machine& m, uint8_t port, uint8_t value) {
    Sid& s = m.sid;
    if ((port & 1) == 0)
        s.SidLatch = value;
    else if (s.SidLatch < Sid::kRegs)
        s.SidRegs[s.SidLatch] = value;
}

void SidDirect(Machine& m, uint8_t reg, uint8_t value) {
    if (reg < Sid::kRegs) m.sid.SidRegs[reg] = value;
}

void SidDecode(Machine& m) {
    Sid& s = m.sid;
    const int32_t* r = s.SidRegs;
    const FSIDControls& f = m.forms.FSID;
    // The panel's scroll bars give samples per millisecond x 20.
    const double attackScale = Scroll(f.HScroll4, 1, 1200) / 20;
    const double decayScale = Scroll(f.HScroll5, 1, 1200) / 20;
    for (int v = 0; v < Sid::kVoices; ++v) {
        const int32_t* g = r + v * 7;
        SidVoiceState& vo = s.SidVoice[v];
        vo.Freq = static_cast<int32_t>(RoundHalfEven(((g[1] & 255) * 256 + (g[0] & 255)) / 8.66));
        vo.PulseWidth = (g[2] & 255) + (g[3] & 15) * 256;
        vo.Control = static_cast<uint8_t>(g[4]);
        vo.Attack = (g[5] >> 4) & 15, vo.Decay = g[5] & 15;
        vo.Sustain = (g[6] >> 4) & 15, vo.Release = g[6] & 15;
        s.SidGate[v] = vo.Control & 1;
        if (s.SidGate[v] == 1 && s.SidPrevGate[v] == 0) {
            vo.AttackStep = static_cast<float>(1 / (kSidAttackMs[vo.Attack] * attackScale));
            vo.DecayStep = static_cast<float>(1 / (kSidDecayMs[vo.Decay] * decayScale));
            vo.ReleaseStep = static_cast<float>(1 / (kSidDecayMs[vo.Release] * attackScale));
            vo.SustainLevel = vo.Sustain / 15.0f;
            vo.EnvLevel = 0;
            s.SidEnvState[v] = 0;
        }
        s.SidPrevGate[v] = s.SidGate[v];
    }
    s.SidCutoff = (r[21] & 7) + (r[22] & 255) * 8;
    s.SidResonance = static_cast<uint8_t>((r[23] >> 4) & 15);
    s.SidRouting = static_cast<uint8_t>(r[23] & 15);
    s.SidMode = static_cast<uint8_t>((r[24] >> 4) & 15);
    s.SidVolume = static_cast<float>(r[24] & 15);
}

void SidRender(Machine& m) {
    Sid& s = m.sid;
    FSIDControls& f = m.forms.FSID;
    if (!f.File1.empty()) {
        if (f.Option == 1) SidPlaySidx(m);
        if (f.Option == 2) SidPlayDmp(m);
    }
    SidDecode(m);
    if (s.SidVolume == 0) {
        std::memcpy(s.SidOut, SilentBlock, sizeof s.SidOut);
        return;
    }
    if (f.Check4) Sweep(m);

    Sync sync;
    if (f.Check10) {
        for (int v = 0; v < Sid::kVoices; ++v) {
            sync.step[v] = s.SidVoice[(v + 2) % 3].Freq / kRate / 4;
            sync.on[v] = s.SidVoice[v].Control & 2;
        }
    }
    for (int v = 0; v < Sid::kVoices; ++v) {
        Voice(m, v, sync, false);
        if (!f.Check9[v]) Voice(m, v, sync, true); // the phase runs on twice
    }
    if (f.Check10) {
        for (int v = 0; v < Sid::kVoices; ++v) {
            if ((s.SidVoice[v].Control & 0x14) != 0x14) continue;
            float* carrier = s.SidColumns[v];
            float* modulator = s.SidColumns[(v + 2) % 3];
            for (int i = 0; i < Sid::kBlock; ++i)
                carrier[i] *= modulator[i], modulator[i] = 0;
        }
    }
    if (f.Check7) {
        for (int v = 0; v < Sid::kVoices; ++v) {
            if (!(s.SidRouting & (1 << v))) continue;
            if (s.SidMode & 1) LowPass(m, v);
            if (s.SidMode & 4) HighPass(m, v);
        }
    }
    const double gain = s.SidVolume * 8.0 * 2;
    for (int i = 0; i < Sid::kBlock; ++i)
        s.SidOut[i] =
            Clamp16((double(s.SidColumns[0][i]) + s.SidColumns[1][i] + s.SidColumns[2][i]) * gain);

    const int32_t passes = SidPanelPasses(f.Text1);
    for (int n = 0; n < passes; ++n) {
        if (f.Check1) PanelHighPass(m);
        if (f.Check2) PanelLowPass(m);
        if (f.Check3) PanelBandFilter(m);
    }
    Plot(m);
    if (m.sound.BlockIndex == 4) ++s.ScopeBlocks;
}

} // namespace tvc
