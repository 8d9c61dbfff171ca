#include "sound/Ym2413.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

const char* const kYm2InstrumentNames[16] = {
    "original", "violin", "guitar", "piano", "flute", "clarinet",  "oboe",     "trumpet",
    "organ",    "horn",   "shynt",  "harp",  "vibra", "synt bass", "acu bass", "elec guitar"};

namespace {

constexpr double kMaxHz = 11000, kRate = 11025;

void FillPanel(Machine& m) {
    FYM2413Controls& f = m.forms.FYM2413;
    const Ym2413& y = m.ym2;
    for (int c = 0; c < Ym2413::kChannels; ++c) {
        f.Label6[c] = static_cast<int32_t>(y.Ym2Channel[c].Freq);
        f.Label8[c] = kYm2InstrumentNames[y.Ym2Regs[0x30 + c] >> 4];
    }
    const uint8_t rhythm = y.Ym2Regs[0x0E];
    f.Check1 = rhythm & 0x20;
    for (int b = 0; b < 5; ++b)
        f.Check2to6[b] = (rhythm >> b) & 1;
}

} // namespace

void Ym2Reset(Machine& m) {
    std::fill(std::begin(m.ym2.Ym2Regs), std::end(m.ym2.Ym2Regs), 0);
}

void Ym2Write(Machine& m, uint8_t port, uint8_t value) {
    Ym2413& y = m.ym2;
    if ((port & 1) == 0)
        y.Ym2Latch = value & 0xF5;
    else if (y.Ym2Latch < sizeof y.Ym2Regs)
        y.Ym2Regs[y.Ym2Latch] = value;
}

void Ym2Decode(Ym2413& y) {
    const uint8_t* r = y.Ym2Regs;
    for (int c = 0; c < Ym2413::kChannels; ++c) {
        const int32_t fnum = r[0x10 + c] + (r[0x20 + c] & 1) * 256;
        const int32_t block = (r[0x20 + c] >> 1) & 7;
        Ym2ChannelState& ch = y.Ym2Channel[c];
        ch.Freq = static_cast<float>(fnum * double(1 << block) / 21.276595);
        ch.Key = static_cast<float>((r[0x20 + c] >> 4) & 1);
        ch.Volume = static_cast<float>(r[0x30 + c] & 15);
    }
}

void Ym2Render(Machine& m) {
    Ym2413& y = m.ym2;
    Ym2Decode(y);
    float volumes = 0; // the key does not enter the silence test
    for (const Ym2ChannelState& ch : y.Ym2Channel)
        volumes += ch.Volume;
    if (volumes == 0) {
        std::memcpy(y.Ym2413Out, SilentBlock, sizeof y.Ym2413Out);
        return;
    }
    const bool positiveOnly = y.Ym2Regs[3] & 0x10;
    for (int c = 0; c < Ym2413::kChannels; ++c) {
        const Ym2ChannelState& ch = y.Ym2Channel[c];
        // One phase unit is a whole cycle at 22,050 Hz reckoned against
        // 11,025: the tone sounds at twice Freq.
        const double step = std::min(double(ch.Freq), kMaxHz) / kRate;
        const bool on = m.forms.FYM2413.Check7[c];
        float& p = y.Ym2Phase[c];
        for (int i = 0; i < Ym2413::kBlock; ++i) {
            p = static_cast<float>(p + step);
            if (p >= 1) p -= 1;
            const double level = double(RoundHalfEven(std::sin(p * 6.28)));
            int32_t v = static_cast<int32_t>(RoundHalfEven(level * ch.Volume * ch.Key));
            if (positiveOnly && v < 0) v = 0;
            y.Ym2Matrix[c][i] = static_cast<int16_t>(on ? v : 0);
        }
    }
    for (int i = 0; i < Ym2413::kBlock; ++i) {
        int32_t sum = 0;
        for (int c = 0; c < Ym2413::kChannels; ++c)
            sum += y.Ym2Matrix[c][i];
        y.Ym2413Out[i] = static_cast<int16_t>(std::clamp(sum, -135, 135));
    }
    if (m.sound.BlockIndex == 4) {
        FillPanel(m);
        ++y.ScopeBlocks;
    }
}

} // namespace tvc
