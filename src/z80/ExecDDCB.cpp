// xxDDCB: the last byte of DD CB d op, on the byte at (IX+d).
//
// Served are the rows with the low three bits 6 and, while UndocEnabled is
// 1, SLL (30-37). The xxDD stage has already stepped over the CB byte, so
// RegPC stands on the displacement and each row moves it 2. SLA, SRA and SRL
// cost 6 here, against 23 in xxFDCB. After an undefined opcode MissingOP
// leaves RegPC on the opcode byte, which then runs as a base instruction.
#include "z80/IndexOps.h"

namespace tvc {

namespace {

// clang-format off
constexpr IndexCbTable kDdcb = [] {
    IndexCbTable t{};
    //                  T   R  Len
    CbRows(t, 0x06, 0x06, 23, 1, 2); // RLC (IX+d)
    CbRows(t, 0x0E, 0x0E, 23, 1, 2); // RRC (IX+d)
    CbRows(t, 0x16, 0x16, 23, 1, 2); // RL (IX+d)
    CbRows(t, 0x1E, 0x1E, 23, 1, 2); // RR (IX+d)
    CbRows(t, 0x26, 0x26, 6, 1, 2);  // SLA (IX+d)
    CbRows(t, 0x2E, 0x2E, 6, 1, 2);  // SRA (IX+d)
    CbRows(t, 0x3E, 0x3E, 6, 1, 2);  // SRL (IX+d)
    CbRows(t, 0x46, 0x7E, 20, 1, 2); // BIT b,(IX+d)
    CbRows(t, 0x86, 0xBE, 23, 1, 2); // RES b,(IX+d)
    CbRows(t, 0xC6, 0xFE, 23, 1, 2); // SET b,(IX+d)
    for (int op = 0x30; op <= 0x37; ++op) t[op] = {IndexRow::Gated, 23, 1, 2}; // SLL (IX+d)
    return t;
}();
// clang-format on

} // namespace

void Z80::xxDDCB() {
    ExecuteIndexCb(*this, kDdcb, RegIX);
}

} // namespace tvc
