// Operand access shared by the executors: the eight operands of an opcode's
// three-bit register field and the eight accumulator operations.
#pragma once

#include "hw/Memory.h"
#include "z80/Z80.h"

namespace tvc {

// The register of field i of B C D E H L (HL) A; field 6, which goes through
// memory, gives A here and is served by the callers below.
[[gnu::always_inline]] inline int32_t& Reg8(Z80& c, int32_t i) {
    switch (i) {
    case 0: return c.RegB;
    case 1: return c.RegC;
    case 2: return c.RegD;
    case 3: return c.RegE;
    case 4: return c.RegH;
    case 5: return c.RegL;
    default: return c.RegA;
    }
}

// The operand of field i; operand 6 is the byte at HL.
[[gnu::always_inline]] inline int32_t GetOperand(Z80& c, int32_t i) {
    return i == 6 ? c.Rd(c.HL()) : Reg8(c, i);
}

[[gnu::always_inline]] inline void SetOperand(Z80& c, int32_t i, int32_t v) {
    if (i == 6)
        c.Wr(c.HL(), v);
    else
        Reg8(c, i) = v;
}

// ADD ADC SUB SBC AND XOR OR CP, by the opcode's middle three bits.
[[gnu::always_inline]] inline void Alu(Z80& c, int32_t op, int32_t v) {
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
