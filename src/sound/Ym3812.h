// The YM3812 of the sound card. Its sound arrives with the chip emulation; until then
// writes are accepted and the chip stays silent.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Ym3812 {
    int16_t Ym3812Out[441] = {}; // this block's output; zero until the chip sounds
};

void YmInit(Machine& m);
void YmReset(Machine& m);
void YmWrite(Machine& m, uint8_t port, uint8_t value);
void YmRender(Machine& m);

} // namespace tvc
