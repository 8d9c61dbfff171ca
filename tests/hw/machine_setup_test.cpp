// Building the machine from its ROM files and the menu, and the warm reset.
#include <gtest/gtest.h>

#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

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
