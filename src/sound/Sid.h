// The SID of the sound card, in floating point at 22,050 Hz: three voices,
// four waveforms, ADSR, sync, ring and a simple filter, plus three software
// filters and a sweep on the panel. It is reached through a latch pair
// (ports 0x38, 0x39) and directly through the older card's ports 0xE0..0xF8,
// and it can play register dumps by itself, one frame per block.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "core/Rnd.h"

namespace tvc {

class Machine;

struct SidVoiceState {
    int32_t Freq = 0; // Hz x 2: the phase runs two units per cycle
    uint8_t Control = 0;
    int32_t Attack = 0, Decay = 0, Sustain = 0, Release = 0; // 0 to 15
    float AttackStep = 0, DecayStep = 0, SustainLevel = 0, ReleaseStep = 0;
    int32_t PulseWidth = 0; // 0 to 4095
    float EnvLevel = 0;     // 0 to 1
};

// One-sample histories of a filter.
struct SidHistory {
    double In = 0, Out = 0;
};

struct Sid {
    static constexpr int kVoices = 3, kBlock = 441, kRegs = 29;

    int16_t SidOut[kBlock] = {};

    int32_t SidRegs[kRegs] = {}; // 0 to 24 are the chip's registers
    uint8_t SidLatch = 0;
    SidVoiceState SidVoice[kVoices];
    int32_t SidCutoff = 0;
    uint8_t SidResonance = 0, SidRouting = 0, SidMode = 0;
    float SidVolume = 0;
    int32_t SidEnvState[kVoices] = {}; // 0 attack, 1 decay, 2 sustain, 3 release
    int32_t SidGate[kVoices] = {}, SidPrevGate[kVoices] = {};
    float SidPhase[kVoices] = {}; // -1 to 1
    float SidNoiseValue[kVoices] = {};
    float SidColumns[kVoices][kBlock] = {};
    SidHistory SidLow[kVoices], SidHigh[kVoices];
    SidHistory PanelHigh, PanelLow, PanelBand;
    float SidSweepFreq = 0;
    uint32_t ScopeBlocks = 0; // bumped by each render at BlockIndex 4

    // The open dump ("file 77"): text for SIDX, binary for DMP.
    std::FILE* PlayFile = nullptr;
    bool SidxErrorShown = false; // "hiba" is shown at most once per file

    Rnd rnd{0x6581};

    Sid() = default;
    Sid(const Sid&) = delete;
    Sid& operator=(const Sid&) = delete;
    ~Sid();
};

// Milliseconds of the envelope stages by their 4-bit value.
extern const int32_t kSidAttackMs[16];
extern const int32_t kSidDecayMs[16]; // decay and release

void SidInit(Machine& m);
void SidReset(Machine& m);
void SidWrite(Machine& m, uint8_t port, uint8_t value);
void SidDirect(Machine& m, uint8_t reg, uint8_t value);
void SidDecode(Machine& m);
void SidRender(Machine& m);
// The panel filters' passes: Text1's leading integer held to 0..100 (not a
// number: 0), plus 1.
int32_t SidPanelPasses(const std::string& text);

// Dump playback (SidDump.cpp). Options: 0 "No File", 1 "SIDX", 2 "DMP".
void SidChooseOption(Machine& m, int32_t option);
// A click on a name in the file list.
void SidSelectFile(Machine& m, const std::string& name);
// Picks the option by the name's extension, then selects the name; false
// (with a message) when the extension or the name is not in the list.
bool SidPlayFile(Machine& m, const std::string& name, std::string& error);
void SidPlaySidx(Machine& m);
void SidPlayDmp(Machine& m);
// One SIDX line into the registers: fixed columns, dots for no change.
void SidApplySidxLine(Machine& m, std::string_view line);

} // namespace tvc
