// The workbench's opcode help: the rows of the disassembler's table that fit
// the cursor line (List2), and the panel one row fills from the info table
// (Text8, Text7, Text10, Text11 and the six flag labels Label7).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvc {

struct FlagLabel {
    std::string caption;
    int32_t colour = 0xFFFF; // back colour, red in the low byte
};

struct OpcodePanel {
    std::string Text8, Text7, Text10, Text11; // flags field, size, cycles, description
    std::array<FlagLabel, 6> Label7;          // C, N, P/V, H, Z, S
    bool flagError = false;                   // a flag character outside the table: "error"
};

struct HelpResult {
    std::vector<std::string> List2;
    int32_t selected = -1; // the row selected, which fills the panel
};

// Caption and colour of one flag character; no value for a character the
// table does not know.
std::optional<FlagLabel> FlagCaption(char c);

// Rows of OpcodeDisasmText holding `key`, from each hit to its line end,
// trimmed; rows ending in "*" only when `undoc`.
std::vector<std::string> HelpRows(std::string_view key, bool undoc);

// Timer1's run over the editor text (UTF-8) with the cursor at byte `selStart`.
// No value where the help stops before clearing List2 (cursor at the start,
// an empty line). A line ends at its first CR or LF, or after 255 bytes.
std::optional<HelpResult> OpcodeHelp(std::string_view text, size_t selStart, bool undoc);

// List2_Click for the selected row text; no value where the info table has
// no row for it (Text8 is then cleared and the rest left).
std::optional<OpcodePanel> OpcodeInfo(std::string_view row);

} // namespace tvc
