// PortIn and PortOut: where the processor's I/O instructions meet the
// hardware. Port numbers 1..255 are decoded through a table; port 0 and any
// number above 255 take the default branch.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

int32_t PortIn(Machine& m, int32_t port);

// The value is taken by reference: the CRTC branches mask it in place, so an
// OUT of a register leaves that register masked, as the machine's software
// has always seen it.
void PortOut(Machine& m, int32_t port, int32_t& value);

// The tone generator's reload value from ports 4 and 5: 16 times (4096 minus
// the 12-bit pitch).
int32_t ToneReload(const Machine& m);

// Entry limits of the port log List1: a read is logged after clearing a list
// of 101 or more entries, a write after clearing one of more than 35.
constexpr int kReadLogLimit = 101;
constexpr int kWriteLogLimit = 36;

} // namespace tvc
