// The text the CPU and trace monitors show, made without a window system so
// that it can be checked on its own: the memory and port dumps with their
// character column, the edit boxes' number rules, the clock and speed
// figures, and the trace block.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tvc {

class Machine;
class Z80;

// Headings above the two dumps; the rows below line up with them.
inline constexpr std::string_view kMemHeading =
    " Mem:  00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ................";
inline constexpr std::string_view kPortHeading =
    " Port: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ................";

// Rows of each dump.
inline constexpr int kDumpRows = 8;

// The leading decimal number of a text, as a decimal text box is read:
// blanks, an optional minus and digits; 0 when there are none. Saturates far
// beyond any address instead of overflowing.
int64_t DecimalValue(std::string_view text);

// Hexadecimal text (HexToLong: 0 on bad input) held inside lo..hi.
int32_t HexClamped(std::string_view text, int32_t lo, int32_t hi);

// The breakpoint box: typed hexadecimal becomes its decimal text.
std::string HexToDecimalText(std::string_view text);

// The memory dump's start box: a number above 65535 becomes "65535", one
// below 0 becomes "0"; any other text is left as it stands (empty result).
std::string ClampDumpStart(std::string_view text);

// The character a byte shows as in the dump's character column, as UTF-8.
// Control codes and codes from 0xA0 show ".", printable ASCII as itself, and
// the machine's accented and graphic codes 0x7F to 0x9F as the letters of
// the monitor's OEM font (MonitorFontCode) they were drawn with.
std::string MonitorChar(int32_t code);
// The font code (code page 852) a byte is drawn with; '.' where it has none.
int32_t MonitorFontCode(int32_t code);
// The Unicode character of a code page 852 byte.
char32_t Cp852Char(uint8_t code);

// Eight rows of sixteen bytes from `start` through MemRead (addresses past
// 0xFFFF read 0xFFFF), each "AAAAA: " and the bytes and the character
// column; rows end with '\n' but the last.
std::string MemDumpText(Machine& m, int64_t start);
// The same layout over the port latches (ports past 0xFF read 0xFF; a start
// below 0 starts at port 0), without the character column. Reads no device.
std::string PortDumpText(const Machine& m, int64_t start);

// TStates plus TotalT as a fixed-point decimal with four places, and its
// integer part divided by 3125: emulated milliseconds at 3.125 MHz.
std::string ClockText(int32_t tstates, int64_t totalT);
int64_t EmulatedMs(int32_t tstates, int64_t totalT);

// The speed figure in MHz, three decimals, from the advance of TotalT over
// a host interval in microseconds; "0.000" when either is not positive.
std::string SpeedFigure(int64_t totalTDelta, int64_t elapsedMicroseconds);

// The trace monitor's packed flag byte: S bit 0, Z bit 1, H bit 3, P bit 5,
// N bit 6, C bit 7 (its own packing, not the processor's F register).
int32_t TraceFlagByte(const Z80& cpu);
// One block of the trace: registers, the flag heading with the flags
// under it, the index and stack registers and I, and a dashed line.
std::string TraceBlock(const Z80& cpu);

} // namespace tvc
