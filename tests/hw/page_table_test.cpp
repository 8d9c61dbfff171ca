// The page table in front of the paging chain must never go stale: after each
// way the map can change (a port write, reset, init, a cartridge, the 32K
// option, the video error hook), every 16 KB range reads and writes exactly as
// the chain alone does. Machine `fast` uses MemRead/MemWrite, machine `ref`
// the chain; both see the same changes and must keep the same memory.
#include <gtest/gtest.h>

#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

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
