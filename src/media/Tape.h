// The cassette interface: the input level read on port 0x59 and the output
// edge written through ports 0x50..0x57.
#pragma once

namespace tvc {

class Machine;

struct Tape {};

// The input level at this moment: 0 or 1, for bit 5 of port 0x59.
int TapeSample(Machine& m);
// One output edge.
void TapeEdge(Machine& m);

} // namespace tvc
