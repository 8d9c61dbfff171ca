#include "asm/SourceFiles.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "asm/AsmText.h"
#include "asm/Converter.h"

namespace tvc {

bool IsUtf8(std::string_view s) {
    size_t i = 0;
    for (uint32_t cp; i < s.size();)
        if (!NextUtf8(s, i, cp)) return false;
    return true;
}

std::string SourceText(std::string_view bytes) {
    if (!IsUtf8(bytes)) return Cp1250ToUtf8(bytes);
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    return std::string(bytes);
}

std::optional<std::string> ReadSourceFile(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) return std::nullopt;
    const uintmax_t size = std::filesystem::file_size(path, ec);
    if (ec || size > kMaxSourceFile) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    std::string bytes;
    bytes.resize(static_cast<size_t>(size));
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(in.gcount()));
    // A file that grew since its size was taken is still held to the limit.
    if (in.peek() != std::char_traits<char>::eof()) return std::nullopt;
    return SourceText(bytes);
}

bool WriteSourceFile(const std::string& path, std::string_view text) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return false;
    std::filesystem::remove(path, ec);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    const std::string crlf = CrLfLines(text);
    out.write(crlf.data(), static_cast<std::streamsize>(crlf.size()));
    out.close();
    return static_cast<bool>(out);
}

std::string ListingRtf(const std::vector<ListingRun>& runs) {
    std::vector<int32_t> colours;
    for (const ListingRun& r : runs)
        if (std::find(colours.begin(), colours.end(), r.colour) == colours.end())
            colours.push_back(r.colour);
    std::string out = "{\\rtf1\\ansi\\ansicpg1250\\deff0{\\fonttbl{\\f0\\fmodern Courier New;}}\n"
                      "{\\colortbl ;";
    for (int32_t c : colours) {
        out += "\\red" + std::to_string(c & 0xFF) + "\\green" + std::to_string((c >> 8) & 0xFF) +
               "\\blue" + std::to_string((c >> 16) & 0xFF) + ";";
    }
    out += "}\n\\pard\\f0\\fs20 ";
    for (const ListingRun& r : runs) {
        const auto index = std::find(colours.begin(), colours.end(), r.colour) - colours.begin();
        out += "\\cf" + std::to_string(index + 1) + " ";
        for (char ch : r.text) {
            const auto b = static_cast<uint8_t>(ch);
            if (ch == '\n') {
                out += "\\par\n";
            } else if (ch == '\r') {
                continue;
            } else if (ch == '\t') {
                out += "\\tab ";
            } else if (ch == '\\' || ch == '{' || ch == '}') {
                out += '\\';
                out += ch;
            } else if (b >= 0x80 || b < 0x20) {
                static const char kHex[] = "0123456789abcdef";
                out += "\\'";
                out += kHex[b >> 4];
                out += kHex[b & 15];
            } else {
                out += ch;
            }
        }
    }
    out += "}\n";
    return out;
}

} // namespace tvc
