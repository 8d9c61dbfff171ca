#include "video/LightPen.h"

#include "core/Machine.h"

namespace tvc {

void LPENRefresh(Machine&) {}

} // namespace tvc
