#include "sound/Saa1099.h"

#include "core/Machine.h"

namespace tvc {

void SaaLoadTable(Machine&) {}
void SaaReset(Machine&) {}
void SaaWrite(Machine&, uint8_t, uint8_t) {}
void SaaRender(Machine&) {}

} // namespace tvc
