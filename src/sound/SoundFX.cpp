#include "sound/SoundFX.h"

#include "core/Machine.h"

namespace tvc {

void SoundInit(Machine&) {}

void SoundMix(Machine& m) { m.sound.BlockIndex += 1; }

void SoundFrame(Machine&) {}

void PrinterLineSound(Machine&) {}

} // namespace tvc
