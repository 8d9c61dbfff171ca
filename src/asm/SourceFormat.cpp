#include "asm/SourceFormat.h"

#include "asm/TextLib.h"

namespace tvc {

namespace {

bool StartsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

void Append(std::vector<ListingRun>& runs, std::string_view text, int32_t colour) {
    if (text.empty()) return;
    if (runs.empty() || runs.back().colour != colour) runs.push_back({std::string(), colour});
    runs.back().text.append(text);
}

} // namespace

int32_t FormatLineColour(std::string_view line) {
    const std::string_view trimmed = TrimBlanks(line);
    if (line.find(": EQU") != std::string_view::npos) return kFormatLabel;
    if (!trimmed.empty() && trimmed.back() == ':') return kFormatLabel;
    if (StartsWith(trimmed, "*")) return kFormatDebug;
    std::string upper(trimmed.substr(0, 3));
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    if (upper == "DB " || upper == "DW " || upper == "DS ") return kFormatData;
    // Only this test looks at the line as typed: case and leading blanks count.
    if (StartsWith(line, "INCBIN ") || StartsWith(line, "ORG ")) return kFormatLabel;
    return kFormatPlain;
}

std::vector<ListingRun> Format(std::string_view text) {
    std::vector<ListingRun> runs;
    size_t pos = 0;
    while (pos < text.size()) {
        size_t end = text.find_first_of("\r\n", pos);
        if (end == std::string_view::npos) end = text.size();
        size_t next = end;
        if (next < text.size()) next += text.compare(end, 2, "\r\n") == 0 ? 2 : 1;
        const std::string_view line = text.substr(pos, end - pos);
        int32_t colour = FormatLineColour(line);
        const size_t quote = line.find('\'');
        if (quote != std::string_view::npos) {
            Append(runs, line.substr(0, quote), colour);
            colour = kFormatComment;
            Append(runs, line.substr(quote), colour);
        } else {
            Append(runs, line, colour);
        }
        Append(runs, text.substr(end, next - end), colour);
        pos = next;
    }
    return runs;
}

} // namespace tvc
