// xxFD: the byte after the FD prefix, instructions on RegIY, and four
// opcodes of the emulator's own (F0-F3) for software written for it.
//
// A table of its own beside xxDD's, with its own costs and RegR steps: DEC IY
// costs 10 where DEC IX costs 6, LD (IY+d),r costs 20, and several rows step
// RegR by more. Its CB row leaves RegPC on the CB byte, so the run loop takes
// the opcode two bytes on, after the displacement.
#include "z80/IndexOps.h"

namespace tvc {

namespace {

// clang-format off
constexpr IndexTable kFd = [] {
    IndexTable t{};
    using K = IndexRow::Kind;
    //                                                            T   R  Len
    Rows(t, K::Documented, {0x09, 0x19},                         15, 1, 1); // ADD IY,BC/DE
    Rows(t, K::Documented, {0x29, 0x39},                         15, 4, 1); // ADD IY,IY/SP
    Rows(t, K::Documented, {0x21},                               19, 1, 3); // LD IY,nn
    Rows(t, K::Documented, {0x22},                               20, 2, 3); // LD (nn),IY
    Rows(t, K::Documented, {0x23},                                6, 1, 1); // INC IY
    Rows(t, K::Documented, {0x2A},                               20, 1, 3); // LD IY,(nn)
    Rows(t, K::Documented, {0x2B},                               10, 2, 1); // DEC IY
    Rows(t, K::Documented, {0x34, 0x35},                         23, 2, 2); // INC/DEC (IY+d)
    Rows(t, K::Documented, {0x36},                               19, 1, 3); // LD (IY+d),n
    Rows(t, K::Documented, {0x46, 0x4E, 0x56, 0x5E, 0x66, 0x6E, 0x7E}, 19, 2, 2); // LD r,(IY+d)
    Rows(t, K::Documented, {0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x77}, 20, 1, 2); // LD (IY+d),r
    Rows(t, K::Documented, {0x86, 0x96, 0xA6, 0xAE, 0xB6, 0xBE}, 19, 1, 2); // ALU on (IY+d)
    Rows(t, K::Documented, {0x8E},                               19, 4, 2); // ADC A,(IY+d)
    Rows(t, K::Documented, {0x9E},                               19, 5, 2); // SBC A,(IY+d)
    Rows(t, K::Documented, {0xE1},                               10, 1, 1); // POP IY
    Rows(t, K::Documented, {0xE3},                               23, 2, 1); // EX (SP),IY
    Rows(t, K::Documented, {0xE5},                               15, 1, 1); // PUSH IY
    Rows(t, K::Documented, {0xE9},                                8, 1, 0); // JP (IY)
    Rows(t, K::Documented, {0xF9},                               10, 2, 1); // LD SP,IY
    Rows(t, K::Documented, {0xCB},                                0, 0, 0); // FDCB prefix
    Rows(t, K::Documented, {0xF0, 0xF1, 0xF2, 0xF3},              0, 0, 1); // the emulator's own
    GatedHalfRows(t);
    return t;
}();
// clang-format on

constexpr int kBeepHz = 600;

} // namespace

void Z80::xxFD() {
    const int32_t op = CurOpcode & 255;
    Displacement = static_cast<int8_t>(Rd(WrapAdd(RegPC, 1)));
    const IndexRow& row = kFd[op];

    switch (row.kind) {
    case IndexRow::Undefined: MissingOP(); return;
    case IndexRow::Gated:
        if (UndocEnabled != 1) {
            MissingOP();
            return;
        }
        if (!IndexHalfOp(*this, RegIY, op)) { // unreachable: the table lists them all
            m.host->MessageBox("miisinoppp", kAppTitle, MsgKind::Plain);
            MissingOP();
            return;
        }
        break;
    case IndexRow::Documented:
        switch (op) {
        case 0x09: AddIY(BC()); break;
        case 0x19: AddIY(DE()); break;
        case 0x29: AddIY(RegIY); break;
        case 0x39: AddIY(RegSP); break;
        case 0xE9: RegPC = RegIY; break;
        case 0xCB: break;
        // The emulator's own: a program raises the lines or stops the run.
        case 0xF0:
            if (IFF1 == 1) IrqRequest = 1;
            break;
        case 0xF1:
            NmiRequest = 1;
            m.host->Beep(kBeepHz, 500);
            break;
        case 0xF2:
            ResetRequest = 1;
            m.host->Beep(kBeepHz, 500);
            break;
        case 0xF3:
            m.run.RunFlag = 0;
            m.host->Beep(kBeepHz, 200);
            break;
        default: IndexOp(*this, RegIY, op); break;
        }
        break;
    }

    TStates += row.t;
    RegR += row.r;
    PrefixState = op == 0xCB ? kPrefixFDCB : 0;
    RegPC = WrapAdd(RegPC, row.len);
}

} // namespace tvc
