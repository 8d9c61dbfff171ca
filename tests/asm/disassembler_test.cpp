#include "asm/Disassembler.h"

#include <gtest/gtest.h>

#include "asm/OpcodeTables.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

class DisassembleTest : public ::testing::Test {
  protected:
    void SetUp() override { OpcodeTablesLoad(tm.m()); }

    // Mnemonic of the one instruction at address, and its size.
    std::pair<std::string, int32_t> One(int32_t address, const std::vector<uint8_t>& bytes) {
        tm.Load(address, bytes, false);
        int32_t at = address;
        std::string text = Disassemble(tm.m(), at, 1, 0);
        return {text, at - address};
    }

    test::TestMachine tm;
};

// clang-format off
// The cases the every-row cross-check does not reach: odd operand values,
// opcodes without a row, the store's display form, the top of memory.
TEST_F(DisassembleTest, EdgesOfTheOperandsAndOfMemory) {
    const struct { int32_t address; std::vector<uint8_t> bytes; const char* text; int32_t size; }
    cases[] = {
        {0x1000, {0x18, 0xFE}, "JR 1000", 2},           {0x1000, {0x18, 0x80}, "JR 0F82", 2},
        {0x1000, {0x10, 0x7F}, "DJNZ 1081", 2},         {0x1000, {0xDD, 0x7E, 0xFE}, "LD A,(IX+FE)", 3},
        {0x1000, {0xED, 0x00}, ">ED00 Unknown!", 2},    {0x1000, {0xDD, 0x00}, ">DD00 Unknown!", 2},
        {0x1000, {0xDD, 0xDD, 0x21}, ">DDDD Unknown!", 2}, {0x1000, {0xFD, 0xF0}, ">FDF0 Unknown!", 2},
        {0x1000, {0xFD, 0x36, 0x80, 0xFF}, "LD IY+80),FF", 4},
        // Operands past 0xFFFF come from where MemRead maps them; targets are not wrapped.
        {0xFFFE, {0x01, 0x34, 0x12}, "LD BC,1234", 3}, {0xFFFF, {0x18, 0x7F}, "JR 10080", 2},
        {0xFFFE, {0xDD, 0xCB, 0x01, 0x06}, "RLC (IX+01)", 4}, {0x0000, {0x18, 0x80}, "JR FFFFFF82", 2}};
    for (const auto& c : cases) {
        auto [text, size] = One(c.address, c.bytes);
        EXPECT_EQ(text, c.text) << std::hex << c.address;
        EXPECT_EQ(size, c.size) << c.text;
    }
}
// clang-format on

TEST_F(DisassembleTest, LinesCarryTheirAddressAndAreJoinedByCrLf) {
    tm.Load(0x1000, {0x00, 0x3E, 0x05, 0x18, 0xFE, 0xC9}, false);
    int32_t address = 0x1000;
    EXPECT_EQ(Disassemble(tm.m(), address, 3, 1), " 1000 NOP\r\n 1001 LD A,05\r\n 1003 JR 1003");
    EXPECT_EQ(address, 0x1005);
    EXPECT_EQ(Disassemble(tm.m(), address, 1, 0), "RET");
    EXPECT_EQ(address, 0x1006);
    EXPECT_EQ(Disassemble(tm.m(), address, 0, 1), "");
    EXPECT_EQ(address, 0x1006);
}

// Random memory is the fuzz target's business; far outside memory the reads
// give 0xFF, which is RST 38H, and the address arithmetic wraps instead of
// overflowing.
TEST_F(DisassembleTest, FarOutsideMemoryAddressesWrap) {
    for (int32_t start : {0x3FFFE, 0x7FFFFFFE, -100}) {
        int32_t address = start;
        EXPECT_EQ(Disassemble(tm.m(), address, 1, 0), "RST 38H");
        address = start;
        Disassemble(tm.m(), address, 5, 1);
        EXPECT_EQ(address, static_cast<int32_t>(static_cast<uint32_t>(start) + 5u)) << start;
    }
}

} // namespace
} // namespace tvc
