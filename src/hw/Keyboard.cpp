#include "hw/Keyboard.h"

#include <algorithm>

#include "core/Machine.h"

namespace tvc {

namespace {

// Matrix rows from bit 7 down to bit 0; 0 marks a position without a key.
// clang-format off
constexpr int kMatrix[9][8] = {
    {'4', '1', 226, '6', '0', '2', '3', '5'},
    {'7', 192, 187, 106, 191, '9', '8', 109},
    {'R', 'Q', 117, 'Z', 116, 'W', 'E', 'T'},      // F6, F5
    {'U', 'P', 221, 118, 219, 'O', 'I', 119},      // F7, F8
    {'F', 'A', 107, 'H', 111, 'S', 'D', 'G'},
    {'J', 186, 220, 13, 222, 'L', 'K', 8},         // Enter, Backspace
    {'V', 'Y', 20, 'N', 16, 'X', 'C', 'B'},        // Caps Lock, Shift
    {'M', 189, 32, 17, 35, 190, 188, 18},          // Space, Ctrl, End, Alt
    {0, 37, 39, 121, 120, 40, 38, 45},             // Left Right F10 F9 Down Up Insert
};
// clang-format on

constexpr int kF1 = 112, kF2 = 113;

} // namespace

std::optional<KeyPosition> MatrixPosition(int keycode) {
    if (keycode < 8 || keycode > 226) return std::nullopt;
    for (int row = 0; row < 9; ++row)
        for (int col = 0; col < 8; ++col)
            if (kMatrix[row][col] == keycode) return KeyPosition{row, 7 - col};
    return std::nullopt;
}

KeyCommand PicdKeyDown(Machine& m, int& keycode, int shift) {
    m.forms.TTools.Label2 = keycode;
    if (shift == kAltMask) return KeyCommand::None;
    if (auto pos = MatrixPosition(keycode)) {
        m.bus.KeyMatrix[pos->row] |= static_cast<uint8_t>(1 << pos->bit);
        return KeyCommand::None;
    }
    if (keycode == kF1) return KeyCommand::Reset;
    if (keycode == kF2) return KeyCommand::Reset2;
    keycode = 0;
    return KeyCommand::None;
}

void PicdKeyUp(Machine& m, int keycode, int) {
    if (auto pos = MatrixPosition(keycode))
        m.bus.KeyMatrix[pos->row] &= static_cast<uint8_t>(~(1 << pos->bit));
}

void ClearKeyMatrix(Machine& m) {
    std::fill(std::begin(m.bus.KeyMatrix), std::end(m.bus.KeyMatrix), 0);
}

void KeyReleaseHold::Down(int keycode, uint64_t frame) {
    for (Held& h : held_)
        if (h.keycode == keycode) {
            if (h.released) h = {keycode, frame, false}; // struck again before its release
            return;
        }
    held_.push_back({keycode, frame, false});
}

bool KeyReleaseHold::Up(int keycode, uint64_t frame) {
    for (auto it = held_.begin(); it != held_.end(); ++it) {
        if (it->keycode != keycode) continue;
        if (frame >= it->downFrame + kMinHeldFrames) {
            held_.erase(it);
            return true;
        }
        it->released = true;
        return false;
    }
    return true;
}

std::vector<int> KeyReleaseHold::Due(uint64_t frame) {
    std::vector<int> due;
    std::erase_if(held_, [&](const Held& h) {
        const bool now = h.released && frame >= h.downFrame + kMinHeldFrames;
        if (now) due.push_back(h.keycode);
        return now;
    });
    return due;
}

void KeyReleaseHold::Clear() {
    held_.clear();
}

int PagingCalculator(int byte, int field, int choice) {
    static constexpr struct {
        int keep, step, choices;
    } kFields[4] = {{63, 64, 4}, {223, 32, 2}, {231, 8, 4}, {251, 4, 2}};
    if (field < 0 || field > 3) return byte;
    const auto& f = kFields[field];
    choice = std::clamp(choice, 0, f.choices - 1);
    return (byte & f.keep) + choice * f.step;
}

} // namespace tvc
