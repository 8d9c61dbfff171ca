// One whole TV Computer: the processor, memory and latches, the devices, the
// menu state and the form controls the emulation reads. The application
// makes exactly one; tests make as many as they like.
#pragma once

#include <string_view>

#include "core/Controls.h"
#include "core/Host.h"
#include "core/MenuState.h"
#include "core/Rnd.h"
#include "core/RunState.h"
#include "hw/Bus.h"
#include "links/Printer.h"
#include "links/SerialPort.h"
#include "media/Disk.h"
#include "media/Fdc.h"
#include "media/Tape.h"
#include "sound/Ay8910.h"
#include "sound/Saa1099.h"
#include "sound/Sid.h"
#include "sound/Sn76489.h"
#include "sound/SoundFX.h"
#include "sound/Ym2413.h"
#include "sound/Ym3812.h"
#include "video/Crtc.h"
#include "video/LightPen.h"
#include "video/Screen.h"
#include "z80/Z80.h"

namespace tvc {

constexpr std::string_view kAppTitle = "LUMEKTVC";

class Machine {
  public:
    explicit Machine(Host& h) : host(&h) {}
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    Z80 cpu{*this};
    Bus bus;
    RunState run;
    Crtc crtc;
    Screen screen;
    SoundFX sound;
    Saa1099 saa;
    Sn76489 sn;
    Ym3812 ym;
    Ym2413 ym2;
    Sid sid;
    Ay8910 ay;
    Fdc fdc;
    Disk disk;
    Tape tape;
    SerialPort serial;
    Printer printer;
    LightPen lpen;
    MenuState menu;
    Controls forms;
    Rnd rnd;
    Host* host;

    // Set once a fatal stop has been reported; the machine does not run again.
    bool FatalStop = false;
    std::string FatalText;

    // Reports a stop the program does not survive and halts the run loop.
    void Fatal(std::string_view text, std::string_view title);
};

} // namespace tvc
