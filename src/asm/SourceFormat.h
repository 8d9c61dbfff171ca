// The workbench's "Format" menu command: the source recoloured line by line.
// Nothing is coloured while the user types; this is the only colouring.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "asm/AsseState.h"

namespace tvc {

// Colours of Format, red in the low byte.
inline constexpr int32_t kFormatLabel = 0xFF0000;
inline constexpr int32_t kFormatDebug = 0x1919DE;
inline constexpr int32_t kFormatData = 0xE119DE;
inline constexpr int32_t kFormatComment = 0x379B37;
inline constexpr int32_t kFormatPlain = 0;

// The colour the first fitting rule gives a line (without its line end).
int32_t FormatLineColour(std::string_view line);

// The whole text as coloured runs: each line in its colour, the part from
// its first "'" on in the comment colour, each line end in the colour of the
// text before it. CR LF, LF and a lone CR end a line and are kept as they
// stand, so the runs hold exactly the text given, in the same positions.
std::vector<ListingRun> Format(std::string_view text);

} // namespace tvc
