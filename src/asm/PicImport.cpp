#include "asm/PicImport.h"

#include "core/Machine.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "video/Crtc.h"

namespace tvc {

const ImportButton* FindImportButton(int32_t number) {
    for (const ImportButton& b : kImportButtons)
        if (b.number == number) return &b;
    return nullptr;
}

uint8_t ImportByte(const PixelGrid& g, PixelRule rule, int32_t x, int32_t y, int32_t h,
                   int32_t grayThreshold) {
    int32_t v = 0;
    switch (rule) {
    case PixelRule::Two:
        for (int32_t k = 0; k < 8; ++k)
            if (SplitGray(g.Point(x + k, y)) > h + 78) v |= 0x80 >> k;
        break;
    case PixelRule::Four:
        // Pixel x + 3 - i holds bits i and i + 4; the second pixel from the
        // left has its own blue threshold.
        for (int32_t i = 0; i < 4; ++i) {
            const int32_t p = g.Point(x + 3 - i, y);
            const int32_t low = 1 << i, high = 0x10 << i;
            if (SplitRed(p) > h + 49) v |= low;
            if (SplitGreen(p) > h + 49) v |= high;
            if (SplitBlue(p) > (i == 2 ? 128 : 198)) v |= low | high;
        }
        break;
    case PixelRule::Sixteen:
        // Pixel x + 1 holds bits 0, 2, 4, 6 and pixel x bits 1, 3, 5, 7:
        // blue, red, green, intensity from the low end.
        for (int32_t i = 0; i < 2; ++i) {
            const int32_t p = g.Point(x + 1 - i, y);
            if (SplitBlue(p) > h + 49) v |= 1 << i;
            if (SplitRed(p) > h + 49) v |= 4 << i;
            if (SplitGreen(p) > h + 49) v |= 16 << i;
            if (SplitGray(p) > grayThreshold) v |= 64 << i;
        }
        break;
    }
    return static_cast<uint8_t>(v);
}

int32_t ImportPicture(Machine& m, const ImportButton& b, const PixelGrid& g, int32_t h) {
    int32_t dest = kImportDestination;
    std::vector<uint8_t>& mem = m.bus.Mem;
    for (int32_t y = 0; y <= b.yEnd; y += b.yStep) {
        for (int32_t x = 0; x <= b.xEnd; x += b.xStep) {
            const uint8_t v = ImportByte(g, b.rule, x, y, h, b.grayThreshold);
            if (static_cast<size_t>(dest) < mem.size()) mem[static_cast<size_t>(dest)] = v;
            ++dest;
        }
    }
    if (b.mode >= 0) {
        // The ROM's copy of the mode port and the port itself agree afterwards.
        int32_t v = (MemRead(m, 0x0B13) & 0xFC) | b.mode;
        PortOut(m, 6, v);
        MemWrite(m, 0x0B13, v);
    }
    return dest - kImportDestination;
}

} // namespace tvc
