// Test support for the built-in monitor: running tvc-headless over the built
// ROMs, and reading the monitor's text screen back out of a screenshot by
// matching each cell against the glyphs of firmware/font.txt.
#pragma once

#include <string>
#include <vector>

#include "FirmwareText.h"
#include "support/Headless.h"

namespace tvc::test {

// Runs tvc-headless in the directory of the built ROMs with these options.
inline RunResult RunMonitor(const std::string& args) {
    return RunHeadless(std::string("--dir ") + TVC_FIRMWARE_DIR + " " + args);
}

inline const firmware::Font& MonitorFont() {
    static const firmware::Font font = [] {
        std::ifstream in(std::string(TVC_FIRMWARE_SRC) + "/font.txt");
        std::string error;
        auto f = firmware::ParseFont(in, error);
        return f ? *f : firmware::Font{};
    }();
    return font;
}

// Where the monitor's picture stands in the 640 x 576 window: 512 x 480 at
// (64, 48), each video line painted on two window lines.
constexpr int kPicLeft = 64, kPicTop = 48, kCols = 64, kRows = 24;

// Pixel (x, y) of the text area, y in video lines, from the top of row 0.
inline bool TextPixel(const Shot& s, int x, int y) {
    return s.Lit(kPicLeft + x, kPicTop + 2 * y);
}

// The character in a cell: the glyph whose pixels it shows exactly, drawn
// plain or inverted (the cursor); '\0' for none.
inline char CellChar(const Shot& s, int row, int col) {
    const firmware::Font& font = MonitorFont();
    for (int inverted = 0; inverted < 2; ++inverted)
        for (int code = 0x20; code < 0x7F; ++code) {
            const firmware::Glyph& g = font.Of(code);
            bool same = true;
            for (int line = 0; line < firmware::kGlyphLines && same; ++line)
                for (int px = 0; px < 8 && same; ++px) {
                    const bool want = ((g[line] >> (7 - px)) & 1) != inverted;
                    same = TextPixel(s, col * 8 + px, row * firmware::kGlyphLines + line) == want;
                }
            if (same) return char(code);
        }
    return '\0';
}

// The text screen, rows with trailing blanks removed; cells that match no
// glyph read as '?'.
inline std::vector<std::string> ScreenText(const Shot& s) {
    std::vector<std::string> rows;
    for (int r = 0; r < kRows; ++r) {
        std::string text;
        for (int c = 0; c < kCols; ++c) {
            const char ch = CellChar(s, r, c);
            text += ch ? ch : '?';
        }
        text.erase(text.find_last_not_of(' ') + 1);
        rows.push_back(text);
    }
    return rows;
}

} // namespace tvc::test
