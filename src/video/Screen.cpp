#include "video/Screen.h"

#include <algorithm>
#include <fstream>

#include "core/Machine.h"
#include "hw/ErrorSim.h"

namespace tvc {

namespace {

constexpr int32_t kVideoPage0 = 0x10000;
constexpr int32_t kVideoPageBytes = 16384;
constexpr int32_t kRamDumpBytes = 65536;
constexpr int32_t kPicTopBase = 572;  // PicD.Top for R5 = R7 = 0
constexpr int32_t kPicLeftChars = 83; // R2 value that puts PicD at the left edge

// The CRTC's registers are 8 bits wide; a tool may have stored more.
int32_t Reg(const Machine& m, int i) {
    return m.crtc.CrtcReg[i] & 0xFF;
}

void PlacePicture(Machine& m) {
    PictureBox& p = m.screen.PicD;
    p.Height = Reg(m, 6) * 8;
    p.Top = (Reg(m, 5) - Reg(m, 7) * 4) * 2 + kPicTopBase;
    p.Width = Reg(m, 1) * 8;
    p.Left = (kPicLeftChars - Reg(m, 2)) * 8;
}

// The lines that no palette write reached this frame keep the present values.
void ClosePalette(Machine& m) {
    Crtc& c = m.crtc;
    for (int k = 0; k < 4; ++k)
        for (int32_t i = std::max(c.PalLineLast, 0); i <= 255; ++i)
            c.PalLine[k][i] = m.bus.PortLatch[0x60 + k];
}

void Paint(Machine& m) {
    Screen& s = m.screen;
    const size_t size = static_cast<size_t>(s.PicD.Width) * static_cast<size_t>(s.PicD.Height) * 4;
    if (size != s.ScreenBits.size()) s.ScreenBits.assign(size, 0);
    s.VideoMode = m.bus.PortLatch[6] & 3;
    switch (s.VideoMode) {
    case 0: Srefresh2(m); break;
    case 1: Srefresh4(m); break;
    default: Srefresh16(m); break;
    }
}

bool WriteFile(const char* name, const uint8_t* bytes, size_t count, std::ios::openmode mode) {
    std::fstream out(name, mode);
    if (!out && !(mode & std::ios::trunc)) out.open(name, std::ios::out | std::ios::binary);
    if (!out) return false;
    out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    return static_cast<bool>(out);
}

} // namespace

void ScreenRedraw(Machine& m) {
    if (m.forms.CPUmon.Check5) {
        PlacePicture(m);
        ApplyMemoryErrors(m);
        ClosePalette(m);
        Paint(m);
    }
    if (m.forms.CPUmon.Check6) BorderDraw(m);
    m.host->PictureReady();
}

void BorderDraw(Machine& m) {
    uint32_t* line = m.crtc.BorderLine;
    std::copy(line, line + kBorderLines, m.screen.BorderShown);
    std::fill(line, line + kBorderLines, line[kBorderLines - 1]);
}

RgbImage ComposeFrame(const Machine& m) {
    const Screen& s = m.screen;
    RgbImage img;
    img.width = kWindowWidth;
    img.height = kWindowHeight;
    img.rgb.resize(static_cast<size_t>(kWindowWidth) * kWindowHeight * 3);
    for (int32_t y = 0; y < kWindowHeight; ++y) {
        const uint32_t c = s.BorderShown[y / 2]; // a Windows colour: red in the low byte
        uint8_t* out = &img.rgb[static_cast<size_t>(y) * kWindowWidth * 3];
        for (int32_t x = 0; x < kWindowWidth; ++x, out += 3) {
            out[0] = c & 0xFF;
            out[1] = c >> 8 & 0xFF;
            out[2] = c >> 16 & 0xFF;
        }
    }

    // PicD in front, showing the buffer its last painter filled; where that
    // buffer does not reach, the box is black.
    const PictureBox& p = s.PicD;
    const bool dib = s.Shown == PictureFamily::Dib;
    const std::vector<uint8_t>& buf = dib ? s.DibBits : s.ScreenBits;
    const int32_t bpp = dib ? 3 : 4;
    const int32_t stride = (dib ? s.DibWidth : p.Width) * bpp;
    const int32_t bufLines = stride > 0 ? static_cast<int32_t>(buf.size()) / stride : 0;
    const bool painted = s.Shown != PictureFamily::None;
    const int32_t y0 = std::max(p.Top, 0), y1 = std::min(p.Top + p.Height, kWindowHeight);
    const int32_t x0 = std::max(p.Left, 0), x1 = std::min(p.Left + p.Width, kWindowWidth);
    for (int32_t y = y0; y < y1; ++y) {
        const int32_t py = y - p.Top;
        uint8_t* out = &img.rgb[(static_cast<size_t>(y) * kWindowWidth + x0) * 3];
        for (int32_t x = x0; x < x1; ++x, out += 3) {
            const int32_t px = x - p.Left;
            if (!painted || py >= bufLines || px * bpp >= stride) {
                out[0] = out[1] = out[2] = 0;
                continue;
            }
            const uint8_t* in = &buf[static_cast<size_t>(py) * stride + px * bpp];
            out[0] = in[2];
            out[1] = in[1];
            out[2] = in[0];
        }
    }
    return img;
}

bool xSaveScrren(const Machine& m) {
    return WriteFile("screen.bin", &m.bus.Mem[kVideoPage0], kVideoPageBytes,
                     std::ios::out | std::ios::binary | std::ios::trunc);
}

bool xMemDump(const Machine& m) {
    return WriteFile("ramdump.bin", m.bus.Mem.data(), kRamDumpBytes,
                     std::ios::in | std::ios::out | std::ios::binary);
}

} // namespace tvc
