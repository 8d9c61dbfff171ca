// End to end: tvc-headless runs a small program that sets up the CRTC and
// fills video memory with a pattern, and its screenshot shows that pattern.
#include <gtest/gtest.h>

#include <string>

#include "support/Headless.h"
#include "support/TestMachine.h"
#include "video/VideoTestSupport.h"

namespace tvc {
namespace {

// clang-format off
const std::vector<uint8_t> kFillProgram = {
    0x3E, 0x90,       // 0000 LD A,0x90
    0xD3, 0x02,       // 0002 OUT (2),A      video page 0 at 0x8000
    0x21, 0x30, 0x00, // 0004 LD HL,0x0030   the CRTC table
    0x06, 0x05,       // 0007 LD B,5
    0x7E,             // 0009 loop: LD A,(HL)
    0xD3, 0x70,       // 000A OUT (0x70),A   select
    0x23,             // 000C INC HL
    0x7E,             // 000D LD A,(HL)
    0xD3, 0x71,       // 000E OUT (0x71),A   write
    0x23,             // 0010 INC HL
    0x10, 0xF6,       // 0011 DJNZ loop
    0x3E, 0x82,       // 0013 LD A,0x82
    0xD3, 0x06,       // 0015 OUT (6),A      sixteen colours (bit 7: no printer strobe)
    0x3E, 0x08,       // 0017 LD A,0x08
    0xD3, 0x00,       // 0019 OUT (0),A      red border
    0x21, 0x00, 0x80, // 001B LD HL,0x8000
    0x75,             // 001E fill: LD (HL),L
    0x23,             // 001F INC HL
    0x7C,             // 0020 LD A,H
    0xFE, 0xC0,       // 0021 CP 0xC0
    0x20, 0xF9,       // 0023 JR NZ,fill
    0x18, 0xFE,       // 0025 JR $
    0, 0, 0, 0, 0, 0, 0, 0, 0,       // 0027 to 002F
    // 0030: R1 = 64, R2 = 75, R5 = 2, R6 = 60, R7 = 70: 512 x 480 at 64, 16
    1, 64, 2, 75, 5, 2, 6, 60, 7, 70,
};
// clang-format on

test::Rgb Pixel(const test::Shot& s, int x, int y) {
    const uint32_t v = s.At(x, y);
    return {int(v >> 16), int(v >> 8 & 0xFF), int(v & 0xFF)};
}

int Bits(uint8_t b, int shift) {
    return (b >> shift & 1) | (b >> (shift + 2) & 1) << 1 | (b >> (shift + 4) & 1) << 2 |
           (b >> (shift + 6) & 1) << 3;
}

TEST(Screenshot, HeadlessShowsTheProgramsPattern) {
    test::ScratchDir dir;
    test::WriteRomSet(dir);
    dir.Write("fill.bin", kFillProgram);
    for (bool dib : {true, false}) {
        const std::string shot = (dir.path() / (dib ? "dib.png" : "bitmap.png")).string();
        const test::RunResult r = test::RunHeadless(
            "--dir " + dir.path().string() + " --set xScreenDIB=" + (dib ? "1" : "0") +
            " --load-bin fill.bin --port 2=0xB0 --frames 25 --screenshot " + shot);
        ASSERT_EQ(r.status, 0) << r.out;
        const test::Shot png(shot);
        ASSERT_TRUE(png.ok);
        ASSERT_EQ(png.width, 640);
        ASSERT_EQ(png.height, 576);
        const test::Rgb red{128, 0, 0};
        EXPECT_EQ(Pixel(png, 0, 0), red);
        EXPECT_EQ(Pixel(png, 63, 100), red);
        EXPECT_EQ(Pixel(png, 600, 575), red);
        // Video byte i holds the low byte of its address 0x8000 + i; it is
        // painted at column i % 64, row i / 64 of the picture at (64, 16).
        int mismatches = 0;
        for (int i = 0; i < 64 * 240; ++i) {
            const uint8_t b = static_cast<uint8_t>(i);
            const int x = 64 + (i % 64) * 8, y = 16 + (i / 64) * 2;
            const test::Rgb left = test::SixteenColourRgb(Bits(b, 1));
            const test::Rgb right = test::SixteenColourRgb(Bits(b, 0));
            for (int k = 0; k < 8; ++k) {
                const test::Rgb want = k < 4 ? left : right;
                const bool bad = Pixel(png, x + k, y) != want ||
                                 Pixel(png, x + k, y + 1) != (dib ? want : test::kBlack);
                if (bad && mismatches++ == 0)
                    ADD_FAILURE() << "first mismatch at byte " << i << ", x " << x + k << " y " << y
                                  << ": " << Pixel(png, x + k, y) << " " << Pixel(png, x + k, y + 1)
                                  << ", wanted " << want;
            }
        }
        EXPECT_EQ(mismatches, 0) << (dib ? "DIB" : "bitmap");
    }
}

} // namespace
} // namespace tvc
