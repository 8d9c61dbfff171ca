#include "sound/Saa1099.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

const char* const kSaaShapeNames[8] = {
    "_________",  "---------",     "\\________", "\\|\\|\\|\\|\\",
    "/\\_______", "/\\/\\/\\/\\/", "/|_______",  "/|/|/|/|/",
};

namespace {

constexpr int kBlock = Saa1099::kBlock;
constexpr double kRate = 11025.0; // phase units per second: half the sample rate
constexpr double kToneDivisor = 11000.0;
constexpr int32_t kSideCap = 120;

uint8_t Byte(double v) {
    return static_cast<uint8_t>(RoundClamp(v, 0, 255));
}

int32_t TableHz(const Saa1099& s, int channel) {
    return s.SaaFreqTable[s.SaaOctave[channel] * 256 + s.SaaFreq[channel]];
}

// A sample-and-hold of random bytes, restarted at every block.
void NoisePass(Saa1099& s, uint8_t* out, double step) {
    double phase = 0;
    int toggle = 255, previous = 0;
    uint8_t value = 0;
    for (int i = 0; i < kBlock; ++i) {
        if (phase >= 1) {
            phase -= 1;
            toggle ^= 255;
        }
        phase += step;
        if (toggle != previous) value = Byte(s.rnd.Next() * 255);
        out[i] = value;
        previous = toggle;
    }
}

double NoiseHz(int rate) {
    return rate == 0 ? 10500 : rate == 1 ? 6500 : 4000;
}

// One shape pass of one envelope. `clock` is the tone channel that clocks
// it, `fine` the flag that halves its step, `out` the buffer it fills and
// `e` whose repeating phase it runs on.
void ShapePass(Saa1099& s, int shape, int e, int clock, bool fine, uint8_t* out, bool testBefore) {
    double step = s.SaaFreqTable[s.SaaOctave[clock] * 256 + s.SaaFreq[clock]] / 4.0;
    if (!fine) step /= 2;
    const double adv = step / kRate;
    double h = 250, p = 0;
    float& kept = s.SaaEnvPhase[e];
    const bool repeating = shape == 3 || shape == 5 || shape == 7;
    for (int i = 0; i < kBlock; ++i) {
        double v = 0;
        switch (shape) {
        case 0: v = 0; break;
        case 1: v = 250; break;
        case 2:
            if (p >= 1) p -= 1, h = 0;
            v = (1 - p) * h;
            break;
        case 3:
            if (kept >= 1) kept -= 1;
            v = (1 - kept) * 250;
            break;
        case 4:
            if (testBefore && p >= 1) h = 0;
            v = p <= 0.5 ? 2 * h * p : 2 * (1 - p) * h;
            if (p >= 1) h = 0;
            break;
        case 5:
            if (kept >= 1) kept -= 1;
            v = std::fabs((kept - 0.5) * 500);
            break;
        case 6:
            if (p >= 1) p -= 1, h = 0;
            v = h * p;
            break;
        default:
            if (kept >= 1) kept -= 1;
            v = kept * 250;
            break;
        }
        // The one-shot triangle of envelope 1 dips below 0 for a sample.
        out[i] = Byte(v);
        p += adv;
        if (repeating) kept = static_cast<float>(kept + adv);
    }
    s.SaaEnvLevel[e] = out[kBlock - 1];
}

// Shapes run pass by pass in ascending order, envelope 0 before envelope 1
// at each, so a later pass into the same buffer wins. Envelope 1's shapes 2
// and 6 run on channel 1 with envelope 0's "Fine" flag, into envelope 0's
// buffer.
void EnvelopePasses(Saa1099& s) {
    const SaaEnvelope& e0 = s.SaaEnv[0];
    const SaaEnvelope& e1 = s.SaaEnv[1];
    for (int shape = 0; shape < 8; ++shape) {
        if (e0.Shape == shape) ShapePass(s, shape, 0, 1, e0.Fine, s.Env[0], true);
        if (e1.Shape != shape) continue;
        if (shape == 2 || shape == 6)
            ShapePass(s, shape, 1, 1, e0.Fine, s.Env[0], false);
        else
            ShapePass(s, shape, 1, 4, e1.Fine, s.Env[1], false);
    }
}

// The tone matrix holds only 0 and 255, so the tone term takes two values.
// A noise share n x a / 31 never falls on a half (31 is odd and prime to
// 2), so rounding the sum with a whole tone term equals adding the rounded
// share, which the noise table holds.
void LevelPass(const Saa1099& s, int c, uint8_t* x, int amp) {
    const double d = c < 3 ? 31 : 30;
    const int32_t high = s.SaaToneEnable[c] ? RoundClamp(255 / d * amp, 0, 255) : 0;
    const uint8_t* noise = s.Noise[c < 3 ? 0 : 1];
    const int32_t* share = s.SaaNoiseShare[amp & 15];
    const bool noisy = s.SaaNoiseEnable[c];
    for (int i = 0; i < kBlock; ++i) {
        int32_t v = x[i] == 255 ? high : 0;
        if (noisy) v = std::min(v + share[noise[i]], 255);
        x[i] = static_cast<uint8_t>(v);
    }
}

void Scale(uint8_t* x, const uint8_t* env, bool invert, bool unity) {
    for (int i = 0; i < kBlock; ++i) {
        const double f = unity ? 1 : invert ? 255 - env[i] : env[i];
        x[i] = Byte(f * (x[i] / 255.0));
    }
}

// Each channel's share x / 8 is exact, so the sum of the bytes over 8 is
// the same number.
void Sum(Saa1099& s) {
    for (int i = 0; i < kBlock; ++i) {
        int32_t l = 0, r = 0;
        for (int c = 0; c < Saa1099::kChannels; ++c) {
            l += s.LeftMatrix[c][i];
            r += s.RightMatrix[c][i];
        }
        s.SaaLeft[i] = static_cast<int16_t>(RoundClamp(l / 8.0, 0, kSideCap));
        s.SaaRight[i] = static_cast<int16_t>(RoundClamp(r / 8.0, 0, kSideCap));
    }
}

void Audible(Saa1099& s, Machine& m) {
    if (m.forms.Fsaa.Check11) s.SaaToneEnable[2] = 1;
    if (m.forms.Fsaa.Check12) s.SaaToneEnable[5] = 1;

    const double step0 =
        (s.SaaNoiseRate[0] == 3 ? 2.0 * TableHz(s, 0) : NoiseHz(s.SaaNoiseRate[0])) / kRate;
    NoisePass(s, s.Noise[0], step0);
    // Noise 1's channel-driven rate follows noise 0's rate setting; its own
    // rate 3 borrows noise 0's step as a frequency.
    double n1 = NoiseHz(s.SaaNoiseRate[1]);
    if (s.SaaNoiseRate[0] == 3)
        n1 = 2.0 * TableHz(s, 3);
    else if (s.SaaNoiseRate[1] == 3)
        n1 = step0;
    NoisePass(s, s.Noise[1], n1 / kRate);

    for (int c = 0; c < Saa1099::kChannels; ++c) {
        const double step = TableHz(s, c) / kToneDivisor;
        double& phase = s.SaaTonePhase[c];
        double& level = s.SaaToneLevel[c];
        for (int i = 0; i < kBlock; ++i) {
            if (phase >= 1) {
                phase -= 1;
                level = level == 255 ? 0 : 255;
            }
            s.ToneMatrix[c][i] = static_cast<uint8_t>(level);
            phase += step;
        }
    }

    EnvelopePasses(s);
    std::memcpy(s.LeftMatrix, s.ToneMatrix, sizeof s.ToneMatrix);
    std::memcpy(s.RightMatrix, s.ToneMatrix, sizeof s.ToneMatrix);
    for (int c = 0; c < Saa1099::kChannels; ++c) {
        LevelPass(s, c, s.LeftMatrix[c], s.SaaAmp[c]);
        LevelPass(s, c, s.RightMatrix[c], s.SaaAmp[c + 6]);
    }

    const SaaEnvelope& e0 = s.SaaEnv[0];
    if (e0.Enable) {
        Scale(s.LeftMatrix[2], s.Env[0], false, false);
        Scale(s.RightMatrix[2], s.Env[0], e0.InvertRight, false);
    }
    const SaaEnvelope& e1 = s.SaaEnv[1];
    if (e1.Enable) {
        // With "InvertRight" clear the left side lacks its envelope factor.
        Scale(s.LeftMatrix[5], s.Env[1], false, !e1.InvertRight);
        Scale(s.RightMatrix[5], s.Env[1], e1.InvertRight, false);
    }
}

} // namespace

void SaaLoadTable(Machine& m) {
    for (int oct = 0; oct < 8; ++oct)
        for (int f = 0; f < 256; ++f) {
            // The chip's frequency with 13 fraction bits, truncated, then whole hertz.
            const double fixed = std::floor(15625.0 * (1 << oct) / (511 - f) * 8192);
            m.saa.SaaFreqTable[oct * 256 + f] = static_cast<int32_t>(RoundHalfEven(fixed / 8192));
        }
    for (int a = 0; a < 16; ++a)
        for (int n = 0; n < 256; ++n)
            m.saa.SaaNoiseShare[a][n] = static_cast<int32_t>(RoundHalfEven(n / 31.0 * a));
}

// Leaves the all-enable, the noise rates and the generators as they are.
void SaaReset(Machine& m) {
    Saa1099& s = m.saa;
    for (SaaEnvelope& e : s.SaaEnv)
        e = SaaEnvelope{};
    std::memset(s.SaaAmp, 0, sizeof s.SaaAmp);
    std::memset(s.SaaToneEnable, 0, sizeof s.SaaToneEnable);
    std::memset(s.SaaNoiseEnable, 0, sizeof s.SaaNoiseEnable);
    std::memset(s.SaaFreq, 0, sizeof s.SaaFreq);
    std::memset(s.SaaOctave, 0, sizeof s.SaaOctave);
    s.SaaLatch = 0;
}

void SaaWrite(Machine& m, uint8_t port, uint8_t value) {
    if (m.forms.Fsaa.Check2) return;
    SaaRegisterWrite(m, port, value);
}

void SaaRegisterWrite(Machine& m, uint8_t port, uint8_t value) {
    Saa1099& s = m.saa;
    if (port & 1) {
        s.SaaLatch = value & 31;
        return;
    }
    const int r = s.SaaLatch;
    if (r <= 5) {
        s.SaaAmp[r] = value & 15;
        s.SaaAmp[r + 6] = value >> 4;
    } else if (r >= 8 && r <= 13) {
        s.SaaFreq[r - 8] = value;
    } else if (r >= 16 && r <= 18) {
        s.SaaOctave[(r - 16) * 2] = value & 7;
        s.SaaOctave[(r - 16) * 2 + 1] = (value & 0x70) >> 4;
    } else if (r == 20 || r == 21) {
        uint8_t* bits = r == 20 ? s.SaaToneEnable : s.SaaNoiseEnable;
        for (int c = 0; c < Saa1099::kChannels; ++c)
            bits[c] = (value >> c) & 1;
    } else if (r == 22) {
        s.SaaNoiseRate[0] = value & 3;
        s.SaaNoiseRate[1] = (value & 0x30) >> 4;
    } else if (r == 24 || r == 25) {
        SaaEnvelope& e = s.SaaEnv[r - 24];
        e.Enable = value >> 7;
        e.InvertRight = value & 1;
        e.ExternalClock = (value >> 5) & 1;
        e.Fine = (value >> 4) & 1;
        e.Shape = (value >> 1) & 7;
    } else if (r == 28) {
        s.SaaAllEnable = value & 1;
        s.SaaSync = (value >> 1) & 1;
    }
}

void SaaRender(Machine& m) {
    Saa1099& s = m.saa;
    int amps = 0;
    for (uint8_t a : s.SaaAmp)
        amps += a;
    if (amps == 0) {
        // Silent: the generators stand still and the panel is left alone.
        std::memcpy(s.SaaLeft, SilentBlock, sizeof s.SaaLeft);
        std::memcpy(s.SaaRight, SilentBlock, sizeof s.SaaRight);
        return;
    }
    std::memset(s.Noise, 0, sizeof s.Noise);
    std::memset(s.Env, 0, sizeof s.Env);
    std::memset(s.ToneMatrix, 0, sizeof s.ToneMatrix);
    std::memset(s.LeftMatrix, 0, sizeof s.LeftMatrix);
    std::memset(s.RightMatrix, 0, sizeof s.RightMatrix);
    if (s.SaaSync) {
        // The sync bit resets the whole chip at the next block.
        SaaReset(m);
        s.SaaSync = 0;
    } else if (s.SaaAllEnable) {
        Audible(s, m);
    }
    Sum(s);
    m.forms.Fsaa.Label8 = kSaaShapeNames[s.SaaEnv[0].Shape];
    m.forms.Fsaa.Label9 = kSaaShapeNames[s.SaaEnv[1].Shape];
    if (m.sound.BlockIndex == 4) ++s.ScopeBlocks;
}

} // namespace tvc
