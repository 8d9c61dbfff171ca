// The SAA1099 of the sound card. Its sound arrives with the chip emulation; until then
// writes are accepted and the chip stays silent.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Saa1099 {
    int16_t SaaLeft[441] = {};  // this block's output; zero until the chip sounds
    int16_t SaaRight[441] = {}; // this block's output; zero until the chip sounds
};

void SaaLoadTable(Machine& m);
void SaaReset(Machine& m);
void SaaWrite(Machine& m, uint8_t port, uint8_t value);
void SaaRender(Machine& m);

} // namespace tvc
