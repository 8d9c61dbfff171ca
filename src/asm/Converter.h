// The "Convert tvcasm" button: the *.tvcasm dialect to this assembler's
// language, by a fixed list of replacements over the whole text. Nothing is
// parsed; the result is meant to be read and touched up by the user.
#pragma once

#include <string>
#include <string_view>

namespace tvc {

// The nine steps in order: comments blanked, TAB to blank, blank runs cut,
// leading blanks of lines dropped, apostrophes to double quotes, the jump
// table, " EQU " and named DB/DW lines. Line ends are made CR LF first (LF and
// a lone CR too), as the comment and line-start steps look for CR LF.
std::string ConvertTvcasm(std::string_view text);

// Every occurrence of `find` replaced by `with`, left to right, in one pass
// (what a replacement inserts is not looked at again).
std::string ReplaceAll(std::string_view text, std::string_view find, std::string_view with);

// LF, CR LF and a lone CR all become CR LF.
std::string CrLfLines(std::string_view text);

} // namespace tvc
