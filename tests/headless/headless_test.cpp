// The command-line runner as scripts use it: options, exit codes, dumps, the
// assembler, the links, the floppy card and the media files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

namespace fs = std::filesystem;

// Every mistake on the command line or in a file: its exit code and message.
TEST(Headless, UsageAndExitCodes) {
    ScratchDir empty; // no ROMs in it
    HeadlessDir d;
    d.dir.Write("bad.tvs", std::vector<uint8_t>(100, 1));
    const struct {
        std::string args;
        int status;
        const char* says;
    } cases[] = {
        {"--help", 0, "--dump-regs"},
        {"--bogus", 2, "unknown option --bogus"},
        {"--steps", 2, "needs a value"},
        {"--steps 12x", 2, "--steps takes a count"},
        {"--set xNothing=1", 2, "known menu item"},
        {"--set xBasic=2", 2, "NAME=0|1"},
        {"--port 256=1", 2, "--port takes"},
        {"--poke 0x10000=1", 2, "--poke takes"},
        {"--dump-mem 0:10", 2, "--dump-mem takes"},
        {"--steps 1 --frames 1", 2, "cannot be combined"},
        {"--steps 1 --type x", 2, "cannot be combined with --steps"},
        {"--type 'A\xC2\xA7'", 2, "--type: no key types"}, // a character without a key
        {"--type-after -1", 2, "--type-after takes"},
        {"--cart ''", 2, "--cart takes a file name"},
        {"--disasm 0:0", 2, "--disasm"},
        {"--reg RegQ=1", 2, "RegQ"},
        {"--asm-run", 2, "--asm-run"},
        {"--dir " + empty.path().string() + " --steps 1", 3, "Rom File error: "},
        {"--dir " + d.dir.path().string() + " --steps 1 --screenshot no/such/dir/x.png", 1,
         "cannot write no/such/dir/x.png"},
    };
    for (const auto& k : cases) {
        const RunResult r = RunHeadless(k.args);
        EXPECT_EQ(r.status, k.status) << k.args << "\n" << r.out;
        EXPECT_NE(r.out.find(k.says), std::string::npos) << k.args << "\n" << r.out;
    }
    const struct {
        std::string args;
        const char* says;
    } files[] = {
        {"--asm no-such.asm", "no-such.asm"},
        {"--disk none.dsk", "none.dsk"},
        {"--dump-hw no/such/x.json", "no/such/x.json"},
        {"--dump-fdc-log no/such/x.txt", "no/such/x.txt"},
        {"--load-cas none.cas", "File not found: none.cas"},
        {"--load-snap none.tvs", "File not found: none.tvs"},
        {"--load-snap bad.tvs", "Snapshot not valid!"},
        {"--tape-in none.wav", "cannot read none.wav"},
        {"--cart none.crt", "cannot read none.crt"},
        {"--save-snap no/dir/x.tvs", "no/dir/x.tvs"},
        {"--save-cas no/dir/x.cas", "no/dir/x.cas"},
        {"--save-mex no/dir/x.bin", "no/dir/x.bin"},
    };
    for (const auto& k : files) {
        const RunResult r = d.Run(k.args);
        EXPECT_EQ(r.status, 1) << k.args << "\n" << r.out;
        EXPECT_NE(r.out.find(k.says), std::string::npos) << k.args << "\n" << r.out;
    }
}

TEST(Headless, RunsAProgramAndDumpsRegistersMemoryAndDisassembly) {
    HeadlessDir d;
    // LD A,5; LD B,7; ADD A,B; LD HL,0x1234; INC HL; HALT
    d.dir.Write("prog.bin", {0x3E, 0x05, 0x06, 0x07, 0x80, 0x21, 0x34, 0x12, 0x23, 0x76});
    const RunResult r = d.Run("--port 2=0xB0 --load-bin prog.bin --steps 6 --poke 0x9000=0xAB "
                              "--dump-regs regs.json --dump-mem 0x8FFF:3:mem.bin");
    ASSERT_EQ(r.status, 0) << r.out;
    const std::string json = d.Read("regs.json");
    for (auto [name, value] : {std::pair{"RegA", 12}, {"RegL", 0x35}, {"Halted", 1}})
        EXPECT_EQ(JsonValue(json, name), value) << name;
    EXPECT_NE(json.find("\"PortLatch\": [0,0,176,"), std::string::npos);
    EXPECT_EQ(d.Read("mem.bin"), std::string("\x00\xAB\x00", 3));

    d.dir.Write("prog.bin", {0x3E, 0x05, 0xDD, 0x21, 0x34, 0x12, 0xCB, 0x47, 0x76});
    EXPECT_EQ(d.Run("--port 2=0xB0 --load-bin prog.bin --disasm 0:4").out,
              " 0000 LD A,05\n 0002 LD IX,1234\n 0006 BIT 0,A\n 0008 HALT\n");
}

// Registers of --dump-regs after a run: registers set by name, frames,
// typing that lengthens the run until the text is typed and 50 frames more
// (or --frames, whichever is later), and --reg after an assembly.
TEST(Headless, RegistersFramesAndTyping) {
    HeadlessDir d;
    std::ofstream(d.dir.path() / "t.asm") << "ORG 10000\nNOP\n";
    const struct {
        std::string args;
        std::vector<std::pair<const char*, long>> regs;
    } cases[] = {
        {"--port 2=0xB0 --reg RegPC=0x100 --reg FlagC=0 --reg RegSP=0xF000 --frames 3",
         {{"FrameCount", 3}, {"FlagC", 0}, {"RegSP", 0xF000}}},
        {"--frames 1 --type ab", {{"FrameCount", 100 + 2 * 6 + 50}}},
        {"--type a --type-after 0", {{"FrameCount", 6 + 50}}},
        {"--frames 500 --type ab", {{"FrameCount", 500}}},
        {"--asm t.asm --asm-run --reg RegPC=0", {{"RegPC", 0}}},
    };
    for (const auto& k : cases) {
        const RunResult r = d.Run(k.args + " --dump-regs -");
        ASSERT_EQ(r.status, 0) << r.out;
        for (const auto& [name, value] : k.regs)
            EXPECT_EQ(JsonValue(r.out, name), value) << k.args << " " << name;
        if (k.regs.size() > 1) { EXPECT_GT(JsonValue(r.out, "RegPC"), 0x100); } // ran NOPs
    }
}

TEST(Headless, AssemblesRunsToBreakAndReportsBadLines) {
    HeadlessDir d;
    std::ofstream(d.dir.path() / "t.asm")
        << "ORG 10000\nLD A,5\nLD B,$07\nSTART:\nADD A,B\n*BREAK\nHALT\n";
    RunResult r = d.Run("--port 2=0xB0 --asm t.asm --asm-run --steps 20 --dump-regs regs.json "
                        "--asm-listing list.txt --asm-symbols syms.txt");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(JsonValue(d.Read("regs.json"), "RegPC"), 10000 + 2 + 2 + 1 + 2); // behind *BREAK
    EXPECT_NE(d.Read("list.txt").find("2715  *BREAK\n"), std::string::npos);
    EXPECT_EQ(d.Read("syms.txt"), "START:" + std::string(16, ' ') + "10004\n");

    std::ofstream(d.dir.path() / "bad.asm") << "ORG 10000\nNOP\nJP @NOWHERE\n";
    r = d.Run("--asm bad.asm --steps 5 --dump-regs regs2.json");
    EXPECT_EQ(r.status, 4);
    EXPECT_NE(r.out.find("bad.asm:3: pass 2: Syntax Error!"), std::string::npos) << r.out;
    EXPECT_FALSE(fs::exists(d.dir.path() / "regs2.json")); // the run is skipped

    std::ofstream(d.dir.path() / "long.asm") << "ORG 10000\nNOP\n" << std::string(100000, ' ');
    r = d.Run("--asm long.asm");
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find("warning: long.asm"), std::string::npos) << r.out;
}

// An example assembled into the running monitor (--asm-after) and started by
// typing after it: keyecho reads keys until Enter and returns to the prompt.
TEST(Headless, ExampleAssemblesAndRunsUnderTheMonitor) {
    HeadlessDir d(true);
    const RunResult r = d.Run("--asm-after 100 --asm " + std::string(TVC_FIRMWARE_SRC) +
                              "/../examples/keyecho.asm --type 'GO 4000\\nAB\\n' --type-after 110 "
                              "--dump-regs r.json --dump-mem 0x4000:2:m.bin");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(d.Read("m.bin"), "\xD7\xCF");
    EXPECT_LT(JsonValue(d.Read("r.json"), "RegPC"), 0x4000); // waiting for a key in the ROM
}

// Echoes the serial input to the serial port and the printer, then halts:
//   0000 IN A,(21h) / AND 2 / JR Z,done / IN A,(20h) / OUT (20h),A /
//        OUT (1),A / LD A,0 / OUT (6),A / JR 0000 / done: HALT
TEST(Headless, SerialInOutAndPrinterOut) {
    HeadlessDir d;
    d.dir.Write("prog.bin", {0xDB, 0x21, 0xE6, 0x02, 0x28, 0x0C, 0xDB, 0x20, 0xD3, 0x20, 0xD3, 0x01,
                             0x3E, 0x00, 0xD3, 0x06, 0x18, 0xEE, 0x76});
    const std::vector<uint8_t> in = {0x00, 'A', 0x80, 0xFF}; // the printer's table: its own tests
    d.dir.Write("in.bin", in);
    ASSERT_EQ(d.Run("--port 2=0xB0 --load-bin prog.bin --serial-in in.bin --serial-out out.bin "
                    "--printer-out print.bin --steps 5000")
                  .status,
              0);
    EXPECT_EQ(d.Read("out.bin"), std::string(in.begin(), in.end()));
    for (size_t i = 0; i < in.size(); ++i)
        EXPECT_EQ(uint8_t(d.Read("print.bin").at(i)), PrinterCode(in[i])) << i;
}

TEST(Headless, ErrorSimSettingsAndTheirMistakes) {
    HeadlessDir d;
    // Bank 0x4000 is filled at each picture; the monitor reads it back.
    const RunResult ok = d.Run("--errorsim banks=0100,option=1,bits=3,video=0 --frames 5 "
                               "--dump-mem 0x4000:4:bank.bin");
    ASSERT_EQ(ok.status, 0) << ok.out;
    EXPECT_EQ(d.Read("bank.bin"), std::string(4, '\xAA'));
    for (const char* bad : {"video=2", "option=3", "bits=256", "banks=012", "banks=00100",
                            "speed=1", "", "video=1,"}) {
        const RunResult r = d.Run("--errorsim '" + std::string(bad) + "' --steps 1");
        EXPECT_EQ(r.status, 2) << bad;
        EXPECT_NE(r.out.find("--errorsim takes"), std::string::npos) << bad << r.out;
    }
}

TEST(Headless, ABridgeLeavesNothingBehind) {
    setenv("TVC_SHM_TAG", ("hl-" + std::to_string(getpid())).c_str(), 1);
    HeadlessDir d;
    const RunResult r = d.Run("--serial-bridge my.pty --frames 100");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_FALSE(fs::exists(fs::symlink_status(d.dir.path() / "my.pty")));
    EXPECT_FALSE(fs::exists(SerialBridge::LockPath()));
    MMapper map;
    EXPECT_FALSE(map.OpenMap(kSerialMapName, kSerialRecordSize));
}

// An image mounted by --disk, the boot record in --dump-hw, and a program's
// seek in --dump-fdc-log; what the card reads is the FDC tests' business.
TEST(Headless, DiskDumpHwAndFdcLog) {
    HeadlessDir d;
    std::vector<uint8_t> img(8192);
    img[0] = 0xEB, img[2] = 0x90;
    img[32] = 0x00, img[33] = 0x80, img[34] = 0x01, img[35] = 0x00; // TotalSector 32768
    d.dir.Write("mine.dsk", img);
    d.dir.Write("default.dsk", std::vector<uint8_t>(100, 0x11));
    // LD A,3; OUT (11h),A; LD A,10h; OUT (10h),A; HALT
    d.dir.Write("prog.bin", {0x3E, 0x03, 0xD3, 0x11, 0x3E, 0x10, 0xD3, 0x10, 0x76});
    const RunResult r = d.Run("--disk mine.dsk --port 2=0xB0 --load-bin prog.bin --frames 1 "
                              "--dump-hw hw.json --dump-fdc-log fdc.txt");
    ASSERT_EQ(r.status, 0) << r.out;
    const std::string hw = d.Read("hw.json");
    EXPECT_NE(hw.find("\"TotalSector\": 32768"), std::string::npos) << hw;
    EXPECT_NE(hw.find("\"DiskName\": \"mine.dsk\""), std::string::npos);
    EXPECT_EQ(d.Read("fdc.txt"), "*** FDD command log ***!\nWrite Track REG 03\nCMD Seek: 03\n");
}

// One round trip per medium, with the built-in monitor's ROMs.
TEST(Headless, MediaRoundTrips) {
    HeadlessDir d(true);
    std::vector<uint8_t> cas(144 + 500);
    for (size_t i = 144; i < cas.size(); ++i)
        cas[i] = uint8_t(i * 13);
    d.dir.Write("t.cas", cas);
    ASSERT_EQ(d.Run("--load-cas t.cas --port 2=0x10 --save-cas u.cas").status, 0);
    const std::string u = d.Read("u.cas");
    ASSERT_EQ(u.size(), cas.size());
    EXPECT_TRUE(std::equal(u.begin() + 144, u.end(), cas.begin() + 144,
                           [](char a, uint8_t b) { return uint8_t(a) == b; }));

    ASSERT_EQ(d.Run("--frames 50 --save-snap a.tvs").status, 0);
    ASSERT_EQ(d.Run("--load-snap a.tvs --save-snap b.tvs").status, 0);
    EXPECT_EQ(d.Read("a.tvs"), d.Read("b.tvs"));

    RunResult r = d.Run("--type 'POKE 4000 11 22 33\\nTSAVE 4000 4002\\n' --tape-out t.wav");
    ASSERT_EQ(r.status, 0) << r.out;
    r = d.Run("--tape-in t.wav --type 'TLOAD\\n' --dump-mem 0x4000:3:-");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(r.out, std::string("\x11\x22\x33"));
}

} // namespace
} // namespace tvc::test
