#include "ui/main/KeyMap.h"

#include <QKeyEvent>

namespace tvc::ui {

namespace {

// X11 key codes of the standard 105-key layout and the key code the
// Hungarian layout gives at that place.
struct ScanEntry {
    unsigned scan;
    int vk;
};

constexpr ScanEntry kScanTable[] = {
    {9, 27},   // Esc
    {49, '0'}, // left of 1: 0 on the Hungarian keyboard
    {10, '1'},
    {11, '2'},
    {12, '3'},
    {13, '4'},
    {14, '5'},
    {15, '6'},
    {16, '7'},
    {17, '8'},
    {18, '9'},
    {19, 192}, // Ö
    {20, 191}, // Ü
    {21, 187}, // Ó
    {22, 8},   // Backspace
    {23, 9},   // Tab
    {24, 'Q'},
    {25, 'W'},
    {26, 'E'},
    {27, 'R'},
    {28, 'T'},
    {29, 'Z'}, // QWERTZ: Z where US
               // keyboards have Y
    {30, 'U'},
    {31, 'I'},
    {32, 'O'},
    {33, 'P'},
    {34, 219}, // Ő
    {35, 221}, // Ú
    {36, 13},  // Enter
    {37, 17},
    {105, 17}, // Ctrl
    {38, 'A'},
    {39, 'S'},
    {40, 'D'},
    {41, 'F'},
    {42, 'G'},
    {43, 'H'},
    {44, 'J'},
    {45, 'K'},
    {46, 'L'},
    {47, 186}, // É
    {48, 222}, // Á
    {51, 220}, // Ű
    {50, 16},
    {62, 16},  // Shift
    {94, 226}, // Í, the extra key beside left Shift
    {52, 'Y'},
    {53, 'X'},
    {54, 'C'},
    {55, 'V'},
    {56, 'B'},
    {57, 'N'},
    {58, 'M'},
    {59, 188},
    {60, 190},
    {61, 189}, // , . -
    {64, 18},
    {108, 18}, // Alt, AltGr
    {65, 32},  // Space
    {66, 20},  // Caps Lock
    {67, 112},
    {68, 113},
    {69, 114},
    {70, 115},
    {71, 116},
    {72, 117},
    {73, 118},
    {74, 119},
    {75, 120},
    {76, 121},
    {95, 122},
    {96, 123}, // F1..F12
    {63, 106},
    {86, 107},
    {82, 109},
    {106, 111}, // keypad * + - /
    {104, 13},  // keypad Enter
    {79, 0},
    {80, 0},
    {81, 0},
    {83, 0},
    {84, 0}, // keypad 7 8 9 4 5
    {85, 0},
    {87, 0},
    {88, 0},
    {89, 0},
    {90, 0}, // keypad 6 1 2 3 0
    {91, 0}, // keypad point
    {110, 36},
    {115, 35},
    {118, 45},
    {119, 46}, // Home End Insert Delete
    {113, 37},
    {111, 38},
    {114, 39},
    {116, 40}, // Left Up Right Down
};

} // namespace

std::optional<int> VirtualKeyFromScanCode(unsigned scanCode) {
    for (const ScanEntry& e : kScanTable)
        if (e.scan == scanCode) return e.vk;
    return std::nullopt;
}

int VirtualKeyFromQtKey(int qtKey, bool keypad) {
    if (keypad) {
        switch (qtKey) {
        case Qt::Key_Asterisk: return 106;
        case Qt::Key_Plus: return 107;
        case Qt::Key_Minus: return 109;
        case Qt::Key_Slash: return 111;
        case Qt::Key_Enter: return 13;
        default: return 0;
        }
    }
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) return 'A' + (qtKey - Qt::Key_A);
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) return '0' + (qtKey - Qt::Key_0);
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12) return 112 + (qtKey - Qt::Key_F1);
    switch (qtKey) {
    case Qt::Key_Escape: return 27;
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Tab: return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Shift: return 16;
    case Qt::Key_Control: return 17;
    case Qt::Key_Alt:
    case Qt::Key_AltGr: return 18;
    case Qt::Key_CapsLock: return 20;
    case Qt::Key_Space: return 32;
    case Qt::Key_End: return 35;
    case Qt::Key_Home: return 36;
    case Qt::Key_Left: return 37;
    case Qt::Key_Up: return 38;
    case Qt::Key_Right: return 39;
    case Qt::Key_Down: return 40;
    case Qt::Key_Insert: return 45;
    case Qt::Key_Delete: return 46;
    case Qt::Key_Asterisk: return 106;
    case Qt::Key_Plus: return 107;
    case Qt::Key_Slash: return 111;
    case Qt::Key_Comma: return 188;
    case Qt::Key_Period: return 190;
    case Qt::Key_Minus: return 189;
    case Qt::Key_Odiaeresis: return 192;
    case Qt::Key_Udiaeresis: return 191;
    case Qt::Key_Oacute: return 187;
    case Qt::Key_Eacute: return 186;
    case Qt::Key_Aacute: return 222;
    case Qt::Key_Uacute: return 221;
    case Qt::Key_Iacute: return 226;
    default: return 0;
    }
}

int VirtualKey(const QKeyEvent& event) {
    if (const std::optional<int> vk = VirtualKeyFromScanCode(event.nativeScanCode())) return *vk;
    return VirtualKeyFromQtKey(event.key(), event.modifiers() & Qt::KeypadModifier);
}

unsigned PhysicalKey(const QKeyEvent& event) {
    // Scan codes are below 256; symbolic keys are told apart above them.
    if (const unsigned scan = event.nativeScanCode(); scan != 0 && scan < 256) return scan;
    const bool keypad = event.modifiers() & Qt::KeypadModifier;
    return (static_cast<unsigned>(event.key()) << 1 | (keypad ? 1u : 0u)) | 0x80000000u;
}

int HeldKeys::Press(unsigned physical, int keycode) {
    for (auto& [key, code] : held_)
        if (key == physical) return code; // already down: it keeps its first code
    held_.emplace_back(physical, keycode);
    return keycode;
}

int HeldKeys::Release(unsigned physical) {
    for (auto it = held_.begin(); it != held_.end(); ++it) {
        if (it->first != physical) continue;
        const int code = it->second;
        held_.erase(it);
        for (const auto& [key, other] : held_)
            if (other == code) return 0;
        return code;
    }
    return 0;
}

int ShiftState(const QKeyEvent& event) {
    const Qt::KeyboardModifiers mods = event.modifiers();
    int shift = 0;
    if (mods & Qt::ShiftModifier) shift |= 1;
    if (mods & Qt::ControlModifier) shift |= 2;
    if (mods & Qt::AltModifier) shift |= 4;
    if (event.key() == Qt::Key_AltGr || (mods & Qt::GroupSwitchModifier)) shift |= 2 | 4;
    return shift;
}

} // namespace tvc::ui
