#include "links/Printer.h"

#include "core/Machine.h"

namespace tvc {

void Senddata(Machine&, uint8_t) {}

} // namespace tvc
