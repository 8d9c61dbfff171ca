#include "media/Fdc.h"

#include "core/Machine.h"

namespace tvc {

void FdcInit(Machine& m) {
    m.fdc = Fdc{};
}
void FdcCommand(Machine&, uint8_t) {}
uint8_t FdcStatusRead(Machine& m) {
    return m.fdc.FdcStatus;
}
void FdcTrackWrite(Machine& m, uint8_t value) {
    m.fdc.FdcTrack = value;
}
void FdcSectorWrite(Machine& m, uint8_t value) {
    m.fdc.FdcSector = value;
}
void FdcDataWrite(Machine& m, uint8_t value) {
    m.fdc.FdcData = value;
}
uint8_t FdcDataRead(Machine& m) {
    return m.fdc.FdcData;
}
void FdcParamWrite(Machine& m, uint8_t value) {
    m.fdc.FdcParam = value;
}

} // namespace tvc
