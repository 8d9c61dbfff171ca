// What the hardware monitor (TVCmon, "HW Monitor") shows, made without a
// window system: every field by group and caption, with its text or light,
// and the two plots. The form lays these out; the headless runner dumps them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tvc {

class Machine;

inline constexpr int32_t kLightOn = 0x00FF00;      // green
inline constexpr int32_t kButtonFace = 0x8000000F; // the system's button face colour
inline constexpr int32_t kLightAlarm = 255;        // red, for "SER_OK" when not OK
inline constexpr int kHwPlotPoints = 441;

struct HwField {
    std::string group, caption, text;
    bool isLight = false;
    bool lit = false;
    int32_t offColour = kButtonFace; // a light's back colour while its state does not hold

    int32_t Colour() const { return lit ? kLightOn : offColour; }
};

// Every field in the monitor's fixed order. Reads no device but the card
// identification; any latch, CRTC or memory content gives a caption.
std::vector<HwField> HwMonitorFields(Machine& m);

// The two 441-point plots: ToneSlots, and the first 441 data bytes of the
// tape's wave image (0 where it has none).
struct HwPlots {
    std::array<int32_t, kHwPlotPoints> tone{}, wave{};
};
HwPlots HwMonitorPlots(const Machine& m);

// The fields by group and caption (lights as booleans), the floppy
// controller's registers and drives and the whole boot record, as JSON.
std::string HwMonitorJson(Machine& m);

} // namespace tvc
