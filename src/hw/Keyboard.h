// The keyboard matrix as the main window feeds it. Keys arrive as Windows
// virtual-key codes laid out for a Hungarian keyboard (the window maps the
// host's physical keys onto those codes); each code with a place in the
// matrix sets or clears one bit. F1 and F2 are emulator commands instead.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tvc {

class Machine;

struct KeyPosition {
    int row; // 0..8
    int bit; // 0..7
};

// The matrix position of a virtual-key code, if it has one.
std::optional<KeyPosition> MatrixPosition(int keycode);

// Shift argument bits of the key events.
constexpr int kShiftMask = 1, kCtrlMask = 2, kAltMask = 4;

enum class KeyCommand { None, Reset, Reset2 };

// picd_KeyDown: sets the key's bit unless Alt alone is held. keycode is set
// to 0 where the key is swallowed (no place in the matrix, no command).
// Returns the emulator command of F1 and F2.
KeyCommand PicdKeyDown(Machine& m, int& keycode, int shift);

// picd_KeyUp: clears the key's bit, whatever the shift state.
void PicdKeyUp(Machine& m, int keycode, int shift);

// Every key up at once: focus changes and mouse presses on the picture.
void ClearKeyMatrix(Machine& m);

// A key struck faster than the machine's pace must still be seen: the
// window's events arrive only between frames, so a press and its release
// can land in the same pause. A release is held back until the key has been
// down for kMinHeldFrames frame boundaries.
class KeyReleaseHold {
  public:
    static constexpr uint64_t kMinHeldFrames = 2;

    void Down(int keycode, uint64_t frame);
    // True when the key may go up now; otherwise the release waits for Due.
    bool Up(int keycode, uint64_t frame);
    // The held-back releases whose time has come, taken off the list.
    std::vector<int> Due(uint64_t frame);
    void Clear();

  private:
    struct Held {
        int keycode;
        uint64_t downFrame;
        bool released;
    };
    std::vector<Held> held_;
};

// The paging calculator of the on-screen keypad: the page register byte
// with one field replaced. Fields: 0 = U3 window (bits 7-6, choice 0..3),
// 1 = U2 (bit 5, 0..1), 2 = U0 (bits 4-3, 0..3), 3 = U1 (bit 2, 0..1).
int PagingCalculator(int byte, int field, int choice);

} // namespace tvc
