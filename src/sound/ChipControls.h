// Panel controls of the sound card's chips that the renderers read or fill.
// A panel is to its chip only these settings and a source of writes, so they
// live here, in the core, with the panels' starting values.
#pragma once

#include <cstdint>

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

} // namespace tvc
