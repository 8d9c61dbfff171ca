// The workbench's file panel in the core: the type list with its patterns,
// OPEN and SAVE of a source, and the listing written as rich text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "asm/AsseState.h"

namespace tvc {

// Combo1's items and the pattern each sets on the file list. "sound!" is not
// "sound", so its branch is never taken and the list keeps its pattern.
struct FileType {
    const char* item;
    const char* pattern; // nullptr: the pattern stays as it was
};
inline constexpr FileType kFileTypes[] = {
    {"asm", "*.asm"},
    {"tvcasm", "*.tvcasm"},
    {"picture", "*.bmp;*.jpg;*.gif"},
    {"sound!", nullptr},
};
inline constexpr const char* kFirstPattern = "*.asm;*.tvcasm";
inline constexpr const char* kFileOpenError = "File Open error!";

// OPEN reads files up to this size and refuses larger ones.
inline constexpr uintmax_t kMaxSourceFile = 16u << 20;

// True when the bytes are valid UTF-8 (a byte-order mark allowed).
bool IsUtf8(std::string_view bytes);

// A file's bytes as the editor's UTF-8 text: valid UTF-8 as it stands (a
// byte-order mark dropped), anything else read as Windows-1250.
std::string SourceText(std::string_view bytes);

// OPEN: the file's text for the editor, or no value when it cannot be read,
// is not a regular file or is larger than kMaxSourceFile.
std::optional<std::string> ReadSourceFile(const std::string& path);

// SAVE: the editor's text as UTF-8 with CR LF line ends, replacing a file of
// that name. False when it cannot be written.
bool WriteSourceFile(const std::string& path, std::string_view text);

// The listing as rich text: a colour table of the runs' colours and one
// paragraph per line. Bytes from 0x80 on are Windows-1250.
std::string ListingRtf(const std::vector<ListingRun>& runs);

} // namespace tvc
