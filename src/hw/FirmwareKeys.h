// The keyboard layout of the built-in monitor ROM, seen from the other
// side: which key of the matrix, with or without Shift, types a character.
// The table is generated at build time from firmware/keys.txt, the same
// file from which the ROM's own key tables are made.
#pragma once

#include <optional>

#include "hw/Keyboard.h"

namespace tvc {

struct FirmwareKey {
    char ch; // '\r' is Enter, '\b' Backspace
    int row; // 0..8, as written to port 3
    int bit; // 0..7 of KeyMatrix[row]
    bool shift;
};

// Generated: every character the layout types, in character order.
extern const FirmwareKey kFirmwareKeys[];
extern const int kFirmwareKeyCount;
extern const KeyPosition kFirmwareShiftKey;

// The key that types `ch`; '\n' counts as Enter. No value when no key does.
std::optional<FirmwareKey> FirmwareKeyFor(char ch);

} // namespace tvc
