// The monitor's two hand-written tables, its character set (font.txt) and
// its keyboard layout (keys.txt): reading them and writing them out in the
// forms the assembler and the emulator's C++ code take. The build tool and
// the tests share this code, so both read the tables the same way.
#pragma once

#include <array>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace tvc::firmware {

constexpr int kFirstGlyph = 0x20, kGlyphCount = 96; // codes 0x20 to 0x7F
constexpr int kGlyphLines = 10;
constexpr int kKeyRows = 9, kKeyBits = 8;

// Characters of the layout that are not printable.
constexpr char kEnter = 13, kBackspace = 8;

using Glyph = std::array<uint8_t, kGlyphLines>; // bit 7 is the leftmost pixel

struct Font {
    std::array<Glyph, kGlyphCount> glyphs{};
    // The glyph of a code; codes without a glyph of their own show 0x7F.
    const Glyph& Of(int code) const;
};

struct KeyCell {
    char normal = 0, shifted = 0; // 0: the key types nothing
};

struct KeyLayout {
    KeyCell cells[kKeyRows][kKeyBits];
    int shiftRow = -1, shiftBit = -1;
};

// One key press that types a character: the key and whether Shift is held.
struct KeyStroke {
    char ch;
    int row, bit;
    bool shift;
};

// Parsers: no value on a malformed table, with `error` naming the line.
std::optional<Font> ParseFont(std::istream& in, std::string& error);
std::optional<KeyLayout> ParseKeyLayout(std::istream& in, std::string& error);

// For each character the layout types, the first key that gives it,
// preferring keys that give it without Shift; in character order.
std::vector<KeyStroke> StrokesFor(const KeyLayout& layout);

// Assembler include: the label `font`, 10 bytes for each code from 0x20.
std::string FontInclude(const Font& font);

// Assembler include: `keys_normal` and `keys_shifted`, 72 bytes each indexed
// by row * 8 + bit, and SHIFT_ROW / SHIFT_MASK for the Shift key.
std::string KeyInclude(const KeyLayout& layout);

// C++ source: the table behind tvc::FirmwareKeyFor (src/hw/FirmwareKeys.h).
std::string KeyTableSource(const KeyLayout& layout);

} // namespace tvc::firmware
