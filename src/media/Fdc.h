// The floppy card's controller (WD1793 family), partial by design: a command
// decoder that logs every access, a few register effects and a sequential
// read of the image. No timing: every command completes at once, and writes
// never reach the image.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tvc {

class Machine;

inline constexpr int kFdcDrives = 5; // four drive bits, and drive 4 for "none selected"
inline constexpr int kFdcSectorBytes = 512;
inline constexpr size_t kFdcLogLimit = 100000;
inline constexpr const char* kFdcLogTitle = "*** FDD command log ***!";

// What a log line records; the text is made only when the line is shown.
enum class FdcEvent : uint8_t {
    Restore,
    Seek,
    Step,
    StepIn,
    StepOut,
    ReadSector,
    WriteSector,
    ReadAddress,
    ForceInterrupt,
    ReadTrack,
    WriteTrack,
    WriteParam,
    WriteTrackReg,
    WriteSectorReg,
    WriteData,
    ReadStatus,
    ReadHwStatus,
    ReadTrackReg,
    ReadSectorReg,
    ReadData
};

struct FdcLogRecord {
    FdcEvent event;
    uint8_t value;
    uint16_t pos; // Read Data: the sector position after the read
};

// The command log, holding the newest kFdcLogLimit records in a ring so a
// program polling the controller cannot grow memory without bound.
class FdcLog {
  public:
    void Add(FdcEvent e, uint8_t value, uint16_t pos = 0);
    void Clear();
    size_t size() const { return ring_.size(); }
    // Records oldest first.
    const FdcLogRecord& operator[](size_t i) const;
    // Records added since the last Clear, and Clears so far: a view that
    // copies the log follows it with these.
    uint64_t added() const { return added_; }
    uint64_t clears() const { return clears_; }

  private:
    std::vector<FdcLogRecord> ring_;
    size_t head_ = 0; // oldest record once the ring is full
    uint64_t added_ = 0, clears_ = 0;
};

struct Fdc {
    uint8_t FdcStatus = 0, FdcHwStatus = 0, FdcTrack = 0, FdcSector = 0, FdcData = 0;
    uint8_t FdcParam = 0;   // the last parameter byte
    uint8_t FdcCommand = 0; // the last command byte
    uint8_t DriveRate[kFdcDrives]{}, DriveHeadLoad[kFdcDrives]{}, DriveTrack[kFdcDrives]{},
        DriveSector[kFdcDrives]{}, DriveParam5[kFdcDrives]{}, DriveParam6[kFdcDrives]{},
        DriveParam7[kFdcDrives]{};
    uint8_t FdcDrive = 0;
    uint16_t FdcBytePos = 0;
    FdcLog List4; // shown by the hardware monitor under its title line
};

// The start-up routine: registers, drive arrays, drive and position cleared;
// the loaded image and the log stay.
void FdcInit(Machine& m);
void FdcCommand(Machine& m, uint8_t value);     // port 0x10 (and 0x0C-0x0E) write
uint8_t FdcStatusRead(Machine& m);              // logged status read
uint8_t FdcHwStatusRead(Machine& m);            // port 0x14 read
uint8_t FdcTrackRead(Machine& m);               // port 0x11 read
uint8_t FdcSectorRead(Machine& m);              // port 0x12 read
void FdcTrackWrite(Machine& m, uint8_t value);  // port 0x11
void FdcSectorWrite(Machine& m, uint8_t value); // port 0x12
void FdcDataWrite(Machine& m, uint8_t value);   // port 0x13
uint8_t FdcDataRead(Machine& m);                // port 0x13 read
void FdcParamWrite(Machine& m, uint8_t value);  // port 0x14

// One log line as the monitor's list shows it (without the title line).
std::string FdcLogText(const FdcLogRecord& r);
// The whole list: the title line, then every record, each ending in '\n'.
std::string FdcLogListing(const Fdc& f);

} // namespace tvc
