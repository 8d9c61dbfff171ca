#include "asm/Disassembler.h"

#include "asm/OpcodeTables.h"
#include "asm/TextLib.h"
#include "hw/Memory.h"

namespace tvc {

namespace {

// Addresses step as unsigned 32-bit numbers: RegPC is a plain integer, and
// a caller may hand in any value without the sum overflowing.
int32_t Step(int32_t address, int32_t by) {
    return static_cast<int32_t>(static_cast<uint32_t>(address) + static_cast<uint32_t>(by));
}

class Reader {
  public:
    Reader(Machine& m, int32_t address) : m_(m), address_(address) {}
    int32_t operator[](int32_t offset) const { return MemRead(m_, Step(address_, offset)); }

  private:
    Machine& m_;
    int32_t address_;
};

// One instruction at `address`; sets `size` to the bytes it takes.
std::string Instruction(Machine& m, int32_t address, int32_t& size) {
    const Reader at(m, address);
    std::string prefix;
    int32_t b, e;
    const std::string pair = Hex2(at[0]) + Hex2(at[1]);
    const std::string first = Hex2(at[0]);
    if (pair == "FDCB" || pair == "DDCB") {
        prefix = pair, e = SignedByte(at[2]), b = at[3], size = 3;
    } else if (first == "CB" || first == "DD" || first == "FD" || first == "ED") {
        prefix = first, e = SignedByte(at[2]), b = at[1], size = 2;
    } else {
        b = at[0], e = at[1], size = 1;
    }

    const std::string& table = OpcodeDisasmText();
    const std::string key = ">" + prefix + Hex2(b) + " ";
    const size_t row = table.find(key);
    if (row == std::string::npos) {
        size = static_cast<int32_t>(prefix.size() / 2) + 1;
        return key + "Unknown!";
    }
    std::string text;
    if (row + 7 < table.size()) {
        text = table.substr(row + 7, 40);
        text.resize(std::min(text.size(), text.find('\r')));
    }
    text = std::string(TrimBlanks(text));

    if (key == ">DD36 " || key == ">FD36 ") {
        // The two-operand store keeps its established display, "(" missing.
        size += 2;
        return (key == ">DD36 " ? "LD IX+" : "LD IY+") + Hex2(at[2]) + ")," + Hex2(at[3]);
    }
    // Place-holders in this order, so that "nn" is gone before "n" is sought.
    if (size_t p = text.find("nn"); p != std::string::npos) {
        text.replace(p, 2, Hex4(at[size] + 256 * at[size + 1]));
        size += 2;
    }
    if (size_t p = text.find('n'); p != std::string::npos) {
        text.replace(p, 1, Hex2(at[size]));
        size += 1;
    }
    if (size_t p = text.find("PC+e"); p != std::string::npos) {
        const size_t open = p > 0 ? p - 1 : 0;
        text.replace(open, 6, Hex4(Step(address, SignedByte(e) + 2)) + "  ");
        size += 1;
    }
    size_t p = text.find("IX+d");
    if (p == std::string::npos) p = text.find("IY+d");
    if (p != std::string::npos) {
        // The displacement byte, unsigned, overwrites "d)".
        text.replace(p + 3, 2, Hex2(at[2]) + ")");
        size += 1;
    }
    return text;
}

} // namespace

std::string Disassemble(Machine& m, int32_t& address, int32_t lines, int32_t format) {
    std::string out;
    for (int32_t line = 0; line < lines; ++line) {
        int32_t size = 1;
        const std::string text = Instruction(m, address, size);
        if (line > 0) out += "\r\n";
        if (format == 1) out.append(" ").append(Hex4(address)).append(" ");
        out += TrimBlanks(text);
        address = Step(address, size);
    }
    return out;
}

} // namespace tvc
