// redraw around the renderers: placing PicD, the monitor's "Screen" and
// "Border" boxes, the memory error hooks, the run loop's palette close, the
// composed window picture and the raw dumps. Hostile register values reach
// the picture through the snapshot fuzz target.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "core/RunLoop.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"
#include "video/Screen.h"
#include "video/VideoTestSupport.h"

namespace tvc {
namespace {

using test::Rgb;
using test::SetPicture;
using test::VideoRam;

void SetGeometry(Machine& m, int r1, int r2, int r5, int r6, int r7) {
    int32_t* reg = m.crtc.CrtcReg;
    reg[1] = r1, reg[2] = r2, reg[5] = r5, reg[6] = r6, reg[7] = r7;
}

Rgb WindowPixel(const RgbImage& img, int x, int y) {
    const size_t o = (static_cast<size_t>(y) * img.width + x) * 3;
    return {img.rgb.at(o), img.rgb.at(o + 1), img.rgb.at(o + 2)};
}

TEST(Redraw, ScreenBoxClearKeepsTheLastPicture) {
    test::TestMachine t;
    Machine& m = t.m();
    SetPicture(m, 2, 64, 1, true);
    VideoRam(m, 0) = 0x20;
    ScreenRedraw(m);
    m.forms.CPUmon.Check5 = m.forms.CPUmon.Check6 = false;
    VideoRam(m, 0) = 0x08;
    m.forms.ErrorSim.Check2 = true; // no damage without a picture either
    m.bus.Mem[0] = 0x12;
    m.run.FrameT = 10 * 245;
    int32_t v = 0x44;
    PortOut(m, 0x60, v);
    int32_t red = 0x08; // without the border box the border is neither shown nor carried
    PortOut(m, 0x00, red);
    ScreenRedraw(m);
    EXPECT_EQ(m.screen.BorderShown[20], 0u);
    EXPECT_EQ(m.crtc.BorderLine[0], 0u);
    EXPECT_EQ(test::PicturePixel(m, true, 0, 0), test::SixteenColourRgb(4));
    EXPECT_EQ(m.crtc.PalLine[0][200], 0) << "the palette table is not closed";
    EXPECT_EQ(m.bus.Mem[0], 0x12);
    EXPECT_EQ(t.host.pictures, 2);
}

TEST(Redraw, MemoryErrorHooks) {
    const struct {
        int option;
        uint8_t bits, before, after;
    } faults[] = {
        {0, 0x81, 0xFF, 0x7E}, {1, 0x81, 0x00, 0x81},  {2, 0x00, 0x5A, 0x5A},
        {0, 0x00, 0x5A, 0x5A}, {-1, 0x0F, 0x5A, 0x00},
    };
    for (const auto& f : faults) {
        test::TestMachine t;
        Machine& m = t.m();
        m.bus.VideoErrorEnabled = 1;
        m.forms.ErrorSim.Option1 = f.option;
        m.forms.ErrorSim.ErrorBits = f.bits;
        m.forms.ErrorSim.Check3 = true;
        std::fill(m.bus.Mem.begin() + 0x10000, m.bus.Mem.begin() + 0x14000, f.before);
        ScreenRedraw(m);
        EXPECT_EQ(m.bus.Mem[0x10000], f.after) << f.option;
        EXPECT_EQ(m.bus.Mem[0x13FAC], f.after) << f.option;
        EXPECT_EQ(m.bus.Mem[0x13FAD], f.before) << "the last 83 bytes escape";
        EXPECT_EQ(m.bus.Mem[0x4000], 0xAA);
        EXPECT_EQ(m.bus.Mem[0x7FFF], 0xAA);
        EXPECT_EQ(m.bus.Mem[0x3FFF], 0x00);
        EXPECT_EQ(m.bus.Mem[0x8000], 0x00);
    }
}

// The run loop's pictures (two in five frames, counted with the run loop)
// are each followed by PALchNull.
TEST(Redraw, RunLoopClosesThePaletteTableAfterEachPicture) {
    test::TestMachine t;
    Machine& m = t.m();
    t.Load(0x0000, {0x18, 0xFE}); // JR $
    int32_t v = 0x11;
    while (m.run.FrameCount < 5) {
        const int before = t.host.pictures;
        if (m.run.FrameT < 100 * 245) PortOut(m, 0x60, v); // keeps PalLineLast moving
        t.Step();
        if (t.host.pictures != before) { EXPECT_EQ(m.crtc.PalLineLast, 0); }
    }
    EXPECT_EQ(t.host.pictures, 2);
}

TEST(ComposeFrame, BorderBehindThePictureBox) {
    for (bool dib : {true, false}) {
        test::TestMachine t;
        Machine& m = t.m();
        SetPicture(m, 2, 64, 60, dib);
        SetGeometry(m, 64, 75, 2, 60, 70); // 512 x 480 at 64, 16
        int32_t red = 0x08, blue = 0x02;
        PortOut(m, 0x00, red);
        m.run.FrameT = 250 * 218;
        PortOut(m, 0x00, blue);
        VideoRam(m, 0) = 0xFF;            // top left: white
        VideoRam(m, 64 * 240 - 1) = 0x3F; // bottom right: light grey
        ScreenRedraw(m);
        EXPECT_EQ(m.crtc.BorderLine[0], 0x800000u) << "the next frame starts in the last colour";

        const RgbImage img = ComposeFrame(m);
        ASSERT_EQ(img.width, 640);
        ASSERT_EQ(img.height, 576);
        const Rgb upper{128, 0, 0}, lower{0, 0, 128}, white{255, 255, 255};
        EXPECT_EQ(WindowPixel(img, 0, 0), upper);
        EXPECT_EQ(WindowPixel(img, 63, 16), upper);
        EXPECT_EQ(WindowPixel(img, 64, 15), upper);
        EXPECT_EQ(WindowPixel(img, 64, 16), white);
        EXPECT_EQ(WindowPixel(img, 71, 17), dib ? white : test::kBlack);
        EXPECT_EQ(WindowPixel(img, 575, 494), (Rgb{192, 192, 192}));
        EXPECT_EQ(WindowPixel(img, 576, 494), upper);
        EXPECT_EQ(WindowPixel(img, 639, 499), upper);
        EXPECT_EQ(WindowPixel(img, 639, 500), lower) << "border line 250 takes the new colour";
        EXPECT_EQ(WindowPixel(img, 0, 575), lower);

        // Moved to the bottom right, only the box's top left corner shows.
        SetGeometry(m, 64, 20, 0, 60, 0); // Left 504, Top 572
        ScreenRedraw(m);
        const RgbImage moved = ComposeFrame(m);
        EXPECT_EQ(WindowPixel(moved, 504, 572), white);
        EXPECT_EQ(WindowPixel(moved, 503, 572), lower);
    }
}

std::vector<char> ReadAll(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Dumps, SaveScreenTakesPageZeroAndMemoryDumpKeepsTheTail) {
    test::TestMachine t;
    Machine& m = t.m();
    m.bus.PortLatch[0x0F] = 0x30; // page 3 shown; the dump still takes page 0
    for (int i = 0; i < 16384; ++i)
        VideoRam(m, i) = static_cast<uint8_t>(i * 7);
    m.bus.Mem[65535] = 0x5C;
    t.dir->Write("ramdump.bin", std::vector<uint8_t>(70000, 0xEE));

    ASSERT_TRUE(xSaveScrren(m));
    ASSERT_TRUE(xMemDump(m));

    const auto screen = ReadAll("screen.bin");
    ASSERT_EQ(screen.size(), 16384u);
    EXPECT_EQ(static_cast<uint8_t>(screen[16383]), static_cast<uint8_t>(16383 * 7));
    const auto dump = ReadAll("ramdump.bin");
    ASSERT_EQ(dump.size(), 70000u);
    EXPECT_EQ(static_cast<uint8_t>(dump[65535]), 0x5C);
    EXPECT_EQ(static_cast<uint8_t>(dump[65536]), 0xEE);

    std::filesystem::remove("ramdump.bin");
    ASSERT_TRUE(xMemDump(m));
    EXPECT_EQ(ReadAll("ramdump.bin").size(), 65536u);
}

} // namespace
} // namespace tvc
