// Reading the monitor's font and key layout files.
#include <gtest/gtest.h>

#include <sstream>

#include "FirmwareText.h"

namespace tvc::firmware {
namespace {

// A font text with every glyph blank but `code`, which gets `lines`.
std::string FontText(int code = -1, const std::string& lines = "") {
    std::string s = "# comment\n";
    for (int c = kFirstGlyph; c < kFirstGlyph + kGlyphCount; ++c) {
        char head[16];
        std::snprintf(head, sizeof head, "[%02X] x\n", c);
        s += head;
        s += c == code ? lines : [] {
            std::string blank;
            for (int i = 0; i < kGlyphLines; ++i)
                blank += "........\n";
            return blank;
        }();
        s += "\n";
    }
    return s;
}

TEST(FirmwareText, FontLinesBecomeBytesLeftmostPixelHigh) {
    std::string lines = "#.......\n.......#\n########\n";
    for (int i = 3; i < kGlyphLines; ++i)
        lines += "#.#.#.#.\n"; // '#' first: still a bitmap line
    std::istringstream in(FontText('A', lines));
    std::string error;
    const auto font = ParseFont(in, error);
    ASSERT_TRUE(font) << error;
    const Glyph& a = font->Of('A');
    EXPECT_EQ(a[0], 0x80);
    EXPECT_EQ(a[1], 0x01);
    EXPECT_EQ(a[2], 0xFF);
    EXPECT_EQ(a[9], 0xAA);
    EXPECT_EQ(&font->Of(0x05), &font->Of(0x7F)) << "codes without a glyph show 0x7F";
}

TEST(FirmwareText, MalformedFontsNameTheProblem) {
    std::string nine;
    for (int i = 0; i < kGlyphLines - 1; ++i)
        nine += "........\n";
    std::string base = FontText();
    const struct {
        std::string text;
        const char* says;
    } cases[] = {
        {FontText('A', nine), "too few lines"},
        {FontText('A', nine + "...#...\n"), "8 of '.' and '#'"},
        {base + "[41] again\n", "code given twice"},
        {base + "[80] too high\n", "from 20 to 7F"},
        {base.substr(0, base.find("[7F]")), "no glyph for 0x7F"},
        {"........\n" + base, "outside a glyph"},
    };
    for (const auto& k : cases) {
        std::istringstream in(k.text);
        std::string error;
        EXPECT_FALSE(ParseFont(in, error)) << k.says;
        EXPECT_NE(error.find(k.says), std::string::npos) << error;
    }
}

TEST(FirmwareText, KeyLayoutWordsAndErrors) {
    std::istringstream good(
        "# c\n6 3 shift shift Shift\n5 4 enter enter Enter\n7 5 space space Sp\n"
        "0 3 0 # 0 key\n1 0 - none keypad\n");
    std::string error;
    const auto layout = ParseKeyLayout(good, error);
    ASSERT_TRUE(layout) << error;
    EXPECT_EQ(layout->shiftRow, 6);
    EXPECT_EQ(layout->shiftBit, 3);
    EXPECT_EQ(layout->cells[5][4].normal, kEnter);
    EXPECT_EQ(layout->cells[7][5].shifted, ' ');
    EXPECT_EQ(layout->cells[0][3].shifted, '#');
    EXPECT_EQ(layout->cells[1][0].shifted, 0);

    const struct {
        const char* text;
        const char* says;
    } bad[] = {
        {"0 0 a A\n", "no Shift key"},
        {"6 3 shift shift\n0 8 a A\n", "bit 0-7"},
        {"6 3 shift shift\n0 0 a\n", "expected: row bit"},
        {"6 3 shift shift\n0 0 ab A\n", "unknown character word"},
        {"6 3 shift shift\n0 0 a A\n0 0 b B\n", "key given twice"},
        {"6 3 shift shift\n6 2 shift shift\n", "a second Shift key"},
    };
    for (const auto& k : bad) {
        std::istringstream in(k.text);
        EXPECT_FALSE(ParseKeyLayout(in, error)) << k.text;
        EXPECT_NE(error.find(k.says), std::string::npos) << error;
    }
}

TEST(FirmwareText, StrokesPreferKeysWithoutShift) {
    std::istringstream in("6 3 shift shift\n0 7 a ' \n0 6 ' \" \n1 2 x '\n");
    std::string error;
    const auto layout = ParseKeyLayout(in, error);
    ASSERT_TRUE(layout) << error;
    const auto strokes = StrokesFor(*layout);
    auto find = [&](char c) {
        for (const KeyStroke& k : strokes)
            if (k.ch == c) return k;
        return KeyStroke{0, -1, -1, false};
    };
    EXPECT_EQ(find('\'').row, 0);
    EXPECT_EQ(find('\'').bit, 6);
    EXPECT_FALSE(find('\'').shift);
    EXPECT_TRUE(find('"').shift);
    EXPECT_EQ(find('Z').row, -1);
}

} // namespace
} // namespace tvc::firmware
