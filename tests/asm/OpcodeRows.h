// The instruction rows of the loaded disassembler table, each with a byte
// sequence that encodes it: displacement 0x21, byte 0x12, word 0x3456 and
// relative offset 0x10 stand where the row's place-holders say.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "asm/OpcodeTables.h"

namespace tvc::test {

struct OpcodeRow {
    std::string hex, mnemonic;
    std::vector<uint8_t> bytes;
};

inline bool Holds(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

inline std::vector<OpcodeRow> InstructionRows() {
    std::vector<OpcodeRow> rows;
    const std::string& table = OpcodeDisasmText();
    for (size_t pos = 0, eol; (eol = table.find("\r\n", pos)) != std::string::npos; pos = eol + 2) {
        OpcodeRow r;
        r.hex = table.substr(pos + 1, 6);
        r.hex.resize(r.hex.find(' ') == std::string::npos ? 6 : r.hex.find(' '));
        r.mnemonic = table.substr(pos + 13, eol - pos - 13);
        if (r.mnemonic == r.hex) continue; // a prefix row
        for (size_t i = 0; i < r.hex.size(); i += 2)
            r.bytes.push_back(static_cast<uint8_t>(std::stoi(r.hex.substr(i, 2), nullptr, 16)));
        const std::string& m = r.mnemonic;
        if (r.hex.size() == 6)
            r.bytes.insert(r.bytes.begin() + 2, 0x21);
        else if (Holds(m, "+d)"))
            r.bytes.push_back(0x21);
        if (Holds(m, "nn"))
            r.bytes.insert(r.bytes.end(), {0x56, 0x34});
        else if (Holds(m, ",n") || Holds(m, "(n)") || Holds(m, " n"))
            r.bytes.push_back(0x12);
        if (Holds(m, "PC+e")) r.bytes.push_back(0x10);
        rows.push_back(r);
    }
    return rows;
}

} // namespace tvc::test
