// The printer port: a byte strobed out through port 6.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Printer {};

void Senddata(Machine& m, uint8_t byte);

} // namespace tvc
