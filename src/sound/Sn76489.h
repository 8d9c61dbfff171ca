// The SN76489 of the sound card: three square-wave tones and a noise
// channel, rendered per block from frequencies in hertz with phase
// accumulators, at 22,050 Hz.
#pragma once

#include <cstdint>

#include "core/Rnd.h"

namespace tvc {

class Machine;

struct SnTone {
    int32_t High = 0;        // the data byte's 6 bits
    int32_t Low = 0;         // the latch byte's 4 bits
    uint8_t Attenuation = 0; // 15 is silent
};

struct SnNoiseRecord {
    int32_t NoiseRate = 0; // 0 to 3
    uint8_t NoiseAttenuation = 0;
    uint8_t NoiseType = 0; // 4: the run replays every ten blocks
};

struct Sn76489 {
    static constexpr int kBlock = 441;
    static constexpr uint64_t kSeed = 1; // the seed the periodic noise restarts from

    int16_t Sn76489Out[kBlock] = {}; // this block's output, within +-1,200

    SnTone SnChannel[3];
    SnNoiseRecord SnNoise;
    uint8_t SnLastChannel = 0; // the tone a data byte belongs to
    float SnPhase[4] = {};
    int32_t SnLevel[4] = {};
    int16_t SnMatrix[kBlock][4] = {}; // the last audible block, one column per channel
    uint8_t SnSeedCounter = 1;        // 1 to 10
    uint32_t ScopeBlocks = 0;         // bumped by each render at BlockIndex 4

    Rnd rnd{kSeed};
};

void SnReset(Machine& m);
// From the port decoder: dropped whole while the panel's "Manual" is set.
void SnWrite(Machine& m, uint8_t port, uint8_t value);
void SnDecode(Machine& m, uint8_t port, uint8_t value);
void SnRender(Machine& m);

} // namespace tvc
