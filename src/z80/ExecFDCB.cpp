// xxFDCB: the last byte of FD CB d op, on the byte at (IY+d).
//
// Served are the rows with the low three bits 6 and, while UndocEnabled is
// 1, SLL (30-37). The xxFD stage left RegPC on the CB byte, so the rows move
// it 3, except SLL, which moves it only 2: the next fetch lands on the
// instruction's last byte, which runs as an instruction of its own. Software
// for this machine has run against that, so it stays. RLC, RES and SET cost
// 20 here; RRC steps RegR by 6. After an undefined opcode MissingOP leaves
// RegPC on the displacement byte, which then runs as a base instruction.
#include "z80/IndexOps.h"

namespace tvc {

namespace {

// clang-format off
constexpr IndexCbTable kFdcb = [] {
    IndexCbTable t{};
    //                  T   R  Len
    CbRows(t, 0x06, 0x06, 20, 1, 3); // RLC (IY+d)
    CbRows(t, 0x0E, 0x0E, 23, 6, 3); // RRC (IY+d)
    CbRows(t, 0x16, 0x16, 23, 1, 3); // RL (IY+d)
    CbRows(t, 0x1E, 0x1E, 23, 1, 3); // RR (IY+d)
    CbRows(t, 0x26, 0x26, 23, 1, 3); // SLA (IY+d)
    CbRows(t, 0x2E, 0x2E, 23, 1, 3); // SRA (IY+d)
    CbRows(t, 0x3E, 0x3E, 23, 1, 3); // SRL (IY+d)
    CbRows(t, 0x46, 0x7E, 20, 1, 3); // BIT b,(IY+d)
    CbRows(t, 0x86, 0xBE, 20, 1, 3); // RES b,(IY+d)
    CbRows(t, 0xC6, 0xFE, 20, 1, 3); // SET b,(IY+d)
    for (int op = 0x30; op <= 0x37; ++op) t[op] = {IndexRow::Gated, 23, 1, 2}; // SLL (IY+d)
    return t;
}();
// clang-format on

} // namespace

void Z80::xxFDCB() {
    ExecuteIndexCb(*this, kFdcb, RegIY);
}

} // namespace tvc
