// Picture files to the importers' pixel grid, through Qt's image reader.
// This header is toolkit-free so that the headless runner can call it; only
// the library behind it links Qt's GUI module, never the core.
#pragma once

#include <optional>
#include <string>

#include "asm/PicImport.h"

namespace tvc {

// The first frame of the picture, alpha laid over `background`. No value for
// a file the reader cannot decode, or one whose size passes the limits.
std::optional<PixelGrid> DecodePicture(const std::string& path, int32_t background = 0);

// Pictures larger than this in either direction are refused before decoding.
inline constexpr int kMaxPictureSide = 8192;

} // namespace tvc
