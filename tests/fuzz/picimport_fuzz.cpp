// Any decoded picture imports without a write outside Mem: the input gives
// the grid's size (up to 1023 x 1023), the button, H and the background, and
// then the pixels, three bytes each; missing pixels are black.
#include "asm/PicImport.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    if (size < 7) return 0;
    tvc::PixelGrid g;
    g.width = (data[0] | data[1] << 8) & 0x3FF;
    g.height = (data[2] | data[3] << 8) & 0x3FF;
    const auto& b = tvc::kImportButtons[data[4] % std::size(tvc::kImportButtons)];
    const int32_t h = tvc::kHScrollMin + data[5];
    g.background = data[6] & 1 ? 0xFFFFFF : 0;
    g.pixels.assign(static_cast<size_t>(g.width) * static_cast<size_t>(g.height), 0);
    for (size_t i = 0; i < g.pixels.size() && 7 + 3 * i + 2 < size; ++i)
        g.pixels[i] = data[7 + 3 * i] | data[8 + 3 * i] << 8 | data[9 + 3 * i] << 16;
    tvc::ImportPicture(t.m(), b, g, h);
    return 0;
}
