// The workbench's picture importers: a decoded picture turned into TVC video
// bytes in Mem from 0x10000, 64 bytes a row, by fixed sampling steps and
// thresholds. The picture comes as a plain pixel grid; decoding a file is
// the window layer's business.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tvc {

class Machine;

// Pixels in rows, 24-bit colours with red in the low byte. Points outside
// the grid read as `background`.
struct PixelGrid {
    int32_t width = 0, height = 0;
    std::vector<int32_t> pixels; // width * height
    int32_t background = 0;

    int32_t Point(int32_t x, int32_t y) const {
        if (x < 0 || y < 0 || x >= width || y >= height) return background;
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

enum class PixelRule { Two, Four, Sixteen };

struct ImportButton {
    int32_t number; // Command9 ... Command20
    const char* caption;
    int32_t xEnd, xStep, yEnd, yStep; // x and y run from 0 to the end, inclusive
    PixelRule rule;
    int32_t grayThreshold; // sixteen colours: the intensity bit
    int32_t mode;          // video mode set afterwards, or -1
};

inline constexpr ImportButton kImportButtons[] = {
    {9, "LOAD PIC 2", 511, 8, 479, 2, PixelRule::Two, 0, 0},
    {10, "LOAD PIC 4", 511, 8, 479, 2, PixelRule::Four, 0, 1},
    {16, "LOAD PIC 16", 511, 8, 479, 2, PixelRule::Sixteen, 100, 2},
    {17, "LOAD PIC 4", 255, 4, 479, 2, PixelRule::Four, 0, -1},
    {18, "LOAD PIC 16", 127, 2, 479, 2, PixelRule::Sixteen, 100, -1},
    {19, "LOAD PIC 4", 255, 4, 239, 1, PixelRule::Four, 0, -1},
    {20, "LOAD PIC 16", 127, 2, 255, 1, PixelRule::Sixteen, 130, -1},
};

// The threshold offset H of the scroll bar HScroll1.
inline constexpr int32_t kHScrollMin = -128, kHScrollMax = 127;

inline constexpr int32_t kImportDestination = 0x10000;

// The button with this Command number, or none.
const ImportButton* FindImportButton(int32_t number);

// One video byte from the pixels of row y from column x on, by the rule.
uint8_t ImportByte(const PixelGrid& g, PixelRule rule, int32_t x, int32_t y, int32_t h,
                   int32_t grayThreshold);

// The button's whole walk: the bytes into Mem, then the video mode when the
// button sets one. Returns the number of bytes written.
int32_t ImportPicture(Machine& m, const ImportButton& b, const PixelGrid& g, int32_t h);

} // namespace tvc
