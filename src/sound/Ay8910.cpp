#include "sound/Ay8910.h"

#include "core/Machine.h"

namespace tvc {

void AyInit(Machine&) {}
void AyReset(Machine&) {}
void AyWrite(Machine&, uint8_t, uint8_t) {}
void AyRender(Machine&) {}

} // namespace tvc
