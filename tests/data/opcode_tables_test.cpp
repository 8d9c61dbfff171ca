// The opcode tables as data: row layout, the undocumented marks, the help
// rows, and the loader's report of a malformed row. The assembler and
// disassembler tests check the rows they depend on.
#include "asm/OpcodeTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "data/Embedded.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

std::string Resource(const char* name) {
    auto text = EmbeddedResource(name);
    EXPECT_TRUE(text) << name;
    return text ? std::string(*text) : std::string();
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t pos = 0, eol; (eol = text.find("\r\n", pos)) != std::string::npos; pos = eol + 2)
        lines.push_back(text.substr(pos, eol - pos));
    return lines;
}

bool Starred(const std::string& row) {
    return !row.empty() && row.back() == '*';
}

std::string HexField(const std::string& row) {
    const std::string field = row.substr(1, 6);
    return field.substr(0, field.find(' '));
}

// The published documented opcodes, written out independently of the tables.
std::set<std::string> DocumentedOpcodes() {
    std::set<std::string> codes;
    auto hex = [](const char* prefix, int op) {
        char s[8];
        snprintf(s, sizeof s, "%s%02X", prefix, op);
        return std::string(s);
    };
    for (int op = 0; op < 256; ++op) {
        if (op != 0xCB && op != 0xDD && op != 0xED && op != 0xFD) codes.insert(hex("", op));
        if (op < 0x30 || op > 0x37) codes.insert(hex("CB", op));
        if ((op & 7) == 6 && op != 0x36)
            codes.insert(hex("DDCB", op)), codes.insert(hex("FDCB", op));
    }
    for (int op :
         {0x40, 0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x4B, 0x4D, 0x4F,
          0x50, 0x51, 0x52, 0x53, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x5B, 0x5E, 0x5F, 0x60, 0x61,
          0x62, 0x67, 0x68, 0x69, 0x6A, 0x6F, 0x72, 0x73, 0x78, 0x79, 0x7A, 0x7B, 0xA0, 0xA1,
          0xA2, 0xA3, 0xA8, 0xA9, 0xAA, 0xAB, 0xB0, 0xB1, 0xB2, 0xB3, 0xB8, 0xB9, 0xBA, 0xBB})
        codes.insert(hex("ED", op));
    for (int op : {0x09, 0x19, 0x21, 0x22, 0x23, 0x29, 0x2A, 0x2B, 0x34, 0x35, 0x36, 0x39, 0x46,
                   0x4E, 0x56, 0x5E, 0x66, 0x6E, 0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x77, 0x7E,
                   0x86, 0x8E, 0x96, 0x9E, 0xA6, 0xAE, 0xB6, 0xBE, 0xE1, 0xE3, 0xE5, 0xE9, 0xF9})
        codes.insert(hex("DD", op)), codes.insert(hex("FD", op));
    return codes;
}

TEST(OpcodeTables, EveryRowFitsItsLayout) {
    EXPECT_EQ(CheckOpcodeTable(OpcodeTable::Disasm, Resource("z80opcodes")), std::nullopt);
    EXPECT_EQ(CheckOpcodeTable(OpcodeTable::Asm, Resource("z80opcodesjav")), std::nullopt);
    EXPECT_EQ(CheckOpcodeTable(OpcodeTable::Info, Resource("z80opinfo")), std::nullopt);
}

TEST(OpcodeTables, DisassemblerRowsStartWithThePrefixesAndMarkTheUndocumented) {
    const auto rows = Lines(Resource("z80opcodes"));
    const char* prefixes[] = {"CB", "ED", "DD", "FD", "DDCB", "FDCB"};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(HexField(rows[i]), prefixes[i]);
    std::set<std::string> unstarred, seen;
    for (size_t i = 6; i < rows.size(); ++i) {
        EXPECT_TRUE(seen.insert(HexField(rows[i])).second) << "twice: " << rows[i];
        if (!Starred(rows[i])) unstarred.insert(HexField(rows[i]));
    }
    // ED 63 and ED 6B are LD (nn),HL and LD HL,(nn) in another encoding.
    auto expected = DocumentedOpcodes();
    expected.insert({"ED63", "ED6B"});
    EXPECT_EQ(unstarred, expected);
}

TEST(OpcodeTables, AssemblerRowsKeepTheirKeys) {
    const std::string text = Resource("z80opcodesjav");
    EXPECT_TRUE(text.ends_with("\r\n>end of file\r\n"));
    // A key hit at p has the hex field at p - 10 and the type at p - 3, and
    // the first row of a key is the one the assembler gets.
    for (const std::string& row : Lines(text)) {
        if (row == ">end of file") continue;
        const std::string key = "  " + row.substr(13) + "\r\n";
        const size_t p = text.find(key);
        ASSERT_NE(p, std::string::npos) << row;
        ASSERT_GE(p, 11u);
        EXPECT_EQ(text[p - 11], '>') << row;
        EXPECT_TRUE(std::string(" nmedxy").find(text[p - 3]) != std::string::npos) << row;
    }
    EXPECT_EQ(text.find("  RST 8\r\n"), std::string::npos);
}

TEST(OpcodeTables, HelpRowsFollowTheDisassemblerRows) {
    const auto disasm = Lines(Resource("z80opcodes"));
    std::vector<std::string> info;
    for (const auto& line : Lines(Resource("z80opinfo")))
        if (!line.empty()) info.push_back(line);
    ASSERT_EQ(info.size() + 6, disasm.size());
    for (size_t i = 0; i < info.size(); ++i) {
        std::string name = disasm[i + 6].substr(13);
        if (Starred(name)) name.pop_back();
        if (name == "EX AF,AF\x92") name = "EX AF,AF'";
        // The size is the opcode bytes and one byte per place-holder letter,
        // the only lower-case letters of a disassembler row.
        size_t size = HexField(disasm[i + 6]).size() / 2;
        for (char c : name)
            size += (c == 'n' || c == 'e' || c == 'd');
        std::transform(name.begin(), name.end(), name.begin(), ::tolower);
        EXPECT_TRUE(info[i].ends_with(">" + name + "<")) << info[i] << " / " << name;
        EXPECT_EQ(info[i].substr(7, info[i].find('|', 7) - 7), std::to_string(size)) << info[i];
    }
    EXPECT_EQ(info[0], "------|1|4|No operation is performed.>nop<");
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
    const size_t p = text.find(from);
    EXPECT_NE(p, std::string::npos) << from;
    return p == std::string::npos ? text : text.replace(p, from.size(), to);
}

TEST(OpcodeTables, AMalformedRowIsReportedAtLoadWithTableAndLine) {
    const std::string disasm = Resource("z80opcodes"), assembler = Resource("z80opcodesjav"),
                      info = Resource("z80opinfo");
    // clang-format off
    const struct { int table; std::string from, to, name, line; } cases[] = {
        {0, ">00          NOP", ">0G          NOP", "Z80OPCODES", "line 7:"},
        {0, ">00          NOP", ">00  NOP", "Z80OPCODES", "line 7:"},
        {0, ">01          LD BC,nn", "01           LD BC,nn", "Z80OPCODES", "line 8:"},
        {0, ">CB          CB\r\n", ">CB          CB\n", "Z80OPCODES", "line 1:"},
        {1, ">06     n    LD B,", ">06     q    LD B,", "Z80OPCODESJAV", "line 13:"},
        {1, ">end of file\r\n", ">end of file", "Z80OPCODESJAV", "line 1282:"},
        {1, ">end of file\r\n", "", "Z80OPCODESJAV", "line 1281:"},
        {2, "------|1|4|No operation", "----Q-|1|4|No operation", "Z80OPINFO", "line 1:"},
        {2, "|1|4|No operation", "|1|x|No operation", "Z80OPINFO", "line 1:"},
        {2, "performed.>nop<", "performed.>NOP<", "Z80OPINFO", "line 1:"}};
    // clang-format on
    for (const auto& c : cases) {
        test::TestMachine tm;
        std::string texts[] = {disasm, assembler, info};
        texts[c.table] = Replace(texts[c.table], c.from, c.to);
        OpcodeTablesLoadText(tm.m(), texts[0], texts[1], texts[2]);
        ASSERT_EQ(tm.host.messages.size(), 1u) << c.to;
        EXPECT_NE(tm.host.messages[0].text.find(c.name + ", " + c.line), std::string::npos)
            << tm.host.messages[0].text;
    }
    test::TestMachine tm;
    OpcodeTablesLoad(tm.m());
    EXPECT_TRUE(tm.host.messages.empty());
    EXPECT_TRUE(tm.host.fatals.empty());
    EXPECT_NE(OpcodeDisasmText().find(">08          EX AF,AF\u2019\r\n"), std::string::npos);
    EXPECT_EQ(OpcodeAsmText(), assembler);
    EXPECT_EQ(OpcodeInfoText(), info);
}

} // namespace
} // namespace tvc
