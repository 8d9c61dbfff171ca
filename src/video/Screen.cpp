#include "video/Screen.h"

#include "core/Machine.h"

namespace tvc {

void ScreenRedraw(Machine& m) { m.host->PictureReady(); }

} // namespace tvc
