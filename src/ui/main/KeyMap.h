// Host keys to the virtual-key codes of the keyboard matrix. The matrix is
// laid out for a Hungarian keyboard; keys are mapped by their physical place
// (the X11 key code of the key), so a user with any host layout finds each
// TVC key where the Hungarian keyboard has it. Where no key code is known
// (synthetic events), the symbolic key is used instead.
#pragma once

class QKeyEvent;

namespace tvc::ui {

// The virtual-key code for a physical key (X11 key code = evdev code + 8),
// or 0 if that key has no code here.
int VirtualKeyFromScanCode(unsigned scanCode);

// The virtual-key code for a symbolic Qt key, or 0.
int VirtualKeyFromQtKey(int qtKey);

// Both, the physical place first.
int VirtualKey(const QKeyEvent& event);

// The shift argument of the key events: 1 Shift, 2 Ctrl, 4 Alt. AltGr counts
// as Ctrl and Alt together, as the Windows keyboard reports it.
int ShiftState(const QKeyEvent& event);

} // namespace tvc::ui
