// The monitors' text and the hardware monitor's fields.
#include <gtest/gtest.h>

#include <fstream>

#include "core/HwMonitor.h"
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
    } cases[] = {{0x1F, '.'},  {0x20, ' '},  {0x7E, '~'}, {0x7F, 0xDB},
                 {0x85, 0x8A}, {0x9F, 0xE6}, {0xA0, '.'}};
    for (const auto& k : cases)
        EXPECT_EQ(MonitorFontCode(k.code), k.font) << k.code;
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(MonitorChar(code), CodepageUtf8("CP852", uint8_t(MonitorFontCode(code)))) << code;
    for (int b = 0; b < 256; ++b) // the whole page, as the printer and serial forms show it
        EXPECT_EQ(Cp852Char(uint8_t(b)), CodepageChar("CP852", uint8_t(b))) << b;
}

TEST(MonitorText, PortDumpAndTraceBlock) {
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

    // The trace block packs the flags its own way.
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

TEST(MonitorText, ClockAndSpeedFigures) {
    const int64_t frame = 62500LL * 10000;
    const struct {
        int32_t tstates;
        int64_t totalT;
        const char* text;
        int64_t ms;
    } clocks[] = {{3124, 0, "3124.0000", 0},
                  {3125, 0, "3125.0000", 1},
                  {100, 5 * frame + 1234, "312600.1234", 100}};
    for (const auto& k : clocks) {
        EXPECT_EQ(ClockText(k.tstates, k.totalT), k.text);
        EXPECT_EQ(EmulatedMs(k.tstates, k.totalT), k.ms) << k.text;
    }
    const struct {
        int64_t delta, us;
        const char* mhz;
    } speeds[] = {{frame, 40000, "1.562"}, {-frame, 1000000, "0.000"}, {frame, 0, "0.000"}};
    for (const auto& k : speeds)
        EXPECT_EQ(SpeedFigure(k.delta, k.us), k.mhz) << k.delta;
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

const HwField& Field(const std::vector<HwField>& all, const std::string& group,
                     const std::string& caption) {
    for (const HwField& f : all)
        if (f.group == group && f.caption == caption) return f;
    static const HwField none{"?", "?", "missing"};
    ADD_FAILURE() << group << " / " << caption;
    return none;
}

TEST(HwMonitorSlots, CardNamesFollowTheIdentificationByte) {
    struct Case {
        bool io0, io1;
        const char* slot0;
        const char* slot1;
    };
    // 255: all "Empty"; xio0 clears bit 0 (254: slot 0 "Floppy"); xio1 ands 243.
    for (const Case& k : {Case{false, false, "Empty", "Empty"}, {true, true, "Floppy", "RS232"}}) {
        TestMachine t;
        t.m().menu.xio0 = k.io0;
        t.m().menu.xio1 = k.io1;
        const auto all = HwMonitorFields(t.m());
        EXPECT_EQ(Field(all, "Slot ID (Port 90)", "Slot 0").text, k.slot0);
        EXPECT_EQ(Field(all, "Slot ID (Port 90)", "Slot 1").text, k.slot1);
        EXPECT_EQ(Field(all, "Slot ID (Port 90)", "Slot 3").text, std::string("Empty"));
    }
}

TEST(HwMonitorBank, OneLightPerPagingRow) {
    struct Case {
        int p2, p3, p15, p24;
        std::vector<std::string> lit;
    };
    const Case cases[] = {
        {0x00, 0x00, 0x00, 0x00, {"0000 SYS", "4000 U1", "8000 VID*", "C000 CART", "IOM0"}},
        {0xB0, 0x40, 0x05, 0x10, {"0000 U0", "4000 U1", "8000 U2", "C000 U3**", "IOM1", "VID1"}},
        {0x4C, 0x80, 0x0E, 0x20, {"0000 CART", "4000 VID", "8000 VID*", "C000 SYS", "VID3*"}},
        {0xD8, 0xC0, 0x03, 0x30, {"0000 U3", "C000 EXT", "IOM3", "ROM page 3", "VID0*"}},
    };
    for (const Case& k : cases) {
        TestMachine t;
        uint8_t* p = t.m().bus.PortLatch;
        p[2] = k.p2, p[3] = k.p3, p[0x0F] = k.p15, p[0x18] = k.p24;
        const auto all = HwMonitorFields(t.m());
        for (const std::string& name : k.lit) {
            const HwField& f = Field(all, "Memory Bank", name);
            EXPECT_TRUE(f.lit) << k.p2 << " " << name;
            EXPECT_EQ(f.Colour(), 0x00FF00);
        }
        int lights = 0;
        for (const HwField& f : all)
            lights += f.group == "Memory Bank" && f.lit;
        EXPECT_EQ(lights, 8) << k.p2; // eight groups, one row each
    }
}

TEST(HwMonitorCaptions, OutOfTableValuesStillGiveCaptions) {
    TestMachine t;
    Machine& m = t.m();
    m.bus.Mem[0x0B69] = 9;
    m.bus.Mem[0x0B71] = 1;
    m.bus.PortLatch[6] = 0xFF;
    m.bus.PortLatch[5] = 0x0F;
    m.bus.PortLatch[4] = 0xFF;
    const auto all = HwMonitorFields(m);
    EXPECT_EQ(Field(all, "Serial", "baud").text, "?");
    EXPECT_EQ(Field(all, "Serial", "SER_OK").Colour(), 255);
    EXPECT_EQ(Field(all, "SOUND", "Freq").text, "195312.5"); // pitch 4095
    m.bus.Mem[0x0B69] = 7;
    EXPECT_EQ(Field(HwMonitorFields(m), "Serial", "baud").text, "9600");
}

} // namespace
} // namespace tvc::test
