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

void KeyEventQueue::Push(bool down, int keycode, int shift) { events_.push_back({down, keycode, shift}); }

std::vector<KeyCommand> KeyEventQueue::Pump(Machine& m) {
    std::vector<KeyCommand> commands;
    const uint64_t frame = m.run.FrameCount;
    size_t done = 0;
    for (; done < events_.size(); ++done) {
        Event& e = events_[done];
        auto held = std::find_if(downAt_.begin(), downAt_.end(),
                                 [&](const auto& d) { return d.first == e.keycode; });
        if (e.down) {
            if (lastDownFrame_ == frame || lastUpFrame_ == frame) break; // a frame of its own
            if (held == downAt_.end()) downAt_.emplace_back(e.keycode, frame);
            else held->second = frame;
            lastDownFrame_ = frame;
            const KeyCommand c = PicdKeyDown(m, e.keycode, e.shift);
            if (c != KeyCommand::None) commands.push_back(c);
        } else {
            if (held != downAt_.end()) {
                if (frame < held->second + kMinHeldFrames) break; // not seen long enough
                downAt_.erase(held);
            }
            lastUpFrame_ = frame;
            PicdKeyUp(m, e.keycode, e.shift);
        }
    }
    events_.erase(events_.begin(), events_.begin() + static_cast<std::ptrdiff_t>(done));
    return commands;
}

void KeyEventQueue::Clear(Machine& m) {
    events_.clear();
    downAt_.clear();
    ClearKeyMatrix(m);
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
