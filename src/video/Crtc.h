// What the machine takes from the CRTC, the palette latches and the border.
// The register file is 32 entries wide so that any selected number (0..31)
// stays inside it; entry 18 is the number of the selected register.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

constexpr int kCrtcSelect = 18;

struct Crtc {
    int32_t CrtcReg[32] = {};
};

// A palette port (0x60..0x6F) is about to be latched.
void PALSet(Machine& m);
// Called by the run loop right after each picture.
void PALchNull(Machine& m);
// Port 0 is about to be latched with this value.
void BorderSet(Machine& m, int32_t value);

} // namespace tvc
