// The audio block pipeline: one block of 441 samples per frame, five blocks
// per delivery to the audio player.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

constexpr int kBlockSamples = 441;
constexpr int kBlocksPerDelivery = 5;
constexpr int kToneSlotT = 142; // T-states per sample slot

struct SoundFX {
    int32_t BlockIndex = 0; // blocks mixed for the current delivery, 0..5
    // Level events of the frame, stamped by port 6 and the tape: value + 16,
    // 0 meaning no event in that slot.
    int32_t ToneSlots[kBlockSamples] = {};
    bool PrinterLine = false; // a printed line has begun
};

void SoundInit(Machine& m);
// Renders one block from all sources; adds one to BlockIndex.
void SoundMix(Machine& m);
// Hands five blocks to the audio player, waiting for it unless "Max" is ticked.
void SoundFrame(Machine& m);
// The printer's line sound: an empty hook.
void PrinterLineSound(Machine& m);

} // namespace tvc
