// Form controls whose values the emulation reads or writes. The widgets of
// the application bind to these fields, so the core never needs a toolkit.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sound/ChipControls.h"
#include "media/MediaControls.h"
#include "asm/AsseState.h"
#include "links/SerialPort.h"

namespace tvc {

struct CPUmonControls {
    bool Check2 = false;         // "Address": arms the stop at Text5
    bool Check4 = false;         // "Debug": mirrors BreakpointArmed
    std::string Text5 = "65536"; // breakpoint address, decimal
    int HScroll1 = 2;            // speed scroll bar; nothing reads it
    int Command6Color = -1;      // -1: the normal button face; 255 when stopped
    bool Check5 = true;          // "Screen": pictures are painted
    bool Check6 = true;          // "Border": the border is painted with them
};

struct TVCmonControls {
    bool Check1 = false; // "Record": the machine's own sound goes to the tape's record file
    bool Check3 = true;  // "Int enabled": lets the tone generator raise its interrupt
};

// The SAA1099 panel's controls that the audio pipeline and the chip touch.
struct FsaaControls {
    int Command1Color = 0xFFFFFF; // "Record": white idle, red (255) recording
    std::string Label11;          // BlockIndex at the last delivery
    bool Check2 = false;          // "Manual": the program's writes are dropped
    bool Check11 = true;          // "patch": tone always on for channel 2
    bool Check12 = true;          // "patch": tone always on for channel 5
    std::string Label8, Label9;   // shape names of envelopes 0 and 1
    // Hand control: what the "Manual" timer writes into the chip.
    int HScroll4[6] = {}; // "Freq": frequency byte, 0 to 255
    int HScroll3[6] = {}; // "Octave": 0 to 7
    int HScroll1[6] = {}; // left amplitude, 0 to 15
    int HScroll2[6] = {}; // right amplitude, 0 to 15
    bool Check1[6] = {};  // "Enable Freq"
    bool Check3[6] = {};  // "Enable Noise"
    int HScroll5[2] = {}; // "Noise 0", "Noise 1": noise rates, 0 to 3
    int HScroll6[2] = {}; // "Envelope 0", "Envelope 1": shape, 0 to 7
    bool Check7[2] = {};  // "Enable envelope"
    bool Check4[2] = {};  // "Inverse R"
    bool Check5[2] = {};  // "3 Bit"
    bool Check6[2] = {};  // "External clock"
    bool Check8 = true;   // "All out enable"
    bool Check9 = false;  // "Reset": the sync bit
    bool Check10 = false; // "Circuit": shows the diagram
};

// The error simulator's controls; the video fault's "Enabled" box is
// Bus::VideoErrorEnabled, which the memory map reads.
struct ErrorSimControls {
    int Option1 = -1;      // chosen option button: 0 "bit=0", 1 "bit=1", 2 "bit=Random"; -1 none
    uint8_t ErrorBits = 0; // one bit per data line, from the boxes CH0(0..7)
    bool Check2 = false;   // "Sytem RAM" bank 0x0000-0x3FFF
    bool Check3 = false;   // bank 0x4000-0x7FFF
    bool Check4 = false;   // bank 0x8000-0xBFFF
    bool Check5 = false;   // bank 0xC000-0xFFFF
};

struct TScreenControls {
    std::vector<std::string> List1; // the log of ports that have no device
};

struct TToolsControls {
    int Label2 = 0; // the last key code seen by the picture
};

struct Controls {
    CPUmonControls CPUmon;
    TVCmonControls TVCmon;
    TScreenControls TScreen;
    TToolsControls TTools;
    ErrorSimControls ErrorSim;
    FsaaControls Fsaa;
    FSN76489Controls FSN76489;
    T8910Controls T8910;
    FYM3812Controls FYM3812;
    FYM2413Controls FYM2413;
    FSIDControls FSID;
    MediaControls Media;
    AsseControls asse;
    TSerialControls TSerial;
};

} // namespace tvc
