#include "hw/Memory.h"

#include <string>

namespace tvc {

using namespace detail;

namespace detail {

// The cartridge slot: the 16 KB image at 0x14000, or the MEX4MB page chosen by
// port 0xA0. Both take writes: the expansion is RAM, and a plain image keeps
// what is written until the next MachineInit.
int32_t CartRead(Machine& m, int32_t offset) {
    Bus& b = m.bus;
    if (b.MexActive) {
        if (offset < 0 || offset >= kMexPageSize || b.MexMem.empty()) return 0xFF;
        return b.MexMem[b.PortLatch[0xA0] * kMexPageSize + offset];
    }
    return At(b, offset + 0x14000);
}

void CartWrite(Machine& m, int32_t offset, int32_t value) {
    Bus& b = m.bus;
    if (b.MexActive) {
        if (offset < 0 || offset >= kMexPageSize || b.MexMem.empty()) return;
        b.MexMem[b.PortLatch[0xA0] * kMexPageSize + offset] = static_cast<uint8_t>(value);
        return;
    }
    Put(b, offset + 0x14000, value);
}

// 0xC000 and up with P2 and 0xC0 = 0xC0: extension ROM above 0xDFFF, below it
// the I/O memory of the card slot that P3 bits 6 and 7 pick.
int32_t IoWindowRead(Machine& m, int32_t a) {
    Bus& b = m.bus;
    if (a > 0xDFFF) return At(b, a + 0x10000);
    switch (b.PortLatch[3] & 0xC0) {
    case 0x00:
        if (a > 0xCFFF) return At(b, a + 0x21000); // card 0 RAM
        switch (b.PortLatch[0x18] & 0x30) {
        case 0x00: return At(b, a + 0x2C000);
        case 0x10: return At(b, a + 0x2D000);
        case 0x20: return At(b, a + 0x2E000);
        case 0x30: return At(b, a + 0x2F000);
        }
        m.host->MessageBox(std::to_string(a), "Memory error!", MsgKind::Plain);
        return 0;
    case 0x40: return At(b, a + 0x22000);
    case 0x80: return At(b, a + 0x24000);
    case 0xC0: return At(b, a + 0x26000);
    }
    return PagingGuardRead(m, "P3");
}

void IoWindowWrite(Machine& m, int32_t a, int32_t value) {
    Bus& b = m.bus;
    if (a > 0xDFFF) return; // extension ROM
    switch (b.PortLatch[3] & 0xC0) {
    case 0x00:
        if (a > 0xCFFF) return Put(b, a + 0x21000, value);
        switch (b.PortLatch[0x18] & 0x30) {
        case 0x00:
        case 0x10:
        case 0x20:
        case 0x30: return; // card 0 ROM
        }
        m.host->MessageBox(std::to_string(a), "Memory error!", MsgKind::Plain);
        return;
    case 0x40:
    case 0x80:
    case 0xC0: m.Fatal(" CTL 1-3 IOM write????", kAppTitle); return;
    }
    PagingGuardWrite(m, "P3");
}

// The ends of the paging chains: the tests above are exhaustive, so these only
// mark that the chain is complete.
int32_t PagingGuardRead(Machine& m, const char* which) {
    if (std::string(which) == "P3")
        m.host->MessageBox("Illegal Memory Paging read!:" + std::to_string(m.bus.PortLatch[2]),
                           kAppTitle, MsgKind::Plain);
    else
        m.host->MessageBox("hiba", kAppTitle, MsgKind::Plain);
    return 0;
}

void PagingGuardWrite(Machine& m, const char* which) {
    if (std::string(which) == "P3")
        m.host->MessageBox("Illegal Memory Paging write!:" + std::to_string(m.bus.PortLatch[2]),
                           kAppTitle, MsgKind::Plain);
    else
        m.host->MessageBox("hiba", kAppTitle, MsgKind::Plain);
}

} // namespace detail

int32_t MemReadChain(Machine& m, int32_t a) {
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

void MemWriteChain(Machine& m, int32_t a, int32_t value) {
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

void MemoryMapChanged(Machine& m) {
    Bus& b = m.bus;
    const int32_t p2 = b.PortLatch[2];
    const int32_t p15 = b.PortLatch[0x0F];
    const bool x32 = m.menu.x32KB;
    // The plain cartridge image; the MEX4MB pages lie outside Mem.
    const int32_t cart = b.MexActive ? -1 : 0x14000;
    int32_t* rd = b.ReadPage;
    int32_t* wr = b.WritePage;

    switch (p2 & 0x18) {
    case 0x00: rd[0] = 0x18000, wr[0] = -1; break;
    case 0x08: rd[0] = wr[0] = cart; break;
    case 0x10: rd[0] = wr[0] = 0x00000; break;
    default: rd[0] = wr[0] = 0x0C000; break;
    }

    // The video page at 0x4000 comes from P15 bits 0-1, the one at 0x8000 from bits 2-3.
    constexpr int32_t kVideo[4] = {0x10000, 0x20000, 0x24000, 0x28000};
    rd[1] = wr[1] = (p2 & 0x04) ? kVideo[p15 & 3] : 0x04000;
    if (p2 & 0x20) {
        wr[2] = 0x08000;
        rd[2] = x32 ? -1 : 0x08000;
    } else {
        wr[2] = kVideo[(p15 >> 2) & 3];
        rd[2] = b.VideoErrorEnabled ? -1 : wr[2];
    }

    switch (p2 & 0xC0) {
    case 0x00: rd[3] = wr[3] = cart; break;
    case 0x40: rd[3] = 0x18000, wr[3] = -1; break;
    case 0x80: rd[3] = x32 ? -1 : 0x0C000, wr[3] = 0x0C000; break;
    default: rd[3] = wr[3] = -1; break;
    }
}

} // namespace tvc
