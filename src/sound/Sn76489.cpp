#include "sound/Sn76489.h"

#include <algorithm>
#include <cstring>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr int32_t kChipClock = 3579545; // the chip's own crystal, whatever the machine's
constexpr int32_t kMaxHz = 11000;
constexpr int32_t kNoiseDividers[3] = {20, 40, 80};

// Integer division truncates as the chip's Int() does.
int32_t DividerHz(int32_t divider) {
    return std::min(kChipClock / std::max(divider, 1) / 32, kMaxHz);
}

int32_t Amplitude(uint8_t attenuation) {
    return (15 - attenuation) * 20;
}

} // namespace

void SnReset(Machine& m) {
    for (SnTone& t : m.sn.SnChannel)
        t.Attenuation = 15;
    m.sn.SnNoise.NoiseAttenuation = 15;
}

void SnWrite(Machine& m, uint8_t port, uint8_t value) {
    if (m.forms.FSN76489.Check3) return;
    SnDecode(m, port, value);
}

void SnDecode(Machine& m, uint8_t, uint8_t value) {
    Sn76489& s = m.sn;
    if (value < 0x80) {
        // A data byte: noise writes leave the last named tone as its target.
        s.SnChannel[s.SnLastChannel].High = value & 63;
        return;
    }
    const int nibble = value & 0xF0;
    if (nibble == 0xE0) {
        s.SnNoise.NoiseRate = value & 3;
        s.SnNoise.NoiseType = value & 4;
    } else if (nibble == 0xF0) {
        s.SnNoise.NoiseAttenuation = value & 15;
    } else {
        const int c = (nibble - 0x80) >> 5;
        if (nibble & 0x10)
            s.SnChannel[c].Attenuation = value & 15;
        else
            s.SnChannel[c].Low = value & 15;
        s.SnLastChannel = static_cast<uint8_t>(c);
    }
}

void SnRender(Machine& m) {
    Sn76489& s = m.sn;
    int silence = s.SnNoise.NoiseAttenuation;
    for (const SnTone& t : s.SnChannel)
        silence += t.Attenuation;
    if (silence == 60) {
        std::memcpy(s.Sn76489Out, SilentBlock, sizeof s.Sn76489Out);
        return;
    }
    for (int c = 0; c < 3; ++c) {
        const SnTone& t = s.SnChannel[c];
        const double step = DividerHz(t.High * 16 + t.Low) / 11025.0;
        const int32_t amp = Amplitude(t.Attenuation);
        for (int i = 0; i < Sn76489::kBlock; ++i) {
            s.SnPhase[c] = static_cast<float>(s.SnPhase[c] + step);
            if (s.SnPhase[c] >= 1) {
                s.SnPhase[c] -= 1;
                s.SnLevel[c] ^= 1;
            }
            s.SnMatrix[i][c] = static_cast<int16_t>(s.SnLevel[c] ? amp : -amp);
        }
    }

    // "Periodic" noise: the generator starts again from its seed every ten blocks.
    if (s.SnNoise.NoiseType == 4 && s.SnSeedCounter == 10) s.rnd = Rnd(Sn76489::kSeed);
    s.SnSeedCounter = s.SnSeedCounter >= 10 ? 1 : s.SnSeedCounter + 1;

    // Rate 3 weighs tone 2's High by 64, not 16.
    const int32_t rate = s.SnNoise.NoiseRate & 3;
    const SnTone& t2 = s.SnChannel[2];
    const int32_t divider = rate < 3 ? kNoiseDividers[rate] : t2.High * 64 + t2.Low;
    const double step = DividerHz(divider) / 11025.0;
    const int32_t amp = Amplitude(s.SnNoise.NoiseAttenuation);
    for (int i = 0; i < Sn76489::kBlock; ++i) {
        s.SnPhase[3] = static_cast<float>(s.SnPhase[3] + step);
        if (s.SnPhase[3] >= 1) {
            s.SnPhase[3] -= 1;
            s.SnLevel[3] = static_cast<int32_t>(RoundHalfEven(s.rnd.Next()));
        }
        s.SnMatrix[i][3] = static_cast<int16_t>(s.SnLevel[3] ? amp : -amp);
    }

    for (int i = 0; i < Sn76489::kBlock; ++i)
        s.Sn76489Out[i] = static_cast<int16_t>(s.SnMatrix[i][0] + s.SnMatrix[i][1] +
                                               s.SnMatrix[i][2] + s.SnMatrix[i][3]);
    if (m.sound.BlockIndex == 4) ++s.ScopeBlocks;
}

} // namespace tvc
