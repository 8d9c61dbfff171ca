#include "video/Crtc.h"

#include "core/Machine.h"

namespace tvc {

void PALSet(Machine&) {}
void PALchNull(Machine&) {}
void BorderSet(Machine&, int32_t) {}

} // namespace tvc
