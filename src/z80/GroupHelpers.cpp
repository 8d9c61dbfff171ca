// Helpers of the CB, ED and index groups (filled with those groups).
#include "z80/Z80.h"

namespace tvc {

int32_t Z80::RlcByte(int32_t v) { return v; }
int32_t Z80::RrcByte(int32_t v) { return v; }
int32_t Z80::RlByte(int32_t v) { return v; }
int32_t Z80::RrByte(int32_t v) { return v; }
int32_t Z80::SlaByte(int32_t v) { return v; }
int32_t Z80::SraByte(int32_t v) { return v; }
int32_t Z80::SrlByte(int32_t v) { return v; }
int32_t Z80::SllByte(int32_t v) { return v; }
void Z80::BitOp(int32_t, int32_t) {}
void Z80::AdcHL(int32_t) {}
void Z80::SbcHL(int32_t) {}
int32_t Z80::InC() { return 0; }
void Z80::Cpi() {}
void Z80::Cpd() {}
void Z80::AddIX(int32_t) {}
void Z80::AddIY(int32_t) {}

} // namespace tvc
