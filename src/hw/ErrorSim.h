// The memory error simulator: video memory bits stuck at 0, at 1 or at
// random, and whole banks of system RAM overwritten, as failing chips would
// do. The damage is done when a picture is painted and stays in RAM.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

// One video byte as the chosen fault leaves it.
uint8_t VidErr(Machine& m, uint8_t b);
// The byte with the one-bit mask set or cleared at random.
uint8_t bitr(Machine& m, uint8_t b, uint8_t mask);

// The picture's share of the simulator: damages video page 0 while the video
// fault is enabled, and fills each ticked bank of system RAM with 0xAA.
void ApplyMemoryErrors(Machine& m);

} // namespace tvc
