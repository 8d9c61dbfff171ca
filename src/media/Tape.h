// The cassette interface: the input level read on port 0x59 (and 0x5D), and
// the output edges written through ports 0x50..0x57.
//
// Input takes one byte of the input wave file per port read, with no relation
// to time: the loader's own timing loops and the file's rate make it work.
// Output turns the T-states between two edges into a run of samples of
// "save.wav", 80 T-states a sample, while the hardware monitor's Record box
// (forms.TVCmon.Check1) is ticked. Both mark the line in ToneSlots so that
// the tape is heard.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "media/WaveInput.h"

namespace tvc {

class Machine;

constexpr int32_t kTapeGrainT = 80;      // T-states per output sample
constexpr int32_t kTapeSaveRate = 39062; // 3,125,000 / 80, the header's rate
constexpr int32_t kTapePauseT = 62001;   // an edge this long after the last is a pause
constexpr uint8_t kTapeLow = 30, kTapeHigh = 220;
constexpr int32_t kToneRecordRate = 22050; // record.wav: 441 16-bit samples a frame

struct Tape {
    int32_t TapeLastT = 0;       // the T-state counter at the previous output edge
    int32_t TapePos = 45;        // 1-based position of the next sample in "save.wav"
    uint8_t TapeLevel = 0;       // output level, 30 or 220 (or the byte a rewind read)
    WaveInput In;                // file 3, the input
    std::string InName;          // the input file as opened
    std::FILE* Out = nullptr;    // file 4, "save.wav", while recording
    std::FILE* Record = nullptr; // file 2, "record.wav", while recording
    ~Tape();
};

// The input level at this moment: 0 or 1, for bit 5 of port 0x59.
int TapeSample(Machine& m);
// One output edge.
void TapeEdge(Machine& m);
// Back to the start of the input: the level byte at offset 43, samples from 44.
void TapeRewind(Machine& m);
// Opens `name` as the input (closing the earlier one) and rewinds it; false
// when it cannot be read, and the input is then closed.
bool TapeOpenInput(Machine& m, const std::string& name);
// The hardware monitor's Record box: ticking it starts output into
// "save.wav" and "record.wav", clearing it finishes their headers and closes
// them. A file that cannot be made shows "Wav File create error".
void TapeRecord(Machine& m, bool on);

} // namespace tvc
