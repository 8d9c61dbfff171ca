#include "hw/Ports.h"

#include <fstream>
#include <string>
#include <vector>

#include "core/Machine.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"

namespace tvc {

namespace {

void LogPort(Machine& m, int32_t port, char direction, size_t limit) {
    auto& list = m.forms.TScreen.List1;
    const bool cleared = list.size() >= limit;
    if (cleared) list.clear();
    list.push_back(std::to_string(port) + direction);
    m.host->PortLogChanged(cleared);
}

// Port 0x59: the interrupt and status byte, with the tape level, the colour
// mode and the printer's ready line brought up to date.
int32_t ReadStatus(Machine& m) {
    uint8_t& s = m.bus.PortLatch[0x59];
    s = static_cast<uint8_t>((s & ~0x60) | (TapeSample(m) ? 0x20 : 0) |
                             (m.menu.xScreenBW ? 0 : 0x40));
    s |= 0x80;
    return s;
}

int32_t CardId(const Machine& m) {
    int32_t id = 255;
    if (m.menu.xio0) id = 254;
    if (m.menu.xio1) id &= 243;
    return id;
}

void CrtcDataWrite(Machine& m, int32_t& value) {
    const int32_t reg = m.crtc.CrtcReg[kCrtcSelect] & 31;
    switch (reg) {
    case 4:
    case 6:
    case 7:
    case 10: value &= 0x7F; break;
    case 5:
    case 9:
    case 11: value &= 0x1F; break;
    case 8: value &= 0xF3; break;
    case 12:
    case 14:
    case 16: value &= 0x3F; break;
    default: break;
    }
    m.crtc.CrtcReg[reg] = value;
}

// Port 6: printer strobe when bit 7 is 0, and in every case the sound level
// stamped into this moment's audio slot.
void Port6Write(Machine& m, int32_t value) {
    if (!(value & 0x80)) {
        const uint8_t byte = m.bus.PortLatch[1];
        m.bus.PortLatch[0x59] &= 0x7F;
        Senddata(m, byte);
        if (!m.sound.PrinterLine) {
            PrinterLineSound(m);
            m.sound.PrinterLine = true;
        }
        if (byte == 10) m.sound.PrinterLine = false;
    }
    int32_t slot = m.run.FrameT / kToneSlotT;
    if (slot > kBlockSamples - 1) slot = kBlockSamples - 1;
    if (slot < 0) slot = 0;
    m.sound.ToneSlots[slot] = ((value >> 2) & 15) + 16;
}

} // namespace

int32_t ToneReload(const Machine& m) {
    return ((16 - (m.bus.PortLatch[5] & 15)) * 256 - m.bus.PortLatch[4]) * 16;
}

int32_t PortIn(Machine& m, int32_t port) {
    uint8_t* latch = m.bus.PortLatch;
    switch (port) {
    case 0x10: FdcStatusRead(m); return FdcTrackRead(m);
    case 0x11: return FdcTrackRead(m);
    case 0x12: return FdcSectorRead(m);
    case 0x13: return FdcDataRead(m);
    case 0x14: return FdcHwStatusRead(m);
    case 0x20:
    case 0x21: return SerialIn(m, port);
    case 0x58:
    case 0x5C: {
        const int row = latch[3] & 15;
        return 255 - (row < kKeyRows ? m.bus.KeyMatrix[row] : 0);
    }
    case 0x59:
    case 0x5D: return ReadStatus(m);
    case 0x5A:
    case 0x5E: return CardId(m);
    case 0x5B:
    case 0x5F: m.run.SoundTimer = ToneReload(m); return 255;
    case 0x70:
    case 0x72:
    case 0x74:
    case 0x76: return 255;
    case 0x71:
    case 0x73:
    case 0x75:
    case 0x77: {
        const int32_t reg = m.crtc.CrtcReg[kCrtcSelect] & 31;
        return reg >= 12 ? m.crtc.CrtcReg[reg] : 255;
    }
    default: LogPort(m, port, 'R', kReadLogLimit); return 255;
    }
}

void PortOut(Machine& m, int32_t port, int32_t& value) {
    uint8_t* latch = m.bus.PortLatch;
    const uint8_t byte = static_cast<uint8_t>(value);
    if (port < 1 || port > 255) {
        // The default branch: the border, latched as port 0.
        BorderSet(m, value);
        latch[0] = byte;
        return;
    }
    switch (port) {
    case 0x01:
    case 0x04:
    case 0x05:
    case 0x21: latch[port] = byte; return;
    case 0x02:
    case 0x03:
    case 0x0F:
    case 0x18:
    case 0xA0: // the paging latches
        latch[port] = byte;
        MemoryMapChanged(m);
        return;
    case 0x06:
        Port6Write(m, value);
        latch[port] = byte;
        return;
    case 0x07:
        latch[0x59] |= 0x10;
        m.cpu.IrqRequest = 0;
        return;
    case 0x0C:
    case 0x0D:
    case 0x0E:
    case 0x10: FdcCommand(m, byte); return;
    case 0x11: FdcTrackWrite(m, byte); return;
    case 0x12: FdcSectorWrite(m, byte); return;
    case 0x13: FdcDataWrite(m, byte); return;
    case 0x14: FdcParamWrite(m, byte); return;
    case 0x20: SerialOut(m, port, byte); return;
    case 0x30:
    case 0xFD: SnWrite(m, static_cast<uint8_t>(port), byte); return;
    case 0x32:
    case 0x33:
    case 0xFE:
    case 0xFF: SaaWrite(m, static_cast<uint8_t>(port), byte); return;
    case 0x34:
    case 0x35:
        YmWrite(m, static_cast<uint8_t>(port), byte);
        YmDirect(m, static_cast<uint8_t>(port), byte);
        return;
    case 0x36:
    case 0x37: LoadSoundCardPage(m, value & 3); return;
    case 0x38:
    case 0x39: SidWrite(m, static_cast<uint8_t>(port), byte); return;
    case 0x3A:
    case 0x3B: AyWrite(m, static_cast<uint8_t>(port), byte); return;
    case 0x3C:
    case 0x3D: Ym2Write(m, static_cast<uint8_t>(port), byte); return;
    case 0x50:
    case 0x51:
    case 0x52:
    case 0x53:
    case 0x54:
    case 0x55:
    case 0x56:
    case 0x57: TapeEdge(m); return;
    case 0x58:
    case 0x5C: latch[0x59] |= 0x01; return;
    case 0x59:
    case 0x5D: latch[0x59] |= 0x02; return;
    case 0x5A:
    case 0x5E: latch[0x59] |= 0x04; return;
    case 0x5B:
    case 0x5F: latch[0x59] |= 0x08; return;
    case 0x70:
    case 0x72:
    case 0x74:
    case 0x76:
        value &= 31;
        latch[port] = static_cast<uint8_t>(value);
        m.crtc.CrtcReg[kCrtcSelect] = value;
        return;
    case 0x71:
    case 0x73:
    case 0x75:
    case 0x77: CrtcDataWrite(m, value); return;
    default: break;
    }
    if (port >= 0x60 && port <= 0x6F) {
        PALSet(m);
        latch[port] = byte;
        return;
    }
    if (port >= 0xE0 && port <= 0xF8) {
        SidDirect(m, static_cast<uint8_t>(port - 0xE0), byte);
        return;
    }
    latch[port] = byte;
    LogPort(m, port, 'W', kWriteLogLimit);
}

} // namespace tvc
