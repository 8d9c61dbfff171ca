// The audio block pipeline. One block of 441 samples belongs to one frame:
// at each frame end the run loop mixes one block from the machine's own tone
// generator and the sound card's chips; every fifth block SoundFrame hands
// the 4,410-byte unit (22,050 Hz stereo, unsigned 8-bit) to the audio player
// over the shared maps and waits until the player asks for the next. That
// wait is the emulator's real-time pace; with "Max" ticked nothing is handed
// over and nothing waits.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <vector>

#include "links/AudioLink.h"

namespace tvc {

class Machine;

constexpr int kBlockSamples = 441;
constexpr int kBlocksPerDelivery = 5;
constexpr int kToneSlotT = 142; // T-states per sample slot

struct ToneState {
    float Phase = 0;          // the oscillator's phase, in half periods
    int32_t Level = 0;        // 0 or 1
    int32_t LastDacLevel = 0; // the line level of the last level event
};

struct SoundFX {
    int32_t BlockIndex = 0; // blocks mixed for the current delivery, 0..5
    // Level events of the frame, stamped by port 6 and the tape: level + 16,
    // 0 meaning no event in that slot.
    uint8_t ToneSlots[kBlockSamples] = {};
    ToneState Tone;
    int16_t TvcToneOut[kBlockSamples] = {};
    uint8_t OutBuffer[kAudioUnitBytes] = {};
    std::vector<uint8_t> WaveImage; // one second of silence as a wave file image
    int32_t MonitorFrame = 0;       // the chip panels' picture frame index
    bool PrinterLine = false;       // a printed line has begun

    MMapper MMDemo;          // the unit
    MMapper MMDemo2;         // the handshake byte
    uint32_t Deliveries = 0; // units handed over: the audio link's sign of a request

    std::FILE* RecordFile = nullptr;     // "record.wav" while the SAA1099 panel records
    std::FILE* SaaDataFile = nullptr;    // "saa.dat", opened and never written
    std::FILE* ToneRecordFile = nullptr; // the tape's record file, when it has one open

    // Sees every unit as it is handed over (or, at "Max", would have been):
    // the headless runner records the machine's sound with it.
    std::function<void(const uint8_t* unit, size_t bytes)> DeliveryTap;
};

inline constexpr int16_t SilentBlock[kBlockSamples] = {};

void SoundInit(Machine& m);
// A whole RIFF WAVE image of `seconds` of silence (8-bit samples at 128).
void BuildWaveImage(Machine& m, int16_t channels, int32_t sampleRate, float seconds);
// The 44-byte header of an 8-bit PCM wave file. The block-align field is
// always 2, as the machine's own files have it.
std::vector<uint8_t> WaveHeader(int16_t channels, int32_t sampleRate, uint32_t dataBytes);

// Creates the two maps of the audio link; false (with the map's error) if not.
bool SoundMapsCreate(Machine& m);

void TvcToneBlock(Machine& m);
void MixBlock(Machine& m);
// One block: the tone generator, the sound card's chips, the mix.
void SoundMix(Machine& m);
// Hands a full OutBuffer to the player, waiting for it unless "Max" is ticked.
void SoundFrame(Machine& m);
// The printer's line sound: an empty hook.
void PrinterLineSound(Machine& m);

// The SAA1099 panel's "Record" button: starts or ends recording the
// deliveries into "record.wav", a copy of the template "techno.wav".
void SaaRecordButton(Machine& m);

} // namespace tvc
