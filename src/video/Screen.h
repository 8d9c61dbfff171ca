// The picture of the main window, painted into buffers the core owns.
#pragma once

namespace tvc {

class Machine;

// TScreen.redraw: paints the whole picture from video memory.
void ScreenRedraw(Machine& m);

} // namespace tvc
