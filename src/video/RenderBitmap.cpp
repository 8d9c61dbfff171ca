// The bitmap family: 32-bit pixels into ScreenBits, the line below each row
// skipped. Each entry hands over to its DIB twin while xScreenDIB is ticked.
#include "video/Raster.h"
#include "video/Screen.h"

namespace tvc {

namespace {

using namespace raster;

// Counts the call and notes the page; false when the DIB twin is to paint.
bool BeginBitmap(Machine& m, RendererId id) {
    Screen& s = m.screen;
    s.RefreshCount[id] += 1;
    s.VideoPage = m.bus.PortLatch[0x0F] & 0x30;
    if (m.menu.xScreenDIB) return false;
    s.Shown = PictureFamily::Bitmap;
    return true;
}

// ScreenBits was sized to PicD by redraw.
template <class Decoder> void PaintBitmap(Machine& m, int multiplier, Decoder& dec) {
    Screen& s = m.screen;
    const int64_t base = VideoBase(m);
    PaintRaster<4, false>(m.bus.Mem, s.ScreenBits, s.PicD.Width, s.PicD.Height, base,
                          StartAddress(m, base, multiplier), dec);
}

} // namespace

void Srefresh2(Machine& m) {
    if (!BeginBitmap(m, kSrefresh2)) return Srefresh2DIB(m);
    TwoColourDecoder dec{m, m.menu.xScreenNoise};
    PaintBitmap(m, 8, dec);
}

void Srefresh4(Machine& m) {
    if (!BeginBitmap(m, kSrefresh4)) return Srefresh4DIB(m);
    FourColourDecoder<FourColourBitmap> dec{m};
    PaintBitmap(m, 4, dec);
}

void Srefresh16(Machine& m) {
    if (!BeginBitmap(m, kSrefresh16)) return Srefresh16DIB(m);
    SixteenColourDecoder dec;
    PaintBitmap(m, 1, dec);
}

} // namespace tvc
