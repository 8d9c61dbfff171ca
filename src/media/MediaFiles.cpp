#include "media/MediaFiles.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "core/Machine.h"
#include "core/Numbers.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"

namespace tvc {

namespace {

constexpr int32_t kCasStartPtr = 0x1722, kCasEndPtr = 0x1726, kCasShownPtr = 0x1720;

bool WriteFile(const std::string& name, const std::vector<uint8_t>& bytes) {
    std::error_code ec;
    std::filesystem::remove(name, ec); // an old file goes first; failure is ignored
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    return static_cast<bool>(out.flush());
}

// The leading number of a text box, as the dialog's boxes are read: blanks,
// then a decimal number; anything else ends it, and no number is 0.
double Val(const std::string& text) {
    const char* s = text.c_str();
    char* end = nullptr;
    const double v = std::strtod(s, &end);
    return end == s || !std::isfinite(v) ? 0.0 : v;
}

int32_t ValRounded(const std::string& text) {
    const double v = std::clamp(Val(text), -2147483648.0, 2147483647.0);
    return static_cast<int32_t>(RoundHalfEven(v));
}

// name + the pattern's extension: the pattern from its second character, at
// most five characters ("*.cas" gives ".cas").
std::string WithExtension(const std::string& name, const std::string& pattern) {
    return name + (pattern.size() > 1 ? pattern.substr(1, 5) : std::string());
}

uint32_t Get32(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

// The snapshot's first field rows in the order the writer stores them: each
// is a 4-byte value, so later ones overwrite the high bytes of earlier ones.
struct SnapField {
    size_t at;
    int32_t Z80::*reg;
    bool flag;
};
constexpr SnapField kSnapBytes[] = {
    {19, &Z80::RegA, false},  {26, &Z80::RegA2, false}, {20, &Z80::RegB, false},
    {27, &Z80::RegB2, false}, {21, &Z80::RegC, false},  {28, &Z80::RegC2, false},
    {22, &Z80::RegD, false},  {29, &Z80::RegD2, false}, {23, &Z80::RegE, false},
    {30, &Z80::RegE2, false}, {24, &Z80::RegH, false},  {31, &Z80::RegH2, false},
    {25, &Z80::RegL, false},  {32, &Z80::RegL2, false}, {33, &Z80::FlagC, true},
    {41, &Z80::FlagC2, true}, {34, &Z80::FlagN, true},  {42, &Z80::FlagN2, true},
    {35, &Z80::FlagP, true},  {43, &Z80::FlagP2, true}, {36, &Z80::FlagX, true},
    {44, &Z80::FlagX2, true}, {37, &Z80::FlagH, true},  {45, &Z80::FlagH2, true},
    {38, &Z80::FlagY, true},  {46, &Z80::FlagY2, true}, {39, &Z80::FlagZ, true},
    {47, &Z80::FlagZ2, true}, {40, &Z80::FlagS, true},  {48, &Z80::FlagS2, true},
};
struct SnapWord {
    size_t at;
    int32_t Z80::*reg;
    int32_t mask; // what a loaded value is cut to, so it cannot index past memory
};
constexpr SnapWord kSnapWords[] = {
    {49, &Z80::RegIX, 0xFFFF}, {53, &Z80::RegIY, 0xFFFF}, {57, &Z80::RegSP, 0xFFFF},
    {61, &Z80::RegPC, 0xFFFF}, {65, &Z80::RegI, 0xFF},    {69, &Z80::RegR, 0xFF},
    {73, &Z80::IFF1, 1},       {77, &Z80::IFF2, 1},       {81, &Z80::IntMode, 3},
};
constexpr size_t kSnapPorts = 99, kSnapRequests = 403, kSnapRunFlag = 415, kSnapCrtc = 499;
constexpr int kSnapCrtcRegs = 19;

void Put32(std::vector<uint8_t>& f, size_t at, int32_t v) {
    for (size_t i = 0; i < 4 && at + i < f.size(); ++i)
        f[at + i] = static_cast<uint8_t>(uint32_t(v) >> (8 * i));
}

} // namespace

bool ReadFileBounded(const std::string& name, size_t limit, std::vector<uint8_t>& bytes,
                     uint64_t& length) {
    std::error_code ec;
    if (name.empty() || std::filesystem::is_directory(name, ec)) return false;
    std::ifstream in(name, std::ios::binary | std::ios::ate);
    if (!in) return false;
    const auto end = in.tellg();
    if (end < 0) return false;
    length = static_cast<uint64_t>(end);
    in.seekg(0);
    bytes.assign(static_cast<size_t>(std::min<uint64_t>(length, limit)), 0);
    in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(bytes.size()));
    bytes.resize(static_cast<size_t>(in.gcount()));
    return !in.bad();
}

void ReportFileError(Machine& m, const std::string& name) {
    m.host->MessageBox("File not found: " + name, kAppTitle, MsgKind::Critical);
}
void ReportWriteError(Machine& m, const std::string& name) {
    m.host->MessageBox("Path/File access error: " + name, kAppTitle, MsgKind::Critical);
}

// ---- CAS files ----

void LoadCasBytes(Machine& m, std::span<const uint8_t> bytes, uint64_t length) {
    std::vector<uint8_t>& mem = m.bus.Mem;
    const int64_t n = static_cast<int64_t>(std::min<uint64_t>(length, INT32_MAX)) - kCasHeaderBytes;
    // The body goes to Mem from 0x19EF and stops at its end.
    for (int64_t i = 0; i < n && kCasBodyAt + i < kMemSize; ++i) {
        const size_t from = size_t(kCasHeaderBytes + i);
        mem[size_t(kCasBodyAt + i)] = from < bytes.size() ? bytes[from] : 0;
    }
    mem[kCasStartPtr] = kCasBodyAt & 0xFF;
    mem[kCasStartPtr + 1] = kCasBodyAt >> 8;
    const int64_t end = n + kCasBodyAt;
    mem[kCasEndPtr] = static_cast<uint8_t>(end & 0xFF);
    mem[kCasEndPtr + 1] = static_cast<uint8_t>((end >> 8) & 0xFF);
}

void xSaveCAS(Machine& m) {
    auto word = [&](int32_t a) { return MemRead(m, a) + MemRead(m, a + 1) * 256; };
    MediaControls& f = m.forms.Media;
    f.Text6 = std::to_string(word(kCasStartPtr));
    f.Text7 = std::to_string(word(kCasEndPtr));
    f.Text8 = std::to_string(word(kCasShownPtr));
}

std::vector<uint8_t> SaveCasBytes(Machine& m) {
    MediaControls& f = m.forms.Media;
    int64_t start = std::min(ValRounded(f.Text6), 0xFFFF);
    const int64_t end = std::min(ValRounded(f.Text7), 0xFFFF);
    start = std::max<int64_t>(start, kCasBodyAt);
    f.Text6 = std::to_string(start);
    f.Text7 = std::to_string(end);

    const int64_t size = end - start;
    const int64_t total = size + kCasHeaderBytes;
    const int64_t blocks = total / 128;
    const int64_t high = blocks / 256, low = blocks - 256 * high;
    std::vector<uint8_t> file(size_t(kCasHeaderBytes), 0);
    file[0] = 0x11;
    file[2] = static_cast<uint8_t>(low & 0xFF);
    file[3] = static_cast<uint8_t>(high & 0xFF);
    file[4] = static_cast<uint8_t>((total - (low & 0xFF) * 128 - (high & 0xFF)) & 0xFF);
    file[129] = 1;
    const int64_t sizeHigh = size / 256;
    file[130] = static_cast<uint8_t>((size - 256 * sizeHigh) & 0xFF);
    file[131] = static_cast<uint8_t>(sizeHigh & 0xFF);
    for (int64_t a = start; a < end; ++a)
        file.push_back(static_cast<uint8_t>(MemRead(m, static_cast<int32_t>(a))));
    return file;
}

bool LoadCAS(Machine& m, const std::string& name) {
    m.forms.Media.CasPaging = m.bus.PortLatch[2] & 252;
    if (m.forms.Media.CasPaging != 0x70) m.host->DoEvents();
    std::vector<uint8_t> bytes;
    uint64_t length = 0;
    if (!ReadFileBounded(name, size_t(kCasHeaderBytes + kMemSize - kCasBodyAt), bytes, length)) {
        ReportFileError(m, name);
        return false;
    }
    LoadCasBytes(m, bytes, length);
    return true;
}

bool SaveCAS(Machine& m, const std::string& name, const std::string& pattern) {
    const std::string file = WithExtension(name, pattern);
    if (!WriteFile(file, SaveCasBytes(m))) {
        ReportWriteError(m, file);
        return false;
    }
    return true;
}

// ---- Snapshots ----

std::vector<uint8_t> SaveSnapshotBytes(Machine& m) {
    std::vector<uint8_t> f(kSnapshotBytes, 0);
    std::memcpy(f.data(), kSnapshotMagic, 10);
    Z80& c = m.cpu;
    for (const SnapField& s : kSnapBytes)
        Put32(f, s.at, c.*s.reg);
    for (const SnapWord& s : kSnapWords)
        Put32(f, s.at, c.*s.reg);
    std::memcpy(&f[kSnapPorts], m.bus.PortLatch, 256);
    Put32(f, kSnapRequests, c.ResetRequest);
    Put32(f, kSnapRequests + 4, c.IrqRequest);
    Put32(f, kSnapRequests + 8, c.NmiRequest);
    f[kSnapRunFlag] = m.run.RunFlag;
    for (int i = 0; i < kSnapCrtcRegs; ++i)
        Put32(f, kSnapCrtc + size_t(i) * 4, m.crtc.CrtcReg[i]);
    std::memcpy(&f[kSnapshotMemAt], m.bus.Mem.data(), size_t(kMemSize));
    return f;
}

bool LoadSnapshotBytes(Machine& m, std::span<const uint8_t> bytes) {
    if (bytes.size() < 10 || std::memcmp(bytes.data(), kSnapshotMagic, 10) != 0) return false;
    // A short file reads as zeros in the rest; a long one's tail is ignored.
    std::vector<uint8_t> f(kSnapshotBytes, 0);
    std::copy_n(bytes.begin(), std::min(bytes.size(), f.size()), f.begin());
    Z80& c = m.cpu;
    for (const SnapField& s : kSnapBytes)
        c.*s.reg = s.flag ? (f[s.at] != 0) : f[s.at];
    for (const SnapWord& s : kSnapWords) {
        const uint32_t v = Get32(&f[s.at]);
        c.*s.reg = s.mask == 1 ? (v != 0) : static_cast<int32_t>(v & uint32_t(s.mask));
    }
    std::memcpy(m.bus.PortLatch, &f[kSnapPorts], 256);
    c.ResetRequest = Get32(&f[kSnapRequests]) != 0;
    c.IrqRequest = Get32(&f[kSnapRequests + 4]) != 0;
    c.NmiRequest = Get32(&f[kSnapRequests + 8]) != 0;
    m.run.RunFlag = f[kSnapRunFlag];
    for (int i = 0; i < kSnapCrtcRegs; ++i)
        m.crtc.CrtcReg[i] = static_cast<int32_t>(Get32(&f[kSnapCrtc + size_t(i) * 4]));
    m.crtc.CrtcReg[kCrtcSelect] &= 31;
    std::memcpy(m.bus.Mem.data(), &f[kSnapshotMemAt], size_t(kMemSize));
    c.Halted = 0;
    MemoryMapChanged(m); // the paging latches came from the file
    return true;
}

std::vector<uint8_t> SaveSnapshotwwwBytes(Machine& m) {
    constexpr size_t kMemAt = 616, kMemBytes = 98704;
    std::vector<uint8_t> f(kMemAt + kMemBytes, 0);
    std::memcpy(f.data(), "TS01CPU ", 8);
    Z80& c = m.cpu;
    auto pack = [](int32_t s, int32_t z, int32_t h, int32_t p, int32_t n, int32_t cy) {
        return (s & 1) | (z & 1) << 1 | (h & 1) << 3 | (p & 1) << 5 | (n & 1) << 6 | (cy & 1) << 7;
    };
    const int32_t fields[] = {pack(c.FlagS, c.FlagZ, c.FlagH, c.FlagP, c.FlagN, c.FlagC),
                              c.RegA,
                              c.RegB,
                              c.RegC,
                              c.RegD,
                              c.RegE,
                              c.RegH,
                              c.RegL};
    for (size_t i = 0; i < 8; ++i)
        Put32(f, 8 + i, fields[i]);
    const int32_t words[] = {c.RegIX, c.RegIY, c.RegSP, c.RegPC};
    for (size_t i = 0; i < 4; ++i)
        Put32(f, 16 + 2 * i, words[i]);
    const int32_t alt[] = {pack(c.FlagS2, c.FlagZ2, c.FlagH2, c.FlagP2, c.FlagN2, c.FlagC2),
                           c.RegA2,
                           c.RegB2,
                           c.RegC2,
                           c.RegD2,
                           c.RegE2,
                           c.RegH2,
                           c.RegL2};
    for (size_t i = 0; i < 8; ++i)
        Put32(f, 24 + i, alt[i]);
    std::memcpy(&f[kMemAt], m.bus.Mem.data(), kMemBytes);
    return f;
}

bool LoadSnapShot(Machine& m, const std::string& name) {
    std::vector<uint8_t> bytes;
    uint64_t length = 0;
    if (!ReadFileBounded(name, kSnapshotBytes, bytes, length)) {
        ReportFileError(m, name);
        return false;
    }
    if (!LoadSnapshotBytes(m, bytes)) {
        m.host->MessageBox("Snapshot not valid!", "Error", MsgKind::Plain);
        return false;
    }
    return true;
}

bool SaveSnapshot(Machine& m, const std::string& name, const std::string& pattern) {
    const std::string file = WithExtension(name, pattern);
    if (!WriteFile(file, SaveSnapshotBytes(m))) {
        ReportWriteError(m, file);
        return false;
    }
    return true;
}

bool SaveSnapshotwww(Machine& m, const std::string& name) {
    if (!WriteFile(name, SaveSnapshotwwwBytes(m))) {
        ReportWriteError(m, name);
        return false;
    }
    return true;
}

// ---- Cartridges ----

void PlaceCartridge(Machine& m, std::span<const uint8_t> bytes) {
    Bus& b = m.bus;
    if (b.MexActive) {
        b.MexMem.assign(size_t(kMexPages) * kMexPageSize, 0);
        std::copy_n(bytes.begin(), std::min(bytes.size(), b.MexMem.size()), b.MexMem.begin());
        return;
    }
    std::fill_n(&b.Mem[0x14000], kCartBytes, uint8_t{0});
    std::copy_n(bytes.begin(), std::min(bytes.size(), kCartBytes), &b.Mem[0x14000]);
}

bool LoadCRT(Machine& m, const std::string& name) {
    // A file that cannot be read is reported here and nothing changes,
    // rather than stopping the machine in MachineInit.
    std::vector<uint8_t> probe;
    uint64_t length = 0;
    if (!ReadFileBounded(name, 1, probe, length)) {
        ReportFileError(m, name);
        return false;
    }
    m.bus.SetCartName(name);
    m.forms.Media.UnloadCaption = "Unload: " + name;
    MachineInit(m);
    if (!m.FatalStop) MachineReset(m);
    m.run.InstCount = 0;
    return !m.FatalStop;
}

void UnloadCRT(Machine& m) {
    m.bus.SetCartName("");
    m.forms.Media.UnloadCaption = "Unload";
    m.cpu.Z80Init();
    MachineInit(m);
    if (!m.FatalStop) MachineReset(m);
}

bool SaveMex4(Machine& m, const std::string& name) {
    if (!WriteFile(name, m.bus.MexMem)) {
        ReportWriteError(m, name);
        return false;
    }
    return true;
}

} // namespace tvc
