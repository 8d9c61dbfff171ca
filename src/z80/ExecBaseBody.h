// The body of xx, the executor of the 256 unprefixed opcodes, inline: xx
// calls it, and the run loop's hot path runs it in place, without a call and
// the saving of registers that a call of this large function costs.
//
// Costs come from two tables: T-states and the RegR step of every opcode with
// a fixed cost. The conditional rows (JR cc, DJNZ, JP cc, CALL cc) carry 0 in
// the tables and add their own cost in their case. The tables follow the
// published Z80 except where this machine's processor differs:
//   DAA 7; RET cc taken 10; JP cc not taken 6 (but JP NZ 10 both ways);
//   JP C taken 0; SBC A,n 4; XOR n 2; OR n 2; LD SP,HL 10.
//   RegR steps 2 for RET cc, RST 00..30 and EX (SP),HL, 3 for IN A,(n),
//   0 for JP NZ taken and for the prefix bytes.
#pragma once

#include <utility>

#include "core/Machine.h"
#include "hw/Ports.h"
#include "z80/Operands.h"
#include "z80/Z80.h"

namespace tvc {

namespace detail {

// clang-format off
inline constexpr uint8_t kBaseT[256] = {
//   0   1   2   3   4   5   6   7   8   9   A   B   C   D   E   F
     4, 10,  7,  6,  4,  4,  7,  4,  4, 11,  7,  6,  4,  4,  7,  4,  // 0
     0, 10,  7,  6,  4,  4,  7,  4, 12, 11,  7,  6,  4,  4,  7,  4,  // 1
     0, 10, 16,  6,  4,  4,  7,  7,  0, 11, 16,  6,  4,  4,  7,  4,  // 2
     0, 10, 13,  6, 11, 11, 10,  4,  0, 11, 13,  6,  4,  4,  7,  4,  // 3
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // 4
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // 5
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // 6
     7,  7,  7,  7,  7,  7,  4,  7,  4,  4,  4,  4,  4,  4,  7,  4,  // 7
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // 8
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // 9
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // A
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4,  // B
     0, 10,  0, 10,  0, 11,  7, 11,  0, 10,  0,  0,  0, 17,  7, 11,  // C
     0, 10,  0, 11,  0, 11,  7, 11,  0,  4,  0, 11,  0,  0,  4, 11,  // D
     0, 10,  0, 19,  0, 11,  7, 11,  0,  4,  0,  4,  0,  0,  2, 11,  // E
     0, 10,  0,  4,  0, 11,  2, 11,  0, 10,  0,  4,  0,  0,  7, 11,  // F
};

inline constexpr uint8_t kBaseR[256] = {
//   0  1  2  3  4  5  6  7  8  9  A  B  C  D  E  F
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 0
     0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 1
     0, 1, 1, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1,  // 2
     0, 1, 1, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1,  // 3
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 4
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 5
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 6
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 7
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 8
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 9
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // A
     1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // B
     2, 1, 0, 1, 0, 1, 1, 2, 2, 1, 0, 0, 0, 1, 1, 2,  // C
     2, 1, 0, 1, 0, 1, 1, 2, 2, 1, 0, 3, 0, 0, 1, 2,  // D
     2, 1, 0, 2, 0, 1, 1, 2, 2, 1, 0, 1, 0, 0, 1, 2,  // E
     2, 1, 0, 1, 0, 1, 1, 2, 2, 1, 0, 1, 0, 0, 1, 1,  // F
};
// clang-format on

// Condition of the cc field: NZ Z NC C PO PE P M.
inline bool Condition(const Z80& c, int32_t cc) {
    switch (cc) {
    case 0: return c.FlagZ == 0;
    case 1: return c.FlagZ == 1;
    case 2: return c.FlagC == 0;
    case 3: return c.FlagC == 1;
    case 4: return c.FlagP == 0;
    case 5: return c.FlagP == 1;
    case 6: return c.FlagS == 0;
    default: return c.FlagS == 1;
    }
}

} // namespace detail

inline void Z80::xxBody() {
    using detail::Condition;
    const int32_t op = CurOpcode;
    TStates += detail::kBaseT[op];
    RegR += detail::kBaseR[op];
    PrefixState = 0;

    int32_t len = 1; // how far RegPC moves when the case does not set it
    switch (op) {
        // LD r,r' and ALU A,r: one case per opcode, so that the register fields
        // are constants and the operand switches fold away.
        // clang-format off
#define TVC_LD(o) case o: SetOperand(*this, ((o) >> 3) & 7, GetOperand(*this, (o) & 7)); break;
#define TVC_ALU(o) case o: Alu(*this, ((o) >> 3) & 7, GetOperand(*this, (o) & 7)); break;
#define TVC_ROW(X, b) X(b) X(b + 1) X(b + 2) X(b + 3) X(b + 4) X(b + 5) X(b + 6) X(b + 7)
    TVC_ROW(TVC_LD, 0x40) TVC_ROW(TVC_LD, 0x48) TVC_ROW(TVC_LD, 0x50) TVC_ROW(TVC_LD, 0x58)
    TVC_ROW(TVC_LD, 0x60) TVC_ROW(TVC_LD, 0x68)
    TVC_LD(0x70) TVC_LD(0x71) TVC_LD(0x72) TVC_LD(0x73) TVC_LD(0x74) TVC_LD(0x75) TVC_LD(0x77)
    TVC_ROW(TVC_LD, 0x78)
    TVC_ROW(TVC_ALU, 0x80) TVC_ROW(TVC_ALU, 0x88) TVC_ROW(TVC_ALU, 0x90) TVC_ROW(TVC_ALU, 0x98)
    TVC_ROW(TVC_ALU, 0xA0) TVC_ROW(TVC_ALU, 0xA8) TVC_ROW(TVC_ALU, 0xB0) TVC_ROW(TVC_ALU, 0xB8)
#undef TVC_ROW
#undef TVC_ALU
#undef TVC_LD
            // clang-format on
            case 0x00 : break; // NOP
    case 0x01:
        SetBC(Imm16());
        len = 3;
        break;
    case 0x11:
        SetDE(Imm16());
        len = 3;
        break;
    case 0x21:
        SetHL(Imm16());
        len = 3;
        break;
    case 0x31:
        RegSP = Imm16();
        len = 3;
        break;
    case 0x02: Wr(BC(), RegA); break;
    case 0x12: Wr(DE(), RegA); break;
    case 0x0A: RegA = Rd(BC()); break;
    case 0x1A: RegA = Rd(DE()); break;
    case 0x03: SetBC((BC() + 1) & 0xFFFF); break;
    case 0x13: SetDE((DE() + 1) & 0xFFFF); break;
    case 0x23: SetHL((HL() + 1) & 0xFFFF); break;
    case 0x33: RegSP = (RegSP + 1) & 0xFFFF; break;
    case 0x0B: SetBC((BC() - 1) & 0xFFFF); break;
    case 0x1B: SetDE((DE() - 1) & 0xFFFF); break;
    case 0x2B: SetHL((HL() - 1) & 0xFFFF); break;
    case 0x3B: RegSP = (RegSP - 1) & 0xFFFF; break;
    case 0x04:
    case 0x0C:
    case 0x14:
    case 0x1C:
    case 0x24:
    case 0x2C:
    case 0x34:
    case 0x3C: {
        const int32_t r = (op >> 3) & 7;
        SetOperand(*this, r, IncByte(GetOperand(*this, r)));
        break;
    }
    case 0x05:
    case 0x0D:
    case 0x15:
    case 0x1D:
    case 0x25:
    case 0x2D:
    case 0x35:
    case 0x3D: {
        const int32_t r = (op >> 3) & 7;
        SetOperand(*this, r, DecByte(GetOperand(*this, r)));
        break;
    }
    case 0x06:
    case 0x0E:
    case 0x16:
    case 0x1E:
    case 0x26:
    case 0x2E:
    case 0x36:
    case 0x3E:
        SetOperand(*this, (op >> 3) & 7, Rd(RegPC + 1));
        len = 2;
        break;
    case 0x07: // RLCA
        FlagC = RegA >> 7;
        RegA = ((RegA << 1) | FlagC) & 255;
        FlagH = FlagN = 0;
        break;
    case 0x0F: // RRCA
        FlagC = RegA & 1;
        RegA = (RegA >> 1) | (FlagC << 7);
        FlagH = FlagN = 0;
        break;
    case 0x17: { // RLA
        const int32_t c = FlagC;
        FlagC = RegA >> 7;
        RegA = ((RegA << 1) | c) & 255;
        FlagH = FlagN = 0;
        break;
    }
    case 0x1F: { // RRA
        const int32_t c = FlagC;
        FlagC = RegA & 1;
        RegA = (RegA >> 1) | (c << 7);
        FlagH = FlagN = 0;
        break;
    }
    case 0x08: // EX AF,AF'
        std::swap(RegA, RegA2);
        std::swap(FlagS, FlagS2), std::swap(FlagZ, FlagZ2), std::swap(FlagY, FlagY2);
        std::swap(FlagH, FlagH2), std::swap(FlagX, FlagX2), std::swap(FlagP, FlagP2);
        std::swap(FlagN, FlagN2), std::swap(FlagC, FlagC2);
        break;
    case 0x09: AddHL(BC()); break;
    case 0x19: AddHL(DE()); break;
    case 0x29: AddHL(HL()); break;
    case 0x39: AddHL(RegSP); break;
    case 0x10: // DJNZ
        if (RegB == 1) {
            RegB = 0;
            TStates += 8;
            RegR += 1;
            len = 2;
        } else {
            RegB = (RegB - 1) & 255;
            TStates += 13;
            RegR += 1;
            JumpRel(Rd(RegPC + 1));
            return;
        }
        break;
    case 0x18: JumpRel(Rd(RegPC + 1)); return;
    case 0x20:
    case 0x28:
    case 0x30:
    case 0x38: // JR cc
        RegR += 1;
        if (Condition(*this, (op >> 3) & 3)) {
            TStates += 12;
            JumpRel(Rd(RegPC + 1));
            return;
        }
        TStates += 7;
        len = 2;
        break;
    case 0x22: {
        const int32_t nn = Imm16();
        Wr(nn, RegL);
        Wr(nn + 1, RegH);
        len = 3;
        break;
    }
    case 0x2A: {
        const int32_t nn = Imm16();
        RegL = Rd(nn);
        RegH = Rd(nn + 1);
        len = 3;
        break;
    }
    case 0x32:
        Wr(Imm16(), RegA);
        len = 3;
        break;
    case 0x3A:
        RegA = Rd(Imm16());
        len = 3;
        break;
    case 0x27: Daa(); break;
    case 0x2F: // CPL
        RegA ^= 255;
        FlagH = FlagN = 1;
        break;
    case 0x37: // SCF
        FlagC = 1;
        FlagH = FlagN = 0;
        break;
    case 0x3F: // CCF
        FlagH = FlagC;
        FlagN = 0;
        FlagC ^= 1;
        break;
    case 0x76: // HALT: RegPC stays on the byte, which runs again each pass
        Halted = 1;
        len = 0;
        break;

    case 0xC0:
    case 0xC8:
    case 0xD0:
    case 0xD8:
    case 0xE0:
    case 0xE8:
    case 0xF0:
    case 0xF8:
        if (Condition(*this, (op >> 3) & 7)) {
            TStates += 10;
            DoRet();
            return;
        }
        TStates += 5;
        break;
    case 0xC9: DoRet(); return;
    case 0xC1: SetBC(PopWord()); break;
    case 0xD1: SetDE(PopWord()); break;
    case 0xE1: SetHL(PopWord()); break;
    case 0xF1: {
        const int32_t v = PopWord();
        RegA = v >> 8;
        SetFlagsByte(v & 255);
        break;
    }
    case 0xC5: PushWord(RegB, RegC); break;
    case 0xD5: PushWord(RegD, RegE); break;
    case 0xE5: PushWord(RegH, RegL); break;
    case 0xF5: PushWord(RegA, FlagsByte()); break;
    case 0xC2: // JP NZ: 10 T-states both ways, no RegR step when taken
        TStates += 10;
        if (FlagZ == 0) {
            RegPC = Imm16();
            return;
        }
        RegR += 1;
        len = 3;
        break;
    case 0xCA:
    case 0xD2:
    case 0xDA:
    case 0xE2:
    case 0xEA:
    case 0xF2:
    case 0xFA:
        RegR += 1;
        if (Condition(*this, (op >> 3) & 7)) {
            TStates += op == 0xDA ? 0 : 10;
            RegPC = Imm16();
            return;
        }
        TStates += 6;
        len = 3;
        break;
    case 0xC3: RegPC = Imm16(); return;
    case 0xC4:
    case 0xCC:
    case 0xD4:
    case 0xDC:
    case 0xE4:
    case 0xEC:
    case 0xF4:
    case 0xFC:
        RegR += 1;
        if (Condition(*this, (op >> 3) & 7)) {
            TStates += 17;
            DoCall(Imm16());
            return;
        }
        TStates += 10;
        len = 3;
        break;
    case 0xCD: DoCall(Imm16()); return;
    case 0xC6:
    case 0xCE:
    case 0xD6:
    case 0xDE:
    case 0xE6:
    case 0xEE:
    case 0xF6:
    case 0xFE:
        Alu(*this, (op >> 3) & 7, Rd(RegPC + 1));
        len = 2;
        break;
    case 0xC7:
    case 0xCF:
    case 0xD7:
    case 0xDF:
    case 0xE7:
    case 0xEF:
    case 0xF7:
    case 0xFF: DoRst(op & 0x38); return;
    case 0xD3: {
        int32_t port = Rd(RegPC + 1);
        RegPC = WrapAdd(RegPC, 2); // OUT may stop the machine; the instruction is complete
        PortOut(m, port, RegA);
        return;
    }
    case 0xDB: {
        const int32_t port = Rd(RegPC + 1);
        RegPC = WrapAdd(RegPC, 2);
        RegA = PortIn(m, port) & 255;
        return;
    }
    case 0xD9: // EXX
        std::swap(RegB, RegB2), std::swap(RegC, RegC2), std::swap(RegD, RegD2);
        std::swap(RegE, RegE2), std::swap(RegH, RegH2), std::swap(RegL, RegL2);
        break;
    case 0xE3: { // EX (SP),HL
        const int32_t low = Rd(RegSP), high = Rd(WrapAdd(RegSP, 1));
        Wr(RegSP, RegL);
        Wr(WrapAdd(RegSP, 1), RegH);
        RegL = low;
        RegH = high;
        break;
    }
    case 0xE9: RegPC = HL(); return;
    case 0xEB: std::swap(RegD, RegH), std::swap(RegE, RegL); break;
    case 0xF3: IFF1 = IFF2 = 0; break;
    case 0xFB: IFF1 = IFF2 = 1; break;
    case 0xF9: RegSP = HL(); break;

    case 0xCB:
    case 0xDD:
    case 0xED:
    case 0xFD: // prefix stage: no cost, no RegR step
        PrefixState = op;
        break;
    default: break;
    }
    RegPC = WrapAdd(RegPC, len);
}

} // namespace tvc
