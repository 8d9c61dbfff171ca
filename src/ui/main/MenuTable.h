// The main window's menu as data: group, name, caption and how each entry
// stands at start. Check marks live in the machine's MenuState; the table
// says which entries carry one.
#pragma once

#include <array>

namespace tvc::ui {

struct MenuEntry {
    const char* group;   // cFile, xMedia, xOptions, xpseed, cView; "" for a top-level command
    const char* name;    // semmi.. for separators
    const char* caption; // nullptr for separators
    bool checkable;
    bool greyed;
};

struct MenuGroup {
    const char* name;
    const char* caption;
};

inline constexpr std::array<MenuGroup, 5> kMenuGroups = {{
    {"cFile", "File"},
    {"xMedia", "Media"},
    {"xOptions", "Options"},
    {"xpseed", "Speed"},
    {"cView", "View"},
}};

inline constexpr MenuEntry kMenuEntries[] = {
    {"cFile", "xLoadCAS", "Load cas", false, false},
    {"cFile", "xSaveCAS", "Save cas", false, false},
    {"cFile", "semmi", nullptr, false, false},
    {"cFile", "xLoadSnap", "Load Snap", false, false},
    {"cFile", "xSaveSnap", "Save Snap", false, false},
    {"cFile", "semmi2", nullptr, false, false},
    {"cFile", "xSaveScrren", "Save Screen", false, false},
    {"cFile", "xMemDump", "Memory dump", false, false},
    {"xMedia", "xLoadCRT", "Load CRT", false, false},
    {"xMedia", "xUnloadCRT", "Unload", false, false},
    {"xMedia", "xSvaMEX4", "Save MEX4MB", false, true},
    {"xMedia", "semmi3", nullptr, false, false},
    {"xMedia", "xdiskload", "Disk Load", false, true},
    {"xMedia", "xTapeLoad", "Tape Load", false, false},
    {"xMedia", "semmi4", nullptr, false, false},
    {"xMedia", "xio0", "I/O card 0: Floppy", true, true},
    {"xMedia", "xio1", "I/O card 1: RS232", true, false},
    {"xMedia", "xio2", "I/O card 2: SoundCard", true, false},
    {"xMedia", "xio3", "I/O card 3: (IO3.rom)", true, false},
    {"xOptions", "xReset", "Reset", false, false},
    {"xOptions", "xReset2", "Reset2", false, false},
    {"xOptions", "xFullsc", "FullScreen", false, false},
    {"xOptions", "xScreenBW", "Screen BW", true, false},
    {"xOptions", "xScreenDIB", "Screen DIB", true, false},
    {"xOptions", "xScreenNoise", "Screen noise", true, false},
    {"xOptions", "xSound", "Sound", true, false},
    {"xOptions", "xNoError", "Ignore CPU error", true, true},
    {"xOptions", "xUnDoc", "Undocumented", true, false},
    {"xOptions", "x32KB", "32K", true, false},
    {"xOptions", "xBasic", "Basic 2.2", true, false},
    {"xpseed", "xS1", "Pause", true, false},
    {"xpseed", "xS2", "0.5x", true, true},
    {"xpseed", "xS3", "Normal", true, false},
    {"xpseed", "xS4", "2x", true, true},
    {"xpseed", "xS5", "4x", true, true},
    {"xpseed", "xS6", "Max", true, false},
    {"cView", "xTVCmon", "TVC monitor", false, false},
    {"cView", "xDebug", "Z80 monitor", false, false},
    {"cView", "xAsse", "Assembler", false, false},
    {"cView", "xPrinter", "Printer", false, false},
    {"cView", "xSerial", "Serial", false, false},
    {"cView", "xsaa", "SAA1099", false, false},
    {"cView", "xSN76", "SN76489", false, false},
    {"cView", "xYM", "YM3812", false, false},
    {"cView", "xYM2", "YM2413", false, false},
    {"cView", "xSID", "SID6581", false, false},
    {"cView", "xAY3", "AY-3-8910", false, false},
    {"cView", "xErrorSim", "ErrorSim", false, false},
    {"cView", "xTools", "Tools", false, false},
    {"", "xHelp", "Help", false, false},
};

} // namespace tvc::ui
