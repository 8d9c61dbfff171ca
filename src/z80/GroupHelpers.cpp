// Helpers of the CB, ED and index groups: shifts and rotates, the bit
// routines, 16-bit arithmetic with carry, IN r,(C) and the block compares.
//
// Like the base helpers, none of these writes FlagX or FlagY (the block
// compares get them through CpA). Two half-carry rules here are this
// processor's own and stay: ADC HL and SBC HL take the new carry into the
// 12-bit sum, and ADD IY takes its half carry from RegIX.
#include "core/Machine.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "z80/Z80.h"

namespace tvc {

// --- shifts and rotates: FlagC from the bit shifted out, S Z P from the
// result, H = N = 0. The operand is a byte.

int32_t Z80::RlcByte(int32_t v) {
    FlagC = (v >> 7) & 1;
    const int32_t r = ((v << 1) | FlagC) & 255;
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::RrcByte(int32_t v) {
    FlagC = v & 1;
    const int32_t r = ((v & 255) >> 1) | (FlagC << 7);
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::RlByte(int32_t v) {
    const int32_t r = ((v << 1) | (FlagC & 1)) & 255;
    FlagC = (v >> 7) & 1;
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::RrByte(int32_t v) {
    const int32_t r = ((v & 255) >> 1) | ((FlagC & 1) << 7);
    FlagC = v & 1;
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::SlaByte(int32_t v) {
    FlagC = (v >> 7) & 1;
    const int32_t r = (v << 1) & 255;
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::SraByte(int32_t v) {
    FlagC = v & 1;
    const int32_t r = ((v & 255) >> 1) | (v & 0x80);
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::SrlByte(int32_t v) {
    FlagC = v & 1;
    const int32_t r = (v & 255) >> 1;
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

int32_t Z80::SllByte(int32_t v) {
    FlagC = (v >> 7) & 1;
    const int32_t r = ((v << 1) | 1) & 255; // never 0, so FlagZ is always 0
    SetSZP(r);
    FlagH = FlagN = 0;
    return r;
}

// BIT b: Z and P say the bit is clear; S only for a set bit 7; C X Y stay.
void Z80::BitOp(int32_t v, int32_t bit) {
    const bool set = TestBit(v, bit);
    FlagZ = FlagP = !set;
    FlagS = bit == 7 && set;
    FlagH = 1;
    FlagN = 0;
}

// --- 16-bit with carry on HL. The half carry counts the carry that comes
// out of the whole operation, not the one that went in.

void Z80::AdcHL(int32_t v) {
    v &= 0xFFFF;
    const int32_t hl = HL(), sum = hl + v + (FlagC & 1), r = sum & 0xFFFF;
    FlagC = (sum >> 16) & 1;
    FlagH = ((hl & 0xFFF) + (v & 0xFFF) + FlagC) >= 4096;
    FlagP = ((hl ^ ~v) & (hl ^ r) & 0x8000) != 0;
    FlagS = r >> 15;
    FlagZ = r == 0;
    FlagN = 0;
    SetHL(r);
}

void Z80::SbcHL(int32_t v) {
    v &= 0xFFFF;
    const int32_t hl = HL(), diff = hl - v - (FlagC & 1), r = diff & 0xFFFF;
    FlagC = diff < 0;
    FlagH = ((hl & 0xFFF) - (v & 0xFFF) - FlagC) < 0;
    FlagP = ((hl ^ v) & (hl ^ r) & 0x8000) != 0;
    FlagS = r >> 15;
    FlagZ = r == 0;
    FlagN = 1;
    SetHL(r);
}

// IN r,(C): the port is RegC alone; RegB does not reach the decoder.
int32_t Z80::InC() {
    const int32_t v = PortIn(m, RegC) & 255;
    SetSZP(v);
    FlagH = FlagN = 0;
    return v;
}

// CPI and CPD: a compare with (HL) that keeps the carry; P says BC is not 0.
void Z80::Cpi() {
    const int32_t c = FlagC;
    CpA(Rd(HL()));
    SetHL((HL() + 1) & 0xFFFF);
    SetBC((BC() - 1) & 0xFFFF);
    FlagC = c;
    FlagP = BC() != 0;
}

void Z80::Cpd() {
    const int32_t c = FlagC;
    CpA(Rd(HL()));
    SetHL((HL() - 1) & 0xFFFF);
    SetBC((BC() - 1) & 0xFFFF);
    FlagC = c;
    FlagP = BC() != 0;
}

// --- ADD IX and ADD IY: S Z P stay.

void Z80::AddIX(int32_t v) {
    v &= 0xFFFF;
    const int32_t sum = RegIX + v;
    FlagH = (((RegIX & 0xFFF) + (v & 0xFFF)) >> 12) & 1;
    FlagC = (sum >> 16) & 1;
    FlagN = 0;
    RegIX = sum & 0xFFFF;
}

// The half carry comes from RegIX, whatever RegIY holds.
void Z80::AddIY(int32_t v) {
    v &= 0xFFFF;
    const int32_t sum = RegIY + v;
    FlagH = (((RegIX & 0xFFF) + (v & 0xFFF)) >> 12) & 1;
    FlagC = (sum >> 16) & 1;
    FlagN = 0;
    RegIY = sum & 0xFFFF;
}

} // namespace tvc
