// The SN76489 of the sound card. Its sound arrives with the chip emulation; until then
// writes are accepted and the chip stays silent.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Sn76489 {
    int16_t Sn76489Out[441] = {}; // this block's output; zero until the chip sounds
};

void SnReset(Machine& m);
void SnWrite(Machine& m, uint8_t port, uint8_t value);
void SnRender(Machine& m);

} // namespace tvc
