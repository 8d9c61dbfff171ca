// The main window's file dialog fields that the media routines read and
// write, so that the window, the headless runner and the tests share them.
#pragma once

#include <cstdint>
#include <string>

namespace tvc {

struct MediaControls {
    std::string Text6, Text7, Text8;      // CAS save: start, end, shown only (decimal)
    int32_t CasPaging = 0;                // PortLatch[2] & 252 when a CAS was last loaded
    std::string UnloadCaption = "Unload"; // the caption of the menu item xUnloadCRT
};

} // namespace tvc
