// Processor state, the shared helpers of the base group, the stack and flow
// routines and interrupt acceptance.
#include "z80/Z80.h"

#include "asm/OpcodeTables.h"
#include "core/Machine.h"
#include "hw/Memory.h"

namespace tvc {

void Z80::Z80Init() {
    CpuReset();
    for (int n = 0; n < 16; ++n)
        BitMask[n] = 1 << n;
    for (int v = 0; v < 256; ++v)
        ParityTable[v] = (__builtin_popcount(v) % 2) == 0;
    OpcodeTablesLoad(m);
}

void Z80::CpuReset() {
    RegH = RegL = RegB = RegC = RegD = RegE = RegA = 255;
    RegH2 = RegL2 = RegB2 = RegC2 = RegD2 = RegE2 = RegA2 = 255;
    RegIX = RegIY = RegSP = 65535;
    FlagS = FlagZ = FlagY = FlagH = FlagX = FlagP = FlagN = FlagC = 1;
    FlagS2 = FlagZ2 = FlagY2 = FlagH2 = FlagX2 = FlagP2 = FlagN2 = FlagC2 = 1;
    RegPC = RegI = RegR = IntMode = IFF1 = IFF2 = 0;
    Halted = ResetRequest = IrqRequest = NmiRequest = 0;
    TStates += 3;
}

int32_t Z80::FlagsByte() const {
    return FlagS << 7 | FlagZ << 6 | FlagY << 5 | FlagH << 4 | FlagX << 3 | FlagP << 2 |
           FlagN << 1 | FlagC;
}

void Z80::SetFlagsByte(int32_t f) {
    FlagS = (f >> 7) & 1;
    FlagZ = (f >> 6) & 1;
    FlagY = (f >> 5) & 1;
    FlagH = (f >> 4) & 1;
    FlagX = (f >> 3) & 1;
    FlagP = (f >> 2) & 1;
    FlagN = (f >> 1) & 1;
    FlagC = f & 1;
}

// --- arithmetic on RegA. FlagX and FlagY are left alone everywhere but CpA.

void Z80::AddA(int32_t v) {
    const int32_t a = RegA, r = a + v;
    FlagH = ((a & 15) + (v & 15)) > 15;
    FlagP = ((a ^ ~v) & (a ^ r) & 0x80) != 0;
    FlagC = r > 255;
    FlagN = 0;
    RegA = r & 255;
    FlagS = RegA >> 7;
    FlagZ = RegA == 0;
}

void Z80::AdcA(int32_t v) {
    const int32_t a = RegA, c = FlagC == 1, r = a + v + c;
    FlagH = ((a & 15) + (v & 15) + c) > 15;
    FlagP = ((a ^ ~v) & (a ^ r) & 0x80) != 0;
    FlagC = r > 255;
    FlagN = 0;
    RegA = r & 255;
    FlagS = RegA >> 7;
    FlagZ = RegA == 0;
}

void Z80::SubA(int32_t v) {
    const int32_t a = RegA, r = a - v;
    FlagH = ((a & 15) - (v & 15)) < 0;
    FlagP = ((a ^ v) & (a ^ r) & 0x80) != 0;
    FlagC = r < 0;
    FlagN = 1;
    RegA = r & 255;
    FlagS = RegA >> 7;
    FlagZ = RegA == 0;
}

void Z80::SbcA(int32_t v) {
    const int32_t a = RegA, c = FlagC == 1, r = a - v - c;
    FlagH = ((a & 15) - (v & 15) - c) < 0;
    FlagP = ((a ^ v) & (a ^ r) & 0x80) != 0;
    FlagC = r < 0;
    FlagN = 1;
    RegA = r & 255;
    FlagS = RegA >> 7;
    FlagZ = RegA == 0;
}

void Z80::CpA(int32_t v) {
    const int32_t keep = RegA;
    SubA(v);
    RegA = keep;
    FlagY = (v >> 5) & 1;
    FlagX = (v >> 3) & 1;
}

void Z80::AndA(int32_t v) {
    RegA &= v;
    SetSZP(RegA);
    FlagH = 1;
    FlagN = FlagC = 0;
}

void Z80::OrA(int32_t v) {
    RegA = (RegA | v) & 255;
    SetSZP(RegA);
    FlagH = FlagN = FlagC = 0;
}

void Z80::XorA(int32_t v) {
    RegA = (RegA ^ v) & 255;
    SetSZP(RegA);
    FlagH = FlagN = FlagC = 0;
}

int32_t Z80::IncByte(int32_t v) {
    const int32_t r = (v + 1) & 255;
    FlagS = r >> 7;
    FlagZ = r == 0;
    FlagH = (v & 15) == 15;
    FlagP = v == 127;
    FlagN = 0;
    return r;
}

int32_t Z80::DecByte(int32_t v) {
    const int32_t r = (v - 1) & 255;
    FlagS = r >> 7;
    FlagZ = r == 0;
    FlagH = (v & 15) == 0;
    FlagP = v == 128;
    FlagN = 1;
    return r;
}

void Z80::Daa() {
    const int32_t a = RegA, oldC = FlagC;
    int32_t corr = (FlagH == 1 || (a & 15) > 9) ? 6 : 0;
    if (FlagC == 1 || a > 159 || (a > 143 && (a & 15) > 9)) corr += 96;
    if (FlagN != 1)
        AddA(corr);
    else
        SubA(corr);
    FlagC = a < 154 ? oldC : 1;
    FlagP = ParityTable[RegA];
}

void Z80::AddHL(int32_t v) {
    v &= 0xFFFF;
    const int32_t hl = HL(), r = hl + v;
    FlagH = ((hl & 0xFFF) + (v & 0xFFF)) >= 4096;
    FlagC = r > 0xFFFF;
    FlagN = 0;
    SetHL(r & 0xFFFF);
}

// --- stack and flow. PUSH and POP keep RegSP in 0..65535; CALL and RET step
// it without any wrap, so it can stand at -1 or 65536 between them.

void Z80::PushWord(int32_t high, int32_t low) {
    RegSP = (RegSP - 1) & 0xFFFF;
    Wr(RegSP, high);
    RegSP = (RegSP - 1) & 0xFFFF;
    Wr(RegSP, low);
}

int32_t Z80::PopWord() {
    const int32_t low = Rd(RegSP);
    RegSP = (RegSP + 1) & 0xFFFF;
    const int32_t high = Rd(RegSP);
    RegSP = (RegSP + 1) & 0xFFFF;
    return high * 256 + low;
}

void Z80::DoCall(int32_t target) {
    const int32_t ret = WrapAdd(RegPC, 3);
    RegSP = WrapAdd(RegSP, -1);
    Wr(RegSP, (ret >> 8) & 255);
    RegSP = WrapAdd(RegSP, -1);
    Wr(RegSP, ret & 255);
    RegPC = target;
}

void Z80::DoRst(int32_t target) {
    const int32_t ret = WrapAdd(RegPC, 1);
    PushWord((ret >> 8) & 255, ret & 255);
    RegPC = target;
}

void Z80::DoRet() {
    const int32_t low = Rd(RegSP);
    RegSP = WrapAdd(RegSP, 1);
    const int32_t high = Rd(RegSP);
    RegSP = WrapAdd(RegSP, 1);
    RegPC = high * 256 + low;
}

void Z80::JumpRel(int32_t displacementByte) {
    RegPC = WrapAdd(RegPC, 2 + static_cast<int8_t>(displacementByte));
}

// --- interrupts

void Z80::AcceptNmi() {
    IFF2 = IFF1;
    IFF1 = 0;
    PushWord((RegPC >> 8) & 255, RegPC & 255);
    RegR += 1;
    TStates += 11;
    RegPC = 102;
}

void Z80::AcceptIrq() {
    IFF1 = IFF2 = 0;
    if (IntMode == 1) {
        PushWord((RegPC >> 8) & 255, RegPC & 255);
        RegR += 1;
        TStates += 11;
        RegPC = 56;
        return;
    }
    m.host->MessageBox("IM MODE 0 or 2 not allowed!", kAppTitle, MsgKind::Plain);
    m.run.RunFlag = 0;
}

void Z80::MissingOP() {
    m.host->SetStatus(StatusField::Label1, "Unknown Opcode!");
    RegPC = WrapAdd(RegPC, 1);
    PrefixState = 0;
}

} // namespace tvc
