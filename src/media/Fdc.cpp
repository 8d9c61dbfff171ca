#include "media/Fdc.h"

#include "asm/TextLib.h"
#include "core/Machine.h"
#include "core/MonitorText.h"

namespace tvc {

namespace {

struct EventText {
    const char* text;
    bool value; // the text is followed by Hex2 of the value
};

// Indexed by FdcEvent.
constexpr EventText kEventTexts[] = {
    {"CMD Restore: ", true},     {"CMD Seek: ", true},          {"CMD Step", false},
    {"CMD Step-in", false},      {"CMD Step-out", false},       {"CMD Read Sector", false},
    {"CMD Write Sector", false}, {"CMD Read Address", false},   {"CMD Force Interrupt", false},
    {"CMD Read Track", false},   {"CMD Write Track", false},    {"Write Parameter REG: ", true},
    {"Write Track REG ", true},  {"Write Sector REG: ", true},  {"Write Data: ", true},
    {"Read Status REG: ", true}, {"Read HW status REG:", true}, {"Read Track:", true},
    {"Read Sector:", true},      {"Read Data: ", true},
};
static_assert(std::size(kEventTexts) == size_t(FdcEvent::ReadData) + 1);

void Log(Machine& m, FdcEvent e, uint8_t value, uint16_t pos = 0) {
    m.fdc.List4.Add(e, value, pos);
}

} // namespace

void FdcLog::Add(FdcEvent e, uint8_t value, uint16_t pos) {
    const FdcLogRecord r{e, value, pos};
    ++added_;
    if (ring_.size() < kFdcLogLimit) {
        ring_.push_back(r);
        return;
    }
    ring_[head_] = r;
    head_ = (head_ + 1) % kFdcLogLimit;
}

void FdcLog::Clear() {
    ring_.clear();
    head_ = 0;
    added_ = 0;
    ++clears_;
}

const FdcLogRecord& FdcLog::operator[](size_t i) const {
    return ring_[(head_ + i) % ring_.size()];
}

void FdcInit(Machine& m) {
    FdcLog keep = std::move(m.fdc.List4);
    m.fdc = Fdc{};
    m.fdc.List4 = std::move(keep);
}

void FdcCommand(Machine& m, uint8_t c) {
    Fdc& f = m.fdc;
    const int d = f.FdcDrive;
    const uint8_t r = c & 3;
    f.FdcCommand = c;
    switch (c >> 4) {
    case 0x0: // Restore: the log shows the track register as the command finds it
        Log(m, FdcEvent::Restore, f.FdcTrack);
        f.DriveRate[d] = r;
        f.DriveHeadLoad[d] = c & 8;
        f.FdcStatus = 128;
        f.FdcHwStatus = 128;
        f.FdcTrack = 0;
        f.DriveTrack[d] = 0;
        return;
    case 0x1: // Seek: to the track register, not the data register
        Log(m, FdcEvent::Seek, f.FdcTrack);
        f.DriveRate[d] = r;
        f.DriveHeadLoad[d] = c & 8;
        f.FdcStatus = 0;
        f.FdcHwStatus = 128;
        f.DriveTrack[d] = f.FdcTrack;
        return;
    case 0x2:
    case 0x3: Log(m, FdcEvent::Step, c); return;
    case 0x4:
    case 0x5: Log(m, FdcEvent::StepIn, c); return;
    case 0x6:
    case 0x7: Log(m, FdcEvent::StepOut, c); return;
    case 0x8:
    case 0x9:
        Log(m, FdcEvent::ReadSector, c);
        f.FdcStatus = 2;
        f.FdcHwStatus = 128;
        return;
    case 0xA:
    case 0xB: Log(m, FdcEvent::WriteSector, c); return;
    case 0xC:
        Log(m, FdcEvent::ReadAddress, c);
        f.FdcStatus = 0;
        f.FdcHwStatus = 129;
        return;
    case 0xD: Log(m, FdcEvent::ForceInterrupt, c); return;
    case 0xE: Log(m, FdcEvent::ReadTrack, c); return;
    default: Log(m, FdcEvent::WriteTrack, c); return;
    }
}

uint8_t FdcStatusRead(Machine& m) {
    Log(m, FdcEvent::ReadStatus, m.fdc.FdcStatus);
    return m.fdc.FdcStatus;
}

uint8_t FdcHwStatusRead(Machine& m) {
    Log(m, FdcEvent::ReadHwStatus, m.fdc.FdcHwStatus);
    return m.fdc.FdcHwStatus;
}

uint8_t FdcTrackRead(Machine& m) {
    Log(m, FdcEvent::ReadTrackReg, m.fdc.FdcTrack);
    return m.fdc.FdcTrack;
}

uint8_t FdcSectorRead(Machine& m) {
    Log(m, FdcEvent::ReadSectorReg, m.fdc.FdcSector);
    return m.fdc.FdcSector;
}

void FdcTrackWrite(Machine& m, uint8_t value) {
    Log(m, FdcEvent::WriteTrackReg, value);
    m.fdc.FdcTrack = value;
}

void FdcSectorWrite(Machine& m, uint8_t value) {
    Log(m, FdcEvent::WriteSectorReg, value);
    m.fdc.FdcSector = value;
}

void FdcDataWrite(Machine& m, uint8_t value) {
    Log(m, FdcEvent::WriteData, value);
    m.fdc.FdcData = value;
}

uint8_t FdcDataRead(Machine& m) {
    Fdc& f = m.fdc;
    const int d = f.FdcDrive;
    // DriveSector has no writer, so a "track" is four sectors; the cut to 16
    // signed bits makes tracks from 16 on negative, and those read 0.
    const int32_t wide = (f.DriveSector[d] + f.DriveTrack[d] * 4) * kFdcSectorBytes + f.FdcBytePos;
    const int16_t offset = static_cast<int16_t>(static_cast<uint16_t>(wide));
    f.FdcData = DiskByte(m.disk, offset, d);
    if (++f.FdcBytePos >= kFdcSectorBytes) {
        f.FdcStatus = 0;
        f.FdcHwStatus = 1;
        f.FdcBytePos = 0;
    }
    Log(m, FdcEvent::ReadData, f.FdcData, f.FdcBytePos);
    return f.FdcData;
}

void FdcParamWrite(Machine& m, uint8_t value) {
    Fdc& f = m.fdc;
    Log(m, FdcEvent::WriteParam, value);
    f.FdcParam = value;
    f.FdcDrive = 4;
    for (int bit = 0; bit < 4; ++bit)
        if (value & (1 << bit)) f.FdcDrive = static_cast<uint8_t>(bit); // highest bit wins
    const int d = f.FdcDrive;
    f.DriveHeadLoad[d] = (value >> 4) & 1;
    f.DriveParam5[d] = (value >> 5) & 1;
    f.DriveParam6[d] = (value >> 6) & 1;
    f.DriveParam7[d] = (value >> 7) & 1;
}

std::string FdcLogText(const FdcLogRecord& r) {
    const EventText& t = kEventTexts[size_t(r.event)];
    std::string line = t.text;
    if (t.value) line += Hex2(r.value);
    if (r.event == FdcEvent::ReadData)
        line.append("-").append(std::to_string(r.pos)).append(" : ").append(MonitorChar(r.value));
    return line;
}

std::string FdcLogListing(const Fdc& f) {
    std::string out = std::string(kFdcLogTitle) + '\n';
    for (size_t i = 0; i < f.List4.size(); ++i)
        out += FdcLogText(f.List4[i]) + '\n';
    return out;
}

} // namespace tvc
