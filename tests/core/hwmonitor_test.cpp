// The hardware monitor's fields: slot captions, the paging lights, and
// captions for any latch or memory value.
#include <gtest/gtest.h>

#include "core/HwMonitor.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

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
    for (const Case& k : {Case{false, false, "Empty", "Empty"},
                          {true, false, "Floppy", "Empty"},
                          {false, true, "Empty", "RS232"},
                          {true, true, "Floppy", "RS232"}}) {
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
    m.crtc.CrtcReg[4] = 70000;
    const auto all = HwMonitorFields(m);
    EXPECT_EQ(Field(all, "Serial", "baud").text, "?");
    EXPECT_EQ(Field(all, "Serial", "SER_OK").Colour(), 255);
    EXPECT_EQ(Field(all, "Volume", "Volume").text, std::to_string((0xFF >> 2) & 15));
    EXPECT_EQ(Field(all, "SOUND", "Freq").text, "195312.5"); // pitch 4095
    EXPECT_EQ(Field(all, "CRTC", "rows\\screen").text, "70000");
    EXPECT_EQ(Field(all, "Mode", "Mode").text, "16");
    m.bus.Mem[0x0B69] = 7;
    EXPECT_EQ(Field(HwMonitorFields(m), "Serial", "baud").text, "9600");
}

} // namespace
} // namespace tvc::test
