// The chip panels' hand control and pictures, kept apart from any window:
// the writes of the "Manual" timers, the note keys, the YM3812 keyboard and
// instrument editor, the SID write box, and the 221-point traces that the
// panels draw after a chip renders at BlockIndex 4. The forms only bind
// their widgets to Controls and call these.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/Controls.h"

namespace tvc {

class Machine;

// One write of a panel: a port and its byte.
struct PortWrite {
    uint8_t port, value;
    bool operator==(const PortWrite&) const = default;
};

// --- SAA1099 panel (Fsaa) ---

// The whole chip from the panel's controls, as address (0xFF) and data
// (0xFE) writes, register by register.
std::vector<PortWrite> SaaManualWrites(const FsaaControls& c);
// Timer1: while "Manual" is set, the writes go below the "Manual" test.
void SaaPanelTick(Machine& m);

struct SaaNote {
    int octave, freq;
};
inline constexpr int kSaaNoteKeys = 13;
extern const SaaNote kSaaNotes[kSaaNoteKeys];
// bil(k): channel 0 takes the key's octave and frequency byte at the next tick.
void SaaNoteKey(FsaaControls& c, int k);

// --- SN76489 panel (FSN76489) ---

// The bytes of one "Manual" tick for port 0xFD: the tones' pairs, the four
// volumes, the noise.
std::vector<uint8_t> SnManualBytes(const FSN76489Controls& c);
void SnPanelTick(Machine& m);
// The frequency label of a tone whose "Freq" stands at `hscroll`.
int32_t SnFreqLabel(int32_t hscroll);

// The timers of both "Manual" panels, as one yield point ticks them.
void ChipPanelsTick(Machine& m);

// --- YM3812 panel (FYM3812): always live, through PortOut 0x34/0x35 ---

// Register, value: what the instrument editor writes on any change.
struct RegWrite {
    uint8_t reg, value;
    bool operator==(const RegWrite&) const = default;
};
std::vector<RegWrite> YmInstrumentWrites(const FYM3812Controls& c);
// The packed values that Text1(0..7) mirror: 0x20, 0x23, 0x40, 0x43,
// 0x60, 0x80, 0x63, 0x83 in turn.
inline constexpr int kYmTextBoxes = 8;
uint8_t YmTextValue(const FYM3812Controls& c, int k);
// Text1(k) with the Enter key: the hexadecimal value (0 on bad input, held
// to a byte) sets that register's sliders.
void YmTextEnter(FYM3812Controls& c, int k, std::string_view text);
// A slider moved: the mirrors follow and the instrument is written.
void YmInstrumentChanged(Machine& m);
// One register through the program's port path (and so the direct sink).
void YmPanelWrite(Machine& m, uint8_t reg, uint8_t value);
// Picture1's keys A S D F G H J K: false for any other key.
bool YmKeyDown(Machine& m, char key);
void YmKeyUp(Machine& m);
// "reset": 0 into registers 0 to 254.
void YmResetButton(Machine& m);

// --- SID panel (FSID) ---

// The write box: Text2 less 54,272 to port 0x38, Text3 to port 0x39, both
// read as decimal numbers and held to a byte.
std::vector<PortWrite> SidBoxWrites(const FSIDControls& c);
void SidWriteButton(Machine& m);
// Label22: the filter mode's name, by SidMode as a number; blank past the list.
const char* SidModeName(int mode);

// --- Pictures ---

enum class Scope { Saa, Sn, Ay, Ym2413, Sid };

inline constexpr int kTracePoints = 221; // a hundredth of a second of the last block
inline constexpr int kTraceMid = 32;     // the picture's zero line
using Trace = std::array<int32_t, kTracePoints>;

// How many pictures a panel has.
int ScopeCount(Scope s);
// Bumped by the chip at each render at BlockIndex 4: a panel redraws when it moves.
uint32_t ScopeSerial(const Machine& m, Scope s);
// The y of each point of picture `n`: the sample by the panel's factor, plus 32.
Trace ScopeTrace(const Machine& m, Scope s, int n);

} // namespace tvc
