// Text rules of the assembler: the normal form of a line, the number rule of
// the directives, the source's code page and line ends, the host-to-TVC
// character table, and the search of the assembler's opcode table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tvc {

// Every TAB becomes one blank.
std::string TabTrim(std::string_view s);

// Upper case (ASCII letters), trimmed, runs of blanks made single, then ", "
// and " ," made ",".
std::string Strim(std::string_view s);

// Host character (Windows-1250) to the TVC's own code for the accented
// letters; other codes pass unchanged.
int32_t TVCASC(int32_t code);

// The source as the passes read it: UTF-8 text is turned into Windows-1250
// (a character that page lacks becomes "?", a leading byte-order mark is
// dropped); anything that is not valid UTF-8 is taken as Windows-1250 bytes
// already. CR LF, LF and a lone CR all become CR LF.
std::string NormaliseSource(std::string_view text);

// Reads the UTF-8 sequence at text[i] (i < size): its code point in cp and i
// moved past it; false, with i unchanged, when the bytes are not valid UTF-8.
bool NextUtf8(std::string_view text, size_t& i, uint32_t& cp);

// Windows-1250 bytes to UTF-8, for file names and printed listings.
std::string Cp1250ToUtf8(std::string_view bytes);

// The number rule of the directives: blanks skipped, then the longest prefix
// of an optional sign, digits and an optional "." with digits; no number is
// 0. Rounded half to even. No value when it does not fit 32 bits.
std::optional<int32_t> LeadingNumber(std::string_view s);

// Decimal text padded with blanks to `width` (never cut).
std::string PadRight(std::string s, size_t width);

// Where "  " + line + CR LF first stands in OpcodeAsmText, as a plain
// substring search would find it; npos when it is not there. An index over
// the table answers for lines in normal form; RefreshAsmIndex rebuilds it
// when the table text changed (the passes call it before their first line).
size_t FindAsmKey(std::string_view line);
void RefreshAsmIndex();

} // namespace tvc
