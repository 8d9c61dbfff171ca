// Pixel access and picture set-up for the video tests.
#pragma once

#include <cstdint>
#include <ostream>

#include "core/Machine.h"

namespace tvc::test {

struct Rgb {
    int r = 0, g = 0, b = 0;
    bool operator==(const Rgb&) const = default;
};
inline std::ostream& operator<<(std::ostream& os, const Rgb& c) {
    return os << "rgb(" << c.r << "," << c.g << "," << c.b << ")";
}

constexpr Rgb kBlack{0, 0, 0};

// Pixel (x, y) of the family's buffer: DibBits is blue, green, red, DibWidth
// pixels a line; ScreenBits is blue, green, red, unused, PicD's width a line.
inline Rgb PicturePixel(const Machine& m, bool dib, int x, int y) {
    const Screen& s = m.screen;
    if (dib) {
        const size_t o = (static_cast<size_t>(y) * s.DibWidth + x) * 3;
        return {s.DibBits.at(o + 2), s.DibBits.at(o + 1), s.DibBits.at(o)};
    }
    const size_t o = (static_cast<size_t>(y) * s.PicD.Width + x) * 4;
    return {s.ScreenBits.at(o + 2), s.ScreenBits.at(o + 1), s.ScreenBits.at(o)};
}

// A picture of r1 bytes a row and r6 * 4 rows, in the given mode (bits 1-0 of
// port 6) and renderer family, starting at the base of video page 0.
inline void SetPicture(Machine& m, int mode, int r1, int r6, bool dib) {
    m.crtc.CrtcReg[1] = r1;
    m.crtc.CrtcReg[6] = r6;
    m.crtc.CrtcReg[12] = m.crtc.CrtcReg[13] = 0;
    m.bus.PortLatch[6] = static_cast<uint8_t>(0x80 | mode);
    m.menu.xScreenDIB = dib;
}

inline uint8_t& VideoRam(Machine& m, int offset) {
    return m.bus.Mem.at(0x10000 + offset);
}

// The machine's sixteen colours by their bits (blue 1, red 2, green 4,
// intensity 8): half level, full level with intensity, light grey for the
// three without it, and intensity alone black.
inline Rgb SixteenColourRgb(int bits) {
    const int level = (bits & 8) ? 255 : 128;
    if ((bits & 7) == 7 && !(bits & 8)) return {192, 192, 192};
    return {(bits & 2) ? level : 0, (bits & 4) ? level : 0, (bits & 1) ? level : 0};
}

} // namespace tvc::test
