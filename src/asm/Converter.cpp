#include "asm/Converter.h"

namespace tvc {

std::string ReplaceAll(std::string_view text, std::string_view find, std::string_view with) {
    std::string out;
    if (find.empty()) return std::string(text);
    out.reserve(text.size());
    size_t from = 0;
    for (;;) {
        const size_t hit = text.find(find, from);
        if (hit == std::string_view::npos) break;
        out.append(text.substr(from, hit - from)).append(with);
        from = hit + find.size();
    }
    out.append(text.substr(from));
    return out;
}

std::string CrLfLines(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' || c == '\n') {
            out += "\r\n";
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            out += c;
        }
    }
    return out;
}

std::string ConvertTvcasm(std::string_view input) {
    std::string t = CrLfLines(input);

    // 1. A comment runs from ";" to the line end; blanks take its place, so a
    // ";" inside a string cuts the line as well.
    for (size_t p = t.find(';'); p != std::string::npos; p = t.find(';', p)) {
        size_t end = t.find("\r\n", p);
        if (end == std::string::npos) end = t.size();
        t.replace(p, end - p, end - p, ' ');
        p = end;
    }
    // 2.
    t = ReplaceAll(t, "\t", " ");
    // 3. Blank runs, each replacement one pass over the text.
    static constexpr std::string_view kRuns[] = {"             ", "     ", "     ", "    ",
                                                 "    ",          "   ",   "  ",    "  "};
    for (std::string_view run : kRuns)
        t = ReplaceAll(t, run, " ");
    // 4.
    t = ReplaceAll(t, "\r\n ", "\r\n");
    // 5.
    t = ReplaceAll(t, "'", "\"");
    // 6. No ";" is left after step 1; the step stays in the sequence.
    t = ReplaceAll(t, ";", "     '");
    // 7. Labels after jumps get their "@"; the case of each text is exact.
    static constexpr std::string_view kJumps[][2] = {
        {"call ", "call @"},   {"jr ", "jr @"},     {"CALL ", "call @"},   {"JR Z,", "jr Z,@"},
        {"JR NZ,", "jr nz,@"}, {"JR C,", "jr c,@"}, {"JR nc,", "jr nc,@"}, {"JP Z,", "jp z,@"},
        {"JP NZ,", "jp nz,@"}, {"JP ", "jp @"}};
    for (const auto& j : kJumps)
        t = ReplaceAll(t, j[0], j[1]);
    // 8.
    t = ReplaceAll(t, " EQU ", ": EQU ");
    // 9. A named data line becomes a label line and a directive line.
    t = ReplaceAll(t, " DB ", ":\r\nDB ");
    t = ReplaceAll(t, " DW ", ":\r\nDW ");
    return t;
}

} // namespace tvc
