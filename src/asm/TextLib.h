// Text helpers shared by the assembler, the disassembler and the monitors.
// None of them fails: bad input gives a plain result (0, an empty list, the
// text unchanged), never an error.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tvc {

// Upper-case hexadecimal, zero filled to two or four digits. A value that
// needs more digits keeps them all, and a negative one shows as its 32-bit
// two's complement: RegPC is not wrapped at 65536 and the text must say
// where it really stands.
std::string Hex2(int32_t value);
std::string Hex4(int32_t value);

// value, less 256 from 128 on: a byte read as a signed displacement.
int32_t SignedByte(int32_t value);

// Hexadecimal text to a number, as "&H" and the text would read: up to 32
// bits, where eight digits with the top bit set come out negative. Blanks
// around the digits are ignored; anything else that is not a digit, no
// digit at all, or more than 32 bits gives 0.
int32_t HexToLong(std::string_view text);

enum class TextCompare { Binary, IgnoreCase };

// Cuts text at each separator. count limits the number of pieces, the last
// one keeping the rest of the text; -1 means no limit. Empty text or a count
// of 0 gives no pieces; an empty separator gives the whole text as one.
std::vector<std::string> SplitText(std::string_view text, std::string_view separator = " ",
                                   int32_t count = -1, TextCompare compare = TextCompare::Binary);

// Replaces find by with, at most count times (-1: all), searching from the
// 1-based position start on. The result begins at start: the text before it
// is dropped. A start below 1 counts as 1, one past the end gives "". An
// empty find replaces nothing.
std::string ReplaceText(std::string_view text, std::string_view find, std::string_view with,
                        int32_t start = 1, int32_t count = -1,
                        TextCompare compare = TextCompare::Binary);

// The text without the blanks at either end (tabs stay, as they are text).
std::string_view TrimBlanks(std::string_view text);

// Single-byte Windows-1252 text, as the opcode tables are kept, to the UTF-8
// that the rest of the program works in.
// Appends one code point below 0x10000 as UTF-8.
void AppendUtf8(std::string& out, uint32_t cp);

std::string WidenText(std::string_view bytes);

} // namespace tvc
