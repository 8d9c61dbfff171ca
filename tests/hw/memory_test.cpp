// The memory map: where a read comes from and where a write goes (or that
// it goes nowhere) for every page register setting.
#include <gtest/gtest.h>

#include <array>

#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

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
            b.PortLatch[2] = static_cast<uint8_t>(p2);
            b.PortLatch[3] = static_cast<uint8_t>(p3);
            b.PortLatch[0x0F] = static_cast<uint8_t>(p15);
            b.PortLatch[0x18] = static_cast<uint8_t>(p24);
            MemoryMapChanged(t.m());
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

// The page table in front of the paging chain must never go stale: after each
// way the map can change (a port write, reset, init, a cartridge, the 32K
// option, the video error hook), every 16 KB range reads and writes exactly as
// the chain alone does. Machine `fast` uses MemRead/MemWrite, machine `ref`
// the chain; both see the same changes and must keep the same memory.
struct Pair {
    TestMachine fast, ref;
    int32_t value = 0;

    Pair() {
        for (Machine* m : {&fast.m(), &ref.m()})
            for (size_t i = 0; i < m->bus.Mem.size(); ++i)
                m->bus.Mem[i] = static_cast<uint8_t>(i * 7 + (i >> 8));
    }
    void Out(int32_t port, int32_t v) {
        PortOut(fast.m(), port, v);
        PortOut(ref.m(), port, v);
    }
    template <class F> void Both(F f) {
        f(fast.m());
        f(ref.m());
    }
    // Both ends of every range, and one address on each side of 0..0xFFFF.
    void Check(const std::string& what) {
        SCOPED_TRACE(what);
        for (int32_t a : {-1, 0x0000, 0x3FFF, 0x4000, 0x7FFF, 0x8000, 0xBFFF, 0xC000, 0xE000,
                          0xFFFF, 0x10000}) {
            ASSERT_EQ(MemRead(fast.m(), a), MemReadChain(ref.m(), a)) << "read " << a;
            value = (value + 0x35) & 0xFF;
            MemWrite(fast.m(), a, value);
            MemWriteChain(ref.m(), a, value);
            ASSERT_EQ(MemReadChain(fast.m(), a), MemReadChain(ref.m(), a)) << "write " << a;
        }
        ASSERT_TRUE(fast.m().bus.Mem == ref.m().bus.Mem);
        ASSERT_FALSE(fast.m().FatalStop);
    }
};

TEST(PageTable, FollowsEveryChangeOfTheMap) {
    struct Setting {
        const char* name;
        bool x32KB, videoError, mex;
    };
    for (const Setting& s :
         {Setting{"plain", false, false, false}, Setting{"32K", true, false, false},
          Setting{"video error", false, true, false}, Setting{"MEX4MB", false, false, true}}) {
        SCOPED_TRACE(s.name);
        Pair p;
        p.Both([&](Machine& m) {
            m.menu.x32KB = s.x32KB;
            m.bus.VideoErrorEnabled = s.videoError;
            MemoryMapChanged(m);
            if (s.mex) { // the cartridge name takes effect without a rebuild
                m.bus.SetCartName(kMexCartName);
                m.bus.MexMem.assign(size_t(kMexPages) * kMexPageSize, 0x5A);
            }
        });
        p.Check("the setting");
        // The page register after each other latch, and each latch after it.
        for (int p2 = 0; p2 < 256; ++p2) {
            p.Out(2, p2);
            p.Check("P2 " + std::to_string(p2));
            for (int port : {0x0F, 0xA0, 0x03, 0x18}) {
                // Slots 1 to 3 at 0xC000 would stop the machine on a write.
                p.Out(port, (p2 * 5 + port) & (port == 0x03 ? 0x3F : 0xFF));
                p.Check("port " + std::to_string(port) + " after P2 " + std::to_string(p2));
            }
        }
        p.Out(2, 0xB0);
        p.Both([](Machine& m) { MachineReset(m); });
        p.Check("reset");
        if (s.mex) continue; // no cartridge file here: init would stop the machine
        p.Out(2, 0xB0);
        p.Both([](Machine& m) { MachineInit(m); });
        p.Check("init");
    }
}

} // namespace
} // namespace tvc::test
