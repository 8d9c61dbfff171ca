// Building and resetting the machine.
//
// MachineInit makes fresh memory and latches, starts the devices and loads
// the ROM set the menu asks for (ROM set 1.2 or 2.2, the cards of slots 0, 2
// and 3, the cartridge). ROM files are read from the working directory; a
// file shorter than its place leaves the rest zero and a longer one is cut.
// MachineReset is the warm reset: latches, CRTC, sound chips and processor,
// with RAM and video memory left as they are.
#pragma once

#include <cstdint>
#include <string>

namespace tvc {

class Machine;

void MachineInit(Machine& m);
void MachineReset(Machine& m);

// Ports 0x36/0x37: page (0..3) of "sndmx.rom" into the sound card window.
void LoadSoundCardPage(Machine& m, int32_t page);

// The ROM files the loader reads, as (name, size of its place in Mem).
struct RomFile {
    const char* name;
    int32_t bytesRead;
};
inline constexpr RomFile kRomFiles[] = {
    {"TVC12_D4.rom", 8192}, {"TVC12_D3.rom", 8192}, {"TVC12_D7.rom", 8192},
    {"TVC22_D6.rom", 8192}, {"TVC22_D4.rom", 8192}, {"TVC22_D7.rom", 8192},
    {"hbf.rom", 16384},     {"sndmx.rom", 32768},   {"io3.rom", 8192},
};

} // namespace tvc
