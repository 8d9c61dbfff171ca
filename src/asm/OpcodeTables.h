// The three Z80 opcode tables. Each is one whole text, searched by substring:
// the disassembler looks up ">" and the opcode in OpcodeDisasmText, the
// assembler looks up its line, cut down to the mnemonic, in OpcodeAsmText,
// and the workbench's opcode help finds ">mnemonic<" in OpcodeInfoText.
// There is no parsed form; the row layout below is the whole interface.
//
// OpcodeDisasmText, one row per opcode:
//   col 1 ">", cols 2-7 the opcode in hex (2, 4 or 6 digits, blank padded),
//   cols 8-13 blank, from col 14 the mnemonic with the place-holders "nn",
//   "n", "(PC+e)", "IX+d", "IY+d", and a trailing "*" when undocumented.
//   DDCB and FDCB rows give the prefix and the last byte, no displacement.
// OpcodeAsmText: the same, with the operand type in col 9 (blank, n, m, e,
//   d, x, y) and the place-holder cut out of the mnemonic; ends with the row
//   ">end of file".
// OpcodeInfoText: "flags|size|cycles|description>mnemonic<", the flags
//   being C, N, P/V, H, Z, S; empty lines are allowed.
//
// The tables are program resources, the same for every machine, so they live
// once per process and are read-only after loading.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tvc {

class Machine;

// Fills the three tables from the resources "Z80oPCodes", "z80opcodesjav"
// and "z80opinfo". A missing resource is a fatal stop. A row that does not
// fit its table's layout is reported in a message box, and the table is
// used as it stands: every user of the tables copes with any text.
void OpcodeTablesLoad(Machine& m);

// The same from given table texts (single-byte text, CR LF line ends).
void OpcodeTablesLoadText(Machine& m, std::string_view disasm, std::string_view assembler,
                          std::string_view info);

// The loaded tables, widened to UTF-8 (the 0x92 apostrophe of EX AF,AF' in
// the disassembler's table becomes U+2019); empty before loading.
const std::string& OpcodeDisasmText();
const std::string& OpcodeAsmText();
const std::string& OpcodeInfoText();

enum class OpcodeTable { Disasm, Asm, Info };

struct TableFault {
    int32_t line; // 1-based
    std::string reason;
};

// The first line of a table text that does not fit the table's layout.
std::optional<TableFault> CheckOpcodeTable(OpcodeTable table, std::string_view text);

} // namespace tvc
