// The picture importers over generated pixel grids: every bit of each pixel
// rule, the thresholds, the rows and columns each button walks, the mode.
#include <gtest/gtest.h>

#include "asm/PicImport.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

constexpr int32_t Rgb(int32_t r, int32_t g, int32_t b) {
    return r | g << 8 | b << 16;
}

PixelGrid Filled(int32_t w, int32_t h, int32_t colour) {
    return PixelGrid{w, h, std::vector<int32_t>(size_t(w) * size_t(h), colour), 0};
}

// A black row of 8 pixels with one pixel at `at` in `colour`.
PixelGrid OnePixel(int32_t at, int32_t colour) {
    PixelGrid g = Filled(8, 1, 0);
    g.pixels[size_t(at)] = colour;
    return g;
}

// The left pixel goes in bit 7; it is set where its gray is above H + 78.
TEST(PicImport, TwoColoursThresholdIsGrayAboveHPlus78) {
    for (int32_t k = 0; k < 8; ++k)
        EXPECT_EQ(ImportByte(OnePixel(k, 0xFFFFFF), PixelRule::Two, 0, 0, 0, 0), 0x80 >> k) << k;
    const struct {
        int32_t gray, h;
        bool set;
    } cases[] = {{79, 0, true}, {78, 0, false}, {0, -79, true}, {255, 177, false}};
    for (const auto& c : cases) {
        const int32_t colour = Rgb(c.gray, c.gray, c.gray);
        EXPECT_EQ(ImportByte(OnePixel(0, colour), PixelRule::Two, 0, 0, c.h, 0) & 0x80,
                  c.set ? 0x80 : 0)
            << c.gray << " H " << c.h;
    }
    // SplitGray rounds: 236 / 3 = 78.67 is 79, 235 / 3 = 78.33 is 78.
    EXPECT_EQ(ImportByte(OnePixel(0, Rgb(79, 79, 78)), PixelRule::Two, 0, 0, 0, 0), 0x80);
    EXPECT_EQ(ImportByte(OnePixel(0, Rgb(78, 78, 79)), PixelRule::Two, 0, 0, 0, 0), 0);
}

TEST(PicImport, FourColoursBitsPerPixelAndChannel) {
    // Pixel x+3-i: red sets bit i, green bit i+4, blue above its threshold both.
    for (int32_t i = 0; i < 4; ++i) {
        const int32_t at = 3 - i, low = 1 << i, high = 0x10 << i;
        const int32_t blueCut = at == 1 ? 128 : 198;
        // clang-format off
        const struct { int32_t colour, h, want; } cases[] = {
            {Rgb(50, 0, 0), 0, low}, {Rgb(49, 0, 0), 0, 0}, {Rgb(60, 0, 0), 11, 0},
            {Rgb(0, 50, 0), 0, high}, {Rgb(0, 49, 0), 0, 0}, {Rgb(0, 0, blueCut + 1), 0, low | high},
            {Rgb(0, 0, blueCut), 0, 0}, {Rgb(0, 0, 255), 100, low | high},
            {Rgb(255, 255, 0), 0, low | high}};
        // clang-format on
        for (const auto& c : cases)
            EXPECT_EQ(ImportByte(OnePixel(at, c.colour), PixelRule::Four, 0, 0, c.h, 0), c.want)
                << "pixel " << at << " colour " << std::hex << c.colour;
    }
}

TEST(PicImport, SixteenColoursInterleaveTwoPixels) {
    // Pixel x+1 takes bits 0, 2, 4, 6 and pixel x bits 1, 3, 5, 7:
    // blue, red, green, intensity from the low end.
    for (int32_t at = 0; at < 2; ++at) {
        const int32_t s = 1 - at;
        // clang-format off
        const struct { int32_t colour, h, gray, want; } cases[] = {
            {Rgb(0, 0, 50), 0, 100, 1}, {Rgb(0, 0, 49), 0, 100, 0}, {Rgb(50, 0, 0), 0, 100, 4},
            {Rgb(0, 50, 0), 0, 100, 16}, {Rgb(200, 200, 0), 0, 100, 84}, {Rgb(0, 50, 0), 1, 100, 0},
            {Rgb(101, 101, 101), 0, 100, 64 | 21}, {Rgb(100, 100, 100), 60, 100, 0},
            {Rgb(130, 130, 130), 81, 130, 0}, {Rgb(131, 131, 131), 81, 130, 64 | 21}};
        // clang-format on
        for (const auto& c : cases)
            EXPECT_EQ(ImportByte(OnePixel(at, c.colour), PixelRule::Sixteen, 0, 0, c.h, c.gray),
                      c.want << s)
                << "pixel " << at << " colour " << std::hex << c.colour;
    }
}

TEST(PicImport, ButtonsWalkTheirRowsAndSetTheirMode) {
    // Bytes written: 64 a row, every row the button samples; the modes its
    // table row names (which the runner's --import-pic test reads back).
    for (const ImportButton& b : kImportButtons) {
        test::TestMachine tm;
        Machine& m = tm.m();
        const int32_t bytes = 64 * (b.yEnd / b.yStep + 1), before = 0x55;
        MemWrite(m, 0x0B13, before);
        m.bus.Mem[size_t(kImportDestination + bytes)] = 0x5A;
        // White everywhere: every importer's every bit is set.
        EXPECT_EQ(ImportPicture(m, b, Filled(512, 512, 0xFFFFFF), 0), bytes);
        EXPECT_EQ(m.bus.Mem[size_t(kImportDestination)], 0xFF);
        EXPECT_EQ(m.bus.Mem[size_t(kImportDestination + bytes - 1)], 0xFF) << b.number;
        EXPECT_EQ(m.bus.Mem[size_t(kImportDestination + bytes)], 0x5A) << b.number;
        const int32_t mode = b.mode < 0 ? before : (before & 0xFC) | b.mode;
        EXPECT_EQ(MemRead(m, 0x0B13), mode) << b.number;
        if (b.mode >= 0) { EXPECT_EQ(m.bus.PortLatch[6], mode) << b.number; }
    }
    EXPECT_FALSE(FindImportButton(11));
}

TEST(PicImport, SampledColumnsAndRows) {
    // One white pixel; where its byte lands tells the walk's steps.
    const struct {
        int32_t button, x, y, index;
        uint8_t want;
    } cases[] = {{9, 7, 2, 64 + 0, 0x01},
                 {9, 0, 1, -1, 0},
                 {17, 3, 0, 0, 0x11},
                 {17, 4, 2, 65, 0x88},
                 {18, 2, 0, 1, 0xAA},
                 {19, 0, 1, 64, 0x88},
                 {20, 127, 255, 255 * 64 + 63, 0x55}};
    for (const auto& c : cases) {
        test::TestMachine tm;
        Machine& m = tm.m();
        PixelGrid g = Filled(512, 480, 0);
        g.pixels[size_t(c.y) * 512 + size_t(c.x)] = 0xFFFFFF;
        const int32_t n = ImportPicture(m, *FindImportButton(c.button), g, 0);
        int32_t nonzero = 0;
        for (int32_t i = 0; i < n; ++i)
            if (m.bus.Mem[size_t(kImportDestination + i)] != 0) {
                ++nonzero;
                EXPECT_EQ(i, c.index) << c.button;
                EXPECT_EQ(m.bus.Mem[size_t(kImportDestination + i)], c.want) << c.button;
            }
        EXPECT_EQ(nonzero, c.index < 0 ? 0 : 1) << c.button << " " << c.x << "," << c.y;
    }
}

TEST(PicImport, OutsideThePictureReadsTheBackground) {
    test::TestMachine tm;
    PixelGrid g = Filled(1, 1, 0xFFFFFF);
    g.background = Rgb(0, 0, 0);
    ImportPicture(tm.m(), *FindImportButton(9), g, 0);
    EXPECT_EQ(tm.m().bus.Mem[size_t(kImportDestination)], 0x80);
    EXPECT_EQ(tm.m().bus.Mem[size_t(kImportDestination) + 1], 0);
    g.background = 0xFFFFFF;
    ImportPicture(tm.m(), *FindImportButton(9), g, 0);
    EXPECT_EQ(tm.m().bus.Mem[size_t(kImportDestination) + 1], 0xFF);
}

} // namespace
} // namespace tvc
