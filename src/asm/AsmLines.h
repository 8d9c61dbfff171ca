// The assembler's two line routines and its symbol lookup. A line comes as
// a pair: `raw` as typed, `line` its normal form (Strim(TabTrim(raw))).
// The result is the line's size in bytes (0 or more), which the pass adds to
// AsmAddress, or an error code below zero.
//
// Bytes go to memory only through MemWrite, with the paging PortLatch[2]
// selects at that moment; nothing written is ever taken back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tvc {

class Machine;
struct AsseControls;

enum AsmError : int32_t {
    kSyntaxError = -1,   // "Syntax Error!"
    kOverflowError = -2, // "OverFlow Error!"
    kJumpTooBig = -3,    // "Jump too Big!" (no path produces it)
    kExistingName = -4,  // "Existing name!" (pass 1 only)
    kInternalError = -10 // "Internal Error P1!" / "Internal Error P2!"
};

// The text Text13 shows for a code in a pass; empty for an unknown code.
std::string AsmMessage(int32_t code, int pass);

// Symbol lookup: the value of the first List1 entry whose 25 characters from
// column 8 are name + ":", by the number rule on its columns 1 to 5; -1 when
// there is none.
int32_t cimh(AsseControls& asse, std::string_view name);

// Brings the symbol index up to List1 (rebuilt when the list was cleared).
void SymbolIndexUpdate(AsseControls& asse);

// Adds a List1 entry: value text padded to 7 columns, then the name.
void AddSymbol(AsseControls& asse, std::string_view value, std::string_view name);

// Labels longer than this with their colon are refused where they are defined:
// the visible symbol list has 22 columns for the name.
inline constexpr size_t kMaxNameLength = 22;

int32_t AsmPass1Line(Machine& m, std::string line, const std::string& raw);
int32_t AsmPass2Line(Machine& m, std::string line, const std::string& raw);

} // namespace tvc
