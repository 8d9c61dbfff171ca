// Host keys to the virtual-key codes of the keyboard matrix. The matrix is
// laid out for a Hungarian keyboard; keys are mapped by their physical place
// (the X11 key code of the key), so a user with any host layout finds each
// TVC key where the Hungarian keyboard has it. Where no key code is known
// (synthetic events), the symbolic key is used instead.
//
// The numeric keypad's digits and point have no place in the matrix, with
// NumLock on or off; its * + - / have their own places and its Enter is
// Enter. A key's release gives back exactly what its press gave (HeldKeys),
// whatever modifier or lock changed while it was down.
#pragma once

#include <optional>
#include <utility>
#include <vector>

class QKeyEvent;

namespace tvc::ui {

// The virtual-key code for a physical key (X11 key code = evdev code + 8):
// 0 for a key known to have no code, nothing for a key not in the table.
std::optional<int> VirtualKeyFromScanCode(unsigned scanCode);

// The virtual-key code for a symbolic Qt key, or 0. On the keypad
// (`keypad`) only * + - / and Enter have one.
int VirtualKeyFromQtKey(int qtKey, bool keypad = false);

// Both, the physical place first.
int VirtualKey(const QKeyEvent& event);

// What pairs a release with its press: the physical place, or for an event
// without one the symbolic key (keypad keys apart).
unsigned PhysicalKey(const QKeyEvent& event);

// The key codes the physical keys now held have given, so that a release
// undoes exactly what its press did.
class HeldKeys {
  public:
    // The code to press: `keycode`, remembered for this physical key.
    int Press(unsigned physical, int keycode);
    // The code to release: what this key's press gave, or 0 when there is
    // nothing to undo (its press was not seen here, or another key that is
    // still held gave the same code).
    int Release(unsigned physical);
    // Focus changes: every key is up.
    void Clear() { held_.clear(); }
    bool Empty() const { return held_.empty(); }

  private:
    std::vector<std::pair<unsigned, int>> held_;
};

// The shift argument of the key events: 1 Shift, 2 Ctrl, 4 Alt. AltGr counts
// as Ctrl and Alt together, as the Windows keyboard reports it.
int ShiftState(const QKeyEvent& event);

} // namespace tvc::ui
