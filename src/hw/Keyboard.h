// The keyboard matrix as the main window feeds it. Keys arrive as Windows
// virtual-key codes laid out for a Hungarian keyboard (the window maps the
// host's physical keys onto those codes); each code with a place in the
// matrix sets or clears one bit. F1 and F2 are emulator commands instead.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
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

// Key events from the desktop, fed to the matrix at the machine's pace.
// The window's events arrive only between frames, and while the audio player
// paces the machine several keys typed in one pause arrive together: applied
// at once they would be down together (and a quick tap's press and release
// would cancel out). The queue keeps their order and lets through at most one
// key going down per frame, and a key's release only once it has been down
// over kMinHeldFrames frame boundaries; after a release the next key waits
// for a frame of its own, so a program that scans once a frame sees every
// key, in order, and a key struck twice as two presses.
class KeyEventQueue {
  public:
    static constexpr uint64_t kMinHeldFrames = 2;

    void Push(bool down, int keycode, int shift);
    // Applies what may go now; F1 and F2 answer with their command.
    std::vector<KeyCommand> Pump(Machine& m);
    // Focus changes and mouse presses: everything up, nothing pending.
    void Clear(Machine& m);
    bool Empty() const { return events_.empty(); }

  private:
    struct Event {
        bool down;
        int keycode, shift;
    };
    std::vector<Event> events_;
    std::vector<std::pair<int, uint64_t>> downAt_; // key code, frame it went down
    uint64_t lastDownFrame_ = UINT64_MAX;
    uint64_t lastUpFrame_ = UINT64_MAX;
};

// The paging calculator of the on-screen keypad: the page register byte
// with one field replaced. Fields: 0 = U3 window (bits 7-6, choice 0..3),
// 1 = U2 (bit 5, 0..1), 2 = U0 (bits 4-3, 0..3), 3 = U1 (bit 2, 0..1).
int PagingCalculator(int byte, int field, int choice);

} // namespace tvc
