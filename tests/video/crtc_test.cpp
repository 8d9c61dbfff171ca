#include "video/Crtc.h"

#include <gtest/gtest.h>

#include "hw/Ports.h"
#include "support/TestMachine.h"
#include "video/Screen.h"

namespace tvc {
namespace {

void Out(Machine& m, int32_t port, int32_t value) {
    PortOut(m, port, value);
}

// A write fills the lines since the last one, its own line included, with
// the values that held until now; the next fill (another write, or the close
// before a picture) starts again at that line, so the new value already
// holds on it.
TEST(Palette, WriteShowsFromItsOwnLineOn) {
    for (bool secondWrite : {false, true}) {
        test::TestMachine t;
        Machine& m = t.m();
        Out(m, 0x61, 0x11);
        m.run.FrameT = 100 * kPalLineT + 3; // raster line 100
        Out(m, 0x61, 0x22);
        EXPECT_EQ(m.crtc.PalLine[1][100], 0x11);
        EXPECT_EQ(m.crtc.PalLineLast, 100);
        if (secondWrite) {
            m.run.FrameT = 200 * kPalLineT;
            Out(m, 0x62, 0x33); // another register refills 100..200 of all four
            EXPECT_EQ(m.crtc.PalLine[1][100], 0x22);
        }
        ScreenRedraw(m); // closes the rest with the latches
        SCOPED_TRACE(secondWrite);
        EXPECT_EQ(m.crtc.PalLine[1][1], 0x11);
        EXPECT_EQ(m.crtc.PalLine[1][99], 0x11);
        EXPECT_EQ(m.crtc.PalLine[1][100], 0x22);
        EXPECT_EQ(m.crtc.PalLine[1][255], 0x22);
        EXPECT_EQ(m.crtc.PalLine[2][199], 0x00);
        EXPECT_EQ(m.crtc.PalLine[2][200], secondWrite ? 0x33 : 0x00);
        EXPECT_EQ(m.crtc.PalLine[1][256], 0x00) << "line 256 is never filled";
    }
}

TEST(Palette, FrameWithoutPictureLosesItsHistoryAndPortsAbove0x63AreNoRegisters) {
    test::TestMachine t;
    Machine& m = t.m();
    Out(m, 0x60, 0xA1);
    m.run.FrameT = 100 * kPalLineT;
    Out(m, 0x60, 0xB2);
    m.run.FrameT = 90 * kPalLineT; // the next frame, no picture in between
    Out(m, 0x60, 0xC3);
    EXPECT_EQ(m.crtc.PalLineLast, 90);
    for (int line = 91; line <= 100; ++line)
        EXPECT_EQ(m.crtc.PalLine[0][line], 0xA1) << line;
    ScreenRedraw(m);
    EXPECT_EQ(m.crtc.PalLine[0][89], 0xA1);
    EXPECT_EQ(m.crtc.PalLine[0][90], 0xC3);
    PALchNull(m);
    EXPECT_EQ(m.crtc.PalLineLast, 0);

    // Ports above 0x63 record the line but are no palette registers.
    m.run.FrameT = 0;
    Out(m, 0x60, 0x15);
    m.run.FrameT = 50 * kPalLineT;
    Out(m, 0x64, 0x7F);
    Out(m, 0x6F, 0x7E);
    EXPECT_EQ(m.bus.PortLatch[0x60], 0x15);
    EXPECT_EQ(m.bus.PortLatch[0x64], 0x7F);
    EXPECT_EQ(m.crtc.PalLineLast, 50);
    EXPECT_EQ(m.crtc.PalLine[0][50], 0x15);
    Out(m, 0x63, 0x2A);
    EXPECT_EQ(TVCcolor(m, 0), 0x15);
    EXPECT_EQ(TVCcolor(m, 3), 0x2A);
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

TEST(Border, WriteRepaintsFromItsLineToTheBottom) {
    test::TestMachine t;
    Machine& m = t.m();
    Out(m, 0x00, 0x08);
    m.run.FrameT = 100 * kBorderLineT + 7;
    Out(m, 0x00, 0x20);
    EXPECT_EQ(m.crtc.BorderLine[99], 0x000080u);
    EXPECT_EQ(m.crtc.BorderLine[100], 0x008000u);
    EXPECT_EQ(m.crtc.BorderLine[287], 0x008000u);
    EXPECT_EQ(m.bus.PortLatch[0], 0x20);

    m.run.FrameT = 288 * kBorderLineT; // beyond the last line: ignored
    Out(m, 0x00, 0x02);
    EXPECT_EQ(m.crtc.BorderLine[287], 0x008000u);
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

// Reads give the value from R12 up; numbers 19 to 31 reach spare entries
// behind the register file and nothing else.
TEST(CrtcPorts, MasksReadsAndTheSpareRegisters) {
    test::TestMachine t;
    Machine& m = t.m();
    const struct {
        int reg, written, stored, read;
    } cases[] = {
        {4, 0xFF, 0x7F, 255},   {11, 0xFF, 0x1F, 255},  {12, 0xFF, 0x3F, 0x3F},
        {13, 0xFF, 0xFF, 0xFF}, {19, 0xFE, 0xFE, 0xFE}, {31, 0x9C, 0x9C, 0x9C},
    };
    for (const auto& c : cases) {
        Out(m, 0x70, c.reg);
        Out(m, 0x71, c.written);
        EXPECT_EQ(m.crtc.CrtcReg[c.reg], c.stored) << "R" << c.reg;
        EXPECT_EQ(PortIn(m, 0x75), c.read) << "R" << c.reg;
    }
    EXPECT_EQ(m.crtc.CrtcReg[18], 31);
    EXPECT_EQ(m.crtc.CrtcReg[20], 0);
    EXPECT_EQ(m.crtc.CrtcReg[17], 0);
    EXPECT_EQ(m.bus.PortLatch[0x71], 0);
    EXPECT_EQ(PortIn(m, 0x70), 255); // the selection port reads nothing back
}

} // namespace
} // namespace tvc
