// The AY-3-8910 of the sound card. Its sound arrives with the chip emulation; until then
// writes are accepted and the chip stays silent.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Ay8910 {
    int16_t AyOut[441] = {}; // this block's output; zero until the chip sounds
};

void AyInit(Machine& m);
void AyReset(Machine& m);
void AyWrite(Machine& m, uint8_t port, uint8_t value);
void AyRender(Machine& m);

} // namespace tvc
