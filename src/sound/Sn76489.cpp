#include "sound/Sn76489.h"

#include "core/Machine.h"

namespace tvc {

void SnReset(Machine&) {}
void SnWrite(Machine&, uint8_t, uint8_t) {}
void SnRender(Machine&) {}

} // namespace tvc
