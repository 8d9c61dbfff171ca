// The monitors' text: the character column, the port dump's rows at both
// ends, the clock and speed figures, the trace block, and "Load Bin" into
// the flat memory. The memory dump's rows are checked on the form.
#include <gtest/gtest.h>

#include <fstream>

#include "core/MonitorOps.h"
#include "core/MonitorText.h"
#include "support/Codepage.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

std::vector<std::string> Rows(const std::string& text) {
    std::vector<std::string> rows(1);
    for (char c : text) {
        if (c == '\n')
            rows.emplace_back();
        else
            rows.back().push_back(c);
    }
    return rows;
}

// Codes 0x7F to 0x9F draw the font codes of the machine's table; every font
// code shows as its character in code page 852, the font's OEM page.
TEST(MonitorText, CharacterColumnMap) {
    const struct {
        int code, font;
    } cases[] = {{0x00, '.'},  {0x1F, '.'},  {0x20, ' '},  {0x41, 'A'},  {0x7E, '~'},  {0x7F, 0xDB},
                 {0x80, 0xB5}, {0x81, 0x90}, {0x82, 0x92}, {0x85, 0x8A}, {0x88, 0xEB}, {0x89, 0xDA},
                 {0x8B, 0xB3}, {0x8E, 0xC5}, {0x90, 0xA0}, {0x95, 0x8B}, {0x98, 0xFB}, {0x9B, 0xC4},
                 {0x9F, 0xE6}, {0xA0, '.'},  {0xFF, '.'}};
    for (const auto& k : cases)
        EXPECT_EQ(MonitorFontCode(k.code), k.font) << k.code;
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(MonitorChar(code), CodepageUtf8("CP852", uint8_t(MonitorFontCode(code)))) << code;
    for (int b = 0; b < 256; ++b) // the whole page, as the printer and serial forms show it
        EXPECT_EQ(Cp852Char(uint8_t(b)), CodepageChar("CP852", uint8_t(b))) << b;
}

TEST(MonitorText, PortDumpReadsTheLatches) {
    TestMachine t;
    for (int p = 0; p < 256; ++p)
        t.m().bus.PortLatch[p] = static_cast<uint8_t>(p ^ 0x5A);
    const struct {
        int64_t start;
        const char* first;
    } cases[] = {
        {0xF8, "000F8: A2 A3 A0 A1 A6 A7 A4 A5 A5 A5 A5 A5 A5 A5 A5 A5 "},
        {-2, "00000: 5A 5B 58 59 5E 5F 5C 5D 52 53 50 51 56 57 54 55 "},
    };
    for (const auto& k : cases) {
        const auto rows = Rows(PortDumpText(t.m(), k.start));
        ASSERT_EQ(rows.size(), 8u);
        EXPECT_EQ(rows[0], k.first);
        EXPECT_EQ(rows[0].size() + 16, kPortHeading.size());
    }
}

TEST(MonitorText, ClockAndSpeedFigures) {
    const int64_t frame = 62500LL * 10000;
    const struct {
        int32_t tstates;
        int64_t totalT;
        const char* text;
        int64_t ms;
    } clocks[] = {{0, 0, "0.0000", 0},
                  {3124, 0, "3124.0000", 0},
                  {3125, 0, "3125.0000", 1},
                  {100, frame, "62600.0000", 20},
                  {0, 5 * frame + 1234, "312500.1234", 100}};
    for (const auto& k : clocks) {
        EXPECT_EQ(ClockText(k.tstates, k.totalT), k.text);
        EXPECT_EQ(EmulatedMs(k.tstates, k.totalT), k.ms) << k.text;
    }
    const struct {
        int64_t delta, us;
        const char* mhz;
    } speeds[] = {{50 * frame, 1000000, "3.125"}, {100 * frame, 1000000, "6.250"},
                  {frame, 40000, "1.562"},        {0, 1000000, "0.000"},
                  {-frame, 1000000, "0.000"},     {frame, 0, "0.000"}};
    for (const auto& k : speeds)
        EXPECT_EQ(SpeedFigure(k.delta, k.us), k.mhz) << k.delta;
}

TEST(MonitorText, TraceBlockPacksTheFlagsItsOwnWay) {
    TestMachine t;
    Z80& c = t.cpu();
    c.RegA = 0x12, c.RegB = 0x34, c.RegC = 0x56, c.RegD = 0x78, c.RegE = 0x9A;
    c.RegH = 0xBC, c.RegL = 0xDE, c.RegIX = 0x1111, c.RegIY = 0x2222, c.RegSP = 0xFFF0;
    c.RegI = 0x3F;
    c.FlagS = 1, c.FlagZ = 0, c.FlagY = 1, c.FlagH = 1, c.FlagX = 1, c.FlagP = 0, c.FlagN = 1;
    c.FlagC = 0;
    EXPECT_EQ(TraceFlagByte(c), 0x49);
    EXPECT_EQ(TraceBlock(c), "AF:1249,BC:3456,DE:789A,HL:BCDE|SZ-H-PNC\n"
                             "                                10x1x010\n"
                             "IX:1111,IY:2222,SP:FFF0,    I:3F\n"
                             "----------------------------------------");
}

TEST(MonitorOps, LoadBinFillsTheFlatMemoryUpTo64K) {
    const struct {
        size_t size;
        size_t loaded;
    } cases[] = {{3, 3}, {65536 + 10, 65536}};
    for (const auto& k : cases) {
        TestMachine t;
        t.m().bus.Mem[k.loaded] = 0x66;
        std::vector<uint8_t> bytes(k.size);
        for (size_t i = 0; i < k.size; ++i)
            bytes[i] = static_cast<uint8_t>(i * 7 + 1);
        t.dir->Write("prog.bin", bytes);
        EXPECT_TRUE(LoadBin(t.m(), "prog.bin"));
        EXPECT_EQ(t.m().bus.Mem[0], 1);
        EXPECT_EQ(t.m().bus.Mem[k.loaded - 1], bytes[k.loaded - 1]);
        EXPECT_EQ(t.m().bus.Mem[k.loaded], 0x66);
    }
    TestMachine t;
    EXPECT_FALSE(LoadBin(t.m(), "missing.bin"));
    ASSERT_EQ(t.host.messages.size(), 1u);
    EXPECT_EQ(t.host.messages[0].text, "File not found: missing.bin");
}

} // namespace
} // namespace tvc::test
