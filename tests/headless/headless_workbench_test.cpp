// tvc-headless's workbench tools: --convert-tvcasm, --opcode-help and
// --import-pic over BMP files of several kinds, good and bad.
#include <gtest/gtest.h>

#include <fstream>
#include <utility>

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
    const uint32_t row = uint32_t(w * bpp / 8 + 3) / 4 * 4, palette = bpp == 8 ? 8 : 0;
    std::string s = "BM";
    const std::pair<uint32_t, int> header[] = {{54 + palette + row * h, 4},
                                               {0, 4},
                                               {54 + palette, 4},
                                               {40, 4},
                                               {uint32_t(w), 4},
                                               {uint32_t(h), 4},
                                               {1, 2},
                                               {uint32_t(bpp), 2},
                                               {0, 4},
                                               {row * h, 4},
                                               {2835, 4},
                                               {2835, 4},
                                               {palette / 4, 4},
                                               {0, 4}};
    for (auto [v, n] : header)
        Put(s, v, n);
    if (bpp == 8) Put(s, 0, 4), Put(s, 0xFFFFFF, 4);
    for (int y = 0; y < h; ++y) {
        std::string line;
        for (int x = 0; x < w; ++x)
            Put(line, x < white ? (bpp == 24 ? 0xFFFFFF : bpp == 16 ? 0x7FFF : 1) : 0, bpp / 8);
        line.resize(row, '\0');
        s += line;
    }
    return s;
}

TEST(HeadlessWorkbench, ImportsBmpKindsAndRefusesBadFiles) {
    HeadlessDir d;
    std::string huge = Bmp(4, 4, 24, 4);
    huge.replace(18, 8, std::string("\x60\xEA\x00\x00\x60\xEA\x00\x00", 8)); // 60000 x 60000
    // Pixels 0-7 white, 8-11 white and 12-15 black, then the black
    // background; "" for a file refused.
    const std::string stripes("\xFF\xF0\0", 3);
    const std::pair<std::string, std::string> cases[] = {
        {Bmp(16, 4, 24, 12), stripes},
        {Bmp(16, 4, 16, 12), stripes},
        {Bmp(16, 4, 8, 12), stripes},
        {Bmp(1, 1, 24, 1), std::string("\x80\0\0", 3)},
        {"LD A,5\r\nNOP\r\n", ""},
        {huge, ""},
        {Bmp(16, 4, 24, 12).substr(0, 40), ""}};
    for (const auto& [bytes, want] : cases) {
        std::ofstream(d.dir.path() / "p.bmp", std::ios::binary) << bytes;
        const RunResult r =
            d.Run("--port 2=0 --port 15=0 --import-pic 9:p.bmp --dump-mem 0x8000:3:-");
        EXPECT_EQ(r.status, want.empty() ? 1 : 0) << r.out;
        if (want.empty()) {
            EXPECT_NE(r.out.find("File Open error!"), std::string::npos) << r.out;
        } else {
            EXPECT_EQ(r.out, want);
        }
    }
}

TEST(HeadlessWorkbench, ImportSetsTheModeAndTakesH) {
    HeadlessDir d;
    std::string gray = Bmp(8, 2, 8, 0);
    gray.replace(54, 4, std::string("\x64\x64\x64\x00", 4)); // palette 0: gray 100
    std::ofstream(d.dir.path() / "g.bmp", std::ios::binary) << gray;
    const std::string paging = "--port 2=0 --port 15=0 ";
    // Gray 100 is not above 22 + 78: H reaches the importer.
    EXPECT_EQ(d.Run(paging + "--import-pic 9:g.bmp:22 --dump-mem 0x8000:1:-").out,
              std::string(1, '\0'));
    // --import-after: frames run first, then the picture goes in.
    const RunResult late = d.Run(paging + "--import-pic 9:g.bmp --import-after 3 --frames 1 "
                                          "--dump-mem 0x8000:1:- --dump-regs regs.json");
    EXPECT_EQ(late.out, "\xFF") << late.out;
    EXPECT_EQ(JsonValue(d.Read("regs.json"), "FrameCount"), 4);
    const RunResult mode = d.Run(paging + "--import-pic 16:g.bmp --dump-regs -");
    ASSERT_EQ(mode.status, 0) << mode.out;
    std::string latches = mode.out.substr(mode.out.find("\"PortLatch\": [") + 14);
    for (int i = 0; i < 6; ++i)
        latches = latches.substr(latches.find(',') + 1);
    EXPECT_EQ(std::stoi(latches) & 3, 2);
    for (const char* bad : {"--import-after 3", "--import-pic 11:g.bmp", "--import-pic 9:g.bmp:200",
                            "--import-pic 9", "--import-pic x:g.bmp"})
        EXPECT_EQ(d.Run(paging + bad).status, 2) << bad;
}

TEST(HeadlessWorkbench, ConvertsTvcasmAndGivesOpcodeHelp) {
    HeadlessDir d;
    std::ofstream(d.dir.path() / "in.tvcasm", std::ios::binary)
        << "; demo\nSTART:\n LD A,5 ; five\n CALL SUB\nSUB:\n RET\nMSG DB '\xE1'\n";
    ASSERT_EQ(d.Run("--convert-tvcasm in.tvcasm:out.asm").status, 0);
    EXPECT_EQ(d.Read("out.asm"),
              " \r\nSTART:\r\nLD A,5 \r\ncall @SUB\r\nSUB:\r\nRET\r\nMSG:\r\nDB \"\xC3\xA1\"\r\n");
    EXPECT_EQ(d.Run("--asm out.asm").status, 0); // the converted source assembles as it stands
    EXPECT_EQ(d.Run("--convert-tvcasm missing:out.asm").status, 1);
    EXPECT_EQ(d.Run("--convert-tvcasm in.tvcasm").status, 2);
    EXPECT_EQ(d.Run("--opcode-help NOP").out,
              "NOP\nOpcode: ------\nSize (byte): 1\nColock cycles: 4\nNo operation is performed.\n"
              "C: unaffected\nN: unaffected\nP/V: unaffected\nH: unaffected\nZ: unaffected\n"
              "S: unaffected\n");
    EXPECT_EQ(d.Run("--opcode-help 'SLL'").out, "");
    EXPECT_NE(d.Run("--opcode-help 'SLL:undoc'").out.find("SLL B*\n"), std::string::npos);
}

} // namespace
} // namespace tvc::test
