#include "links/SerialPort.h"

#include "core/Machine.h"

namespace tvc {

uint8_t SerialIn(Machine&, int32_t) {
    return 0;
}
void SerialOut(Machine&, int32_t, uint8_t) {}

} // namespace tvc
