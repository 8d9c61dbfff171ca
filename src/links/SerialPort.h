// The serial card's two ports as the processor sees them.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct SerialPort {};

uint8_t SerialIn(Machine& m, int32_t port);
void SerialOut(Machine& m, int32_t port, uint8_t value);

} // namespace tvc
