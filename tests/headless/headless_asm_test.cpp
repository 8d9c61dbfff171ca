// tvc-headless --asm: the workbench's compile and RUN from the command line.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

long JsonValue(const std::string& json, const std::string& name) {
    const size_t at = json.find("\"" + name + "\": ");
    return at == std::string::npos ? -999999 : std::stol(json.substr(at + name.size() + 4));
}

TEST(HeadlessAsm, AssemblesRunsToBreakAndReportsBadLines) {
    ScratchDir dir;
    WriteRomSet(dir);
    const std::string d = "--dir " + dir.path().string() + " ";
    std::ofstream(dir.path() / "t.asm")
        << "ORG 10000\nLD A,5\nLD B,$07\nSTART:\nADD A,B\n*BREAK\nHALT\n";
    RunResult r =
        RunHeadless(d + "--port 2=0xB0 --asm t.asm --asm-run --steps 20 --dump-regs regs.json "
                        "--asm-listing list.txt --asm-symbols syms.txt");
    ASSERT_EQ(r.status, 0) << r.out;
    const std::string json = Slurp(dir.path() / "regs.json");
    EXPECT_EQ(JsonValue(json, "RegA"), 12);
    EXPECT_EQ(JsonValue(json, "RegPC"), 10000 + 2 + 2 + 1 + 2); // behind the *BREAK pair
    EXPECT_EQ(JsonValue(json, "InstCount"), 4);
    EXPECT_NE(Slurp(dir.path() / "list.txt").find("2715  *BREAK\n"), std::string::npos);
    EXPECT_EQ(Slurp(dir.path() / "syms.txt"), "START:" + std::string(16, ' ') + "10004\n");

    // --reg comes after the assembly, so it can move RegPC from the RUN button's 10000.
    r = RunHeadless(d + "--asm t.asm --asm-run --reg RegPC=0 --dump-regs -");
    EXPECT_EQ(JsonValue(r.out, "RegPC"), 0) << r.out;

    std::ofstream(dir.path() / "bad.asm") << "ORG 10000\nNOP\nJP @NOWHERE\n";
    r = RunHeadless(d + "--asm bad.asm --steps 5 --dump-regs regs2.json");
    EXPECT_EQ(r.status, 4);
    EXPECT_NE(r.out.find("bad.asm:3: pass 2: Syntax Error!"), std::string::npos) << r.out;
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "regs2.json")); // the run is skipped

    std::ofstream(dir.path() / "long.asm") << "ORG 10000\nNOP\n" << std::string(100000, ' ');
    r = RunHeadless(d + "--asm long.asm");
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("warning: long.asm"), std::string::npos) << r.out;

    EXPECT_EQ(RunHeadless(d + "--asm-run").status, 2);
    EXPECT_EQ(RunHeadless(d + "--asm no-such.asm").status, 1);
}

TEST(HeadlessAsm, ExamplesAssembleAndRunUnderTheMonitor) {
    const std::string examples = std::string(TVC_FIRMWARE_SRC) + "/../examples/";
    const struct {
        const char* file;
        std::string typed;
        std::vector<uint8_t> code; // the first bytes at 0x4000
    } cases[] = {
        {"hello.asm", "GO 4000\\n", {0x21, 0x05, 0x40, 0xDF, 0xC9}},
        {"tone.asm", "GO 4000\\n", {0x3E, 0x3D, 0xD3, 0x04}},
        {"keyecho.asm", "GO 4000\\nAB\\n", {0xD7, 0xCF, 0xFE, 13, 0x20, 0xFA, 0xC9}},
    };
    ScratchDir out;
    for (const auto& k : cases) {
        const RunResult r =
            RunHeadless(std::string("--dir ") + TVC_FIRMWARE_DIR + " --asm-after 100 --asm " +
                        examples + k.file + " --type '" + k.typed +
                        "' --type-after 110 --dump-regs " + (out.path() / "r.json").string() +
                        " --dump-mem 0x4000:" + std::to_string(k.code.size()) + ":" +
                        (out.path() / "m.bin").string());
        ASSERT_EQ(r.status, 0) << k.file << r.out;
        EXPECT_EQ(Slurp(out.path() / "m.bin"), std::string(k.code.begin(), k.code.end())) << k.file;
        // Back at the monitor's prompt: waiting for a key in the ROM.
        EXPECT_LT(JsonValue(Slurp(out.path() / "r.json"), "RegPC"), 0x4000) << k.file;
    }
}

} // namespace
} // namespace tvc::test
