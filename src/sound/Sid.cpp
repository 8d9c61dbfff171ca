#include "sound/Sid.h"

#include "core/Machine.h"

namespace tvc {

void SidInit(Machine&) {}
void SidReset(Machine&) {}
void SidWrite(Machine&, uint8_t, uint8_t) {}
void SidDirect(Machine&, uint8_t, uint8_t) {}
void SidRender(Machine&) {}

} // namespace tvc
