// The floppy card's controller (WD1793 family). Until the floppy emulation
// lands its registers simply hold what is written and reads give them back.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

struct Fdc {
    uint8_t FdcStatus = 0, FdcHwStatus = 0, FdcTrack = 0, FdcSector = 0, FdcData = 0;
    uint8_t FdcParam = 0;
};

void FdcInit(Machine& m);
void FdcCommand(Machine& m, uint8_t value);     // port 0x10 write
uint8_t FdcStatusRead(Machine& m);              // port 0x10 read
void FdcTrackWrite(Machine& m, uint8_t value);  // port 0x11
void FdcSectorWrite(Machine& m, uint8_t value); // port 0x12
void FdcDataWrite(Machine& m, uint8_t value);   // port 0x13
uint8_t FdcDataRead(Machine& m);                // port 0x13 read
void FdcParamWrite(Machine& m, uint8_t value);  // port 0x14

} // namespace tvc
