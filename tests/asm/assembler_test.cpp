// The assembler as the workbench's "Compile" button runs it: sources in,
// bytes in memory, symbols, listing and messages out.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>

#include "asm/AsmLines.h"
#include "asm/AsmText.h"
#include "asm/Assembler.h"
#include "asm/OpcodeTables.h"
#include "hw/Memory.h"
#include "support/Codepage.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

constexpr uint8_t kFill = 0xEE; // what memory holds where nothing was written

struct Compiled {
    test::TestMachine tm;
    int32_t result;
    explicit Compiled(const std::string& source, int32_t latch = 0xB0) {
        for (int32_t a = 0; a < 0x10000; ++a)
            MemWrite(tm.m(), a, kFill);
        tm.m().bus.PortLatch[2] = static_cast<uint8_t>(latch);
        tm.m().forms.asse.RText1 = source;
        result = asse::Command1_Click(tm.m());
    }
    AsseControls& asse() { return tm.m().forms.asse; }
    std::vector<int> Bytes(int32_t at, int n) {
        std::vector<int> out;
        for (int i = 0; i < n; ++i)
            out.push_back(MemRead(tm.m(), at + i));
        return out;
    }
};

struct Case {
    std::string source;
    int32_t at;
    std::vector<int> bytes; // expected from `at`; for a failure, what stands there after it
    int line = 0, pass = 0; // where a failure is reported
    std::string message = {};
    std::vector<std::pair<std::string, int32_t>> symbols = {};
};

TEST(Assembler, SourcesToBytesSymbolsAndMessages) {
    const int E = kFill;
    const std::vector<std::pair<std::string, int32_t>> X100 = {{"X", 100}}, X103 = {{"X", 103}};
    // clang-format off
    const Case cases[] = {
        // Numbers, comments, the normal form.
        {"ORG 100\nLD A,15\nld a,$15\n\tLd  B , 7", 100, {0x3E, 15, 0x3E, 0x15, 0x06, 7}},
        {"ORG 100\nNOP 'comment\n' whole line\nEX AF,AF'", 100, {0x00, 0x08, E}},
        {"ORG $FFFF\nNOP", 0xFFFF, {0x00}}, {"ORG 1000H\nNOP", 1000, {0x00}},
        {"ORG 100.5\nNOP\nORG 101.5\nHALT", 100, {0x00, E, 0x76}}, // half to even
        // Directives.
        {"ORG 100\nDB 1,2,3\nDB $123\nDW $1234,4660\nX:", 100, {1, 2, 3, 0x12, 0x12, 0x34, 0x12, 0x34},
         0, 0, "", {{"X", 108}}},
        {"ORG 100\nDS 3,65\nDS 2,$41\nX:", 100, {65, 65, 65, 0x41, 0x41, E}, 0, 0, "", {{"X", 105}}},
        {"ORG 100\nDB \"Az\xC3\x81\"\nX:", 100, {'A', 'z', 0x80, E}, 0, 0, "", X103},
        // Indented: 1 byte in pass 1.
        {"ORG 100\n  DB \"ABC\"\nX:", 100, {'A', 'B', 'C'}, 0, 0, "", {{"X", 101}}},
        {"ORG 100\n*BREAK\n*INT\n*NMI\n*RESET\nLD A,1\nX:", 100,
         {0xFD, 0xF3, 0xFD, 0xF0, 0xFD, 0xF1, 0xFD, 0xF2, 0x3E, 1}, 0, 0, "", {{"X", 110}}},
        {"ORG 100\n*FOO\nL:\nJP @L", 100, {0xC3, 102, 0, E}, 0, 0, "", {{"L", 102}}},
        // Instructions and their operand forms.
        {"ORG 100\nJP $C000\nLD HL,(513)\nLD (IX+5),B\nLD A,(IY+$FF)", 100,
         {0xC3, 0x00, 0xC0, 0x2A, 0x01, 0x02, 0xDD, 0x70, 5, 0xFD, 0x7E, 0xFF}},
        {"ORG 100\nLD (IX+$10),$20\nLD (IY+1),2\nX:", 100, {0xDD, 0x36, 0x10, 0x20, 0xFD, 0x36, 1, 2},
         0, 0, "", {{"X", 108}}},
        {"ORG 100\nRST $38\nRST 8H\nJR 5\nOUT (254),A\nIN A,($FE)", 100,
         {0xFF, 0xCF, 0x18, 5, 0xD3, 0xFE, 0xDB, 0xFE}},
        {"ORG 100\nLD IY,(30)\nX:", 100, {0xFD, 0x2A, 30, E}, 0, 0, "", X103}, // FD2A is type "n"
        {"ORG 100\nRLCA5\nX:", 100, {0x07}, 0, 0, "", X100}, // a blank-type second hit: size 0
        // Labels and constants.
        {"ORG 100\nL:\nDJNZ @L\nJR @F\nCALL NZ,@L\nF:", 100, {0x10, 0xFE, 0x18, 3, 0xC4, 100, 0}},
        {"K: EQU 5\nK: EQU 7\nW: EQU $1234\nORG 100\nLD A,@K\nLD HL,@W\nLD A,(IX+@K)", 100,
         {0x3E, 5, 0x21, 0x34, 0x12, 0xDD, 0x7E, 5}},
        {"ORG 100\nLD (@X),BC\nX:", 100, {0xED, 0x43, 103, 0}, 0, 0, "", X103}, // mis-sized
        {"ORG 100\nLD A,(@X)\nLD HL,(@X)\nX:", 100, {0x3A, 106, 0, 0x2A, 106, 0}},
        {"ABCDEFGHIJKLMNOPQRSTU:\nORG 1\nJP @ABCDEFGHIJKLMNOPQRSTU", 1, {0xC3, 0, 0}},
        // Errors, each on its line and pass, with what stays written.
        {"LOOP:\nLOOP:", 0, {}, 2, 1, "Existing name!"},  {"LOOP :", 0, {}, 1, 1, "Syntax Error!"},
        {"LOOP: NOP", 0, {}, 1, 1, "Internal Error P1!"}, {"K: EQU 1+2", 0, {}, 1, 1, "Syntax Error!"},
        {"ABCDEFGHIJKLMNOPQRSTUV:", 0, {}, 1, 1, "Syntax Error!"}, // 23 with the colon
        {"ORG 65536", 0, {}, 1, 1, "OverFlow Error!"},
        {"ORG .", 0, {}, 1, 1, "Syntax Error!"},
        {"ORG 9999999999", 0, {}, 1, 1, "Internal Error P1!"}, {"DB 256", 0, {}, 1, 1, "OverFlow Error!"},
        {"DS 0,65", 0, {}, 1, 1, "Syntax Error!"},
        {"ORG 100\nDB \"A\" 'note", 100, {E}, 2, 1, "Syntax Error!"},
        {"DS 3,256", 0, {}, 1, 1, "OverFlow Error!"},    {"DS 3", 0, {}, 1, 1, "Internal Error P1!"},
        {"    DS 3,1", 0, {}, 1, 1, "Syntax Error!"}, // indented: the count is read at a fixed column
        {"LD A,256", 0, {}, 1, 1, "OverFlow Error!"},    {"LD A,", 0, {}, 1, 1, "Syntax Error!"},
        {"LD A,99999999999", 0, {}, 1, 1, "Internal Error P1!"},
        {"RST 8", 0, {}, 1, 1, "Internal Error P1!"},    {"XOR @X", 0, {}, 1, 1, "OverFlow Error!"},
        {"LD IX,(@X)", 0, {}, 1, 1, "Internal Error P1!"},
        {"ORG 100\nDB 9\nJP @X", 100, {9}, 3, 2, "Syntax Error!"}, // undefined; pass 1 bytes stay
        {"ORG 100\nLD IXH,5", 100, {E}, 2, 2, "Internal Error P2!"},
        {"ORG 100\nLD (IX+5),256", 100, {E}, 2, 2, "OverFlow Error!"},
        {"K: EQU 300\nLD A,@K", 0, {}, 2, 2, "OverFlow Error!"},
        {"ORG 100\nJR @X\nDS 128,0\nX:", 100, {E}, 2, 2, "OverFlow Error!"},
        {"ORG 100\nJR @X\nDS 127,0\nX:", 100, {0x18, 127}}, {"PMEM=256", 0, {}, 1, 2, "Internal Error P2!"},
    };
    // clang-format on
    for (const Case& k : cases) {
        SCOPED_TRACE(k.source);
        Compiled c(k.source);
        AsseControls& a = c.asse();
        EXPECT_EQ(c.result, k.message.empty() ? 0 : -1);
        EXPECT_EQ(a.Text13.rfind(k.message.empty() ? "Completed: " : k.message, 0), 0u) << a.Text13;
        EXPECT_EQ(a.ErrorLine, k.line);
        EXPECT_EQ(a.ErrorPass, k.pass);
        EXPECT_EQ(a.Text13BackColor, k.message.empty() ? 0xC0FFC0 : 0x8080FF);
        if (!k.bytes.empty()) { EXPECT_EQ(c.Bytes(k.at, int(k.bytes.size())), k.bytes); }
        for (const auto& [name, value] : k.symbols)
            EXPECT_EQ(cimh(a, name), value) << name;
        EXPECT_EQ(c.tm.m().bus.PortLatch[2], 0xB0);
    }
}

TEST(Assembler, StatusSelectionAndSymbolList) {
    Compiled ok("ORG 100\nLOOP:\nK: EQU 42\nNOP");
    EXPECT_EQ(ok.asse().Label2, "101");
    EXPECT_EQ(ok.asse().Text14, "Pass2");
    EXPECT_EQ(ok.asse().RText1BackColor, 0xFFFFFF);
    EXPECT_EQ(ok.asse().List1, (std::vector<std::string>{"100    LOOP:", "42     K:"}));
    EXPECT_EQ(ok.asse().List3,
              (std::vector<std::string>{std::string("LOOP:") + std::string(17, ' ') + "100  ",
                                        std::string("K:") + std::string(20, ' ') + "42   "}));
    Compiled empty("");
    EXPECT_EQ(empty.asse().Label2, "0");

    // The bad line is selected in the normalised text; pass 1 also gives focus.
    Compiled bad("NOP\r\nNOP\nLD A,256\rNOP");
    EXPECT_EQ(bad.asse().RText1SelStart, 10);
    EXPECT_EQ(bad.asse().RText1SelLength, 8);
    EXPECT_TRUE(bad.asse().RText1Focus);
    EXPECT_EQ(bad.asse().ErrorLine, 3);
    Compiled bad2("NOP\nJP @X");
    EXPECT_FALSE(bad2.asse().RText1Focus);
    EXPECT_EQ(bad2.asse().Text14, "Pass2");
}

TEST(Assembler, ListingRunsAndDline) {
    Compiled l("' hello\nORG 10000\n*BREAK\nLD A,1\nnop");
    const std::vector<ListingRun> want = {
        {"' HELLO\n", 0x379B37}, {"ORG 10000\n", 0xFF0000}, {"*BREAK\n", 0x1919DE},
        {"0x2712", 0x6E1478},    {"\tLD A,1\n", 0},         {"0x2714", 0x6E1478},
        {"\tNOP\n", 0},
    };
    ASSERT_EQ(l.asse().RText2.size(), want.size());
    for (size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(l.asse().RText2[i].text, want[i].text);
        EXPECT_EQ(l.asse().RText2[i].colour, want[i].colour) << i;
    }
    const std::string& text = l.asse().RText2Text;
    EXPECT_TRUE(Dline(l.tm.m(), "0X2714"));
    EXPECT_EQ(l.asse().RText2SelStart, int32_t(text.find("0x2714")));
    EXPECT_EQ(l.asse().RText2SelLength, 6);
    EXPECT_FALSE(Dline(l.tm.m(), "0x9999"));
    EXPECT_TRUE(Dline(l.tm.m(), "NOP\n"));
    EXPECT_EQ(l.asse().RText2SelLength, 4); // up to the end of the text
}

TEST(Assembler, PagingLatchAndPmem) {
    test::TestMachine tm;
    Machine& m = tm.m();
    m.bus.PortLatch[2] = 0x12;
    // Pass 1 writes under 0xB0 (RAM at 100); pass 2 under PMEM= $B8 (U3 for
    // page 0: Mem[100 + 0xC000]), then PMEM=0 sends 0xC000 to the cartridge and
    // PMEM=$70 sends it to the system ROM, where the write is dropped.
    m.forms.asse.RText1 =
        "ORG 100\nPMEM=$B8\nDB \"\xC3\x81\"\nPMEM=0\nORG $C000\nDB 7\nPMEM=$70\nORG $C001\nDB 8";
    const uint8_t rom = m.bus.Mem[0xC001 + 0xC000];
    ASSERT_EQ(asse::Command1_Click(m), 0);
    EXPECT_EQ(m.bus.PortLatch[2], 0x12);
    EXPECT_EQ(m.bus.Mem[100], 0xC1);          // pass 1, untranslated
    EXPECT_EQ(m.bus.Mem[100 + 0xC000], 0x80); // pass 2, through TVCASC
    EXPECT_EQ(m.bus.Mem[0x14000], 7);         // cartridge
    EXPECT_EQ(m.bus.Mem[0xC001], 8);          // pass 1 only
    EXPECT_EQ(m.bus.Mem[0xC001 + 0xC000], rom);
}

TEST(Assembler, TVCASCTableAndSourceText) {
    const int from[] = {0xC1, 0xC9, 0xCD, 0xD3, 0xD6, 0xD5, 0xDA, 0xDC, 0xDB};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(TVCASC(from[i]), 0x80 + i);
        EXPECT_EQ(TVCASC(from[i] + 0x20), 0x90 + i);
    }
    EXPECT_EQ(TVCASC('A'), 'A');
    EXPECT_EQ(TVCASC(0xC2), 0xC2);
    EXPECT_EQ(NormaliseSource("a\r\nb\nc\rd\xC5\x91"), "a\r\nb\r\nc\r\nd\xF5");
    // No Windows-1250 byte for U+0080 nor U+4E00.
    EXPECT_EQ(NormaliseSource("\xEF\xBB\xBFx\xE2\x82\xAC\xE4\xB8\x80\xC2\x80"), "x\x80??");
    EXPECT_EQ(NormaliseSource("\xF5\xFF"), "\xF5\xFF"); // not UTF-8: taken as it stands
    for (int b = 0x80; b < 0x100; ++b) { // every character of Windows-1250 comes back as its byte
        const std::string utf8 = test::CodepageUtf8("CP1250", uint8_t(b));
        if (!utf8.empty()) { EXPECT_EQ(NormaliseSource(utf8), std::string(1, char(b))) << b; }
    }
    EXPECT_EQ(Strim(TabTrim(" ld\t a ,  b , c ")), "LD A,B,C");
    EXPECT_EQ(LeadingNumber("  -12.5x"), -12);
    EXPECT_EQ(LeadingNumber("13.5"), 14);
    EXPECT_EQ(LeadingNumber("ABC"), 0);
    EXPECT_FALSE(LeadingNumber("4294967296"));
}

TEST(Assembler, HundredThousandCharacterStop) {
    // The line that reaches the stop is the last one read.
    std::string src = "ORG 100\n" + std::string(99990 - 8, ' ') + "\nNOP\nHALT\nNOP\n";
    Compiled c(src);
    EXPECT_EQ(c.result, 0);
    EXPECT_EQ(c.Bytes(100, 3), (std::vector<int>{0x00, 0x76, kFill}));
    EXPECT_TRUE(c.asse().Truncated);
    Compiled whole("ORG 100\nNOP\n");
    EXPECT_FALSE(whole.asse().Truncated);
}

TEST(Assembler, IncbinFiles) {
    test::TestMachine tm;
    Machine& m = tm.m();
    tm.dir->Write("data.bin", {1, 2, 3});
    tm.dir->Write("big.bin", std::vector<uint8_t>(65537, 0));
    mkfifo((tm.dir->path() / "fifo.bin").c_str(), 0600);
    const struct {
        std::string source;
        std::string message;
    } cases[] = {
        {"INCBIN \"big.bin\"", "OverFlow Error!"},
        {"INCBIN X", "Syntax Error!"},
        {"INCBIN \"fifo.bin\"", "Internal Error P1!"},
        {"INCBIN \"none.bin\"", "Internal Error P1!"},
        {"ORG 100\nINCBIN \"Data.Bin\"\nX:\nNOP", ""}, // last: its results stand
    };
    for (const auto& k : cases) {
        m.forms.asse.RText1 = k.source;
        asse::Command1_Click(m);
        EXPECT_EQ(m.forms.asse.Text13.rfind(k.message.empty() ? "Completed" : k.message, 0), 0u)
            << k.source << ": " << m.forms.asse.Text13;
    }
    EXPECT_EQ(MemRead(m, 100), 1);
    EXPECT_EQ(MemRead(m, 102), 3);
    EXPECT_EQ(MemRead(m, 103), 0);
    EXPECT_EQ(cimh(m.forms.asse, "X"), 103);
    EXPECT_EQ(m.forms.asse.RText2Text.find("0x"), m.forms.asse.RText2Text.find("0x0067"));
}

TEST(Assembler, RunButtons) {
    test::TestMachine tm;
    Machine& m = tm.m();
    m.forms.asse.RText1 = "ORG 10000\nLD A,7\n*BREAK\nLD A,9";
    ASSERT_EQ(asse::Command1_Click(m), 0);
    asse::Command6_Click(m);
    EXPECT_EQ(m.cpu.RegPC, 10000);
    asse::Command13_Click(m); // runs to the *BREAK
    EXPECT_EQ(m.cpu.RegPC, 0x2714);
    EXPECT_EQ(m.cpu.RegA, 7);
    m.run.RunFlag = 1;
    asse::Command12_Click(m);
    EXPECT_EQ(m.run.RunFlag, 0);
    asse::Command7_Click(m);
    EXPECT_EQ(m.bus.Mem[0x0B22], 0xFF);
    EXPECT_EQ(m.cpu.RegPC, 0);
}

// The table index answers as the plain substring search does, for every
// row's key, every key cut short by a character, and lines it never holds.
TEST(Assembler, TableIndexMatchesTheSubstringSearch) {
    test::TestMachine tm;
    RefreshAsmIndex();
    const std::string& table = OpcodeAsmText();
    std::vector<std::string> lines = {"", "NOP ", " NOP", "LD  A,B", "X\r\nNOP", "end of file"};
    for (size_t pos = 0, eol; (eol = table.find("\r\n", pos)) != std::string::npos; pos = eol + 2) {
        const std::string key = table.substr(pos + 13, eol - pos - 13);
        lines.push_back(key);
        lines.push_back(key.substr(1));
        lines.push_back(key.substr(0, key.size() - 1));
    }
    for (const std::string& line : lines)
        EXPECT_EQ(FindAsmKey(line), table.find("  " + line + "\r\n")) << line;
}

} // namespace
} // namespace tvc
