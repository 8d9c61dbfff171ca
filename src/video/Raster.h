// What the seven renderers share: where the picture starts in memory, the
// palette of a row, the colour formulas of each mode and family, and the
// raster loop that walks video memory row by row into a pixel buffer.
// Internal to src/video.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc::raster {

// Pixels are stored as whole 32-bit words, blue in the lowest byte.
static_assert(std::endian::native == std::endian::little, "pixel stores assume little endian");

constexpr int64_t kVideoPageSize = 16384;
constexpr int32_t kDibLineCopy = 1536;   // the second line of a DIB row, for 512 pixels
constexpr int32_t kBitmapRowSkip = 2048; // the skipped line of a bitmap row, for 512 pixels

// A colour as it is stored in both buffers: blue, green, red from the low
// byte up (the bitmap family's fourth byte stays 0).
constexpr uint32_t Bgr(uint32_t b, uint32_t g, uint32_t r) {
    return b | g << 8 | r << 16;
}

// The video page that port 0x0F shows, as an index into Mem.
inline int64_t VideoBase(const Machine& m) {
    switch (m.bus.PortLatch[0x0F] & 0x30) {
    case 0x10: return 0x20000;
    case 0x20: return 0x24000;
    case 0x30: return 0x28000;
    default: return 0x10000;
    }
}

// R12/R13 scaled by the mode's multiplier (8, 4 or 1 bytes a unit), wrapped
// once into the page. Larger values stay beyond it after that one wrap.
inline int64_t StartAddress(const Machine& m, int64_t base, int multiplier) {
    const int32_t* reg = m.crtc.CrtcReg;
    const int64_t a = (int64_t{reg[12]} * 256 + reg[13]) * multiplier + base;
    return a > base + kVideoPageSize - 1 ? a - kVideoPageSize : a;
}

// Reading past either end of Mem gives 0xFF, as any run-away access does.
inline uint8_t VideoByte(const std::vector<uint8_t>& mem, int64_t a) {
    return a >= 0 && a < static_cast<int64_t>(mem.size()) ? mem[static_cast<size_t>(a)] : 0xFF;
}

// Palette register k on picture row `row` (counted from 1). Rows beyond the
// table (R6 above 64) take the latches as they stand now, the values the
// table was closed with.
inline uint8_t PaletteAt(const Machine& m, int k, int32_t row) {
    return row < kPalLines ? m.crtc.PalLine[k][row] : m.bus.PortLatch[0x60 + k];
}

// Palette bytes (blue bit 0, red bit 2, green bit 4, intensity bit 6) to
// colours. Two colours come out at their own levels (blue 127/254, red
// 124/248, green 112/224) and four colours at 127/254 in every channel; the
// two families reach the same four-colour levels by different products.
inline uint32_t TwoColour(uint32_t c) {
    const uint32_t i = (c & 0x40) ? 2 : 1;
    return Bgr((c & 1) * 127 * i, (c & 16) * 7 * i, (c & 4) * 31 * i);
}

inline uint32_t RoundByte(double v) {
    return static_cast<uint32_t>(RoundHalfEven(v));
}

inline uint32_t FourColourDib(uint32_t c) {
    const double i = (c & 0x40) ? 2 : 1;
    return Bgr(RoundByte((c & 1) * i * 127.12), RoundByte((c & 16) * i * 7.945),
               RoundByte((c & 4) * i * 31.78));
}

inline uint32_t FourColourBitmap(uint32_t c) {
    const double i = (c & 0x40) ? 2 : 1;
    return Bgr(RoundByte((c & 1) * i * 112 * 1.135), RoundByte((c & 16) * i * 7 * 1.135),
               RoundByte((c & 4) * i * 28 * 1.135));
}

// A sixteen-colour pixel from its four bits (blue 1, red 2, green 4,
// intensity 8). Intensity only brightens a colour, so alone it is black.
// QBColor's red and green bytes are exchanged on writing, so that the
// machine's red bit (QBColor's green entry) comes out red.
constexpr uint32_t SixteenColour(uint32_t bits) {
    uint32_t index = bits & 7;
    if (index != 0 && (bits & 8)) index += 8;
    const uint32_t qb = QBColorTable[index];
    return Bgr(qb >> 16 & 0xFF, qb & 0xFF, qb >> 8 & 0xFF);
}

// The colours of both pixels of every sixteen-colour byte: the left one
// from bits 1, 3, 5, 7, the right one from bits 0, 2, 4, 6.
struct SixteenColourTable {
    uint32_t left[256], right[256];
    constexpr SixteenColourTable() : left(), right() {
        for (uint32_t b = 0; b < 256; ++b) {
            left[b] = SixteenColour((b >> 1 & 1) | (b >> 2 & 2) | (b >> 3 & 4) | (b >> 4 & 8));
            right[b] = SixteenColour((b & 1) | (b >> 1 & 2) | (b >> 2 & 4) | (b >> 3 & 8));
        }
    }
};
inline constexpr SixteenColourTable kSixteenColours;

// Writes pixels of Bpp bytes from the start of a buffer on. Whatever would
// land past the end is dropped: odd picture sizes make the rows overrun.
template <int Bpp> class PixelSink {
  public:
    explicit PixelSink(std::vector<uint8_t>& buf) : buf_(buf.data()), size_(buf.size()) {}

    size_t pos() const { return pos_; }

    void Put8(const uint32_t* px) {
        if (pos_ + 8 * Bpp + 1 <= size_) {
            // Whole 4-byte stores: a 3-byte pixel's spare byte is overwritten
            // by the next pixel, and the last one's still lies in the buffer.
            uint8_t* out = buf_ + pos_;
            for (int i = 0; i < 8; ++i, out += Bpp)
                std::memcpy(out, &px[i], 4);
        } else {
            for (int i = 0; i < 8; ++i)
                if (pos_ + (i + 1) * Bpp <= size_) Store(buf_ + pos_ + i * Bpp, px[i]);
        }
        pos_ += 8 * Bpp;
    }

    // The DIB row's second line: `length` bytes from the line's start copied
    // to where the writing stands, overlapping as the buffer lies.
    void CopyDown(size_t lineStart, size_t length) {
        if (pos_ < size_)
            std::memmove(buf_ + pos_, buf_ + lineStart, std::min(length, size_ - pos_));
        pos_ += length;
    }

    void Skip(size_t length) { pos_ += length; }

  private:
    static void Store(uint8_t* out, uint32_t c) {
        if constexpr (Bpp == 4) {
            std::memcpy(out, &c, 4);
        } else {
            out[0] = static_cast<uint8_t>(c);
            out[1] = static_cast<uint8_t>(c >> 8);
            out[2] = static_cast<uint8_t>(c >> 16);
        }
    }

    uint8_t* buf_;
    size_t size_;
    size_t pos_ = 0;
};

// Two colours: one pixel a bit, bit 7 leftmost; palette registers 0 and 1.
// With "Screen noise" a byte now and then shows each set odd bit doubled
// into the even bit below it, on screen only.
struct TwoColourDecoder {
    Machine& m;
    bool noise;
    uint32_t pal[2] = {};

    void Row(int32_t row) {
        for (int k = 0; k < 2; ++k)
            pal[k] = TwoColour(PaletteAt(m, k, row));
    }
    void Byte(uint32_t b, uint32_t* px) {
        if (noise && RoundHalfEven(m.rnd.Next() * 255) > 250) b |= (b & 0xAA) >> 1;
        for (int i = 0; i < 8; ++i)
            px[i] = pal[(b >> (7 - i)) & 1];
    }
};

// Four colours: pixel p (two screen pixels) takes bit 7-p as the low and bit
// 3-p as the high bit of its palette index.
template <uint32_t (*Colour)(uint32_t)> struct FourColourDecoder {
    const Machine& m;
    uint32_t pal[4] = {};

    void Row(int32_t row) {
        for (int k = 0; k < 4; ++k)
            pal[k] = Colour(PaletteAt(m, k, row));
    }
    void Byte(uint32_t b, uint32_t* px) {
        for (int p = 0; p < 4; ++p) {
            const uint32_t c = pal[((b >> (7 - p)) & 1) | ((b >> (3 - p)) & 1) << 1];
            px[2 * p] = px[2 * p + 1] = c;
        }
    }
};

// Sixteen colours: the left pixel from bits 1, 3, 5, 7, the right one from
// bits 0, 2, 4, 6, four screen pixels each. No palette.
struct SixteenColourDecoder {
    void Row(int32_t) {}
    void Byte(uint32_t b, uint32_t* px) {
        const uint32_t left = kSixteenColours.left[b], right = kSixteenColours.right[b];
        for (int i = 0; i < 4; ++i)
            px[i] = left, px[4 + i] = right;
    }
};

// The raster loop of the 64-column renderers: H/2 rows of W/8 bytes, one
// byte 8 pixels wide on the even line of its row. The address wraps within
// the page after every byte. Dib copies each line down; otherwise the line
// below is skipped.
template <int Bpp, bool Dib, class Decoder>
void PaintRaster(const std::vector<uint8_t>& mem, std::vector<uint8_t>& buf, int32_t width,
                 int32_t height, int64_t base, int64_t a, Decoder& dec) {
    PixelSink<Bpp> sink(buf);
    uint32_t px[8];
    const int64_t last = base + kVideoPageSize - 1;
    for (int32_t row = 1; row <= height / 2; ++row) {
        dec.Row(row);
        const size_t lineStart = sink.pos();
        for (int32_t col = 1; col <= width / 8; ++col) {
            const uint8_t b = VideoByte(mem, a);
            if (++a > last) a -= kVideoPageSize;
            dec.Byte(b, px);
            sink.Put8(px);
        }
        if constexpr (Dib)
            sink.CopyDown(lineStart, kDibLineCopy);
        else
            sink.Skip(kBitmapRowSkip);
    }
}

} // namespace tvc::raster
