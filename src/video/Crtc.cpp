#include "video/Crtc.h"

#include <algorithm>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

void PALSet(Machine& m) {
    Crtc& c = m.crtc;
    const int32_t line = m.run.FrameT / kPalLineT;
    if (c.PalLineLast <= line) {
        // FrameT only leaves 0..62500 when a tool sets it; the table stays whole.
        const int32_t from = std::max(c.PalLineLast, 0);
        const int32_t to = std::min(line, kPalLines - 1);
        for (int k = 0; k < 4; ++k)
            for (int32_t i = from; i <= to; ++i)
                c.PalLine[k][i] = m.bus.PortLatch[0x60 + k];
    }
    // Also when the line went back: the history of a frame without a picture is lost.
    c.PalLineLast = line;
}

void PALchNull(Machine& m) {
    m.crtc.PalLineLast = 0;
}

void BorderSet(Machine& m, int32_t value) {
    const int index = ((value >> 1) & 1) + ((value >> 3) & 1) * 4 + ((value >> 5) & 1) * 2 +
                      ((value >> 7) & 1) * 8;
    const int32_t line = m.run.FrameT / kBorderLineT;
    if (line >= kBorderLines) return;
    std::fill(m.crtc.BorderLine + std::max(line, 0), m.crtc.BorderLine + kBorderLines,
              QBColorTable[index]);
}

int32_t TVCcolor(const Machine& m, int32_t n) {
    return n >= 0 && n <= 3 ? m.bus.PortLatch[0x60 + n] : 0;
}

int32_t BWQBColor(int32_t c) {
    return static_cast<int32_t>(static_cast<uint32_t>(c) * 1248481u);
}

int32_t SplitRed(int32_t rgb) {
    return rgb & 0xFF;
}
int32_t SplitGreen(int32_t rgb) {
    return (rgb >> 8) & 0xFF;
}
int32_t SplitBlue(int32_t rgb) {
    return (rgb >> 16) & 0xFF;
}

int32_t SplitGray(int32_t rgb) {
    const double sum = SplitRed(rgb) + SplitGreen(rgb) + SplitBlue(rgb);
    return static_cast<int32_t>(RoundHalfEven(sum / 3.0));
}

} // namespace tvc
