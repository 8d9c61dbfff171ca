// Any byte sequence is a program: whatever memory holds, every pass of the
// run loop completes one instruction, and the "Unknown prefix" stop, kept for
// an impossible PrefixState, is never reached. (Run under the sanitizers this
// also says that no sequence reads or writes outside the machine's arrays.)
#include <gtest/gtest.h>

#include <random>

#include "core/Machine.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(RandomBytes, EveryPassCompletesAnInstruction) {
    const uint8_t prefixes[] = {0xCB, 0xDD, 0xED, 0xFD};
    for (uint32_t seed = 1; seed <= 24; ++seed) {
        std::mt19937 rng(seed);
        TestMachine tm;
        Machine& m = tm.m();
        Z80& cpu = tm.cpu();
        m.forms.TVCmon.Check3 = false;
        // Prefix bytes are made common so that long chains of them occur.
        for (int32_t a = 0; a < 0x10000; ++a)
            MemWrite(m, a, rng() % 5 < 2 ? prefixes[rng() % 4] : rng() & 255);
        cpu.UndocEnabled = seed & 1;
        cpu.RegIX = rng() & 0xFFFF;
        cpu.RegIY = rng() & 0xFFFF;
        cpu.RegSP = rng() & 0xFFFF;
        cpu.RegPC = rng() & 0xFFFF;
        for (int pass = 0; pass < 20000 && !m.FatalStop; ++pass) {
            tm.Step();
            ASSERT_EQ(cpu.PrefixState, 0) << "seed " << seed << " pass " << pass;
        }
        for (const auto& f : tm.host.fatals)
            EXPECT_NE(f.title, "CPU ERROR!") << "seed " << seed << ": " << f.text;
    }
}

} // namespace
} // namespace tvc::test
