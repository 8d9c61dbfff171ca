#include "video/Crtc.h"

#include <gtest/gtest.h>

#include "hw/Ports.h"
#include "support/TestMachine.h"
#include "video/LightPen.h"
#include "video/Screen.h"

namespace tvc {
namespace {

void Out(Machine& m, int32_t port, int32_t value) {
    PortOut(m, port, value);
}

// A write fills the lines since the last one, its own line included, in all
// four registers with the values that held until now; the next fill (another
// write, or the close before a picture) starts again at that line. A frame
// without a picture, its line gone back, loses that history.
TEST(Palette, WriteFillsTheLinesSinceTheLastOne) {
    test::TestMachine t;
    Machine& m = t.m();
    Out(m, 0x60, 0x11);
    m.run.FrameT = 100 * kPalLineT + 3; // raster line 100
    Out(m, 0x60, 0x22);
    EXPECT_EQ(m.crtc.PalLine[0][100], 0x11);
    m.run.FrameT = 200 * kPalLineT;
    Out(m, 0x62, 0x33);
    EXPECT_EQ(m.crtc.PalLine[0][100], 0x22);
    m.run.FrameT = 90 * kPalLineT; // the next frame
    Out(m, 0x63, 0x44);
    EXPECT_EQ(m.crtc.PalLineLast, 90);
    ScreenRedraw(m); // closes the rest with the latches
    EXPECT_EQ(m.crtc.PalLine[0][89], 0x11);
    EXPECT_EQ(m.crtc.PalLine[2][89], 0x00);
    EXPECT_EQ(m.crtc.PalLine[2][90], 0x33);
    EXPECT_EQ(m.crtc.PalLine[3][255], 0x44);
    EXPECT_EQ(m.crtc.PalLine[0][256], 0x00) << "line 256 is never filled";
    PALchNull(m);
    EXPECT_EQ(m.crtc.PalLineLast, 0);

    // Ports above 0x63 record the line but are no palette registers.
    m.run.FrameT = 50 * kPalLineT;
    Out(m, 0x6F, 0x7E);
    EXPECT_EQ(m.crtc.PalLineLast, 50);
    EXPECT_EQ(m.bus.PortLatch[0x6F], 0x7E);
    EXPECT_EQ(TVCcolor(m, 0), 0x22);
    EXPECT_EQ(TVCcolor(m, 3), 0x44);
    EXPECT_EQ(TVCcolor(m, 4), 0);
}

// Bits 1, 5, 3 and 7 are blue, green, red and intensity of the Windows
// colour (red in the low byte): half level, full with intensity, light grey
// for the three without it, and intensity alone dark grey.
TEST(Border, ColourBitsFollowTheStandardColours) {
    test::TestMachine t;
    for (int v = 0; v < 256; ++v) {
        const uint32_t level = v & 0x80 ? 0xFF : 0x80;
        uint32_t want = (v & 0x08 ? level : 0) | (v & 0x20 ? level << 8 : 0) |
                        (v & 0x02 ? level << 16 : 0);
        if ((v & 0xAA) == 0x2A) want = 0xC0C0C0;
        if ((v & 0xAA) == 0x80) want = 0x808080;
        BorderSet(t.m(), v);
        EXPECT_EQ(t.m().crtc.BorderLine[0], want) << std::hex << v;
    }
}

TEST(Raster, OutOfRangeFrameTimesStayInsideTheTables) {
    test::TestMachine t;
    Machine& m = t.m();
    for (int32_t frameT : {-100000, -1, 62500 * 3, INT32_MAX}) {
        m.run.FrameT = frameT;
        Out(m, 0x60, 0x11);
        Out(m, 0x00, 0x02);
        ScreenRedraw(m);
        PALchNull(m);
    }
    EXPECT_EQ(m.crtc.BorderLine[0], 0x800000u) << "a line before the first paints it all";
}

// The pointer's place over the picture becomes a light pen address of 64
// bytes a row of 20 pixels, rounded half to even, and reaches R16 and R17
// only when the frame ends.
TEST(LightPen, AddressReachesTheCrtcOnlyAtTheFrameEnd) {
    const struct {
        double x, y;
        int high, low;
    } cases[] = {{7.4, 19.4, 0, 0},     {8, 20, 0, 65},        {511, 0, 0, 63},
                 {511, 1279, 15, 255},  {100.5, 500.5, 6, 76}, // 100 and 500 (halves to even)
                 {0, 20 * 1100, 275, 0}};                      // row 1100: high byte not masked
    for (const auto& k : cases) {
        test::TestMachine t;
        PicdMouseMove(t.m(), k.x, k.y);
        EXPECT_EQ(t.m().crtc.CrtcReg[16], 0);
        LPENRefresh(t.m());
        EXPECT_EQ(t.m().crtc.CrtcReg[16], k.high) << k.x << "," << k.y;
        EXPECT_EQ(t.m().crtc.CrtcReg[17], k.low) << k.x << "," << k.y;
    }
}

} // namespace
} // namespace tvc
