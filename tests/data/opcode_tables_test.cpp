// The opcode tables as data: row layout and the loader's report of a
// malformed row. The undocumented marks, the order of the rows
// and the assembler's keys are checked against z80dasm and pasmo by the
// cross-check.
#include "asm/OpcodeTables.h"

#include <gtest/gtest.h>


#include "data/Embedded.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

std::string Resource(const char* name) {
    auto text = EmbeddedResource(name);
    EXPECT_TRUE(text) << name;
    return text ? std::string(*text) : std::string();
}

TEST(OpcodeTables, EveryRowFitsItsLayout) {
    EXPECT_EQ(CheckOpcodeTable(OpcodeTable::Disasm, Resource("z80opcodes")), std::nullopt);
    EXPECT_EQ(CheckOpcodeTable(OpcodeTable::Asm, Resource("z80opcodesjav")), std::nullopt);
    EXPECT_EQ(CheckOpcodeTable(OpcodeTable::Info, Resource("z80opinfo")), std::nullopt);
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
}

} // namespace
} // namespace tvc
