#include "sound/Ym2413.h"

#include "core/Machine.h"

namespace tvc {

void Ym2Reset(Machine&) {}
void Ym2Write(Machine&, uint8_t, uint8_t) {}
void Ym2Render(Machine&) {}

} // namespace tvc
