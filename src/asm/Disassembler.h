// Memory to mnemonic text, driven by OpcodeDisasmText (asm/OpcodeTables.h).
#pragma once

#include <cstdint>
#include <string>

namespace tvc {

class Machine;

// Disassembles `lines` instructions from `address`, reading through MemRead
// so that the current paging applies. On return `address` stands behind the
// last instruction read. `format` 1 puts " HHHH " (the address) in front of
// each line, any other value gives the mnemonics alone. Lines are separated
// by CR LF, with none after the last.
//
// Operands are shown as bare upper-case hex ("LD A,05", "JP 1234"), a
// relative jump by its target, an index displacement unsigned
// ("(IX+FE)"); an opcode without a row shows as its key and "Unknown!".
// The two-operand index store shows as "LD IX+dd),nn", without the opening
// parenthesis, as the monitor has always shown it. Addresses past 0xFFFF are
// read as MemRead takes them; any memory content disassembles.
std::string Disassemble(Machine& m, int32_t& address, int32_t lines, int32_t format);

} // namespace tvc
