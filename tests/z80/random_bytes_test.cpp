// Any bytes at all may be executed: random memory, page registers and
// register values (some far outside 0..65535) must never take the process
// outside its arrays (the sanitizer build checks that), and every pass of the
// run loop completes one instruction: the "Unknown prefix" stop, kept for an
// impossible PrefixState, is never reached, nor the "CPU ERROR!" stop.
#include <gtest/gtest.h>

#include <random>

#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(RandomBytes, EveryPassCompletesAnInstruction) {
    const uint8_t prefixes[] = {0xCB, 0xDD, 0xED, 0xFD};
    const int32_t extremes[] = {0, -1, 65535, 65536, 0x3C000, 0x7FFFFFF0, -0x7FFFFFF0};
    for (uint32_t seed = 1; seed <= 32; ++seed) {
        std::mt19937 rng(seed);
        TestMachine tm;
        Machine& m = tm.m();
        Z80& cpu = tm.cpu();
        const bool wild = seed % 2 == 0; // random paging and ports, registers at the extremes
        if (wild) {
            for (auto& byte : m.bus.Mem)
                byte = uint8_t(rng());
            for (auto& latch : m.bus.PortLatch)
                latch = uint8_t(rng());
            cpu.IntMode = 1;
        } else {
            m.forms.TVCmon.Check3 = false;
            // Prefix bytes are made common so that long chains of them occur.
            for (int32_t a = 0; a < 0x10000; ++a)
                MemWrite(m, a, rng() % 5 < 2 ? prefixes[rng() % 4] : rng() & 255);
        }
        cpu.UndocEnabled = seed % 4 < 2;
        cpu.RegIX = rng() & 0xFFFF;
        cpu.RegIY = rng() & 0xFFFF;
        cpu.RegSP = wild ? extremes[(seed / 2) % 7] : rng() & 0xFFFF;
        cpu.RegPC = wild ? extremes[seed % 7] : rng() & 0xFFFF;
        for (int pass = 0; pass < 30000 && !m.FatalStop; ++pass) {
            tm.Step();
            m.run.RunFlag = 1;
            if (wild && pass % 9973 == 0) cpu.RegPC = int32_t(rng()) % 0x40000;
            ASSERT_EQ(cpu.PrefixState, 0) << "seed " << seed << " pass " << pass;
        }
        EXPECT_TRUE(cpu.RegR >= 0 && cpu.RegR <= 255) << "seed " << seed;
        for (const auto& f : tm.host.fatals)
            EXPECT_NE(f.title, "CPU ERROR!") << "seed " << seed << ": " << f.text;
    }
}

} // namespace
} // namespace tvc::test
