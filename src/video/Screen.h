// The picture of the main window, painted into buffers the core owns.
//
// At two of every five frames `redraw` places the picture box PicD from the
// CRTC, applies the simulated memory errors, closes the palette table and
// paints the whole of video memory with one of seven renderers, then the
// border. Nothing is tracked between pictures: every one is painted from RAM.
//
// Two renderer families, chosen by the menu tick xScreenDIB:
//   the DIB family (Srefresh2DIB, Srefresh4DIB, Srefresh16DIB, Srefresh16DIB80)
//     paints DibBits, 24 bits a pixel (blue, green, red), top line first, and
//     copies each finished line to the one below it;
//   the bitmap family (Srefresh2, Srefresh4, Srefresh16) paints ScreenBits,
//     32 bits a pixel (blue, green, red, unused), and skips the line below,
//     which keeps what it held: the dark scan lines of that family.
// Both step from one row to the next by constants made for a 512-pixel-wide
// picture, so other widths shear; that is how the machine's pictures look.
//
// The application only has to put these buffers on the screen: the family
// last painted at PicD's place, and the border behind it (BorderShown).
// ComposeFrame does the same into one RGB image for screenshots.
#pragma once

#include <cstdint>
#include <vector>

#include "video/Crtc.h"

namespace tvc {

class Machine;

// The drawing area of the main window, where the border is painted: the
// client width of the 648-pixel window and 288 border lines of 2 pixels.
constexpr int32_t kWindowWidth = 640;
constexpr int32_t kWindowHeight = 2 * kBorderLines;

// The picture box PicD in pixels of the main window's drawing area. It has no
// frame, so its scale size is its size.
struct PictureBox {
    int32_t Left = 0, Top = 0, Width = 0, Height = 0;
};

enum class PictureFamily : uint8_t { None, Dib, Bitmap };

// Indexes of the renderers' call counters.
enum RendererId : int {
    kSrefresh2,
    kSrefresh4,
    kSrefresh16,
    kSrefresh2DIB,
    kSrefresh4DIB,
    kSrefresh16DIB,
    kSrefresh16DIB80,
    kRendererCount
};

struct Screen {
    PictureBox PicD;
    std::vector<uint8_t> DibBits;              // DibWidth x DibHeight x 3 bytes
    int32_t DibWidth = 0;                      // PicD's width rounded up to a multiple of 4
    int32_t DibHeight = 0;                     // PicD's height rounded up to a multiple of 2
    std::vector<uint8_t> ScreenBits;           // PicD's width x height x 4 bytes
    PictureFamily Shown = PictureFamily::None; // whose buffer PicD shows
    // The border as last painted on the window, one Windows colour a line.
    uint32_t BorderShown[kBorderLines] = {};
    int32_t VideoMode = 0; // bits 1-0 of port 6 at the last picture
    int32_t VideoPage = 0; // bits 5-4 of port 0x0F at the last picture
    uint32_t RefreshCount[kRendererCount] = {};
};

// TScreen.redraw: places PicD, paints the picture and the border.
void ScreenRedraw(Machine& m);
// Paints BorderLine on the window and starts the next frame's border with
// the colour in force at the end of this one.
void BorderDraw(Machine& m);

// The renderers. The bitmap family's entries hand over to their DIB twins
// while xScreenDIB is ticked; Srefresh16DIB hands over to Srefresh16DIB80
// when R1 is 80.
void Srefresh2(Machine& m);
void Srefresh4(Machine& m);
void Srefresh16(Machine& m);
void Srefresh2DIB(Machine& m);
void Srefresh4DIB(Machine& m);
void Srefresh16DIB(Machine& m);
void Srefresh16DIB80(Machine& m);

// The window's content as the user sees it: the border with PicD's picture
// at its place, kWindowWidth x kWindowHeight pixels, red, green, blue.
struct RgbImage {
    int32_t width = 0, height = 0;
    std::vector<uint8_t> rgb;
};
RgbImage ComposeFrame(const Machine& m);

// "Save Screen": video page 0 raw to "screen.bin". False when the file
// cannot be written.
bool xSaveScrren(const Machine& m);
// "Memory dump": the first 64 KB of RAM raw to "ramdump.bin", written over
// the file's start without truncating it.
bool xMemDump(const Machine& m);

} // namespace tvc
