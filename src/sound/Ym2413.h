// The YM2413 of the sound card, kept deliberately small: nine channels of a
// stepped sine at the programmed pitch and level, with no FM, instruments,
// envelopes or rhythm. The instrument number only names a sound on the panel.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Ym2ChannelState {
    float Freq = 0;   // Hz
    float Key = 0;    // 0 or 1
    float Volume = 0; // 0 to 15, an amplitude: 15 is loudest
};

struct Ym2413 {
    static constexpr int kChannels = 9, kBlock = 441;

    int16_t Ym2413Out[kBlock] = {}; // this block's output, within +-135

    uint8_t Ym2Regs[64] = {};
    uint8_t Ym2Latch = 0; // may point above the registers: such writes are lost
    Ym2ChannelState Ym2Channel[kChannels];
    float Ym2Phase[kChannels] = {};            // never reset
    int16_t Ym2Matrix[kChannels][kBlock] = {}; // one column per channel
    uint32_t ScopeBlocks = 0;                  // bumped by each render at BlockIndex 4
};

// The panel's names of the instrument numbers (high nibble of 0x30 + c).
extern const char* const kYm2InstrumentNames[16];

void Ym2Reset(Machine& m);
// The latch keeps the address AND 0xF5, so address bits 1 and 3 never reach
// the registers.
void Ym2Write(Machine& m, uint8_t port, uint8_t value);
void Ym2Decode(Ym2413& y);
void Ym2Render(Machine& m);

} // namespace tvc
