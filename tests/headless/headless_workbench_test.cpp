// tvc-headless's workbench tools: --convert-tvcasm, --opcode-help and
// --import-pic over BMP files of several kinds, good and bad.
#include <gtest/gtest.h>

#include <fstream>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Put(std::string& s, uint32_t v, int bytes) {
    for (int i = 0; i < bytes; ++i)
        s += static_cast<char>(v >> (8 * i) & 0xFF);
}

// A BMP of w x h, white in the left `white` columns and black elsewhere, in
// 24 bits, 16 bits (5-5-5) or 8 bits with a two-entry palette.
std::string Bmp(int w, int h, int bpp, int white) {
    const int row = (w * bpp / 8 + 3) / 4 * 4;
    const int palette = bpp == 8 ? 2 * 4 : 0;
    std::string s = "BM";
    Put(s, uint32_t(54 + palette + row * h), 4);
    Put(s, 0, 4);
    Put(s, uint32_t(54 + palette), 4);
    Put(s, 40, 4);
    Put(s, uint32_t(w), 4);
    Put(s, uint32_t(h), 4);
    Put(s, 1, 2);
    Put(s, uint32_t(bpp), 2);
    Put(s, 0, 4);
    Put(s, uint32_t(row * h), 4);
    Put(s, 2835, 4);
    Put(s, 2835, 4);
    Put(s, bpp == 8 ? 2 : 0, 4);
    Put(s, 0, 4);
    if (bpp == 8) {
        Put(s, 0, 4);
        Put(s, 0xFFFFFF, 4);
    }
    for (int y = 0; y < h; ++y) {
        std::string line;
        for (int x = 0; x < w; ++x) {
            const bool on = x < white;
            if (bpp == 24) Put(line, on ? 0xFFFFFF : 0, 3);
            if (bpp == 16) Put(line, on ? 0x7FFF : 0, 2);
            if (bpp == 8) Put(line, on ? 1 : 0, 1);
        }
        line.resize(size_t(row), '\0');
        s += line;
    }
    return s;
}

TEST(HeadlessWorkbench, ImportsBmpKindsAndRefusesBadFiles) {
    ScratchDir dir;
    WriteRomSet(dir);
    std::string huge = Bmp(4, 4, 24, 4);
    huge.replace(18, 8, std::string("\x60\xEA\x00\x00\x60\xEA\x00\x00", 8)); // 60000 x 60000
    const struct {
        const char* name;
        std::string bytes;
        bool good;
    } cases[] = {
        {"p24.bmp", Bmp(16, 4, 24, 12), true},
        {"p16.bmp", Bmp(16, 4, 16, 12), true},
        {"p8.bmp", Bmp(16, 4, 8, 12), true},
        {"one.bmp", Bmp(1, 1, 24, 1), true},
        {"empty.bmp", "", false},
        {"text.bmp", "LD A,5\r\nNOP\r\n", false},
        {"huge.bmp", huge, false},
        {"cut.bmp", Bmp(16, 4, 24, 12).substr(0, 40), false},
    };
    for (const auto& c : cases) {
        std::ofstream(dir.path() / c.name, std::ios::binary) << c.bytes;
        const RunResult r = RunHeadless("--dir " + dir.path().string() +
                                        " --port 2=0 --port 15=0 --import-pic 9:" + c.name +
                                        " --dump-mem 0x8000:3:out.bin");
        if (!c.good) {
            EXPECT_EQ(r.status, 1) << c.name << r.out;
            EXPECT_NE(r.out.find("File Open error!"), std::string::npos) << c.name;
            continue;
        }
        ASSERT_EQ(r.status, 0) << c.name << r.out;
        // Pixels 0-7 white, 8-11 white and 12-15 black, then the black background.
        const std::string want = std::string(c.name) == "one.bmp" ? std::string("\x80\0\0", 3)
                                                                  : std::string("\xFF\xF0\0", 3);
        EXPECT_EQ(Slurp(dir.path() / "out.bin"), want) << c.name;
    }
}

TEST(HeadlessWorkbench, ImportSetsTheModeAndTakesH) {
    ScratchDir dir;
    WriteRomSet(dir);
    std::string gray = Bmp(8, 2, 8, 0);
    gray.replace(54, 4, std::string("\x64\x64\x64\x00", 4)); // palette 0: gray 100
    std::ofstream(dir.path() / "g.bmp", std::ios::binary) << gray;
    const std::string d = "--dir " + dir.path().string() + " --port 2=0 --port 15=0 ";
    // Gray 100 is above 0 + 78 and not above 22 + 78.
    for (const auto& [h, want] : {std::pair{0, '\xFF'}, {21, '\xFF'}, {22, '\0'}}) {
        const RunResult r =
            RunHeadless(d + "--import-pic 9:g.bmp:" + std::to_string(h) + " --dump-mem 0x8000:1:-");
        EXPECT_EQ(r.out, std::string(1, want)) << h;
    }
    // --import-after: frames run first, then the picture goes in.
    RunResult late = RunHeadless(d + "--import-pic 9:g.bmp --import-after 3 --frames 1 "
                                     "--dump-mem 0x8000:1:- --dump-regs regs.json");
    EXPECT_EQ(late.out, "\xFF") << late.out;
    EXPECT_NE(Slurp(dir.path() / "regs.json").find("\"FrameCount\": 4,"), std::string::npos);
    EXPECT_EQ(RunHeadless(d + "--import-after 3").status, 2);
    const RunResult r = RunHeadless(d + "--import-pic 16:g.bmp --dump-regs -");
    ASSERT_EQ(r.status, 0) << r.out;
    const size_t at = r.out.find("\"PortLatch\": [");
    ASSERT_NE(at, std::string::npos);
    std::string latches = r.out.substr(at + 14);
    for (int i = 0; i < 6; ++i)
        latches = latches.substr(latches.find(',') + 1);
    EXPECT_EQ(std::stoi(latches) & 3, 2);
    for (const char* bad : {"11:g.bmp", "9:g.bmp:200", "9", "x:g.bmp"})
        EXPECT_EQ(RunHeadless(d + "--import-pic " + bad).status, 2) << bad;
}

TEST(HeadlessWorkbench, ConvertsTvcasmAndGivesOpcodeHelp) {
    ScratchDir dir;
    WriteRomSet(dir);
    std::ofstream(dir.path() / "in.tvcasm", std::ios::binary)
        << "; demo\nSTART:\n LD A,5 ; five\n CALL SUB\nSUB:\n RET\nMSG DB '\xE1'\n";
    const std::string d = "--dir " + dir.path().string() + " ";
    RunResult r = RunHeadless(d + "--convert-tvcasm in.tvcasm:out.asm");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(Slurp(dir.path() / "out.asm"),
              " \r\nSTART:\r\nLD A,5 \r\ncall @SUB\r\nSUB:\r\nRET\r\nMSG:\r\nDB \"\xC3\xA1\"\r\n");
    // The converted source assembles as it stands.
    r = RunHeadless(d + "--asm out.asm --asm-symbols -");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(RunHeadless(d + "--convert-tvcasm missing:out.asm").status, 1);
    EXPECT_EQ(RunHeadless(d + "--convert-tvcasm in.tvcasm").status, 2);

    r = RunHeadless(d + "--opcode-help NOP");
    EXPECT_EQ(r.out, "NOP\nOpcode: ------\nSize (byte): 1\nColock cycles: 4\nNo operation is "
                     "performed.\nC: unaffected\nN: unaffected\nP/V: unaffected\nH: unaffected\nZ: "
                     "unaffected\nS: unaffected\n");
    const std::string plain = RunHeadless(d + "--opcode-help 'SLL'").out;
    const std::string undoc = RunHeadless(d + "--opcode-help 'SLL:undoc'").out;
    EXPECT_EQ(plain, "");
    EXPECT_NE(undoc.find("SLL B*\n"), std::string::npos) << undoc;
}

} // namespace
} // namespace tvc::test
