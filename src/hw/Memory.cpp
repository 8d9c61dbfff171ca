#include "hw/Memory.h"

#include <string>

namespace tvc::detail {

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

} // namespace tvc::detail
