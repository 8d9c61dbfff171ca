#include "sound/Ym3812.h"

#include "core/Machine.h"

namespace tvc {

void YmInit(Machine&) {}
void YmReset(Machine&) {}
void YmWrite(Machine&, uint8_t, uint8_t) {}
void YmRender(Machine&) {}

} // namespace tvc
