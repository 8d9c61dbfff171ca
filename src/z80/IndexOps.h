// What xxDD and xxFD share: the semantics of the rows that work the same on
// RegIX and RegIY, and the shape of their cost tables. Each executor keeps its
// own table of T-states, RegR steps and lengths, since the two differ.
#pragma once

#include <array>
#include <initializer_list>

#include "core/Machine.h"
#include "z80/Operands.h"
#include "z80/Z80.h"

namespace tvc {

// One row of an index table: what the opcode is, its cost and how far it
// moves RegPC from the opcode byte.
struct IndexRow {
    enum Kind : uint8_t { Undefined, Documented, Gated };
    Kind kind = Undefined;
    uint8_t t = 0, r = 0, len = 0;
};
using IndexTable = std::array<IndexRow, 256>;

constexpr void Rows(IndexTable& table, IndexRow::Kind kind, std::initializer_list<int> ops,
                    uint8_t t, uint8_t r, uint8_t len) {
    for (int op : ops)
        table[op] = {kind, t, r, len};
}

// The undocumented rows on the index register's halves, gated by UndocEnabled.
// All cost 8 T-states, RegR step 2, length 1; the two immediate loads cost 11
// and take 2.
constexpr void GatedHalfRows(IndexTable& table) {
    Rows(table, IndexRow::Gated,
         {0x24, 0x25, 0x2C, 0x2D, 0x44, 0x45, 0x4C, 0x4D, 0x54, 0x55, 0x5C, 0x5D, 0x60, 0x61, 0x62,
          0x63, 0x64, 0x65, 0x67, 0x68, 0x69, 0x6A, 0x6B, 0x6C, 0x6D, 0x6F, 0x7C, 0x7D, 0x84, 0x85,
          0x8C, 0x8D, 0x94, 0x95, 0x9C, 0x9D, 0xA4, 0xA5, 0xAC, 0xAD, 0xB4, 0xB5, 0xBC, 0xBD},
         8, 2, 1);
    Rows(table, IndexRow::Gated, {0x26, 0x2E}, 11, 2, 2);
}

// (IX+d): the displacement read on entry to the executor, 16-bit address.
inline int32_t IndexedAddress(const Z80& c, int32_t ix) {
    return (ix + c.Displacement) & 0xFFFF;
}

// Register field i with H and L standing for the index register's halves.
inline int32_t GetHalfOperand(Z80& c, int32_t ix, int32_t i) {
    if (i == 4) return ix >> 8;
    if (i == 5) return ix & 255;
    return GetOperand(c, i);
}

inline void SetHalfOperand(Z80& c, int32_t& ix, int32_t i, int32_t v) {
    if (i == 4)
        ix = (v << 8) | (ix & 255);
    else if (i == 5)
        ix = (ix & 0xFF00) | v;
    else
        SetOperand(c, i, v);
}

// A gated row on a half: returns false for an opcode that is not one of them.
inline bool IndexHalfOp(Z80& c, int32_t& ix, int32_t op) {
    switch (op) {
    case 0x24:
    case 0x2C: {
        const int32_t i = (op >> 3) & 7;
        SetHalfOperand(c, ix, i, c.IncByte(GetHalfOperand(c, ix, i)));
        return true;
    }
    case 0x25:
    case 0x2D: {
        const int32_t i = (op >> 3) & 7;
        SetHalfOperand(c, ix, i, c.DecByte(GetHalfOperand(c, ix, i)));
        return true;
    }
    case 0x26:
    case 0x2E: SetHalfOperand(c, ix, (op >> 3) & 7, c.Rd(WrapAdd(c.RegPC, 1))); return true;
    case 0x44:
    case 0x45:
    case 0x4C:
    case 0x4D:
    case 0x54:
    case 0x55:
    case 0x5C:
    case 0x5D:
    case 0x60:
    case 0x61:
    case 0x62:
    case 0x63:
    case 0x64:
    case 0x65:
    case 0x67:
    case 0x68:
    case 0x69:
    case 0x6A:
    case 0x6B:
    case 0x6C:
    case 0x6D:
    case 0x6F:
    case 0x7C:
    case 0x7D: SetHalfOperand(c, ix, (op >> 3) & 7, GetHalfOperand(c, ix, op & 7)); return true;
    case 0x84:
    case 0x85:
    case 0x8C:
    case 0x8D:
    case 0x94:
    case 0x95:
    case 0x9C:
    case 0x9D:
    case 0xA4:
    case 0xA5:
    case 0xAC:
    case 0xAD:
    case 0xB4:
    case 0xB5:
    case 0xBC:
    case 0xBD: Alu(c, (op >> 3) & 7, GetHalfOperand(c, ix, op & 7)); return true;
    default: return false;
    }
}

// The documented rows whose semantics are the same on either index register.
// ADD, JP (IX) and the CB prefix row are each executor's own.
inline void IndexOp(Z80& c, int32_t& ix, int32_t op) {
    switch (op) {
    case 0x21: ix = c.Imm16(); break;
    case 0x22: {
        const int32_t nn = c.Imm16();
        c.Wr(nn, ix & 255);
        c.Wr(nn + 1, ix >> 8);
        break;
    }
    case 0x23: ix = (ix + 1) & 0xFFFF; break;
    case 0x2A: ix = c.Rd16(c.Imm16()); break;
    case 0x2B: ix = (ix - 1) & 0xFFFF; break;
    case 0x34: {
        const int32_t a = IndexedAddress(c, ix);
        c.Wr(a, c.IncByte(c.Rd(a)));
        break;
    }
    case 0x35: {
        const int32_t a = IndexedAddress(c, ix);
        c.Wr(a, c.DecByte(c.Rd(a)));
        break;
    }
    case 0x36: c.Wr(IndexedAddress(c, ix), c.Rd(WrapAdd(c.RegPC, 2))); break;
    case 0x46:
    case 0x4E:
    case 0x56:
    case 0x5E:
    case 0x66:
    case 0x6E:
    case 0x7E: SetOperand(c, (op >> 3) & 7, c.Rd(IndexedAddress(c, ix))); break;
    case 0x70:
    case 0x71:
    case 0x72:
    case 0x73:
    case 0x74:
    case 0x75:
    case 0x77: c.Wr(IndexedAddress(c, ix), GetOperand(c, op & 7)); break;
    case 0x86:
    case 0x8E:
    case 0x96:
    case 0x9E:
    case 0xA6:
    case 0xAE:
    case 0xB6:
    case 0xBE: Alu(c, (op >> 3) & 7, c.Rd(IndexedAddress(c, ix))); break;
    case 0xE1: ix = c.PopWord(); break;
    case 0xE3: { // EX (SP),IX
        const int32_t low = c.Rd(c.RegSP), high = c.Rd(c.RegSP + 1);
        c.Wr(c.RegSP, ix & 255);
        c.Wr(c.RegSP + 1, ix >> 8);
        ix = high * 256 + low;
        break;
    }
    case 0xE5: c.PushWord(ix >> 8, ix & 255); break;
    case 0xF9: c.RegSP = ix; break;
    default: break;
    }
}

// --- DDCB and FDCB: the operand at (IX+d) or (IY+d), with the displacement
// that the DD or FD stage read.

// Rows of the two tables: the rotates and shifts, BIT, RES and SET on (IX+d)
// (low three bits 6), and the gated SLL range 30-37.
struct IndexCbRow {
    IndexRow::Kind kind = IndexRow::Undefined;
    uint8_t t = 0, r = 0, len = 0;
};
using IndexCbTable = std::array<IndexCbRow, 256>;

constexpr void CbRows(IndexCbTable& table, int first, int last, uint8_t t, uint8_t r, uint8_t len) {
    for (int op = first; op <= last; op += 8)
        table[op] = {IndexRow::Documented, t, r, len};
}

// A documented row on the byte at `address`: rotate or shift, BIT, RES or SET.
inline void IndexCbOp(Z80& c, int32_t address, int32_t op) {
    const int32_t v = c.Rd(address), bit = (op >> 3) & 7;
    if (op >= 0x40 && op < 0x80) {
        c.BitOp(v, bit); // BIT only reads
        return;
    }
    int32_t res;
    if (op >= 0xC0)
        res = c.SetBit(v, bit);
    else if (op >= 0x80)
        res = c.ResBit(v, bit);
    else {
        switch (op >> 3) {
        case 0: res = c.RlcByte(v); break;
        case 1: res = c.RrcByte(v); break;
        case 2: res = c.RlByte(v); break;
        case 3: res = c.RrByte(v); break;
        case 4: res = c.SlaByte(v); break;
        case 5: res = c.SraByte(v); break;
        default: res = c.SrlByte(v); break;
        }
    }
    c.Wr(address, res);
}

// SLL (IX+d): the result goes to memory and, but for opcode 36, also to the
// register of the low three bits.
inline void IndexSll(Z80& c, int32_t address, int32_t op) {
    const int32_t res = c.SllByte(c.Rd(address));
    c.Wr(address, res);
    if ((op & 7) != 6) SetOperand(c, op & 7, res);
}

// The body shared by xxDDCB and xxFDCB: each keeps its own table of costs,
// RegR steps and lengths; the work on the operand is the same.
inline void ExecuteIndexCb(Z80& c, const IndexCbTable& table, int32_t indexRegister) {
    const int32_t op = c.CurOpcode & 255;
    const IndexCbRow& row = table[op];
    const int32_t address = IndexedAddress(c, indexRegister);

    switch (row.kind) {
    case IndexRow::Undefined: c.MissingOP(); return;
    case IndexRow::Gated:
        if (c.UndocEnabled != 1) {
            c.MissingOP();
            return;
        }
        IndexSll(c, address, op);
        break;
    case IndexRow::Documented: IndexCbOp(c, address, op); break;
    }

    c.TStates += row.t;
    c.RegR += row.r;
    c.PrefixState = 0;
    c.RegPC = WrapAdd(c.RegPC, row.len);
}

} // namespace tvc
