// Every row of the memory map: where a read comes from and where a write
// goes (or that it goes nowhere) for each page register setting.
#include <gtest/gtest.h>

#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

constexpr int32_t kDropped = -1;
constexpr int32_t kFatal = -2;

struct MapCase {
    const char* name;
    int p2, p3, p15, p24;
    int32_t address;
    int32_t readFrom; // offset in Mem
    int32_t writeTo;  // offset in Mem, kDropped or kFatal
};

// Bytes of Mem that differ between two copies.
std::vector<int32_t> Changed(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    std::vector<int32_t> out;
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) out.push_back(static_cast<int32_t>(i));
    return out;
}

TEST(MemoryMap, EveryRow) {
    const MapCase cases[] = {
        {"0000 system ROM", 0x00, 0, 0, 0, 0x1234, 0x19234, kDropped},
        {"0000 cartridge", 0x08, 0, 0, 0, 0x1234, 0x15234, 0x15234},
        {"0000 U0", 0x10, 0, 0, 0, 0x1234, 0x1234, 0x1234},
        {"0000 U3", 0x18, 0, 0, 0, 0x1234, 0xD234, 0xD234},
        {"4000 U1", 0x00, 0, 3, 0, 0x5678, 0x5678, 0x5678},
        {"4000 video 0", 0x04, 0, 0x0C, 0, 0x5678, 0x11678, 0x11678},
        {"4000 video 1", 0x04, 0, 0x01, 0, 0x5678, 0x21678, 0x21678},
        {"4000 video 2", 0x04, 0, 0x02, 0, 0x5678, 0x25678, 0x25678},
        {"4000 video 3", 0x04, 0, 0x03, 0, 0x5678, 0x29678, 0x29678},
        {"8000 U2", 0x20, 0, 0x0C, 0, 0x9ABC, 0x9ABC, 0x9ABC},
        {"8000 video 0", 0x00, 0, 0x03, 0, 0x9ABC, 0x11ABC, 0x11ABC},
        {"8000 video 1", 0x00, 0, 0x04, 0, 0x9ABC, 0x21ABC, 0x21ABC},
        {"8000 video 2", 0x00, 0, 0x08, 0, 0x9ABC, 0x25ABC, 0x25ABC},
        {"8000 video 3", 0x00, 0, 0x0C, 0, 0x9ABC, 0x29ABC, 0x29ABC},
        {"C000 cartridge", 0x00, 0, 0, 0, 0xC123, 0x14123, 0x14123},
        {"C000 system ROM", 0x40, 0, 0, 0, 0xC123, 0x18123, kDropped},
        {"C000 U3", 0x80, 0, 0, 0, 0xC123, 0xC123, 0xC123},
        {"E000 extension ROM", 0xC0, 0, 0, 0, 0xE123, 0x1E123, kDropped},
        {"D000 card 0 RAM", 0xC0, 0x00, 0, 0, 0xD123, 0x2E123, 0x2E123},
        {"C000 card 0 ROM page 0", 0xC0, 0x00, 0, 0x00, 0xC123, 0x38123, kDropped},
        {"C000 card 0 ROM page 1", 0xC0, 0x00, 0, 0x10, 0xC123, 0x39123, kDropped},
        {"C000 card 0 ROM page 2", 0xC0, 0x00, 0, 0x20, 0xC123, 0x3A123, kDropped},
        {"C000 card 0 ROM page 3", 0xC0, 0x0F, 0, 0x30, 0xC123, 0x3B123, kDropped},
        {"C000 card 1", 0xC0, 0x40, 0, 0, 0xC123, 0x2E123, kFatal},
        {"D000 card 2", 0xC0, 0x80, 0, 0, 0xD123, 0x31123, kFatal},
        {"C000 card 3", 0xC0, 0xC0, 0, 0, 0xC123, 0x32123, kFatal},
        {"65536 follows the C000 range", 0x00, 0, 0, 0, 0x10000, 0x18000, 0x18000},
        {"negative follows the lowest range", 0x00, 0, 0, 0, -1, 0x17FFF, kDropped},
        {"negative into U0 is off the map", 0x10, 0, 0, 0, -1, kDropped, kDropped},
    };
    for (const MapCase& k : cases) {
        SCOPED_TRACE(k.name);
        TestMachine t;
        Bus& b = t.m().bus;
        b.PortLatch[2] = static_cast<uint8_t>(k.p2);
        b.PortLatch[3] = static_cast<uint8_t>(k.p3);
        b.PortLatch[0x0F] = static_cast<uint8_t>(k.p15);
        b.PortLatch[0x18] = static_cast<uint8_t>(k.p24);
        MemoryMapChanged(t.m());

        if (k.readFrom >= 0) {
            b.Mem[k.readFrom] = 0xA5;
            EXPECT_EQ(MemRead(t.m(), k.address), 0xA5);
        } else {
            EXPECT_EQ(MemRead(t.m(), k.address), 0xFF); // off the map: open bus
        }

        const std::vector<uint8_t> before = b.Mem;
        MemWrite(t.m(), k.address, 0x15A); // only the low byte is stored
        const auto changed = Changed(before, b.Mem);
        if (k.writeTo >= 0) {
            ASSERT_EQ(changed.size(), 1u);
            EXPECT_EQ(changed[0], k.writeTo);
            EXPECT_EQ(b.Mem[k.writeTo], 0x5A);
        } else {
            EXPECT_TRUE(changed.empty());
        }
        if (k.writeTo == kFatal) {
            ASSERT_EQ(t.host.fatals.size(), 1u);
            EXPECT_EQ(t.host.fatals[0].text, " CTL 1-3 IOM write????");
            EXPECT_TRUE(t.m().FatalStop);
        } else {
            EXPECT_TRUE(t.host.fatals.empty());
            EXPECT_TRUE(t.host.messages.empty());
        }
    }
}

TEST(MemoryMap, ThirtyTwoKStoresButReadsZeroInU2AndU3) {
    TestMachine t;
    t.m().menu.x32KB = true;
    MemoryMapChanged(t.m());
    for (int32_t a : {0x8000, 0xC000}) {
        MemWrite(t.m(), a, 0x77);
        EXPECT_EQ(MemRead(t.m(), a), 0) << a;
    }
    // U3 through the window at 0 is not cut off.
    t.m().bus.PortLatch[2] = 0x18 | 0x20 | 0x80;
    MemoryMapChanged(t.m());
    EXPECT_EQ(MemRead(t.m(), 0x0000), 0x77);
    t.m().menu.x32KB = false;
    MemoryMapChanged(t.m());
    EXPECT_EQ(MemRead(t.m(), 0x8000), 0x77);
    EXPECT_EQ(MemRead(t.m(), 0xC000), 0x77);
}

TEST(MemoryMap, VideoErrorHookOnlyOnTheWindowAt8000) {
    TestMachine t;
    Bus& b = t.m().bus;
    b.VideoErrorEnabled = 1;
    b.PortLatch[2] = 0x04;    // both windows show video
    b.PortLatch[0x0F] = 0x04; // page 1 at 0x8000, page 0 at 0x4000
    MemoryMapChanged(t.m());
    b.Mem[0x10100] = 0x40;
    b.Mem[0x20100] = 0x01;
    EXPECT_EQ(MemRead(t.m(), 0x4100), 0x40); // no hook
    EXPECT_EQ(b.Mem[0x10100], 0x40);
    EXPECT_EQ(MemRead(t.m(), 0x8100), 0x01); // page 1 read as it was...
    EXPECT_EQ(b.Mem[0x10100], 0x77);         // ...but page 0 took the fault
}

TEST(MemoryMap, Mex4mbPagesComeFromPort0xA0) {
    TestMachine t;
    Bus& b = t.m().bus;
    b.SetCartName("mex4mb.crt");
    b.MexMem.assign(size_t(kMexPages) * kMexPageSize, 0);
    b.PortLatch[2] = 0x08; // cartridge at 0 and at 0xC000
    b.PortLatch[0xA0] = 7;
    MemoryMapChanged(t.m());
    MemWrite(t.m(), 0x0010, 0x12);
    MemWrite(t.m(), 0xC020, 0x34);
    EXPECT_EQ(b.MexMem[7 * kMexPageSize + 0x10], 0x12);
    EXPECT_EQ(b.MexMem[7 * kMexPageSize + 0x20], 0x34);
    b.PortLatch[0xA0] = 8;
    MemoryMapChanged(t.m());
    EXPECT_EQ(MemRead(t.m(), 0x0010), 0);
    EXPECT_EQ(MemRead(t.m(), 0x10000), 0xFF); // beyond the page: off the map
}

} // namespace
} // namespace tvc::test
