// The memory map: where a read comes from and where a write goes (or that
// it goes nowhere) for every page register setting, through the page table
// that MemRead and MemWrite keep in front of the paging chain; building the
// machine from its ROM files and the menu, and the warm reset.
#include <gtest/gtest.h>

#include <array>

#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Out(Machine& m, int32_t port, int32_t value) {
    PortOut(m, port, value);
}

// Where a read of `a` comes from, as an offset in Mem: system ROM at
// 0x18000, the cartridge image at 0x14000, video pages 0 to 3 at 0x10000,
// 0x20000, 0x24000 and 0x28000, U0 to U3 at their own addresses (U3 through
// the window at 0 too), the extension ROM at 0x1E000, card 0's ROM pages from
// 0x38000 and RAM from 0x2E000, cards 1 to 3's I/O memory above it.
int32_t ReadsFrom(int p2, int p3, int p15, int p24, int32_t a) {
    const int32_t video[4] = {0x10000, 0x20000, 0x24000, 0x28000};
    if (a < 0x4000) return std::array{0x18000, 0x14000, 0, 0xC000}[p2 >> 3 & 3] + a;
    if (a < 0x8000) return p2 & 0x04 ? video[p15 & 3] + a - 0x4000 : a;
    if (a < 0xC000) return p2 & 0x20 ? a : video[p15 >> 2 & 3] + a - 0x8000;
    switch (p2 >> 6) {
    case 0: return 0x14000 + a - 0xC000;
    case 1: return 0x18000 + a - 0xC000;
    case 2: return a;
    }
    if (a >= 0xE000) return a + 0x10000;
    if (p3 >> 6) return a + 0x20000 + 0x2000 * (p3 >> 6);
    return a >= 0xD000 ? a + 0x21000 : 0x38000 + (p24 >> 4 & 3) * 0x1000 + a - 0xC000;
}

// Every page register value, with and without the 32K option, with each
// video page in each window, card slot and card 0 ROM page (their other bits
// set): a read comes from its place (off the map, 0xFF), and a write changes
// that byte and no other, except into a ROM (dropped) or the I/O memory of
// cards 1 to 3 (a fatal stop).
TEST(MemoryMap, EveryRow) {
    TestMachine t;
    Bus& b = t.m().bus;
    const std::vector<uint8_t> before = b.Mem;
    size_t fatals = 0;
    for (int i = 0; i < 512; ++i) // each page register value without and with 32K
        for (int v = 0; v < 4; ++v) {
            const int p2 = i & 0xFF;
            t.m().menu.x32KB = i > 255; // reads of U2 and U3 give 0, writes still store
            const int p3 = v << 6 | 0x0F, p15 = (3 - v) << 2 | v | 0x30;
            const int p24 = (v + p2) % 4 << 4 | 0x0F; // every page with every slot
            Out(t.m(), 2, p2); // P2 first: each paging port rebuilds the map itself
            Out(t.m(), 3, p3);
            Out(t.m(), 0x0F, p15);
            Out(t.m(), 0x18, p24);
            for (int32_t a : {-1, 0x1234, 0x5678, 0x9ABC, 0xC123, 0xD123, 0xE123, 0x10000}) {
                SCOPED_TRACE(testing::Message() << i << " " << v << " " << std::hex << a);
                const int32_t at = ReadsFrom(p2, p3, p15, p24, a);
                const bool mapped = at >= 0 && at < kMemSize;
                if (mapped) b.Mem[at] = 0xA5;
                const bool cut = i > 255 && ((a >= 0x8000 && a < 0xC000 && (p2 & 0x20)) ||
                                             (a >= 0xC000 && (p2 >> 6) == 2));
                ASSERT_EQ(MemRead(t.m(), a), cut ? 0 : mapped ? 0xA5 : 0xFF);
                const bool io = a >= 0xC000 && (p2 >> 6) == 3;
                const bool rom = (a < 0x4000 && (p2 & 0x18) == 0) ||
                                 (a >= 0xC000 && (p2 >> 6) == 1) ||
                                 (io && (a >= 0xE000 || (v == 0 && a < 0xD000)));
                const bool fatal = io && v != 0 && a < 0xE000;
                MemWrite(t.m(), a, 0x15A); // only the low byte is stored
                if (mapped) {
                    ASSERT_EQ(b.Mem[at], rom || fatal ? 0xA5 : 0x5A);
                    b.Mem[at] = before[at];
                }
                ASSERT_TRUE(b.Mem == before);
                fatals += fatal;
                ASSERT_EQ(t.host.fatals.size(), fatals);
            }
        }
    EXPECT_EQ(t.host.fatals.back().text, " CTL 1-3 IOM write????");
    EXPECT_TRUE(t.m().FatalStop);
    EXPECT_TRUE(t.host.messages.empty());
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

// The expansion page that port 0xA0 picks, 16 KB long: 0x10000 falls off it.
TEST(MemoryMap, Mex4mbPagesComeFromPort0xA0) {
    TestMachine t;
    Bus& b = t.m().bus;
    b.SetCartName("mex4mb.crt");
    b.MexMem.assign(size_t(kMexPages) * kMexPageSize, 0);
    b.PortLatch[2] = 0x00; // the cartridge at 0xC000
    b.PortLatch[0xA0] = 7;
    MemoryMapChanged(t.m());
    MemWrite(t.m(), 0xC020, 0x34);
    EXPECT_EQ(b.MexMem[7 * kMexPageSize + 0x20], 0x34);
    EXPECT_EQ(MemRead(t.m(), 0x10000), 0xFF);
}

struct Built {
    ScratchDir dir;
    RecordingHost host;
    std::unique_ptr<Machine> m = std::make_unique<Machine>(host);

    // Each ROM file filled with its own marker byte: index in kRomFiles + 1.
    void WriteMarkedRoms() {
        uint8_t marker = 1;
        for (const RomFile& rom : kRomFiles)
            dir.Write(rom.name, std::vector<uint8_t>(size_t(rom.bytesRead), marker++));
    }
    uint8_t At(int32_t offset) const { return m->bus.Mem[offset]; }
};

// Markers: 1 TVC12_D4, 2 TVC12_D3, 3 TVC12_D7, 6 TVC22_D7, 7 hbf.rom in slot
// 0, 9 in slot 3; sndmx.rom's 8 KB pages 0x10-0x13. The other set's D6 is
// short, filled with zeros, and its D4 long, cut.
TEST(MachineInit, RomSetAndCardRomsFollowTheMenu) {
    for (bool other : {false, true}) {
        Built b;
        b.WriteMarkedRoms();
        b.dir.Write("TVC22_D6.rom", {0xAA, 0xBB});
        b.dir.Write("TVC22_D4.rom", std::vector<uint8_t>(9000, 0xCC));
        std::vector<uint8_t> snd(32768);
        for (size_t i = 0; i < snd.size(); ++i)
            snd[i] = static_cast<uint8_t>(0x10 + i / 8192);
        b.dir.Write("sndmx.rom", snd);
        b.m->menu.xBasic = other;
        b.m->menu.xio0 = b.m->menu.xio2 = b.m->menu.xio3 = other;
        MachineInit(*b.m);
        ASSERT_FALSE(b.m->FatalStop);
        EXPECT_EQ(b.At(0x18000), other ? 0xAA : 1);
        EXPECT_EQ(b.At(0x18002), other ? 0 : 1);
        EXPECT_EQ(b.At(0x1A000), other ? 0xCC : 2);
        EXPECT_EQ(b.At(0x1BFFF), other ? 0xCC : 2);
        EXPECT_EQ(b.At(0x1E000), other ? 6 : 3);
        EXPECT_EQ(b.At(0x1FFFF), other ? 6 : 3);
        EXPECT_EQ(b.At(0x1C000), 0); // the gap between system and extension ROM
        EXPECT_EQ(b.At(0x38000), other ? 7 : 0);
        EXPECT_EQ(b.At(0x3BFFF), other ? 7 : 0);
        EXPECT_EQ(b.At(0x30000), other ? 0x13 : 0); // the fourth 8 KB page of sndmx.rom
        EXPECT_EQ(b.At(0x32000), other ? 9 : 0);
        EXPECT_EQ(b.At(0x14000), 0); // no cartridge
    }
}

TEST(MachineInit, MissingRomOrCartridgeIsFatal) {
    const struct {
        const char* file;
        bool xio0, xio2;
        const char* cart;
        const char* text;
    } cases[] = {{"TVC12_D7.rom", false, false, "", "Rom File error: "},
                 {"sndmx.rom", false, true, "", "File not found: sndmx.rom"},
                 {nullptr, false, false, "game.crt", "File not found: game.crt"}};
    for (const auto& k : cases) {
        Built b;
        b.WriteMarkedRoms();
        if (k.file) std::filesystem::remove(b.dir.path() / k.file);
        b.m->menu.xio0 = k.xio0;
        b.m->menu.xio2 = k.xio2;
        b.m->bus.SetCartName(k.cart);
        MachineInit(*b.m);
        EXPECT_TRUE(b.m->FatalStop) << k.text;
        ASSERT_EQ(b.host.fatals.size(), 1u);
        EXPECT_EQ(b.host.fatals[0].text, k.text);
        EXPECT_EQ(b.host.fatals[0].title, "Error");
    }
}

// A power cycle clears RAM and the counters and enables the undocumented
// instructions; a warm reset keeps memory and resets the latches.
TEST(MachineReset, PowerCycleClearsRamWarmResetKeepsIt) {
    TestMachine t;
    Machine& m = t.m();
    MemWrite(m, 0x1000, 0x55);
    t.cpu().UndocEnabled = 0;
    m.run.InstCount = 99;
    MachineInit(m);
    m.bus.Mem[0x19000] = 0x66; // the page table follows: system ROM at 0 again
    EXPECT_EQ(MemRead(m, 0x1000), 0x66);
    EXPECT_EQ(m.bus.Mem[0x1000], 0);
    EXPECT_EQ(t.cpu().UndocEnabled, 1);
    EXPECT_EQ(m.run.InstCount, 0);
    EXPECT_EQ(t.cpu().TStates, 0);

    m.bus.Mem[0x1000] = 0x55;
    for (auto& latch : m.bus.PortLatch)
        latch = 0x33;
    MemoryMapChanged(m); // U0 at 0
    for (auto& row : m.bus.KeyMatrix)
        row = 1;
    for (auto& reg : m.crtc.CrtcReg)
        reg = 0x44;
    m.run.FrameT = 1234;
    m.cpu.RegPC = 0x4321; // the processor's own reset is checked with the Z80
    MachineReset(m);
    EXPECT_EQ(m.bus.Mem[0x1000], 0x55);
    EXPECT_EQ(MemRead(m, 0x1000), 0x66);
    EXPECT_EQ(m.bus.PortLatch[0x59], 191);
    EXPECT_EQ(m.bus.PortLatch[5], 255);
    for (int i = 0; i < 256; ++i)
        if (i != 0x59 && i != 5) { EXPECT_EQ(m.bus.PortLatch[i], 0) << i; }
    for (uint8_t row : m.bus.KeyMatrix)
        EXPECT_EQ(row, 0);
    for (int r = 0; r <= 18; ++r)
        EXPECT_EQ(m.crtc.CrtcReg[r], r == 10 ? 32 : 0) << r;
    EXPECT_EQ(m.run.FrameT, 1234);
    EXPECT_EQ(m.cpu.RegPC, 0);
}

} // namespace
} // namespace tvc::test
