// The YM2413 of the sound card. Its sound arrives with the chip emulation; until then
// writes are accepted and the chip stays silent.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Ym2413 {
    int16_t Ym2413Out[441] = {}; // this block's output; zero until the chip sounds
};

void Ym2Reset(Machine& m);
void Ym2Write(Machine& m, uint8_t port, uint8_t value);
void Ym2Render(Machine& m);

} // namespace tvc
