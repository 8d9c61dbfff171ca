// xx: the 256 unprefixed opcodes (their body is in ExecBaseBody.h).
#include "z80/ExecBaseBody.h"

namespace tvc {

void Z80::xx() {
    xxBody();
}

} // namespace tvc
