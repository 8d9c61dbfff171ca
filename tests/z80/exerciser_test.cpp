// The exerciser's short groups, run inside the unit test program: each
// checks one instruction family's results and flags over thousands of
// operand combinations, and the exerciser's own loop needs the branches,
// calls, stack and loads to work. The longest groups (8-bit arithmetic on
// registers and index bytes) run only in the slow full run.
#include "z80/Exerciser.h"

namespace tvc::test {
namespace {

TEST(Exerciser, ShortGroupsPass) {
    // Longer than about 8000 cycles each, or failing on purpose (see the full run).
    const auto run =
        RunExerciser({"add ix,<bc,de,ix,sp>", "add iy,<bc,de,iy,sp>",
                      "aluop a,<b,c,d,e,h,l,(hl),a>", "aluop a,<ixh,ixl,iyh,iyl>",
                      "aluop a,(<ix,iy>+1)", "ld <bcdexya>,<bcdexya>", "shf/rot (<ix,iy>+1)"});
    if (!run) GTEST_SKIP() << TVC_ZEXDOC << " not found";
    EXPECT_TRUE(run->shim.Ended());
    std::vector<std::pair<std::string, bool>> expected;
    for (const std::string& g : run->groups)
        expected.emplace_back(g, true);
    EXPECT_EQ(run->shim.console.results, expected);
    EXPECT_TRUE(run->host.messages.empty());
}

} // namespace
} // namespace tvc::test
