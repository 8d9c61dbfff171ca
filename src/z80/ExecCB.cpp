// xxCB: the byte after the CB prefix. Shifts and rotates, BIT, RES and SET on
// the eight operands B C D E H L (HL) A.
//
// This processor's costs differ from the published ones in three rows, and
// software timed against them relies on it: RLC costs 2 and 4 (published 8
// and 15), BIT costs 4 and 12 with BIT 7,(HL) at 4, RES costs 2 for every
// operand. Every instruction steps RegR by 1 and RegPC by 1 (the prefix stage
// has moved over the CB). SLL (30-37) is served only while UndocEnabled is 1.
#include <array>

#include "core/Machine.h"
#include "z80/Operands.h"
#include "z80/Z80.h"

namespace tvc {

namespace {

// T-states by opcode; operand 6, (HL), has its own cost in each row.
// clang-format off
constexpr std::array<uint8_t, 256> kCbT = [] {
    std::array<uint8_t, 256> t{};
    auto rows = [&t](int first, int last, uint8_t reg, uint8_t mem) {
        for (int op = first; op <= last; ++op) t[op] = (op & 7) == 6 ? mem : reg;
    };
    //    opcodes     r  (HL)
    rows(0x00, 0x07, 2, 4);   // RLC
    rows(0x08, 0x0F, 8, 15);  // RRC
    rows(0x10, 0x17, 8, 15);  // RL
    rows(0x18, 0x1F, 8, 15);  // RR
    rows(0x20, 0x27, 8, 15);  // SLA
    rows(0x28, 0x2F, 8, 15);  // SRA
    rows(0x30, 0x37, 8, 15);  // SLL, gated
    rows(0x38, 0x3F, 8, 15);  // SRL
    rows(0x40, 0x7F, 4, 12);  // BIT b
    t[0x7E] = 4;              // BIT 7,(HL)
    rows(0x80, 0xBF, 2, 2);   // RES b
    rows(0xC0, 0xFF, 8, 15);  // SET b
    return t;
}();
// clang-format on

constexpr int32_t kCbR = 1; // RegR step of every CB instruction

} // namespace

void Z80::xxCB() {
    const int32_t op = CurOpcode & 255;
    const int32_t r = op & 7;

    if (op >= 0x30 && op <= 0x37) {
        if (UndocEnabled != 1) {
            MissingOP();
            return;
        }
        switch (op) {
        case 0x30:
        case 0x31:
        case 0x32:
        case 0x33:
        case 0x34:
        case 0x35:
        case 0x36:
        case 0x37: SetOperand(*this, r, SllByte(GetOperand(*this, r))); break;
        default: // unreachable: the range is tested above
            m.host->MessageBox("missing OP", kAppTitle, MsgKind::Plain);
            MissingOP();
            return;
        }
    } else if (op < 0x40) {
        const int32_t v = GetOperand(*this, r);
        int32_t res;
        switch (op >> 3) {
        case 0: res = RlcByte(v); break;
        case 1: res = RrcByte(v); break;
        case 2: res = RlByte(v); break;
        case 3: res = RrByte(v); break;
        case 4: res = SlaByte(v); break;
        case 5: res = SraByte(v); break;
        default: res = SrlByte(v); break;
        }
        SetOperand(*this, r, res);
    } else if (op < 0x80) {
        BitOp(GetOperand(*this, r), (op >> 3) & 7);
    } else if (op < 0xC0) {
        SetOperand(*this, r, ResBit(GetOperand(*this, r), (op >> 3) & 7));
    } else {
        SetOperand(*this, r, SetBit(GetOperand(*this, r), (op >> 3) & 7));
    }

    TStates += kCbT[op];
    RegR += kCbR;
    PrefixState = 0;
    RegPC = WrapAdd(RegPC, 1);
}

} // namespace tvc
