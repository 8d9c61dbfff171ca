// The palette, border and light pen registers along the raster, and the
// seven renderers, pixel by pixel, on small hand-made video memory and
// palette contents (expected colours come from the machine's colour rules,
// not from the renderers), and redraw around them: the monitor's "Screen"
// and "Border" boxes, the memory error hooks, the run loop's palette close,
// the composed window picture and the raw dumps. Hostile register values
// reach the picture through the snapshot fuzz target.
#include <gtest/gtest.h>

#include <ostream>

#include "core/RunLoop.h"
#include "hw/Ports.h"
#include "support/Headless.h"
#include "support/TestMachine.h"
#include "video/Crtc.h"
#include "video/LightPen.h"
#include "video/Screen.h"

namespace tvc {
namespace {

void Out(Machine& m, int32_t port, int32_t value) {
    PortOut(m, port, value);
}

struct Rgb {
    int r = 0, g = 0, b = 0;
    bool operator==(const Rgb&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Rgb& c) {
    return os << "rgb(" << c.r << "," << c.g << "," << c.b << ")";
}

constexpr Rgb kBlack{0, 0, 0};

// Pixel (x, y) of the family's buffer: DibBits is blue, green, red, DibWidth
// pixels a line; ScreenBits is blue, green, red, unused, PicD's width a line.
Rgb PicturePixel(const Machine& m, bool dib, int x, int y) {
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
void SetPicture(Machine& m, int mode, int r1, int r6, bool dib) {
    m.crtc.CrtcReg[1] = r1;
    m.crtc.CrtcReg[6] = r6;
    m.crtc.CrtcReg[12] = m.crtc.CrtcReg[13] = 0;
    m.bus.PortLatch[6] = static_cast<uint8_t>(0x80 | mode);
    m.menu.xScreenDIB = dib;
}

uint8_t& VideoRam(Machine& m, int offset) {
    return m.bus.Mem.at(0x10000 + offset);
}

// The machine's sixteen colours by their bits (blue 1, red 2, green 4,
// intensity 8): half level, full level with intensity, light grey for the
// three without it, and intensity alone black.
Rgb SixteenColourRgb(int bits) {
    const int level = (bits & 8) ? 255 : 128;
    if ((bits & 7) == 7 && !(bits & 8)) return {192, 192, 192};
    return {(bits & 2) ? level : 0, (bits & 4) ? level : 0, (bits & 1) ? level : 0};
}

constexpr bool kFamilies[] = {true, false}; // DIB, bitmap

void SetPalette(Machine& m, uint8_t p0, uint8_t p1, uint8_t p2 = 0, uint8_t p3 = 0) {
    m.bus.PortLatch[0x60] = p0;
    m.bus.PortLatch[0x61] = p1;
    m.bus.PortLatch[0x62] = p2;
    m.bus.PortLatch[0x63] = p3;
}

// A byte of 0xFF with palette 0x55 in registers 1 to 3.
Rgb AllSet(int mode) {
    return mode == 0 ? Rgb{248, 224, 254} : mode == 1 ? Rgb{254, 254, 254} : Rgb{255, 255, 255};
}

// A palette byte in two colours: blue (c&1)*127*I, red (c&4)*31*I, green
// (c&16)*7*I, with I = 2 for bit 6; in four colours each channel is 127*I.
// The odd bits mean nothing.
Rgb PaletteRgb(int c, int mode) {
    const int i = (c & 0x40) ? 2 : 1;
    if (mode == 1) return {c & 4 ? 127 * i : 0, c & 16 ? 127 * i : 0, c & 1 ? 127 * i : 0};
    return {(c & 4) * 31 * i, (c & 16) * 7 * i, (c & 1) * 127 * i};
}

// The sixteen-colour pixel of byte b whose blue bit is bit s (1 left, 0 right).
Rgb SixteenPixel(int b, int s) {
    return SixteenColourRgb((b >> s & 1) | (b >> (s + 2) & 1) << 1 | (b >> (s + 4) & 1) << 2 |
                            (b >> (s + 6) & 1) << 3);
}

// Every byte value in every mode and family, against the decoding rules:
// two colours take bit 7-p for pixel p; four colours take bit 7-p as the low
// and bit 3-p as the high index bit, two pixels wide; sixteen colours take
// bits 1,3,5,7 (left) and 0,2,4,6 (right) as blue, red, green, intensity,
// four pixels wide. The DIB family repeats each line below it; the bitmap
// family leaves it black.
TEST(Renderers, EveryByteInEveryModeFollowsTheDecodingRule) {
    const uint8_t palette[4] = {0x9B, 0x44, 0x05, 0x55};
    for (bool dib : kFamilies)
        for (int mode = 0; mode < 4; ++mode) {
            test::TestMachine t;
            Machine& m = t.m();
            SetPicture(m, mode, 64, 1, dib); // 4 rows of 64 bytes: every value once
            SetPalette(m, palette[0], palette[1], palette[2], palette[3]);
            for (int b = 0; b < 256; ++b)
                VideoRam(m, b) = uint8_t(b);
            ScreenRedraw(m);
            for (int b = 0; b < 256; ++b)
                for (int p = 0; p < 8; ++p) {
                    Rgb want;
                    if (mode == 0) {
                        want = PaletteRgb(palette[b >> (7 - p) & 1], 0);
                    } else if (mode == 1) {
                        const int q = p / 2;
                        want = PaletteRgb(palette[(b >> (7 - q) & 1) | (b >> (3 - q) & 1) << 1], 1);
                    } else {
                        want = SixteenPixel(b, p < 4 ? 1 : 0);
                    }
                    const int x = (b % 64) * 8 + p, y = (b / 64) * 2;
                    ASSERT_EQ(PicturePixel(m, dib, x, y), want)
                        << "dib " << dib << " mode " << mode << " byte " << b << " pixel " << p;
                    ASSERT_EQ(PicturePixel(m, dib, x, y + 1), dib ? want : kBlack);
                }
            if (!dib) {
                // Same size next time: the buffer is kept, and so is what an odd line holds.
                m.screen.ScreenBits[2048 * 3] = 0x42;
                ScreenRedraw(m);
                EXPECT_EQ(m.screen.ScreenBits[2048 * 3], 0x42);
            }
        }
}

// Where byte `column` of the first row is read: the start (R12:R13) times
// 8, 4 or 1 by mode, past the page wrapped once to its base; bits 5-4 of
// port 0x0F choose the page; reading wraps within the page after each byte.
// A start still beyond the page after its one wrap reads the flat memory
// from there (0xFF past its end), each further byte pulled back by one page
// until inside again. The 80-column path counts on past the page.
TEST(StartAddress, WhereEachByteIsRead) {
    // clang-format off
    const struct {
        int mode, r1, r12, r13, port0F, column;
        int32_t at; // index in Mem, or -1: past the end of memory
    } cases[] = {
        {0, 64, 0, 1, 0x00, 0, 0x10008}, {1, 64, 0, 1, 0x00, 0, 0x10004}, {2, 64, 0, 1, 0x00, 0, 0x10001},
        {0, 64, 0x08, 0x00, 0x00, 0, 0x10000}, // 2048 * 8 = 16384 wraps to the base
        {1, 64, 0x10, 0x19, 0x00, 0, 0x10064}, // 4121 * 4 = 16484 wraps to 100
        {2, 64, 0x3F, 0xFF, 0x00, 0, 0x13FFF}, // the last byte, no wrap
        {2, 64, 0, 0, 0x10, 0, 0x20000},       {2, 64, 0, 0, 0x20, 0, 0x24000},
        {2, 64, 0, 2, 0x30, 0, 0x28002},       {2, 64, 0, 0, 0xCF, 0, 0x10000}, // only bits 5-4
        {2, 64, 0x3F, 0xFE, 0x00, 1, 0x13FFF}, {2, 64, 0x3F, 0xFE, 0x00, 2, 0x10000},
        {0, 64, 63, 255, 0x30, 0, -1},         {0, 64, 63, 255, 0x30, 1, -1}, // from 0x43FF8
        {0, 64, 63, 255, 0x30, 2, 0x3BFFA},    // 0x43FFA less two pages
        {2, 80, 0x3F, 0xF5, 0x00, 11, 0x14000}, // 16373 + 11, no wrap
    };
    // clang-format on
    for (bool dib : kFamilies)
        for (const auto& c : cases) {
            if (c.r1 == 80 && !dib) continue; // the bitmap family has no 80-column path
            test::TestMachine t;
            Machine& m = t.m();
            SetPicture(m, c.mode, c.r1, 1, dib);
            SetPalette(m, 0x00, 0x55, 0x55, 0x55);
            m.crtc.CrtcReg[12] = c.r12;
            m.crtc.CrtcReg[13] = c.r13;
            m.bus.PortLatch[0x0F] = static_cast<uint8_t>(c.port0F);
            if (c.at >= 0) m.bus.Mem[c.at] = 0xFF;
            ScreenRedraw(m);
            // The byte's last pixel: black unless read from the marked place.
            EXPECT_EQ(PicturePixel(m, dib, c.column * 8 + 7, 0), AllSet(c.mode))
                << "dib " << dib << " mode " << c.mode << " at " << std::hex << c.at;
            EXPECT_EQ(m.screen.VideoPage, c.port0F & 0x30);
        }
}

// Row n takes the palette of raster line n: a write shows from its own line
// on. R6 above 64: row 256 reads the table's last entry, which no write of
// a normal frame reaches; the rows after it take the latches.
TEST(Palette, RowsFollowTheRasterLineOfTheWrite) {
    for (bool dib : kFamilies) {
        test::TestMachine t;
        Machine& m = t.m();
        SetPicture(m, 0, 64, 65, dib); // 260 rows
        SetPalette(m, 0x00, 0x01);
        for (int i = 0; i < 16384; ++i)
            VideoRam(m, i) = 0xFF; // the rows past it wrap
        m.run.FrameT = 3 * 245;    // raster line 3
        Out(m, 0x61, 0x04);        // red
        ScreenRedraw(m);
        for (int row = 1; row <= 260; ++row) {
            const Rgb want = row < 3 ? Rgb{0, 0, 127} : row == 256 ? kBlack : Rgb{124, 0, 0};
            EXPECT_EQ(PicturePixel(m, dib, (row * 8) % 512, 2 * (row - 1)), want) << row;
        }
    }
}

// Noise doubles each set odd bit into the even bit below it, now and then,
// on screen only and only in two colours: 0xAA then shows as 0xFF.
TEST(Noise, OnlyTwoColourPicturesAndNeverInMemory) {
    for (int mode : {0, 1}) {
        test::TestMachine t;
        Machine& m = t.m();
        SetPicture(m, mode, 64, 60, true);
        m.menu.xScreenNoise = true;
        SetPalette(m, 0x00, 0x55, 0x00, 0x55);
        for (int i = 0; i < 16384; ++i)
            VideoRam(m, i) = 0xAA;
        ScreenRedraw(m);
        int noisy = 0;
        for (int i = 0; i < 64 * 240; ++i) {
            // Bit 6: two colours' pixel 1, four colours' pixel 1 (with bit 2)
            // at screen pixel 2; clear in 0xAA unless noise struck.
            const int x = (i % 64) * 8 + (mode ? 2 : 1), y = (i / 64) * 2;
            noisy += PicturePixel(m, true, x, y) != kBlack;
            ASSERT_EQ(VideoRam(m, i), 0xAA);
        }
        // A draw of 0..1 times 255 rounds above 250 about 1.8% of the time.
        if (mode == 0)
            EXPECT_TRUE(noisy > 15360 / 200 && noisy < 15360 / 25) << noisy;
        else
            EXPECT_EQ(noisy, 0);
    }
}

// The sixteen-row cycle: row n reads column c at (n-1) * 80 + c - 1 plus an
// offset that changes once within the row.
TEST(Columns80, OffsetsOfTheSixteenRowCycle) {
    // clang-format off
    const struct { int offset, from, after; } cycle[16] = {
        {0, 65, 192},   {-16, 65, 176},  {-32, 65, 160},  {-48, 65, 144},
        {-48, 49, 144}, {-64, 49, 128},  {-80, 49, 112},  {-96, 49, 96},
        {-96, 33, 96},  {-112, 33, 80},  {-128, 33, 64},  {-144, 33, 48},
        {-144, 17, 48}, {-32, 17, 32},   {-112, 17, 16},  {-192, 17, 0}};
    // clang-format on
    test::TestMachine t;
    Machine& m = t.m();
    SetPicture(m, 2, 80, 5, true); // 640 x 40: 20 rows
    auto byteAt = [](int a) { return uint8_t(a * 37 + (a >> 8) * 101 + 11); };
    for (int a = 0; a < 16384; ++a)
        VideoRam(m, a) = byteAt(a);
    ScreenRedraw(m);
    EXPECT_EQ(m.screen.RefreshCount[kSrefresh16DIB80], 1u);
    EXPECT_EQ(m.screen.DibWidth, 640);
    for (int row = 1; row <= 20; ++row) {
        const auto& k = cycle[(row - 1) % 16];
        for (int column : {1, k.from - 1, k.from, 80}) {
            const int a = (row - 1) * 80 + column - 1 + (column < k.from ? k.offset : k.after);
            const int x = (column - 1) * 8, y = (row - 1) * 2;
            EXPECT_EQ(PicturePixel(m, true, x, y), SixteenPixel(byteAt(a), 1))
                << row << " " << column;
            EXPECT_EQ(PicturePixel(m, true, x + 4, y + 1), SixteenPixel(byteAt(a), 0))
                << row << " " << column;
        }
    }
}

// Widths other than 512 shear: the row steps are constants. A DIB row of
// 256 pixels is followed by 1536 copied bytes, so each row takes three lines
// of 768 bytes; a bitmap row of 1024 bytes is followed by a 2048-byte skip.
TEST(Shear, NarrowPicturesStepByTheConstants) {
    for (bool dib : kFamilies) {
        test::TestMachine t;
        Machine& m = t.m();
        SetPicture(m, 2, 32, 2, dib); // 256 x 16: 8 rows, 32 bytes each
        VideoRam(m, 0) = 0x20;        // row 1
        VideoRam(m, 32) = 0x08;       // row 2
        ScreenRedraw(m);
        const Rgb green = SixteenColourRgb(4), red = SixteenColourRgb(2);
        EXPECT_EQ(PicturePixel(m, dib, 0, 0), green);
        EXPECT_EQ(PicturePixel(m, dib, 0, 1), dib ? green : kBlack);
        EXPECT_EQ(PicturePixel(m, dib, 0, 2), kBlack);
        EXPECT_EQ(PicturePixel(m, dib, 0, 3), red);
    }
}

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
    Out(m, 0x60, 0x44);
    Out(m, 0x00, 0x08); // without the border box the border is neither shown nor carried
    ScreenRedraw(m);
    EXPECT_EQ(m.screen.BorderShown[20], 0u);
    EXPECT_EQ(m.crtc.BorderLine[0], 0u);
    EXPECT_EQ(PicturePixel(m, true, 0, 0), SixteenColourRgb(4));
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
        EXPECT_EQ(m.bus.Mem[0x7FFF], 0xAA); // bank 0x4000 filled, up to its end only
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
    while (m.run.FrameCount < 5) {
        const int before = t.host.pictures;
        if (m.run.FrameT < 100 * 245) Out(m, 0x60, 0x11); // keeps PalLineLast moving
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
        Out(m, 0x00, 0x08);                // red
        m.run.FrameT = 250 * 218;
        Out(m, 0x00, 0x02);               // blue
        VideoRam(m, 0) = 0xFF;            // top left: white
        VideoRam(m, 64 * 240 - 1) = 0x3F; // bottom right: light grey
        ScreenRedraw(m);
        EXPECT_EQ(m.crtc.BorderLine[0], 0x800000u) << "the next frame starts in the last colour";

        const RgbImage img = ComposeFrame(m);
        ASSERT_EQ(img.width, 640);
        ASSERT_EQ(img.height, 576);
        const Rgb upper{128, 0, 0}, lower{0, 0, 128}, white{255, 255, 255};
        EXPECT_EQ(WindowPixel(img, 63, 16), upper);
        EXPECT_EQ(WindowPixel(img, 64, 15), upper);
        EXPECT_EQ(WindowPixel(img, 64, 16), white);
        EXPECT_EQ(WindowPixel(img, 71, 17), dib ? white : kBlack);
        EXPECT_EQ(WindowPixel(img, 575, 494), (Rgb{192, 192, 192}));
        EXPECT_EQ(WindowPixel(img, 576, 494), upper);
        EXPECT_EQ(WindowPixel(img, 639, 499), upper);
        EXPECT_EQ(WindowPixel(img, 639, 500), lower) << "border line 250 takes the new colour";

        // Moved to the bottom right, only the box's top left corner shows.
        SetGeometry(m, 64, 20, 0, 60, 0); // Left 504, Top 572
        ScreenRedraw(m);
        const RgbImage moved = ComposeFrame(m);
        EXPECT_EQ(WindowPixel(moved, 504, 572), white);
        EXPECT_EQ(WindowPixel(moved, 503, 572), lower);
    }
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

    const auto screen = test::Slurp("screen.bin");
    ASSERT_EQ(screen.size(), 16384u);
    EXPECT_EQ(static_cast<uint8_t>(screen[16383]), static_cast<uint8_t>(16383 * 7));
    const auto dump = test::Slurp("ramdump.bin");
    ASSERT_EQ(dump.size(), 70000u);
    EXPECT_EQ(static_cast<uint8_t>(dump[65535]), 0x5C);
    EXPECT_EQ(static_cast<uint8_t>(dump[65536]), 0xEE);

    std::filesystem::remove("ramdump.bin");
    ASSERT_TRUE(xMemDump(m));
    EXPECT_EQ(test::Slurp("ramdump.bin").size(), 65536u);
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
TEST(Raster, BorderColourBitsAndOutOfRangeFrameTimes) {
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
    // Frame times out of range stay inside the border and palette tables.
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
