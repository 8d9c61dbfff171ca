#include "sound/Ay8910.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr double kClock16 = 111861; // the chip clock of 1,789,773 Hz divided by 16
constexpr int32_t kMaxHz = 11000;
constexpr double kRate = 11025.0;

int32_t Hz(double v) {
    return RoundClamp(v, 0, kMaxHz);
}

// Any restart condition puts the envelope back to the start of its shape.
void Decode(Ay8910& a) {
    int32_t* r = a.AyRegs;
    const int32_t envBits = (r[8] & 16) + (r[9] & 16) + (r[10] & 16);
    if (envBits > a.AyPrevEnvBits) a.AyPhase[4] = 0;
    a.AyPrevEnvBits = envBits;

    r[1] &= 15, r[3] &= 15, r[5] &= 15, r[6] &= 31;

    for (int c = 0; c < 3; ++c)
        a.AyChannel[c].Period = (r[c * 2] + r[c * 2 + 1] * 256) * 2;
    a.AyNoise.NoisePeriod = r[6] * 2;
    const int32_t envPeriod = (r[11] + r[12] * 256) * 2;
    if (envPeriod != a.AyEnv.EnvPeriod) a.AyPhase[4] = 0;
    a.AyEnv.EnvPeriod = envPeriod;

    for (int c = 0; c < 3; ++c) {
        AyChannelState& ch = a.AyChannel[c];
        ch.Volume = a.AyVolume[r[8 + c] & 15] * 16;
        const int32_t mix = ~r[7] & (9 << c);
        if (mix > ch.Mix) a.AyPhase[4] = 0;
        ch.Mix = mix;
    }
    const int32_t shape = r[13] & 15;
    if (shape != a.AyEnv.EnvShape) a.AyPhase[4] = 0;
    a.AyEnv.EnvShape = shape;
}

// One block of envelope levels. A phase that reaches its end freezes for
// the rest of the block only: shapes that fall back to 0 start anew at the
// next block.
void Envelope(Ay8910& a) {
    AyEnvState& e = a.AyEnv;
    e.EnvFreq = Hz(kClock16 / std::max(e.EnvPeriod, 1) / 16);
    double step = e.EnvFreq / kRate;
    float& p = a.AyPhase[4];
    for (int i = 0; i < Ay8910::kBlock; ++i) {
        p = static_cast<float>(p + step);
        switch (e.EnvShape) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 9:
            if (p >= 0.5f) p = 0.5f, step = 0;
            e.EnvLevel = 1 - 2 * p;
            break;
        case 4:
        case 5:
        case 6:
        case 7:
        case 15:
            if (p >= 1) p -= 1;
            if (p >= 0.5f) p = 0, step = 0;
            e.EnvLevel = 2 * p;
            break;
        case 8:
            if (p >= 1) p -= 1;
            if (p >= 0.5f) p -= 0.5f;
            if (p < 0.5f) e.EnvLevel = 1 - 2 * p;
            break;
        case 10:
            if (p >= 1) p -= 1;
            e.EnvLevel = p < 0.5f ? 1 - 2 * p : 2 * p - 1;
            break;
        case 11:
            if (p >= 1) p -= 1;
            if (p >= 0.5f) p = 0, step = 0;
            if (p < 0.5f) e.EnvLevel = 1 - 2 * p;
            break;
        case 12:
            if (p >= 0.5f) p -= 0.5f;
            if (p < 0.5f) e.EnvLevel = 2 * p;
            break;
        case 13:
            if (p >= 0.5f) p = 0.5f, step = 0;
            e.EnvLevel = 2 * p;
            break;
        default: // 14
            if (p >= 1) p -= 1;
            e.EnvLevel = p < 0.5f ? 2 * p : 1 - 2 * (p - 0.5f);
            break;
        }
        a.AyColumns[4][i] = e.EnvLevel;
    }
}

void Noise(Ay8910& a) {
    AyNoiseState& n = a.AyNoise;
    n.NoiseFreq = Hz(kClock16 / std::max(n.NoisePeriod, 1));
    const double step = n.NoiseFreq / kRate;
    float& p = a.AyPhase[3];
    for (int i = 0; i < Ay8910::kBlock; ++i) {
        p = static_cast<float>(p + step);
        if (p >= 1) {
            p -= 1;
            n.NoiseValue = static_cast<float>((a.rnd.Next() * 32 - 16) / 16);
        }
        a.AyColumns[3][i] = n.NoiseValue;
    }
}

void Tone(Ay8910& a, int c) {
    AyChannelState& ch = a.AyChannel[c];
    ch.Freq = Hz(kClock16 / std::max(ch.Period, 1));
    const double step = ch.Freq / kRate;
    float& p = a.AyPhase[c];
    float* col = a.AyColumns[c];
    for (int i = 0; i < Ay8910::kBlock; ++i) {
        p = static_cast<float>(p + step);
        if (p >= 1) p -= 1;
        col[i] = p >= 0.5f ? 1.0f : -1.0f;
    }
}

// Mixing and level of one channel, in place in its column.
void Level(Ay8910& a, int c) {
    const AyChannelState& ch = a.AyChannel[c];
    float* col = a.AyColumns[c];
    const float* noise = a.AyColumns[3];
    const int32_t noiseBit = 8 << c, toneBit = 1 << c;
    for (int i = 0; i < Ay8910::kBlock; ++i) {
        if (ch.Mix == 0)
            col[i] = 0;
        else if (ch.Mix == noiseBit)
            col[i] = noise[i];
        else if (ch.Mix == (noiseBit | toneBit))
            col[i] += noise[i];
    }
    if (a.AyRegs[8 + c] & 16) {
        const float* env = a.AyColumns[4];
        for (int i = 0; i < Ay8910::kBlock; ++i)
            col[i] = a.AyVolume[RoundClamp(env[i] * 15.0, 0, 15)] * col[i] * 16;
    } else {
        for (int i = 0; i < Ay8910::kBlock; ++i)
            col[i] = ch.Volume * col[i];
    }
}

void FillPanel(Machine& m) {
    T8910Controls& t = m.forms.T8910;
    const Ay8910& a = m.ay;
    for (int c = 0; c < 3; ++c) {
        t.Freq[c] = a.AyChannel[c].Freq;
        t.Period[c] = a.AyChannel[c].Period;
        t.Amp[c] = a.AyRegs[8 + c];
        t.Mix[c] = a.AyChannel[c].Mix;
    }
    t.Shape = a.AyEnv.EnvShape;
    t.EnvFreq = a.AyEnv.EnvFreq;
}

} // namespace

void AyInit(Machine& m) {
    Ay8910& a = m.ay;
    a.AyVolume[0] = 0;
    for (int k = 1; k < 16; ++k)
        a.AyVolume[k] = static_cast<float>(std::pow(0.75, 15 - k));
    AyReset(m);
}

void AyReset(Machine& m) {
    std::fill(std::begin(m.ay.AyRegs), std::end(m.ay.AyRegs), 0);
    m.ay.AyRegs[7] = 255; // every tone and noise off
}

void AyWrite(Machine& m, uint8_t port, uint8_t value) {
    Ay8910& a = m.ay;
    if ((port & 1) == 0)
        a.AyLatch = value;
    else if (a.AyLatch < 16)
        a.AyRegs[a.AyLatch] = value;
}

void AyRender(Machine& m) {
    Ay8910& a = m.ay;
    Decode(a);
    if ((a.AyRegs[7] & 63) == 63) {
        std::memcpy(a.AyOut, SilentBlock, sizeof a.AyOut);
        return;
    }
    Envelope(a);
    Noise(a);
    for (int c = 0; c < 3; ++c) {
        Tone(a, c);
        Level(a, c);
    }
    for (int i = 0; i < Ay8910::kBlock; ++i)
        a.AyOut[i] = static_cast<int16_t>(RoundClamp(
            double(a.AyColumns[0][i]) + a.AyColumns[1][i] + a.AyColumns[2][i], -32768, 32767));
    if (m.sound.BlockIndex == 4) {
        FillPanel(m);
        ++a.ScopeBlocks;
    }
}

} // namespace tvc
