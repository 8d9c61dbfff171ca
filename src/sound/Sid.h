// The SID of the sound card (and of the older card at ports 0xE0..0xF8). Its sound arrives with the
// chip emulation; until then writes are accepted and the chip stays silent.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Sid {
    int16_t SidOut[441] = {}; // this block's output; zero until the chip sounds
};

void SidInit(Machine& m);
void SidReset(Machine& m);
void SidWrite(Machine& m, uint8_t port, uint8_t value);
void SidDirect(Machine& m, uint8_t reg, uint8_t value);
void SidRender(Machine& m);

} // namespace tvc
