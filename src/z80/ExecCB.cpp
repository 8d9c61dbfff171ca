// xxCB: not yet served; every opcode is undefined for now.
#include "z80/Z80.h"

namespace tvc {

void Z80::xxCB() { MissingOP(); }

} // namespace tvc
