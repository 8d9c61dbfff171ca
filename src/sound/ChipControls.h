// Panel controls of the sound card's chips that the renderers read or fill.
// A panel is to its chip only these settings and a source of writes, so they
// live here, in the core, with the panels' starting values.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tvc {

// The SN76489 panel.
struct FSN76489Controls {
    bool Check3 = false; // "Manual": the program's writes are dropped
    // "Freq": tones 1 to 1,023, the noise (element 3) 0 to 3.
    int32_t HScroll3[4] = {666, 666, 666, 0};
    int32_t HScroll4[4] = {}; // "Volume": 0 to 15
    bool Check2 = false;      // "Periodic Noise"
    bool Check1 = false;      // "Circuit": shows the diagram
};

// The AY-3-8910 panel: the labels the renderer fills every fifth block.
struct T8910Controls {
    int32_t Freq[3] = {};   // tone frequency in Hz
    int32_t Period[3] = {}; // doubled register period
    int32_t Amp[3] = {};    // amplitude register, envelope bit included
    int32_t Mix[3] = {};    // mixer bits of the channel
    int32_t Shape = 0;      // envelope shape
    int32_t EnvFreq = 0;    // envelope frequency in Hz
};

// The YM3812 panel.
struct FYM3812Controls {
    bool Check1[9] = {true, true, true, true, true, true, true, true, true}; // "TONE n": on
    bool Check3 = false;       // "Direct I/O port:": writes also go to the host port
    std::string Text2 = "896"; // the host port of the address register, decimal
    std::string Text1[8] = {"e6", "20", "c1", "92", "00", "97", "31", "21"}; // instrument, hex
    // The instrument editor of channel 0, as the mirrors' defaults unpack.
    // HScroll1(op * 8 + k), op 0 modulator, 1 carrier: k 0 "Mult", 1 "TLVL",
    // 2 "KSLV", 3 attack, 4 decay, 5 sustain, 6 release, 7 wave select;
    // HScroll1(16) the feedback.
    int32_t HScroll1[17] = {6, 0, 3, 0, 0, 9, 7, 0, 0, 13, 3, 3, 1, 2, 1, 0, 0};
    // Check2(op * 4 + k): k 0 "tremolo", 1 "vibrato", 2 "drums", 3 "KSR".
    bool Check2[8] = {true, true, true, false, false, false, true, false};
};

// The YM2413 panel: "ON" boxes the renderer reads, and what it shows.
struct FYM2413Controls {
    bool Check7[9] = {true, true, true, true, true, true, true, true, true}; // "ON"
    int32_t Label6[9] = {}; // Freq of each channel, Hz, integer part
    std::string Label8[9];  // the instrument's name by register 0x30 + c
    bool Check1 = false;    // "6 sound + 5 percussion": mirrors register 0x0E bit 5
    bool Check2to6[5] = {}; // "dob 1" and the rest: register 0x0E bits 0 to 4
};

// The SID panel. The "Exp" frame's filters (Check1 to Check3 with HScroll1 to
// HScroll3 and Text1) act on the chip's output; the scroll bars scale the
// envelope tables when a gate rises.
struct FSIDControls {
    bool Check1 = false;                 // "High Pass"
    bool Check2 = false;                 // "Low Pass"
    bool Check3 = false;                 // "Butterfly Pass"
    bool Check4 = false;                 // "Wobbler": the sweep
    bool Check5 = false;                 // holds the sweep at 440 Hz
    bool Check6 = true;                  // "ADSR On"
    bool Check7 = true;                  // "Filter On": the chip's own low and high pass
    bool Check8 = false;                 // "Exp": shows the experimental filters
    bool Check9[3] = {true, true, true}; // "TONE n": voice on
    bool Check10 = true;                 // "Ring On": sync and ring
    int32_t HScroll1 = 50;               // high pass, 0 to 100
    int32_t HScroll2 = 50;               // low pass, 0 to 100
    int32_t HScroll3 = 50;               // band filter, 0 to 100
    int32_t HScroll4 = 440;              // attack and release scale, 1 to 1,200
    int32_t HScroll5 = 440;              // decay scale, 1 to 1,200
    int32_t HScroll6 = 0;                // shows the chip low pass's coefficient x 100
    std::string Text1 = "1";             // panel filter passes, less one
    std::string Text2, Text3;            // the write box: home-machine address and value
    int32_t Label15 = 0;                 // the sweep's frequency, Hz
    int32_t Label25 = 0, Label26 = 0;    // the player's counters; only ever set to 0

    // Dump playback: Option 0 "No File", 1 "SIDX", 2 "DMP"; File1List lists the
    // working directory by the option's pattern, File1 is the selected name.
    int32_t Option = 0;
    std::vector<std::string> File1List;
    std::string File1;

    // The sweep's response plot: points (x, y) drawn on Pic2 since it was
    // last cleared; y is reckoned from Pic2ScaleHeight, which the panel sets.
    int32_t Pic2ScaleHeight = 200;
    std::vector<std::pair<int32_t, int32_t>> Pic2Points;
    uint32_t Pic2Clears = 0; // bumped each time the sweep clears the picture
};

} // namespace tvc
