// The Z80 processor of the machine: its register file, the helpers that the
// seven executors share, interrupt acceptance and the executors themselves.
//
// Registers are separate 32-bit integers, not packed pairs; a pair such as HL
// exists only as high * 256 + low. The flags are eight 0/1 variables, never a
// byte, except as the image that PUSH AF and POP AF move. RegPC is not wrapped
// at 65536 and RegSP can leave 0..65535 through CALL and RET; the memory map
// decides what such addresses reach. RegR may exceed 255 inside an instruction;
// the run loop masks it after each one.
//
// The timing and RegR tables deliberately differ from the published Z80 in
// places: software for this machine was written against them.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

// Wrapping arithmetic on the 32-bit registers: a run-away program must not
// reach signed overflow, which C++ leaves undefined.
inline int32_t WrapAdd(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// Values of PrefixState that select the executor of the next stage.
enum : int32_t {
    kPrefixNone = 0,
    kPrefixCB = 203,
    kPrefixED = 237,
    kPrefixDD = 221,
    kPrefixFD = 253,
    kPrefixDDCB = 56779,
    kPrefixFDCB = 64971,
};

class Z80 {
  public:
    explicit Z80(Machine& machine) : m(machine) {}
    Z80(const Z80&) = delete;
    Z80& operator=(const Z80&) = delete;

    // --- state -----------------------------------------------------------
    int32_t RegA = 255, RegB = 255, RegC = 255, RegD = 255, RegE = 255, RegH = 255, RegL = 255;
    int32_t RegA2 = 255, RegB2 = 255, RegC2 = 255, RegD2 = 255, RegE2 = 255, RegH2 = 255,
            RegL2 = 255;
    int32_t RegIX = 65535, RegIY = 65535, RegSP = 65535, RegPC = 0;
    int32_t RegI = 0, RegR = 0, IntMode = 0, IFF1 = 0, IFF2 = 0;
    int32_t FlagS = 1, FlagZ = 1, FlagY = 1, FlagH = 1, FlagX = 1, FlagP = 1, FlagN = 1, FlagC = 1;
    int32_t FlagS2 = 1, FlagZ2 = 1, FlagY2 = 1, FlagH2 = 1, FlagX2 = 1, FlagP2 = 1, FlagN2 = 1,
            FlagC2 = 1;
    int32_t Halted = 0, ResetRequest = 0, IrqRequest = 0, NmiRequest = 0;

    int32_t TStates = 0;      // clock of the executors; the run loop folds it per frame
    int32_t PrefixState = 0;  // which executor runs the next stage
    int32_t CurOpcode = 0;    // the byte that executor dispatches on
    int32_t Displacement = 0; // signed index displacement, read on entry to xxDD/xxFD
    int32_t UndocEnabled = 1; // serves the undocumented rows when 1

    int32_t BitMask[16] = {};
    uint8_t ParityTable[256] = {}; // 1 where the byte has an even number of 1 bits

    // --- life ------------------------------------------------------------
    void Z80Init();
    void CpuReset();

    // --- register pairs (views over the 8-bit registers) -----------------
    int32_t BC() const { return RegB * 256 + RegC; }
    int32_t DE() const { return RegD * 256 + RegE; }
    int32_t HL() const { return RegH * 256 + RegL; }
    void SetBC(int32_t v) { RegB = (v >> 8) & 255, RegC = v & 255; }
    void SetDE(int32_t v) { RegD = (v >> 8) & 255, RegE = v & 255; }
    void SetHL(int32_t v) { RegH = (v >> 8) & 255, RegL = v & 255; }

    // The flags as the byte PUSH AF stores: S Z Y H X P N C from bit 7 down.
    int32_t FlagsByte() const;
    void SetFlagsByte(int32_t f);

    // --- arithmetic helpers on RegA -------------------------------------
    void AddA(int32_t v);
    void AdcA(int32_t v);
    void SubA(int32_t v);
    void SbcA(int32_t v);
    void CpA(int32_t v);
    void AndA(int32_t v);
    void OrA(int32_t v);
    void XorA(int32_t v);
    int32_t IncByte(int32_t v);
    int32_t DecByte(int32_t v);
    void Daa();
    void AddHL(int32_t v);

    // --- helpers of the CB, ED and index groups ---------------------------
    int32_t RlcByte(int32_t v);
    int32_t RrcByte(int32_t v);
    int32_t RlByte(int32_t v);
    int32_t RrByte(int32_t v);
    int32_t SlaByte(int32_t v);
    int32_t SraByte(int32_t v);
    int32_t SrlByte(int32_t v);
    int32_t SllByte(int32_t v);
    bool TestBit(int32_t v, int32_t bit) const { return (v & BitMask[bit]) != 0; }
    int32_t SetBit(int32_t v, int32_t bit) const { return v | BitMask[bit]; }
    int32_t ResBit(int32_t v, int32_t bit) const { return v & ~BitMask[bit]; }
    void BitOp(int32_t v, int32_t bit);
    void AdcHL(int32_t v);
    void SbcHL(int32_t v);
    int32_t InC();
    void Cpi();
    void Cpd();
    void AddIX(int32_t v);
    void AddIY(int32_t v);

    // --- stack and flow --------------------------------------------------
    void PushWord(int32_t high, int32_t low);
    int32_t PopWord();
    void DoCall(int32_t target);
    void DoRst(int32_t target);
    void DoRet();
    void JumpRel(int32_t displacementByte);

    // --- interrupts ------------------------------------------------------
    void AcceptNmi();
    void AcceptIrq();

    // --- the seven executors ---------------------------------------------
    void xx();
    // The body of xx, inline where z80/ExecBaseBody.h is included (the run
    // loop's hot path).
    [[gnu::always_inline]] inline void xxBody();
    void xxCB();
    void xxED();
    void xxDD();
    void xxFD();
    void xxDDCB();
    void xxFDCB();

    // An undefined or gated opcode: reported in the main window's Label1,
    // stepped over by one byte, no cost and no RegR step.
    void MissingOP();

    // Shared memory access for the executors; inline, defined in hw/Memory.h.
    inline int32_t Rd(int32_t address);
    inline void Wr(int32_t address, int32_t value);
    inline int32_t Rd16(int32_t address);
    // The 16-bit immediate that follows the opcode at RegPC.
    inline int32_t Imm16();

    void SetSZP(int32_t v) {
        FlagS = (v >> 7) & 1;
        FlagZ = v == 0;
        FlagP = ParityTable[v & 255];
    }

    Machine& m;
};

} // namespace tvc
