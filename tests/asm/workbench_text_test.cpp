// The workbench's text tools: the tvcasm converter, Format, the opcode help,
// OPEN and SAVE, and the listing's rich text.
#include <gtest/gtest.h>

#include <filesystem>

#include "asm/Converter.h"
#include "asm/OpcodeHelp.h"
#include "asm/OpcodeTables.h"
#include "asm/SourceFiles.h"
#include "asm/SourceFormat.h"
#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

// clang-format off
TEST(Converter, NineStepsInOrder) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        // comment blanked (3 blanks with the one before), 3 blanks to 1, CALL
        {"LOOP: CALL FOO ;x", "LOOP: call @FOO "},
        {"X EQU 5", "X: EQU 5"},
        {"MSG DB 'AB'", "MSG:\r\nDB \"AB\""},
        // a ";" inside a string cuts it as well
        {"a';'b", "a\" "},
        // LF and lone CR become CR LF before the comment step looks for it
        {"A ;c\rB", "A \r\nB"},
        // TAB to blank, the line-start blank dropped; an indented DB stays
        {"x\n\tNOP", "x\r\nNOP"}, {"A\r\n  DB 1", "A\r\nDB 1"},
        // a blank run of 13 ends as one
        {"a             b", "a b"},
        // the jump table, exact case only
        {"JR Z,X", "jr Z,@X"}, {"JP X", "jp @X"}, {"JR NC,X", "JR NC,X"}, {"jp x", "jp x"},
        {"call @x", "call @@x"}, // not idempotent
    };
    for (auto [in, out] : cases) EXPECT_EQ(ConvertTvcasm(in), out) << '"' << in << '"';
}
// clang-format on

// clang-format off
TEST(Format, FirstFittingRuleGivesTheColour) {
    const std::pair<const char*, int32_t> cases[] = {
        {"  LOOP:  ", 0xFF0000}, {"'note:", 0xFF0000}, {" *BREAK", 0x1919DE}, {"Dw 7", 0xE119DE},
        {"DB", 0}, {"ORG 100", 0xFF0000}, {" ORG 100", 0}, {"org 100", 0}, {"\t*X", 0},
    };
    for (auto [line, colour] : cases) EXPECT_EQ(FormatLineColour(line), colour) << line;
}
// clang-format on

TEST(Format, CommentsTurnGreenAndLineEndsStay) {
    const std::string text = "LD A,1 'c\r\nX:\nNOP\r*B";
    const std::vector<ListingRun> want = {
        {"LD A,1 ", 0}, {"'c\r\n", 0x379B37}, {"X:\n", 0xFF0000}, {"NOP\r", 0}, {"*B", 0x1919DE}};
    const auto runs = Format(text);
    ASSERT_EQ(runs.size(), want.size());
    for (size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(runs[i].text, want[i].text) << i;
        EXPECT_EQ(runs[i].colour, want[i].colour) << i;
    }
    EXPECT_TRUE(Format("").empty());
}

class OpcodeHelpTest : public ::testing::Test {
  protected:
    test::TestMachine tm;
    // Rows of the disassembler's table whose mnemonic (column 14 on) begins
    // with `prefix`, as the help lists them.
    static std::vector<std::string> RowsStarting(const std::string& prefix, bool undoc) {
        std::vector<std::string> rows;
        const std::string& t = OpcodeDisasmText();
        for (size_t p = 0; p < t.size();) {
            size_t e = t.find("\r\n", p);
            if (e == std::string::npos) e = t.size();
            const std::string row = t.substr(p, e - p);
            if (row.size() > 13) {
                std::string mn = row.substr(13);
                while (!mn.empty() && mn.back() == ' ')
                    mn.pop_back();
                if (mn.rfind(prefix, 0) == 0 && (undoc || mn.back() != '*')) rows.push_back(mn);
            }
            p = e + 2;
        }
        return rows;
    }
};

// The rows that begin as the line does up to the cursor; a full operand
// finds nothing, and within 255 characters the line left of the cursor is tried.
TEST_F(OpcodeHelpTest, LinesGiveTheRowsThatBeginSo) {
    const struct {
        std::string text;
        size_t cursor;
        bool undoc;
        const char* prefix; // nullptr: no help at all
        bool selected;
    } cases[] = {{"LD", 2, false, "LD", false},
                 {"  ld a,", 7, false, "LD A,", false},
                 {"NOP 'x", 6, false, "NOP", true},
                 {"X:\r\nNOP", 7, false, "NOP", true},
                 {"NOP", 0, false, nullptr, false},
                 {"X:\r\nNOP", 2, false, "#", false},
                 {"LD A,15", 7, false, "#", false},
                 {"HALT X", 3, false, "HALT", true},
                 {"NOP" + std::string(252, ' ') + "X", 1, false, "NOP", true}};
    for (const auto& c : cases) {
        const auto r = OpcodeHelp(c.text, c.cursor, c.undoc);
        ASSERT_EQ(r.has_value(), c.prefix != nullptr) << c.text;
        if (!r) continue;
        EXPECT_EQ(r->List2, RowsStarting(c.prefix, c.undoc)) << c.text;
        EXPECT_EQ(r->selected, c.selected ? 0 : -1) << c.text;
    }
}

TEST_F(OpcodeHelpTest, PanelFromTheInfoTable) {
    const auto inc = OpcodeInfo("INC B");
    ASSERT_TRUE(inc);
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ(inc->Label7[i].caption, FlagCaption("-0V+++"[i])->caption) << i;
    EXPECT_FALSE(OpcodeInfo("NOT AN OPCODE"));
    ASSERT_TRUE(OpcodeInfo("EX AF,AF\xE2\x80\x99"));
    ASSERT_TRUE(OpcodeInfo("SLL B*"));
}

// One caption of each colour; the panel test reads the others.
// clang-format off
TEST(OpcodeHelp, FlagCaptionsAndColours) {
    const struct { char c; const char* caption; int32_t colour; } cases[] = {
        {'-', "unaffected", 0xFFFFFF}, {'P', "detects parity", 0xFF00},
        {'*', "exceptional", 0xFF}, {' ', "unknown", 0xFFFF}};
    for (const auto& c : cases) {
        EXPECT_EQ(FlagCaption(c.c).value().caption, c.caption);
        EXPECT_EQ(FlagCaption(c.c).value().colour, c.colour) << c.c;
    }
    EXPECT_FALSE(FlagCaption('Q'));
}
// clang-format on

TEST(SourceFiles, TextIsUtf8ElseWindows1250) {
    const std::pair<std::string, std::string> cases[] = {
        {"DB \"\xC3\x81\"", "DB \"\xC3\x81\""},           // UTF-8 Á stays
        {"DB \"\xC1\"", "DB \"\xC3\x81\""},               // Windows-1250 Á
        {"\xEF\xBB\xBFNOP", "NOP"},                       // byte-order mark dropped
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"}, // a surrogate is no UTF-8
        {"\xC3", "\xC4\x82"},                             // cut sequence
        {std::string("a\0b", 3), std::string("a\0b", 3)}};
    for (const auto& [in, out] : cases)
        EXPECT_EQ(SourceText(in), out) << in;
}

TEST(SourceFiles, SaveWritesCrLfAndOpenReadsItBack) {
    test::ScratchDir dir;
    ASSERT_TRUE(WriteSourceFile("a.asm", "old text that is longer"));
    ASSERT_TRUE(WriteSourceFile("a.asm", "a\nb\rc\r\n\xC3\x81"));
    EXPECT_EQ(test::Slurp("a.asm"), "a\r\nb\r\nc\r\n\xC3\x81");
    EXPECT_EQ(ReadSourceFile("a.asm"), "a\r\nb\r\nc\r\n\xC3\x81");
    EXPECT_FALSE(ReadSourceFile("missing.asm"));
    std::filesystem::create_directory("d");
    EXPECT_FALSE(ReadSourceFile("d"));
    EXPECT_FALSE(WriteSourceFile("d", "x"));
    std::filesystem::resize_file("a.asm", kMaxSourceFile);
    EXPECT_TRUE(ReadSourceFile("a.asm"));
    std::filesystem::resize_file("a.asm", kMaxSourceFile + 1);
    EXPECT_FALSE(ReadSourceFile("a.asm"));
}

TEST(SourceFiles, ListingRtfHasAColourTableAndAParagraphPerLine) {
    const std::vector<ListingRun> runs = {
        {"0x2710", 0x6E1478}, {"\tLD A,{1}\\\n", 0}, {"\xC1\n", 0x6E1478}};
    const std::string rtf = ListingRtf(runs);
    EXPECT_EQ(rtf.rfind("{\\rtf1", 0), 0u);
    EXPECT_NE(rtf.find("{\\colortbl ;\\red120\\green20\\blue110;\\red0\\green0\\blue0;}"),
              std::string::npos);
    EXPECT_NE(rtf.find("\\cf1 0x2710\\cf2 \\tab LD A,\\{1\\}\\\\\\par\n\\cf1 \\'c1\\par\n}"),
              std::string::npos)
        << rtf;
}

} // namespace
} // namespace tvc
