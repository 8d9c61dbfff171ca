// The SAA1099 of the sound card: six square-wave channels, two noise
// generators and two envelope generators, stereo. A block renderer in
// floating point at 22,050 Hz: noise, tone, envelope, level and sum passes.
#pragma once

#include <cstdint>

#include "core/Rnd.h"

namespace tvc {

class Machine;

struct SaaEnvelope {
    uint8_t Enable = 0, InvertRight = 0, ExternalClock = 0, Shape = 0, Fine = 0;
};

struct Saa1099 {
    static constexpr int kChannels = 6, kBlock = 441;

    int16_t SaaLeft[kBlock] = {};  // this block's output, 0 to 120
    int16_t SaaRight[kBlock] = {}; // this block's output, 0 to 120

    // Registers as decoded.
    uint8_t SaaLatch = 0;
    uint8_t SaaAmp[12] = {}; // left amplitude of channel c at c, right at c + 6
    uint8_t SaaFreq[kChannels] = {};
    uint8_t SaaOctave[kChannels] = {};
    uint8_t SaaToneEnable[kChannels] = {};
    uint8_t SaaNoiseEnable[kChannels] = {};
    uint8_t SaaNoiseRate[2] = {};
    SaaEnvelope SaaEnv[2];
    uint8_t SaaAllEnable = 0, SaaSync = 0;

    // Generators.
    double SaaTonePhase[kChannels] = {};
    double SaaToneLevel[kChannels] = {}; // 0 or 255
    float SaaEnvPhase[2] = {};           // the repeating shapes' phase
    float SaaEnvLevel[2] = {};           // the last envelope value of a block
    int32_t SaaFreqTable[2048] = {};     // whole hertz by octave * 256 + frequency byte
    int32_t SaaNoiseShare[16][256] = {}; // round(noise / 31 * amplitude)

    // Work buffers of one block. The tone and side matrices stay after the
    // render: the panel's pictures show the right side of the last block.
    uint8_t Noise[2][kBlock] = {};
    uint8_t Env[2][kBlock] = {};
    uint8_t ToneMatrix[kChannels][kBlock] = {};
    uint8_t LeftMatrix[kChannels][kBlock] = {};
    uint8_t RightMatrix[kChannels][kBlock] = {};
    uint32_t ScopeBlocks = 0; // bumped by each render at BlockIndex 4

    Rnd rnd{0x5AA1099};
};

// The panel's names of the eight envelope shapes.
extern const char* const kSaaShapeNames[8];

void SaaLoadTable(Machine& m);
void SaaReset(Machine& m);
// From the port decoder: dropped whole while the panel's "Manual" is set.
void SaaWrite(Machine& m, uint8_t port, uint8_t value);
// The write path below the "Manual" test: odd ports latch, even ports write.
void SaaRegisterWrite(Machine& m, uint8_t port, uint8_t value);
void SaaRender(Machine& m);

} // namespace tvc
