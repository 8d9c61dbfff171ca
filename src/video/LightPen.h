// The mouse over the picture as the TVC's light pen. A move stores the video
// address under the pointer; the CRTC's light pen registers R16 and R17 take
// it at the next frame end, so the program sees one value per frame.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct LightPen {
    int32_t LpenHigh = 0;
    int32_t LpenLow = 0;
};

// picd_MouseMove: x and y are pixels within the picture box. The address
// assumes 64 bytes a row and 20 pixels a text row, whatever the CRTC holds.
void PicdMouseMove(Machine& m, double x, double y);

// Once a frame, from the run loop.
void LPENRefresh(Machine& m);

} // namespace tvc
