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

// --- Pictures ---

enum class Scope { Saa, Sn, Ay };

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
