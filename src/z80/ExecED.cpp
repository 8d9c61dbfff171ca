// xxED: the byte after the ED prefix.
//
// Only the rows below are served; every other opcode, including INI, IND,
// INIR, INDR, OTIR, OTDR, IN F,(C), OUT (C),0 and the published duplicates of
// NEG, RETN and IM, goes to MissingOP: stepped over, no cost, no RegR step.
// Costs that differ from the published ones and stay: ADC HL,SP 11; LD I,A
// and LD R,A step RegR by 0; LDI and LDD pay the 21 of the repeating form
// while BC is not 0; CPI, CPD, OUTI and OUTD do not step RegR.
//
// A repeating instruction does not loop here: it leaves RegPC on the ED byte,
// so the run loop fetches it again and samples interrupts between rounds.
#include <array>
#include <initializer_list>

#include "core/Machine.h"
#include "hw/Ports.h"
#include "z80/Operands.h"
#include "z80/Z80.h"

namespace tvc {

namespace {

struct EdCost {
    uint8_t t, r;
};

// Fixed costs by opcode. The block moves and the repeating compares carry 0
// T-states here and add their own in their case.
// clang-format off
constexpr std::array<EdCost, 256> kEd = [] {
    std::array<EdCost, 256> e{};
    auto rows = [&e](std::initializer_list<int> ops, uint8_t t, uint8_t r) {
        for (int op : ops) e[op] = {t, r};
    };
    //    opcodes                                       T   R
    rows({0x40, 0x48, 0x50, 0x58, 0x60, 0x68, 0x78}, 12, 1); // IN r,(C)
    rows({0x41, 0x49, 0x51, 0x59, 0x61, 0x69, 0x79}, 12, 1); // OUT (C),r
    rows({0x42, 0x52, 0x62, 0x72}, 15, 1);                   // SBC HL,rr
    rows({0x4A, 0x5A, 0x6A}, 15, 1);                         // ADC HL,rr
    rows({0x7A}, 11, 1);                                     // ADC HL,SP
    rows({0x43, 0x53, 0x63, 0x73}, 20, 2);                   // LD (nn),rr
    rows({0x4B, 0x5B, 0x6B, 0x7B}, 20, 1);                   // LD rr,(nn)
    rows({0x44}, 8, 1);                                      // NEG
    rows({0x45, 0x4D}, 14, 1);                               // RETN, RETI
    rows({0x46, 0x56, 0x5E}, 8, 2);                          // IM 0, IM 1, IM 2
    rows({0x47, 0x4F}, 9, 0);                                // LD I,A; LD R,A
    rows({0x57}, 9, 1);                                      // LD A,I
    rows({0x5F}, 9, 2);                                      // LD A,R
    rows({0x67, 0x6F}, 18, 5);                               // RRD, RLD
    rows({0xA0, 0xA8, 0xB0, 0xB8}, 0, 1);                    // LDI LDD LDIR LDDR: 16 or 21
    rows({0xA1, 0xA9}, 16, 0);                               // CPI, CPD
    rows({0xB1, 0xB9}, 0, 0);                                // CPIR, CPDR: 21 or 16
    rows({0xA3, 0xAB}, 16, 0);                               // OUTI, OUTD
    return e;
}();
// clang-format on

// The rr field of the 16-bit rows: BC DE HL SP.
int32_t GetPair(const Z80& c, int32_t op) {
    switch ((op >> 4) & 3) {
    case 0: return c.BC();
    case 1: return c.DE();
    case 2: return c.HL();
    default: return c.RegSP;
    }
}

void SetPair(Z80& c, int32_t op, int32_t v) {
    switch ((op >> 4) & 3) {
    case 0: c.SetBC(v); break;
    case 1: c.SetDE(v); break;
    case 2: c.SetHL(v); break;
    default: c.RegSP = v; break;
    }
}

// LDI and LDD: (DE) = (HL), HL and DE step by `step`, BC down by 1.
void BlockMove(Z80& c, int32_t step) {
    c.Wr(c.DE(), c.Rd(c.HL()));
    c.SetHL((c.HL() + step) & 0xFFFF);
    c.SetDE((c.DE() + step) & 0xFFFF);
    c.SetBC((c.BC() - 1) & 0xFFFF);
    c.FlagH = c.FlagN = 0;
    c.FlagP = c.BC() != 0;
    c.TStates += c.BC() == 0 ? 16 : 21;
}

} // namespace

void Z80::xxED() {
    const int32_t op = CurOpcode & 255;
    int32_t len = 1; // how far RegPC moves from the opcode byte; -1 repeats

    switch (op) {
    case 0x40:
    case 0x48:
    case 0x50:
    case 0x58:
    case 0x60:
    case 0x68:
    case 0x78: SetOperand(*this, (op >> 3) & 7, InC()); break;
    case 0x41:
    case 0x49:
    case 0x51:
    case 0x59:
    case 0x61:
    case 0x69:
    case 0x79:
        // The instruction is complete before the port sees it.
        TStates += kEd[op].t;
        RegR += kEd[op].r;
        PrefixState = 0;
        RegPC = WrapAdd(RegPC, 1);
        PortOut(m, RegC, Reg8(*this, (op >> 3) & 7));
        return;
    case 0x42:
    case 0x52:
    case 0x62:
    case 0x72: SbcHL(GetPair(*this, op)); break;
    case 0x4A:
    case 0x5A:
    case 0x6A:
    case 0x7A: AdcHL(GetPair(*this, op)); break;
    case 0x43:
    case 0x53:
    case 0x63:
    case 0x73: {
        const int32_t nn = Imm16(), v = GetPair(*this, op);
        Wr(nn, v & 255);
        Wr(nn + 1, (v >> 8) & 255);
        len = 3;
        break;
    }
    case 0x4B:
    case 0x5B:
    case 0x6B:
    case 0x7B:
        SetPair(*this, op, Rd16(Imm16()));
        len = 3;
        break;
    case 0x44: { // NEG: 0 - A, so C = A was not 0 and P = A was 128
        const int32_t a = RegA;
        RegA = 0;
        SubA(a);
        break;
    }
    case 0x45: // RETN
        IFF1 = IFF2;
        DoRet();
        len = 0;
        break;
    case 0x4D: // RETI: the flip-flops stay
        DoRet();
        len = 0;
        break;
    case 0x46: IntMode = 0; break;
    case 0x56: IntMode = 1; break;
    case 0x5E: IntMode = 2; break;
    case 0x47: RegI = RegA; break;
    case 0x4F: RegR = RegA; break;
    case 0x57: // LD A,I
    case 0x5F: // LD A,R: A takes R as it stands, before this instruction's step
        RegA = (op == 0x57 ? RegI : RegR) & 255;
        FlagS = RegA >> 7;
        FlagZ = RegA == 0;
        FlagP = IFF2;
        FlagH = FlagN = 0;
        break;
    case 0x67: { // RRD
        const int32_t hl = HL(), v = Rd(hl);
        Wr(hl, ((RegA & 15) << 4) | (v >> 4));
        RegA = (RegA & 0xF0) | (v & 15);
        SetSZP(RegA);
        FlagH = FlagN = 0;
        break;
    }
    case 0x6F: { // RLD
        const int32_t hl = HL(), v = Rd(hl);
        Wr(hl, ((v << 4) | (RegA & 15)) & 255);
        RegA = (RegA & 0xF0) | (v >> 4);
        SetSZP(RegA);
        FlagH = FlagN = 0;
        break;
    }
    case 0xA0: BlockMove(*this, 1); break;  // LDI
    case 0xA8: BlockMove(*this, -1); break; // LDD
    case 0xB0:
    case 0xB8: // LDIR, LDDR
        BlockMove(*this, op == 0xB0 ? 1 : -1);
        if (BC() != 0) len = -1;
        break;
    case 0xA1: Cpi(); break;
    case 0xA9: Cpd(); break;
    case 0xB1:
    case 0xB9: // CPIR, CPDR
        if (op == 0xB1)
            Cpi();
        else
            Cpd();
        if (FlagZ == 0 && FlagP == 1) {
            TStates += 21;
            len = -1;
        } else {
            TStates += 16;
        }
        break;
    case 0xA3:
    case 0xAB: { // OUTI, OUTD
        int32_t v = Rd(HL());
        SetHL((HL() + (op == 0xA3 ? 1 : -1)) & 0xFFFF);
        RegB = DecByte(RegB);
        FlagZ = RegB == 0;
        FlagN = 1;
        TStates += kEd[op].t;
        RegR += kEd[op].r;
        PrefixState = 0;
        RegPC = WrapAdd(RegPC, 1);
        PortOut(m, RegC, v);
        return;
    }
    default: MissingOP(); return;
    }

    TStates += kEd[op].t;
    RegR += kEd[op].r;
    PrefixState = 0;
    RegPC = WrapAdd(RegPC, len);
}

} // namespace tvc
