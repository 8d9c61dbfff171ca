// What the machine takes from the CRTC, the palette latches and the border.
//
// The CRTC is not emulated as a raster machine: its registers only place and
// size the picture, give its start in video memory and the cursor position.
// The raster exists only as FrameT divided by a constant of each use: 245
// T-states a palette line, 218 a border line. Palette and border writes are
// recorded per line so that the picture painted at the end of the frame shows
// colour changes at the raster line where the program made them.
//
// The register file is 32 entries wide so that any selected number (0..31)
// stays inside it; entry 18 is the number of the selected register.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

constexpr int kCrtcSelect = 18;
constexpr int kPalLines = 257;    // PalLine rows: raster lines 0..256
constexpr int kBorderLines = 288; // border lines of two pixels each
constexpr int32_t kPalLineT = 245;
constexpr int32_t kBorderLineT = 218;

// The standard 16-colour table as Windows colour values (red in the low byte).
inline constexpr uint32_t QBColorTable[16] = {
    0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0,
    0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF,
};

struct Crtc {
    int32_t CrtcReg[32] = {};
    // PalLine[k][line]: palette register k as it stood on each raster line.
    uint8_t PalLine[4][kPalLines] = {};
    int32_t PalLineLast = 0; // the line up to which PalLine is filled this frame
    // The colour of each border line of the frame, as a Windows colour value.
    uint32_t BorderLine[kBorderLines] = {};
};

// A palette port (0x60..0x6F) is about to be latched: the lines up to this
// one keep the values that held until now.
void PALSet(Machine& m);
// Called by the run loop right after each picture.
void PALchNull(Machine& m);
// Port 0 is about to be latched with this value: the border takes its colour
// from this raster line to the bottom.
void BorderSet(Machine& m, int32_t value);

// Palette register n (0..3) as latched; 0 for any other n.
int32_t TVCcolor(const Machine& m, int32_t n);
// A grey of level c as a Windows colour value.
int32_t BWQBColor(int32_t c);
// The bytes of a Windows colour value, and the mean of the three.
int32_t SplitRed(int32_t rgb);
int32_t SplitGreen(int32_t rgb);
int32_t SplitBlue(int32_t rgb);
int32_t SplitGray(int32_t rgb);

} // namespace tvc
