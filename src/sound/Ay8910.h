// The AY-3-8910 of the sound card: three tones, one noise source and one
// envelope generator, decoded from the registers at the start of each block
// and rendered in floating point at 22,050 Hz.
#pragma once

#include <cstdint>

#include "core/Rnd.h"

namespace tvc {

class Machine;

struct AyChannelState {
    int32_t Freq = 0;   // Hz, at most 11,000
    int32_t Period = 0; // the register period doubled
    float Volume = 0;
    int32_t Mix = 0; // the channel's mixer bits, set where a source is on
};

struct AyNoiseState {
    int32_t NoiseFreq = 0, NoisePeriod = 0;
    float NoiseValue = 0; // -1 to 1
};

struct AyEnvState {
    int32_t EnvFreq = 0, EnvPeriod = 0;
    float EnvLevel = 0; // 0 to 1
    int32_t EnvShape = 0;
};

struct Ay8910 {
    static constexpr int kBlock = 441;

    int16_t AyOut[kBlock] = {}; // this block's output, within +-96

    int32_t AyRegs[16] = {};
    uint8_t AyLatch = 0;
    float AyVolume[16] = {};
    AyChannelState AyChannel[3];
    AyNoiseState AyNoise;
    AyEnvState AyEnv;
    float AyPhase[5] = {};           // channels 0 to 2, noise, envelope
    float AyColumns[5][kBlock] = {}; // the last audible block: channels, noise, envelope level
    int32_t AyPrevEnvBits = 0;
    uint32_t ScopeBlocks = 0; // bumped by each render at BlockIndex 4

    Rnd rnd{0xA738910};
};

void AyInit(Machine& m);
void AyReset(Machine& m);
void AyWrite(Machine& m, uint8_t port, uint8_t value);
void AyRender(Machine& m);

} // namespace tvc
