#include "video/LightPen.h"

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

void PicdMouseMove(Machine& m, double x, double y) {
    const int64_t ix = RoundHalfEven(x), iy = RoundHalfEven(y);
    const int64_t address = (iy / 20) * 64 + ix / 8;
    m.lpen.LpenHigh = static_cast<int32_t>(address / 256);
    m.lpen.LpenLow = static_cast<int32_t>(address % 256);
}

// R16 is not masked here as a program's write to it would be.
void LPENRefresh(Machine& m) {
    m.crtc.CrtcReg[16] = m.lpen.LpenHigh;
    m.crtc.CrtcReg[17] = m.lpen.LpenLow;
}

} // namespace tvc
