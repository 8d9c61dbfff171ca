// MemRead and MemWrite: the only way the processor (and the assembler's run
// support) reaches memory. A 16-bit address becomes an offset into Mem by a
// chain of tests on the page registers:
//   P2 = PortLatch[2] (page register), P3 = PortLatch[3] (card slot select),
//   P15 = PortLatch[0x0F] (video page select), P24 = PortLatch[0x18] (card 0 ROM page).
// Addresses are taken as signed numbers as they stand: RegPC and RegSP can run
// outside 0..65535, and such an address follows the same comparisons (a
// negative one the lowest range, 65536 and up the 0xC000 range).
//
// Run-away addresses: where the resulting offset falls outside Mem (or outside
// a MEX4MB page), the read gives 0xFF, as an open bus would, and the write is
// dropped. Nothing reads or writes beyond the arrays.
//
// The chain is the reference; in front of it stands a table of one offset per
// 16 KB range (Bus::ReadPage, Bus::WritePage) for the ranges that map plainly
// onto Mem. Ranges with any side effect or special case keep -1 and take the
// chain: the cartridge while MEX4MB is active, ROM writes, the x32KB cut-off,
// the video error hook and the I/O window at 0xC000.
//
// MemoryMapChanged(m) rebuilds the table. It must be called after anything
// that changes what the table depends on: PortLatch[2], [3], [0x0F], [0x18] or
// [0xA0] (PortOut does it for its writes), menu.x32KB, VideoErrorEnabled,
// CartName/MexActive, MexMem or Mem being reallocated. MachineInit and
// MachineReset call it. Code that writes a latch directly must call it too;
// Bus::SetCartName resets the table to all -1 by itself.
#pragma once

#include <cstdint>

#include "core/Machine.h"

namespace tvc {

namespace detail {
int32_t CartRead(Machine& m, int32_t offset);
void CartWrite(Machine& m, int32_t offset, int32_t value);
int32_t IoWindowRead(Machine& m, int32_t a);
void IoWindowWrite(Machine& m, int32_t a, int32_t value);
int32_t PagingGuardRead(Machine& m, const char* which);
void PagingGuardWrite(Machine& m, const char* which);

inline int32_t At(const Bus& b, int32_t off) {
    return static_cast<uint32_t>(off) < static_cast<uint32_t>(kMemSize) ? b.Mem[off] : 0xFF;
}
inline void Put(Bus& b, int32_t off, int32_t value) {
    if (static_cast<uint32_t>(off) < static_cast<uint32_t>(kMemSize))
        b.Mem[off] = static_cast<uint8_t>(value);
}
} // namespace detail

// The chain of tests alone, without the table: the reference for the table.
int32_t MemReadChain(Machine& m, int32_t a);
void MemWriteChain(Machine& m, int32_t a, int32_t value);

// Rebuilds Bus::ReadPage and Bus::WritePage from the paging state.
void MemoryMapChanged(Machine& m);

[[gnu::always_inline]] inline int32_t MemRead(Machine& m, int32_t a) {
    const Bus& b = m.bus;
    if (static_cast<uint32_t>(a) < 0x10000u) {
        const int32_t base = b.ReadPage[a >> 14];
        if (base >= 0) return b.Mem[base + (a & 0x3FFF)];
    }
    return MemReadChain(m, a);
}

[[gnu::always_inline]] inline void MemWrite(Machine& m, int32_t a, int32_t value) {
    Bus& b = m.bus;
    if (static_cast<uint32_t>(a) < 0x10000u) {
        const int32_t base = b.WritePage[a >> 14];
        if (base >= 0) {
            b.Mem[base + (a & 0x3FFF)] = static_cast<uint8_t>(value);
            return;
        }
    }
    MemWriteChain(m, a, value);
}

[[gnu::always_inline]] inline int32_t Z80::Rd(int32_t address) {
    return MemRead(m, address);
}
[[gnu::always_inline]] inline void Z80::Wr(int32_t address, int32_t value) {
    MemWrite(m, address, value);
}
[[gnu::always_inline]] inline int32_t Z80::Rd16(int32_t address) {
    return Rd(address) + 256 * Rd(WrapAdd(address, 1));
}
[[gnu::always_inline]] inline int32_t Z80::Imm16() {
    return Rd16(RegPC + 1);
}

} // namespace tvc
