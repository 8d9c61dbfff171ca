#include "asm/OpcodeHelp.h"

#include "asm/AsmText.h"
#include "asm/OpcodeTables.h"
#include "asm/TextLib.h"

namespace tvc {

namespace {

constexpr size_t kLineLimit = 255;

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return out;
}

} // namespace

std::optional<FlagLabel> FlagCaption(char c) {
    switch (c) {
    case '-': return FlagLabel{"unaffected", 0xFFFFFF};
    case '+': return FlagLabel{"affected as defined", 0xFF00};
    case 'P': return FlagLabel{"detects parity", 0xFF00};
    case 'V': return FlagLabel{"detects overflow", 0xFF00};
    case '1': return FlagLabel{"set", 0xFF00};
    case '0': return FlagLabel{"reset", 0xFF00};
    case '*': return FlagLabel{"exceptional", 0xFF};
    case ' ': return FlagLabel{"unknown", 0xFFFF};
    default: return std::nullopt;
    }
}

std::vector<std::string> HelpRows(std::string_view key, bool undoc) {
    std::vector<std::string> rows;
    const std::string& table = OpcodeDisasmText();
    if (key.empty()) return rows;
    for (size_t hit = table.find(key); hit != std::string::npos; hit = table.find(key, hit + 3)) {
        size_t end = table.find('\r', hit);
        if (end == std::string::npos) end = table.size();
        const std::string_view row = TrimBlanks(std::string_view(table).substr(hit, end - hit));
        if (undoc || row.empty() || row.back() != '*') rows.emplace_back(row);
    }
    return rows;
}

std::optional<HelpResult> OpcodeHelp(std::string_view text, size_t selStart, bool undoc) {
    selStart = std::min(selStart, text.size());
    if (selStart == 0) return std::nullopt;
    size_t start = text.rfind('\n', selStart - 1);
    start = start == std::string_view::npos ? 0 : start + 1;
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = std::min(text.size(), start + kLineLimit);
    std::string s = Strim(text.substr(start, end - start));
    if (const size_t quote = s.find('\''); quote != std::string::npos) s.resize(quote);
    const std::string_view trimmed = TrimBlanks(s);
    if (trimmed.empty()) return std::nullopt;

    HelpResult r;
    r.List2 = HelpRows("   " + std::string(trimmed), undoc);
    if (r.List2.size() > 1) return r;
    if (r.List2.size() == 1) {
        r.selected = 0;
        return r;
    }
    // Nothing for the whole line: every row that begins with what stands
    // left of the cursor.
    r.List2 = HelpRows("  " + Strim(text.substr(start, selStart - start)), undoc);
    if (r.List2.size() == 1) r.selected = 0;
    return r;
}

std::optional<OpcodePanel> OpcodeInfo(std::string_view row) {
    std::string t(row);
    if (!t.empty() && t.back() == '*') t.pop_back();
    if (t.rfind("EX AF,AF", 0) == 0) t = "ex af,af'";
    const std::string& info = OpcodeInfoText();
    const size_t hit = info.find(">" + Lower(t) + "<");
    if (hit == std::string::npos) return std::nullopt;
    const size_t lf = hit == 0 ? std::string::npos : info.rfind('\n', hit - 1);
    const size_t begin = lf == std::string::npos ? 0 : lf + 1;
    const std::vector<std::string> parts =
        SplitText(std::string_view(info).substr(begin, hit - begin), "|", 4);
    OpcodePanel p;
    if (parts.size() > 0) p.Text8 = parts[0];
    if (parts.size() > 1) p.Text7 = parts[1];
    if (parts.size() > 2) p.Text10 = parts[2];
    if (parts.size() > 3) p.Text11 = parts[3];
    for (size_t i = 0; i < 6; ++i) {
        p.Label7[i] = FlagLabel{std::string(), 0xFFFF};
        const char c = i < p.Text8.size() ? p.Text8[i] : ' ';
        if (const auto f = FlagCaption(c))
            p.Label7[i] = *f;
        else
            p.flagError = true;
    }
    return p;
}

} // namespace tvc
