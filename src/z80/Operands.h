// Operand access shared by the executors: the eight operands of an opcode's
// three-bit register field and the eight accumulator operations.
#pragma once

#include "z80/Z80.h"

namespace tvc {

// The register field B C D E H L (HL) A. Operand 6 goes through memory at HL.
inline int32_t GetOperand(Z80& c, int32_t i) {
    switch (i) {
    case 0: return c.RegB;
    case 1: return c.RegC;
    case 2: return c.RegD;
    case 3: return c.RegE;
    case 4: return c.RegH;
    case 5: return c.RegL;
    case 6: return c.Rd(c.HL());
    default: return c.RegA;
    }
}

inline void SetOperand(Z80& c, int32_t i, int32_t v) {
    switch (i) {
    case 0: c.RegB = v; break;
    case 1: c.RegC = v; break;
    case 2: c.RegD = v; break;
    case 3: c.RegE = v; break;
    case 4: c.RegH = v; break;
    case 5: c.RegL = v; break;
    case 6: c.Wr(c.HL(), v); break;
    default: c.RegA = v; break;
    }
}

// ADD ADC SUB SBC AND XOR OR CP, by the opcode's middle three bits.
inline void Alu(Z80& c, int32_t op, int32_t v) {
    switch (op) {
    case 0: c.AddA(v); break;
    case 1: c.AdcA(v); break;
    case 2: c.SubA(v); break;
    case 3: c.SbcA(v); break;
    case 4: c.AndA(v); break;
    case 5: c.XorA(v); break;
    case 6: c.OrA(v); break;
    default: c.CpA(v); break;
    }
}

} // namespace tvc
