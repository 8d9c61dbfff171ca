// xxDD: the byte after the DD prefix, instructions on RegIX.
//
// A table of its own, not shared with xxFD: the two differ in cost, in the
// RegR step and in the CB row, where xxDD steps RegPC over the CB byte and
// xxFD does not. On entry the byte after the opcode is always read as the
// displacement, whatever the opcode. Absent rows go to MissingOP, so a second
// prefix (DD DD, DD ED) or a plain opcode (DD 40) is stepped over at no cost.
#include "z80/IndexOps.h"

namespace tvc {

namespace {

// clang-format off
constexpr IndexTable kDd = [] {
    IndexTable t{};
    using K = IndexRow::Kind;
    //                                                            T   R  Len
    Rows(t, K::Documented, {0x09, 0x19, 0x29, 0x39},             15, 1, 1); // ADD IX,rr
    Rows(t, K::Documented, {0x21},                               19, 1, 3); // LD IX,nn
    Rows(t, K::Documented, {0x22},                               20, 2, 3); // LD (nn),IX
    Rows(t, K::Documented, {0x23},                                6, 1, 1); // INC IX
    Rows(t, K::Documented, {0x2A},                               20, 1, 3); // LD IX,(nn)
    Rows(t, K::Documented, {0x2B},                                6, 1, 1); // DEC IX
    Rows(t, K::Documented, {0x34, 0x35},                         23, 1, 2); // INC/DEC (IX+d)
    Rows(t, K::Documented, {0x36},                               19, 1, 3); // LD (IX+d),n
    Rows(t, K::Documented, {0x46, 0x4E, 0x56, 0x5E, 0x6E},       19, 1, 2); // LD r,(IX+d)
    Rows(t, K::Documented, {0x66, 0x7E},                         19, 2, 2); // LD H/A,(IX+d)
    Rows(t, K::Documented, {0x70, 0x71, 0x72, 0x73, 0x74, 0x75, 0x77}, 19, 1, 2); // LD (IX+d),r
    Rows(t, K::Documented, {0x86, 0x8E, 0x96, 0x9E, 0xA6, 0xAE, 0xB6, 0xBE}, 19, 1, 2); // ALU
    Rows(t, K::Documented, {0xE1},                               10, 1, 1); // POP IX
    Rows(t, K::Documented, {0xE3},                               23, 2, 1); // EX (SP),IX
    Rows(t, K::Documented, {0xE5},                               15, 1, 1); // PUSH IX
    Rows(t, K::Documented, {0xE9},                                8, 1, 0); // JP (IX)
    Rows(t, K::Documented, {0xF9},                               10, 2, 1); // LD SP,IX
    Rows(t, K::Documented, {0xCB},                                0, 0, 1); // DDCB prefix
    GatedHalfRows(t);
    return t;
}();
// clang-format on

} // namespace

void Z80::xxDD() {
    const int32_t op = CurOpcode & 255;
    Displacement = static_cast<int8_t>(Rd(WrapAdd(RegPC, 1)));
    const IndexRow& row = kDd[op];

    switch (row.kind) {
    case IndexRow::Undefined: MissingOP(); return;
    case IndexRow::Gated:
        if (UndocEnabled != 1) {
            MissingOP();
            return;
        }
        if (!IndexHalfOp(*this, RegIX, op)) { // unreachable: the table lists them all
            m.host->MessageBox("miisinoppp", kAppTitle, MsgKind::Plain);
            MissingOP();
            return;
        }
        break;
    case IndexRow::Documented:
        switch (op) {
        case 0x09: AddIX(BC()); break;
        case 0x19: AddIX(DE()); break;
        case 0x29: AddIX(RegIX); break;
        case 0x39: AddIX(RegSP); break;
        case 0xE9: RegPC = RegIX; break;
        case 0xCB: break;
        default: IndexOp(*this, RegIX, op); break;
        }
        break;
    }

    TStates += row.t;
    RegR += row.r;
    PrefixState = op == 0xCB ? kPrefixDDCB : 0;
    RegPC = WrapAdd(RegPC, row.len);
}

} // namespace tvc
