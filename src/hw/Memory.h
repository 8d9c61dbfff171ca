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

inline int32_t MemRead(Machine& m, int32_t a) {
    using namespace detail;
    Bus& b = m.bus;
    const int32_t p2 = b.PortLatch[2];
    // Every branch adds a non-negative offset, so an address past the end of
    // Mem can only land off the map; leaving early also keeps the sums in range.
    if (a >= kMemSize) return 0xFF;
    if (a < 0x4000) {
        switch (p2 & 0x18) {
        case 0x00: return At(b, a + 0x18000);
        case 0x08: return CartRead(m, a);
        case 0x10: return At(b, a);
        case 0x18: return At(b, a + 0xC000);
        }
        return PagingGuardRead(m, "P2");
    }
    if (a < 0x8000) {
        if (!(p2 & 0x04)) return At(b, a);
        switch (b.PortLatch[0x0F] & 3) {
        case 0: return At(b, a + 0xC000);
        case 1: return At(b, a + 0x1C000);
        case 2: return At(b, a + 0x20000);
        case 3: return At(b, a + 0x24000);
        }
        return PagingGuardRead(m, "P15");
    }
    if (a < 0xC000) {
        if (p2 & 0x20) return m.menu.x32KB ? 0 : At(b, a);
        if (b.VideoErrorEnabled) b.Mem[a + 0x8000] |= 0x37;
        switch (b.PortLatch[0x0F] & 0x0C) {
        case 0x00: return At(b, a + 0x8000);
        case 0x04: return At(b, a + 0x18000);
        case 0x08: return At(b, a + 0x1C000);
        case 0x0C: return At(b, a + 0x20000);
        }
        return PagingGuardRead(m, "P15");
    }
    switch (p2 & 0xC0) {
    case 0x00: return CartRead(m, a - 0xC000);
    case 0x40: return At(b, a + 0xC000);
    case 0x80: return m.menu.x32KB ? 0 : At(b, a);
    case 0xC0: return IoWindowRead(m, a);
    }
    return PagingGuardRead(m, "P2");
}

inline void MemWrite(Machine& m, int32_t a, int32_t value) {
    using namespace detail;
    Bus& b = m.bus;
    const int32_t p2 = b.PortLatch[2];
    if (a >= kMemSize) return;
    if (a < 0x4000) {
        switch (p2 & 0x18) {
        case 0x00: return; // system ROM
        case 0x08: return CartWrite(m, a, value);
        case 0x10: return Put(b, a, value);
        case 0x18: return Put(b, a + 0xC000, value);
        }
        return PagingGuardWrite(m, "P2");
    }
    if (a < 0x8000) {
        if (!(p2 & 0x04)) return Put(b, a, value);
        switch (b.PortLatch[0x0F] & 3) {
        case 0: return Put(b, a + 0xC000, value);
        case 1: return Put(b, a + 0x1C000, value);
        case 2: return Put(b, a + 0x20000, value);
        case 3: return Put(b, a + 0x24000, value);
        }
        return PagingGuardWrite(m, "P15");
    }
    if (a < 0xC000) {
        // With x32KB the RAM still stores; only reads are cut off.
        if (p2 & 0x20) return Put(b, a, value);
        switch (b.PortLatch[0x0F] & 0x0C) {
        case 0x00: return Put(b, a + 0x8000, value);
        case 0x04: return Put(b, a + 0x18000, value);
        case 0x08: return Put(b, a + 0x1C000, value);
        case 0x0C: return Put(b, a + 0x20000, value);
        }
        return PagingGuardWrite(m, "P15");
    }
    switch (p2 & 0xC0) {
    case 0x00: return CartWrite(m, a - 0xC000, value);
    case 0x40: return; // system ROM
    case 0x80: return Put(b, a, value);
    case 0xC0: return IoWindowWrite(m, a, value);
    }
    PagingGuardWrite(m, "P2");
}

} // namespace tvc
