// Form controls whose values the emulation reads or writes. The widgets of
// the application bind to these fields, so the core never needs a toolkit.
#pragma once

#include <string>
#include <vector>

namespace tvc {

struct CPUmonControls {
    bool Check2 = false;          // "Address": arms the stop at Text5
    bool Check4 = false;          // "Debug": mirrors BreakpointArmed
    std::string Text5 = "65536";  // breakpoint address, decimal
    int HScroll1 = 2;             // speed scroll bar; nothing reads it
    int Command6Color = -1;       // -1: the normal button face; 255 when stopped
};

struct TVCmonControls {
    bool Check3 = true; // "Int enabled": lets the tone generator raise its interrupt
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
};

} // namespace tvc
