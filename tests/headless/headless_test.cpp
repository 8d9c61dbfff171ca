// The command-line runner as scripts use it: options, exit codes, dumps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

// The value of "name" in the JSON object that --dump-regs prints.
long JsonValue(const std::string& json, const std::string& name) {
    const size_t at = json.find("\"" + name + "\": ");
    if (at == std::string::npos) return -999999;
    return std::stol(json.substr(at + name.size() + 4));
}

TEST(Headless, UsageAndExitCodes) {
    ScratchDir dir, roms; // no ROMs in dir
    WriteRomSet(roms);
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
        {"--dir " + dir.path().string() + " --steps 1", 3, "Rom File error: "},
        {"--dir " + roms.path().string() + " --steps 1 --screenshot no/such/dir/x.png", 1,
         "cannot write no/such/dir/x.png"},
    };
    for (const auto& k : cases) {
        const RunResult r = RunHeadless(k.args);
        EXPECT_EQ(r.status, k.status) << k.args << "\n" << r.out;
        EXPECT_NE(r.out.find(k.says), std::string::npos) << k.args << "\n" << r.out;
    }
}

TEST(Headless, RunsAProgramAndDumpsRegistersAndMemory) {
    ScratchDir dir;
    WriteRomSet(dir);
    // LD A,5; LD B,7; ADD A,B; LD HL,0x1234; INC HL; HALT
    dir.Write("prog.bin", {0x3E, 0x05, 0x06, 0x07, 0x80, 0x21, 0x34, 0x12, 0x23, 0x76});
    const std::string d = dir.path().string();
    const RunResult r =
        RunHeadless("--dir " + d + " --port 2=0xB0 --load-bin prog.bin --steps 6 " +
                    "--poke 0x9000=0xAB --dump-regs regs.json --dump-mem 0x8FFF:3:mem.bin");
    ASSERT_EQ(r.status, 0) << r.out;
    const std::string json = Slurp(dir.path() / "regs.json");
    EXPECT_EQ(JsonValue(json, "RegA"), 12);
    EXPECT_EQ(JsonValue(json, "RegB"), 7);
    EXPECT_EQ(JsonValue(json, "RegH"), 0x12);
    EXPECT_EQ(JsonValue(json, "RegL"), 0x35);
    EXPECT_EQ(JsonValue(json, "RegPC"), 9);
    EXPECT_EQ(JsonValue(json, "Halted"), 1);
    EXPECT_EQ(JsonValue(json, "InstCount"), 6);
    EXPECT_EQ(JsonValue(json, "TStates"), 3 + 7 + 7 + 4 + 10 + 6 + 4);
    EXPECT_NE(json.find("\"PortLatch\": [0,0,176,"), std::string::npos);

    EXPECT_EQ(Slurp(dir.path() / "mem.bin"), std::string("\x00\xAB\x00", 3));
}

TEST(Headless, DisassemblesAfterTheRun) {
    ScratchDir dir;
    WriteRomSet(dir);
    dir.Write("prog.bin", {0x3E, 0x05, 0xDD, 0x21, 0x34, 0x12, 0xCB, 0x47, 0x76});
    const RunResult r = RunHeadless("--dir " + dir.path().string() +
                                    " --port 2=0xB0 --load-bin prog.bin --disasm 0:4");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(r.out, " 0000 LD A,05\n 0002 LD IX,1234\n 0006 BIT 0,A\n 0008 HALT\n");
    EXPECT_EQ(RunHeadless("--disasm 0:0").status, 2);
}

TEST(Headless, AudioRecordingHoldsTheToneAtItsPredictedFrequency) {
    // pitch 0xC00 with the tone on: 195312.5 / (4096 - 3072) = 191 Hz; full volume.
    const struct { int high, hz; } tones[] = {{0x1C, 191}, {0x1F, 763}};
    for (const auto& k : tones) {
        ScratchDir dir;
        WriteRomSet(dir);
        dir.Write("tone.bin", {0x3E, 0x00, 0xD3, 0x04, 0x3E, static_cast<uint8_t>(k.high), 0xD3,
                               0x05, 0x3E, 0xBC, 0xD3, 0x06, 0x18, 0xFE});
        const RunResult r =
            RunHeadless("--dir " + dir.path().string() +
                        " --port 2=0xB0 --load-bin tone.bin --frames 100 --audio tone.wav");
        ASSERT_EQ(r.status, 0) << r.out;
        const std::string file = Slurp(dir.path() / "tone.wav");
        const std::vector<uint8_t> wav(file.begin(), file.end());
        ASSERT_EQ(wav.size(), 44u + 20 * 4410); // 100 frames: 20 units
        EXPECT_EQ(std::string(wav.begin(), wav.begin() + 4), "RIFF");
        // Rising edges of the left channel over the last 1.9 s.
        int edges = 0;
        for (size_t i = 44 + 4410 + 2; i < wav.size(); i += 2)
            if (wav[i - 2] < 128 && wav[i] >= 128) ++edges;
        EXPECT_NEAR(edges / 1.9, k.hz, k.hz * 0.01 + 1) << k.hz;
        EXPECT_EQ(*std::max_element(wav.begin() + 4454, wav.end()),
                  128 + 52); // half of 105, rounded to even
    }
}

TEST(Headless, RegistersSetByNameAndFramesRun) {
    ScratchDir dir;
    WriteRomSet(dir);
    const RunResult r =
        RunHeadless("--dir " + dir.path().string() +
                    " --port 2=0xB0 --reg RegPC=0x100 --reg FlagC=0 --reg RegSP=0xF000"
                    " --frames 3 --dump-regs -");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(JsonValue(r.out, "FrameCount"), 3);
    EXPECT_EQ(JsonValue(r.out, "FlagC"), 0);
    EXPECT_EQ(JsonValue(r.out, "RegSP"), 0xF000);
    EXPECT_GT(JsonValue(r.out, "RegPC"), 0x100); // ran NOPs through RAM

    const RunResult bad = RunHeadless("--dir " + dir.path().string() + " --reg RegQ=1");
    EXPECT_EQ(bad.status, 2);
}

// Typing makes the run last until the text is typed and 50 frames more, or
// --frames, whichever is later.
TEST(Headless, TypingLengthensTheRun) {
    ScratchDir dir;
    WriteRomSet(dir);
    const std::string d = "--dir " + dir.path().string() + " --dump-regs - ";
    const struct {
        std::string args;
        long frames;
    } cases[] = {
        {"--frames 1 --type ab", 100 + 2 * 6 + 50},
        {"--type a --type-after 0", 6 + 50},
        {"--frames 500 --type ab", 500},
    };
    for (const auto& k : cases) {
        const RunResult r = RunHeadless(d + k.args);
        ASSERT_EQ(r.status, 0) << r.out;
        EXPECT_EQ(JsonValue(r.out, "FrameCount"), k.frames) << k.args;
    }
}

} // namespace
} // namespace tvc::test
