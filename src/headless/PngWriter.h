// Writes an RGB picture as a PNG file through libpng.
#pragma once

#include <string>

#include "video/Screen.h"

namespace tvc::headless {

// False, with the library's reason in `error`, when the file cannot be written.
bool WritePng(const std::string& file, const RgbImage& image, std::string& error);

} // namespace tvc::headless
