// Any bytes at all may be executed: random memory, page registers and
// register values must never take the process outside its arrays (the
// sanitizer build checks that) nor stop it other than through the machine's
// own fatal paths.
#include <gtest/gtest.h>

#include <random>

#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(Robustness, RandomProgramsRunWithoutFault) {
    for (uint32_t seed = 1; seed <= 16; ++seed) {
        TestMachine t;
        std::mt19937 rng(seed);
        for (auto& byte : t.m().bus.Mem)
            byte = static_cast<uint8_t>(rng());
        for (auto& latch : t.m().bus.PortLatch)
            latch = static_cast<uint8_t>(rng());
        Z80& c = t.cpu();
        c.IntMode = 1;
        const int32_t extremes[] = {0, -1, 65535, 65536, 0x3C000, 0x7FFFFFF0, -0x7FFFFFF0};
        c.RegPC = extremes[seed % 7];
        c.RegSP = extremes[(seed / 2) % 7];
        for (int i = 0; i < 40000; ++i) {
            t.Step();
            t.m().run.RunFlag = 1;
            if (i % 9973 == 0) c.RegPC = static_cast<int32_t>(rng()) % 0x40000;
        }
        EXPECT_GE(c.RegR, 0);
        EXPECT_LE(c.RegR, 255);
    }
}

} // namespace
} // namespace tvc::test
