// The DIB family: 24-bit pixels into DibBits, each row's line copied to the
// line below it.
#include "video/Raster.h"
#include "video/Screen.h"

namespace tvc {

namespace {

using namespace raster;

constexpr int32_t kDib80LineBytes = 640 * 3; // the 80-column line and its copy

// Before each picture: the buffer follows PicD, its width rounded up to a
// multiple of 4 and its height to a multiple of 2, and is cleared only when
// that size changes.
void FitDib(Screen& s) {
    const int32_t w = (s.PicD.Width + 3) / 4 * 4;
    const int32_t h = (s.PicD.Height + 1) / 2 * 2;
    if (w == s.DibWidth && h == s.DibHeight) return;
    s.DibWidth = w;
    s.DibHeight = h;
    s.DibBits.assign(static_cast<size_t>(w) * static_cast<size_t>(h) * 3, 0);
}

// Common head of every DIB renderer: counts the call, notes the page and
// readies the buffer. Returns the page's base in Mem.
int64_t BeginDib(Machine& m, RendererId id) {
    Screen& s = m.screen;
    s.RefreshCount[id] += 1;
    s.VideoPage = m.bus.PortLatch[0x0F] & 0x30;
    FitDib(s);
    s.Shown = PictureFamily::Dib;
    return VideoBase(m);
}

template <class Decoder> void PaintDib(Machine& m, int64_t base, int multiplier, Decoder& dec) {
    Screen& s = m.screen;
    PaintRaster<3, true>(m.bus.Mem, s.DibBits, s.DibWidth, s.DibHeight, base,
                         StartAddress(m, base, multiplier), dec);
}

// The 80-column picture: the CRTC's 80 characters a row do not follow the
// 64-byte lines of video memory. Over a cycle of 16 rows the read address is
// shifted by an offset that changes once within each row.
struct Dib80Row {
    int32_t offset;     // from column 1
    int32_t fromColumn; // the column where the second offset starts
    int32_t offsetAfter;
};
// clang-format off
constexpr Dib80Row kDib80Rows[16] = { // rows n = 1..16
    {0, 65, 192},   {-16, 65, 176},  {-32, 65, 160},  {-48, 65, 144},
    {-48, 49, 144}, {-64, 49, 128},  {-80, 49, 112},  {-96, 49, 96},
    {-96, 33, 96},  {-112, 33, 80},  {-128, 33, 64},  {-144, 33, 48},
    {-144, 17, 48}, {-32, 17, 32},   {-112, 17, 16},  {-192, 17, 0},
};
// clang-format on

} // namespace

void Srefresh2DIB(Machine& m) {
    const int64_t base = BeginDib(m, kSrefresh2DIB);
    TwoColourDecoder dec{m, m.menu.xScreenNoise};
    PaintDib(m, base, 8, dec);
}

void Srefresh4DIB(Machine& m) {
    const int64_t base = BeginDib(m, kSrefresh4DIB);
    FourColourDecoder<FourColourDib> dec{m};
    PaintDib(m, base, 4, dec);
}

void Srefresh16DIB(Machine& m) {
    if ((m.crtc.CrtcReg[1] & 0xFF) == 80) {
        Srefresh16DIB80(m);
        return;
    }
    const int64_t base = BeginDib(m, kSrefresh16DIB);
    SixteenColourDecoder dec;
    PaintDib(m, base, 1, dec);
}

// The address only counts up here: no wrap within the page, in the row or
// at its end.
void Srefresh16DIB80(Machine& m) {
    const int64_t base = BeginDib(m, kSrefresh16DIB80);
    Screen& s = m.screen;
    const std::vector<uint8_t>& mem = m.bus.Mem;
    PixelSink<3> sink(s.DibBits);
    SixteenColourDecoder dec;
    uint32_t px[8];
    int64_t a = StartAddress(m, base, 1);
    for (int32_t row = 1; row <= s.DibHeight / 2; ++row) {
        const Dib80Row& shift = kDib80Rows[(row - 1) % 16];
        const size_t lineStart = sink.pos();
        for (int32_t col = 1; col <= s.DibWidth / 8; ++col, ++a) {
            const int32_t offset = col < shift.fromColumn ? shift.offset : shift.offsetAfter;
            dec.Byte(VideoByte(mem, a + offset), px);
            sink.Put8(px);
        }
        sink.CopyDown(lineStart, kDib80LineBytes);
    }
}

} // namespace tvc
