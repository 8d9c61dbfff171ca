#include "media/Tape.h"

#include "core/Machine.h"

namespace tvc {

int TapeSample(Machine&) {
    return 0;
}
void TapeEdge(Machine&) {}

} // namespace tvc
