#include "asm/OpcodeTables.h"

#include "asm/TextLib.h"
#include "core/Machine.h"
#include "data/Embedded.h"

namespace tvc {

namespace {

struct Tables {
    std::string disasm, assembler, info;
};

Tables& Store() {
    static Tables tables;
    return tables;
}

const char* const kTableNames[] = {"Z80OPCODES", "Z80OPCODESJAV", "Z80OPINFO"};

bool IsHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLower(char c) {
    return c >= 'a' && c <= 'z';
}

// Reasons are returned as text; nullptr means the row is fine.
const char* CheckCodeRow(std::string_view row, bool assembler) {
    if (row.size() < 14) return "the row is too short";
    if (row[0] != '>') return "column 1 is not \">\"";
    size_t digits = 0;
    while (digits < 6 && IsHexDigit(row[1 + digits]))
        ++digits;
    if (digits != 2 && digits != 4 && digits != 6)
        return "the opcode is not 2, 4 or 6 upper-case hexadecimal digits";
    for (size_t i = 1 + digits; i < 13; ++i) {
        const char c = row[i];
        if (c == ' ') continue;
        if (assembler && i == 8 && std::string_view("nmedxy").find(c) != std::string_view::npos)
            continue;
        // An over-long type field ("nn") is read by its first letter.
        if (assembler && (i == 9 || i == 10) && IsLower(c)) continue;
        return assembler ? "columns 8 to 13 do not hold a blank and an operand type"
                         : "columns 8 to 13 are not blank";
    }
    if (row[13] == ' ') return "there is no mnemonic in column 14";
    for (char c : row)
        if (static_cast<unsigned char>(c) < 0x20) return "the row holds a control character";
    return nullptr;
}

// Skips a run of decimal digits at pos; false when there is none.
bool SkipNumber(std::string_view row, size_t& pos) {
    const size_t start = pos;
    while (pos < row.size() && IsDigit(row[pos]))
        ++pos;
    return pos > start;
}

const char* CheckInfoRow(std::string_view row) {
    if (row.empty()) return nullptr;
    if (row.size() < 7) return "the row is too short";
    for (size_t i = 0; i < 6; ++i)
        if (std::string_view("-+PV10* ").find(row[i]) == std::string_view::npos)
            return "an unknown flag character";
    size_t pos = 6;
    if (row[pos++] != '|' || !SkipNumber(row, pos) || pos >= row.size() || row[pos++] != '|')
        return "the size field is not a number between \"|\" marks";
    if (!SkipNumber(row, pos)) return "the clock cycles are not a number";
    if (pos < row.size() && row[pos] == '/' && !SkipNumber(row, ++pos))
        return "the clock cycles are not a number";
    if (pos >= row.size() || row[pos++] != '|') return "there is no \"|\" after the clock cycles";
    const size_t open = row.rfind('>');
    if (row.back() != '<' || open == std::string_view::npos || open < pos)
        return "the row does not end with \">mnemonic<\"";
    if (open == pos) return "the description is empty";
    const std::string_view name = row.substr(open + 1, row.size() - open - 2);
    if (name.empty()) return "the mnemonic is empty";
    for (char c : name)
        if ((c >= 'A' && c <= 'Z') || c == '<') return "the mnemonic is not in lower case";
    return nullptr;
}

void Report(Machine& m, OpcodeTable table, const TableFault& fault) {
    const std::string text = std::string("Bad row in the opcode table ") +
                             kTableNames[static_cast<int>(table)] + ", line " +
                             std::to_string(fault.line) + ": " + fault.reason + ".";
    m.host->MessageBox(text, "Opcode tables", MsgKind::Exclamation);
}

} // namespace

std::optional<TableFault> CheckOpcodeTable(OpcodeTable table, std::string_view text) {
    constexpr std::string_view kEnd = ">end of file";
    int32_t line = 0;
    bool ended = false;
    for (size_t pos = 0; pos < text.size();) {
        ++line;
        const size_t eol = text.find("\r\n", pos);
        if (eol == std::string_view::npos) return TableFault{line, "the line has no CR LF end"};
        const std::string_view row = text.substr(pos, eol - pos);
        pos = eol + 2;
        if (row.find_first_of("\r\n") != std::string_view::npos)
            return TableFault{line, "a line break that is not CR LF"};
        if (ended) return TableFault{line, "a row follows \">end of file\""};
        const char* why = nullptr;
        if (table == OpcodeTable::Info)
            why = CheckInfoRow(row);
        else if (table == OpcodeTable::Asm && row == kEnd)
            ended = true;
        else
            why = CheckCodeRow(row, table == OpcodeTable::Asm);
        if (why) return TableFault{line, why};
    }
    if (line == 0) return TableFault{1, "the table is empty"};
    if (table == OpcodeTable::Asm && !ended)
        return TableFault{line, "the table does not end with \">end of file\""};
    return std::nullopt;
}

void OpcodeTablesLoadText(Machine& m, std::string_view disasm, std::string_view assembler,
                          std::string_view info) {
    const std::string_view texts[] = {disasm, assembler, info};
    for (int t = 0; t < 3; ++t) {
        const auto table = static_cast<OpcodeTable>(t);
        if (auto fault = CheckOpcodeTable(table, texts[t])) Report(m, table, *fault);
    }
    Tables& store = Store();
    store.disasm = WidenText(disasm);
    store.assembler = WidenText(assembler);
    store.info = WidenText(info);
}

void OpcodeTablesLoad(Machine& m) {
    // The names as they are asked for; resource names do not depend on case.
    const char* const asked[] = {"Z80oPCodes", "z80opcodesjav", "z80opinfo"};
    std::string_view texts[3];
    for (int t = 0; t < 3; ++t) {
        const auto text = EmbeddedResource(asked[t]);
        if (!text) {
            m.Fatal(std::string("Resource not found: ") + kTableNames[t], "Error");
            return;
        }
        texts[t] = *text;
    }
    OpcodeTablesLoadText(m, texts[0], texts[1], texts[2]);
}

const std::string& OpcodeDisasmText() {
    return Store().disasm;
}
const std::string& OpcodeAsmText() {
    return Store().assembler;
}
const std::string& OpcodeInfoText() {
    return Store().info;
}

} // namespace tvc
