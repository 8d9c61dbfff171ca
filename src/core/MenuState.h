// The check marks of the main window's menu. They are the machine's
// configuration: code asks them at the moment it needs the setting. The
// defaults are the ticks the main window starts with.
#pragma once

namespace tvc {

struct MenuState {
    bool xio0 = false; // "I/O card 0: Floppy"
    bool xio1 = false; // "I/O card 1: RS232"
    bool xio2 = true;  // "I/O card 2: SoundCard"
    bool xio3 = false; // "I/O card 3: (IO3.rom)"
    bool xScreenBW = false;
    bool xScreenDIB = true;
    bool xScreenNoise = false;
    bool xSound = true;
    bool xNoError = false;
    bool xUnDoc = true;
    bool x32KB = false;
    bool xBasic = false; // unticked: ROM set 1.2
    bool xS1 = false;    // "Pause"
    bool xS2 = false;    // "0.5x"
    bool xS3 = true;     // "Normal"
    bool xS4 = false;    // "2x"
    bool xS5 = false;    // "4x"
    bool xS6 = false;    // "Max": the run loop does not wait for the audio player
};

// Every check mark by its name, for the command line and the menu bar.
struct MenuItem {
    const char* name;
    bool MenuState::*field;
};

inline constexpr MenuItem kMenuItems[] = {
    {"xio0", &MenuState::xio0},
    {"xio1", &MenuState::xio1},
    {"xio2", &MenuState::xio2},
    {"xio3", &MenuState::xio3},
    {"xScreenBW", &MenuState::xScreenBW},
    {"xScreenDIB", &MenuState::xScreenDIB},
    {"xScreenNoise", &MenuState::xScreenNoise},
    {"xSound", &MenuState::xSound},
    {"xNoError", &MenuState::xNoError},
    {"xUnDoc", &MenuState::xUnDoc},
    {"x32KB", &MenuState::x32KB},
    {"xBasic", &MenuState::xBasic},
    {"xS1", &MenuState::xS1},
    {"xS2", &MenuState::xS2},
    {"xS3", &MenuState::xS3},
    {"xS4", &MenuState::xS4},
    {"xS5", &MenuState::xS5},
    {"xS6", &MenuState::xS6},
};

} // namespace tvc
