#include "FirmwareText.h"

#include <cstdio>
#include <sstream>

namespace tvc::firmware {

namespace {

std::string Hex2(int v) {
    char buf[8];
    std::snprintf(buf, sizeof buf, "0x%02X", v & 0xFF);
    return buf;
}

// Sets the message and gives the empty value that every parser returns.
std::nullopt_t Fail(std::string& error, int line, const std::string& why) {
    error = "line " + std::to_string(line) + ": " + why;
    return std::nullopt;
}

// A character of keys.txt: itself, or one of the words for the others.
std::optional<char> KeyChar(const std::string& word) {
    if (word.size() == 1 && word[0] > 32 && word[0] < 127) return word[0];
    if (word == "space") return ' ';
    if (word == "enter") return kEnter;
    if (word == "backspace") return kBackspace;
    if (word == "none") return char(0);
    return std::nullopt;
}

// A C++ character literal.
std::string CharLiteral(char c) {
    if (c == kEnter) return "'\\r'";
    if (c == kBackspace) return "'\\b'";
    if (c == '\'' || c == '\\') return std::string("'\\") + c + "'";
    return std::string("'") + c + "'";
}

} // namespace

const Glyph& Font::Of(int code) const {
    if (code < kFirstGlyph || code >= kFirstGlyph + kGlyphCount) code = 0x7F;
    return glyphs[code - kFirstGlyph];
}

std::optional<Font> ParseFont(std::istream& in, std::string& error) {
    Font font;
    bool seen[kGlyphCount] = {};
    std::string text;
    int lineNo = 0, current = -1, rows = kGlyphLines;
    while (std::getline(in, text)) {
        ++lineNo;
        if (current >= 0 && rows < kGlyphLines) {
            // Inside a glyph every line is a bitmap line, '#' first or not.
            if (text.empty() || text[0] == '[')
                return Fail(error, lineNo, "glyph has too few lines");
            if (text.size() != 8 || text.find_first_not_of(".#") != std::string::npos)
                return Fail(error, lineNo, "a glyph line is 8 of '.' and '#'");
            uint8_t bits = 0;
            for (char c : text)
                bits = uint8_t(bits << 1 | (c == '#'));
            font.glyphs[current][rows++] = bits;
            continue;
        }
        if (text.empty() || text[0] == '#') continue;
        if (text[0] != '[') return Fail(error, lineNo, "bitmap line outside a glyph");
        unsigned code = 0;
        if (std::sscanf(text.c_str(), "[%x]", &code) != 1 || code < unsigned(kFirstGlyph) ||
            code >= unsigned(kFirstGlyph + kGlyphCount))
            return Fail(error, lineNo, "expected [hex code] from 20 to 7F");
        current = int(code) - kFirstGlyph;
        if (seen[current]) return Fail(error, lineNo, "code given twice");
        seen[current] = true;
        rows = 0;
    }
    if (rows != kGlyphLines) return Fail(error, lineNo, "glyph has too few lines");
    for (int i = 0; i < kGlyphCount; ++i)
        if (!seen[i]) return Fail(error, lineNo, "no glyph for " + Hex2(i + kFirstGlyph));
    return font;
}

std::optional<KeyLayout> ParseKeyLayout(std::istream& in, std::string& error) {
    KeyLayout layout;
    bool used[kKeyRows][kKeyBits] = {};
    std::string text;
    int lineNo = 0;
    while (std::getline(in, text)) {
        ++lineNo;
        if (text.empty() || text[0] == '#') continue;
        std::istringstream words(text);
        int row = -1, bit = -1;
        std::string normal, shifted;
        if (!(words >> row >> bit >> normal >> shifted))
            return Fail(error, lineNo, "expected: row bit normal shifted name");
        if (row < 0 || row >= kKeyRows || bit < 0 || bit >= kKeyBits)
            return Fail(error, lineNo, "row is 0-8 and bit 0-7");
        if (used[row][bit]) return Fail(error, lineNo, "key given twice");
        used[row][bit] = true;
        if (normal == "shift" && shifted == "shift") {
            if (layout.shiftRow >= 0) return Fail(error, lineNo, "a second Shift key");
            layout.shiftRow = row;
            layout.shiftBit = bit;
            continue;
        }
        const auto n = KeyChar(normal), s = KeyChar(shifted);
        if (!n || !s) return Fail(error, lineNo, "unknown character word");
        layout.cells[row][bit] = {*n, *s};
    }
    if (layout.shiftRow < 0) return Fail(error, lineNo, "no Shift key");
    return layout;
}

std::vector<KeyStroke> StrokesFor(const KeyLayout& layout) {
    std::vector<KeyStroke> out;
    for (int c = 1; c < 128; ++c) {
        std::optional<KeyStroke> found;
        for (int pass = 0; pass < 2 && !found; ++pass)
            for (int row = 0; row < kKeyRows && !found; ++row)
                for (int bit = kKeyBits - 1; bit >= 0 && !found; --bit) {
                    const KeyCell& k = layout.cells[row][bit];
                    if ((pass == 0 ? k.normal : k.shifted) == char(c))
                        found = KeyStroke{char(c), row, bit, pass == 1};
                }
        if (found) out.push_back(*found);
    }
    return out;
}

std::string FontInclude(const Font& font) {
    std::ostringstream out;
    out << "; Generated from firmware/font.txt by tvc-fwtool; do not edit.\n";
    out << "font:\n";
    for (int i = 0; i < kGlyphCount; ++i) {
        out << "        db ";
        for (int k = 0; k < kGlyphLines; ++k)
            out << (k ? "," : "") << Hex2(font.glyphs[i][k]);
        out << "   ; " << Hex2(i + kFirstGlyph) << "\n";
    }
    return out.str();
}

std::string KeyInclude(const KeyLayout& layout) {
    std::ostringstream out;
    out << "; Generated from firmware/keys.txt by tvc-fwtool; do not edit.\n";
    out << "SHIFT_ROW equ " << layout.shiftRow << "\n";
    out << "SHIFT_MASK equ " << Hex2(1 << layout.shiftBit) << "\n";
    for (int shifted = 0; shifted < 2; ++shifted) {
        out << (shifted ? "keys_shifted:\n" : "keys_normal:\n");
        for (int row = 0; row < kKeyRows; ++row) {
            out << "        db ";
            for (int bit = 0; bit < kKeyBits; ++bit) {
                const KeyCell& k = layout.cells[row][bit];
                out << (bit ? "," : "") << Hex2(shifted ? k.shifted : k.normal);
            }
            out << "   ; row " << row << ", bits 0 to 7\n";
        }
    }
    return out.str();
}

std::string KeyTableSource(const KeyLayout& layout) {
    std::ostringstream out;
    out << "// Generated from firmware/keys.txt by tvc-fwtool; do not edit.\n";
    out << "#include \"hw/FirmwareKeys.h\"\n\nnamespace tvc {\n\n";
    out << "const FirmwareKey kFirmwareKeys[] = {\n";
    const auto strokes = StrokesFor(layout);
    for (const KeyStroke& k : strokes)
        out << "    {" << CharLiteral(k.ch) << ", " << k.row << ", " << k.bit << ", "
            << (k.shift ? "true" : "false") << "},\n";
    out << "};\nconst int kFirmwareKeyCount = " << strokes.size() << ";\n";
    out << "const KeyPosition kFirmwareShiftKey = {" << layout.shiftRow << ", " << layout.shiftBit
        << "};\n\n} // namespace tvc\n";
    return out.str();
}

} // namespace tvc::firmware
