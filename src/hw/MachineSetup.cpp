#include "hw/MachineSetup.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <optional>
#include <vector>

#include "core/Machine.h"
#include "hw/Memory.h"
#include "hw/Ports.h"

namespace tvc {

namespace {

// Reads up to `size` bytes of a file into a zeroed buffer of that size. No
// value when the file cannot be opened.
std::optional<std::vector<uint8_t>> ReadFileBounded(const std::string& name, size_t size) {
    std::ifstream in(name, std::ios::binary);
    if (!in) return std::nullopt;
    std::vector<uint8_t> buf(size, 0);
    in.read(reinterpret_cast<char*>(buf.data()), static_cast<std::streamsize>(size));
    if (in.bad()) return std::nullopt;
    return buf;
}

void CopyToMem(Machine& m, const std::vector<uint8_t>& buf, size_t from, int32_t target,
               size_t count) {
    std::memcpy(&m.bus.Mem[target], buf.data() + from, count);
}

// A file outside the trapped system ROMs: its absence stops the program, as
// an untrapped error of the original runtime did.
std::optional<std::vector<uint8_t>> ReadOptional(Machine& m, const std::string& name, size_t size) {
    auto buf = ReadFileBounded(name, size);
    if (!buf) m.Fatal("File not found: " + name, "Error");
    return buf;
}

bool LoadSystemRoms(Machine& m) {
    struct Place {
        const char* name;
        int32_t target;
    };
    static constexpr Place set12[] = {
        {"TVC12_D4.rom", 0x18000}, {"TVC12_D3.rom", 0x1A000}, {"TVC12_D7.rom", 0x1E000}};
    static constexpr Place set22[] = {
        {"TVC22_D6.rom", 0x18000}, {"TVC22_D4.rom", 0x1A000}, {"TVC22_D7.rom", 0x1E000}};
    for (const Place& p : m.menu.xBasic ? set22 : set12) {
        auto buf = ReadFileBounded(p.name, 8192);
        if (!buf) {
            m.Fatal("Rom File error: ", "Error");
            return false;
        }
        CopyToMem(m, *buf, 0, p.target, 8192);
    }
    return true;
}

void LoadCartridge(Machine& m) {
    Bus& b = m.bus;
    b.MexMem.clear();
    if (b.CartName.empty()) {
        std::fill_n(&b.Mem[0x14000], 16384, uint8_t{0});
    } else if (b.MexActive) {
        if (auto buf = ReadOptional(m, b.CartName, size_t(kMexPages) * kMexPageSize))
            b.MexMem = std::move(*buf);
    } else if (auto buf = ReadOptional(m, b.CartName, 16384)) {
        CopyToMem(m, *buf, 0, 0x14000, 16384);
    }
    MemoryMapChanged(m);
}

} // namespace

void LoadSoundCardPage(Machine& m, int32_t page) {
    if (auto buf = ReadOptional(m, "sndmx.rom", 32768))
        CopyToMem(m, *buf, size_t(page & 3) * 8192, 0x30000, 8192);
}

void MachineInit(Machine& m) {
    Bus& b = m.bus;
    b.Mem.assign(kMemSize, 0);
    std::fill(std::begin(b.PortLatch), std::end(b.PortLatch), uint8_t{0});
    std::fill(std::begin(b.KeyMatrix), std::end(b.KeyMatrix), uint8_t{0});
    MemoryMapChanged(m);

    m.cpu.Z80Init();
    FdcInit(m);
    SaaLoadTable(m);
    SnReset(m);
    YmInit(m);
    Ym2Reset(m);
    SidInit(m);
    AyInit(m);

    m.cpu.CurOpcode = 0;
    m.cpu.TStates = 0;
    m.run.FrameT = 0;
    m.cpu.PrefixState = 0;
    m.cpu.ResetRequest = 0;
    m.run.InstCount = 0;
    m.cpu.UndocEnabled = 1;

    if (!LoadSystemRoms(m)) return;

    if (m.menu.xio0) {
        if (auto buf = ReadOptional(m, "hbf.rom", 16384))
            CopyToMem(m, *buf, 0, 0x38000, 16384);
        else
            return;
    }
    if (m.menu.xio2) {
        if (auto buf = ReadOptional(m, "sndmx.rom", 32768))
            CopyToMem(m, *buf, 0x6000, 0x30000, 8192);
        else
            return;
        int32_t value = 3;
        PortOut(m, 0x36, value);
        if (m.FatalStop) return;
    }
    if (m.menu.xio3) {
        if (auto buf = ReadOptional(m, "io3.rom", 8192))
            CopyToMem(m, *buf, 0, 0x32000, 8192);
        else
            return;
    }
    LoadCartridge(m);
}

void MachineReset(Machine& m) {
    Bus& b = m.bus;
    std::fill(std::begin(b.PortLatch), std::end(b.PortLatch), uint8_t{0});
    std::fill(std::begin(b.KeyMatrix), std::end(b.KeyMatrix), uint8_t{0});
    b.PortLatch[0x59] = 191;
    b.PortLatch[5] = 255;
    b.PortLatch[2] = 0;

    // R0 to R17 and the select entry; the spare entries behind them keep their values.
    std::fill_n(m.crtc.CrtcReg, kCrtcSelect + 1, 0);
    m.crtc.CrtcReg[10] = 32;

    SaaReset(m);
    YmReset(m);
    SnReset(m);
    Ym2Reset(m);
    SidReset(m);
    AyReset(m);
    Ym2Reset(m);

    m.cpu.CpuReset();

    b.PortLatch[2] = 0;
    b.PortLatch[0x18] = 0;
    MemoryMapChanged(m);
}

} // namespace tvc
