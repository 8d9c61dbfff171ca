// The mouse as the TVC's light pen.
#pragma once

namespace tvc {

class Machine;

struct LightPen {};

// Once a frame, from the run loop.
void LPENRefresh(Machine& m);

} // namespace tvc
