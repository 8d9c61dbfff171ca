#include "asm/AsmText.h"

#include <array>
#include <limits>
#include <unordered_map>

#include "asm/OpcodeTables.h"
#include "asm/TextLib.h"

namespace tvc {

namespace {

// Code points of the Windows-1250 bytes 0x80 to 0xFF; 0 for the unassigned ones.
constexpr std::array<uint16_t, 128> kCp1250 = {
    0x20AC, 0x0000, 0x201A, 0x0000, 0x201E, 0x2026, 0x2020, 0x2021, 0x0000, 0x2030, 0x0160, 0x2039,
    0x015A, 0x0164, 0x017D, 0x0179, 0x0000, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x0000, 0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0x00A0, 0x02C7, 0x02D8, 0x0141,
    0x00A4, 0x0104, 0x00A6, 0x00A7, 0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B,
    0x00B0, 0x00B1, 0x02DB, 0x0142, 0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x0105, 0x015F, 0x00BB,
    0x013D, 0x02DD, 0x013E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7,
    0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E, 0x0110, 0x0143, 0x0147, 0x00D3,
    0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF,
    0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7, 0x010D, 0x00E9, 0x0119, 0x00EB,
    0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4, 0x0151, 0x00F6, 0x00F7,
    0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

char FromCodePoint(uint32_t cp) {
    if (cp < 0x80) return static_cast<char>(cp);
    for (size_t i = 0; i < kCp1250.size(); ++i)
        if (kCp1250[i] == cp) return static_cast<char>(0x80 + i);
    return '?';
}

} // namespace

bool NextUtf8(std::string_view s, size_t& i, uint32_t& cp) {
    const auto b = static_cast<uint8_t>(s[i]);
    if (b < 0x80) {
        cp = b;
        ++i;
        return true;
    }
    size_t len;
    uint32_t min;
    if ((b & 0xE0) == 0xC0)
        len = 2, cp = b & 0x1F, min = 0x80;
    else if ((b & 0xF0) == 0xE0)
        len = 3, cp = b & 0x0F, min = 0x800;
    else if ((b & 0xF8) == 0xF0)
        len = 4, cp = b & 0x07, min = 0x10000;
    else
        return false;
    if (len > s.size() - i) return false;
    for (size_t k = 1; k < len; ++k) {
        const auto c = static_cast<uint8_t>(s[i + k]);
        if ((c & 0xC0) != 0x80) return false;
        cp = cp << 6 | (c & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += len;
    return true;
}

namespace {

// Decodes valid UTF-8 into Windows-1250; false when the text is not UTF-8.
bool DecodeUtf8(std::string_view s, std::string& out) {
    out.clear();
    out.reserve(s.size());
    size_t i = 0;
    if (s.substr(0, 3) == "\xEF\xBB\xBF") i = 3;
    for (uint32_t cp; i < s.size();) {
        if (!NextUtf8(s, i, cp)) return false;
        out += FromCodePoint(cp);
    }
    return true;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The table's possible hits: for every row, each tail behind two blanks that
// holds no double blank, by its first position. A line in normal form can
// only ever match one of these.
struct AsmIndex {
    std::string table;
    std::unordered_map<std::string_view, size_t> hits;
    bool built = false;
};

AsmIndex& Index() {
    static AsmIndex index;
    return index;
}

void Build(AsmIndex& ix) {
    ix.table = OpcodeAsmText();
    ix.hits.clear();
    const std::string_view t = ix.table;
    size_t rowStart = 0;
    for (size_t eol; (eol = t.find("\r\n", rowStart)) != std::string_view::npos;
         rowStart = eol + 2) {
        for (size_t s = rowStart + 2; s < eol; ++s) {
            if (t[s - 2] != ' ' || t[s - 1] != ' ' || t[s] == ' ') continue;
            const std::string_view tail = t.substr(s, eol - s);
            if (tail.find("  ") != std::string_view::npos ||
                tail.find('\n') != std::string_view::npos)
                continue;
            ix.hits.emplace(tail, s - 2);
        }
    }
    ix.built = true;
}

} // namespace

std::string TabTrim(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c == '\t') c = ' ';
    return out;
}

std::string Strim(std::string_view s) {
    std::string up;
    up.reserve(s.size());
    bool blank = false;
    for (char c : s) {
        if (c == ' ') {
            blank = true;
            continue;
        }
        if (blank && !up.empty()) up += ' ';
        blank = false;
        up += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
    }
    std::string out;
    out.reserve(up.size());
    for (size_t i = 0; i < up.size(); ++i) { // ", " to ","
        out += up[i];
        if (up[i] == ',' && i + 1 < up.size() && up[i + 1] == ' ') ++i;
    }
    up.clear();
    for (size_t i = 0; i < out.size(); ++i) { // then " ," to ","
        if (out[i] == ' ' && i + 1 < out.size() && out[i + 1] == ',') continue;
        up += out[i];
    }
    return up;
}

int32_t TVCASC(int32_t code) {
    static constexpr int32_t kFrom[] = {0xC1, 0xC9, 0xCD, 0xD3, 0xD6, 0xD5, 0xDA, 0xDC, 0xDB,
                                        0xE1, 0xE9, 0xED, 0xF3, 0xF6, 0xF5, 0xFA, 0xFC, 0xFB};
    for (int32_t i = 0; i < 18; ++i)
        if (kFrom[i] == code) return (i < 9 ? 0x80 : 0x90 - 9) + i;
    return code;
}

std::string NormaliseSource(std::string_view text) {
    std::string decoded;
    if (!DecodeUtf8(text, decoded)) decoded.assign(text);
    std::string out;
    out.reserve(decoded.size() + decoded.size() / 16);
    for (size_t i = 0; i < decoded.size(); ++i) {
        const char c = decoded[i];
        if (c == '\r') {
            out += "\r\n";
            if (i + 1 < decoded.size() && decoded[i + 1] == '\n') ++i;
        } else if (c == '\n') {
            out += "\r\n";
        } else {
            out += c;
        }
    }
    return out;
}

std::string Cp1250ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char ch : bytes) {
        const auto b = static_cast<uint8_t>(ch);
        uint32_t cp = b < 0x80 ? b : kCp1250[b - 0x80];
        if (cp == 0) cp = b; // unassigned: keep the byte's own value
        AppendUtf8(out, cp);
    }
    return out;
}

std::optional<int32_t> LeadingNumber(std::string_view s) {
    size_t i = 0;
    while (i < s.size() && s[i] == ' ')
        ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) negative = s[i++] == '-';
    int64_t whole = 0;
    bool any = false;
    for (; i < s.size() && IsDigit(s[i]); ++i) {
        whole = whole * 10 + (s[i] - '0');
        any = true;
        if (whole > int64_t(1) << 32) return std::nullopt;
    }
    if (i < s.size() && s[i] == '.' && i + 1 < s.size() && IsDigit(s[i + 1])) {
        // Half to even: only the first fraction digit and whether any other is
        // non-zero matter.
        const int first = s[++i] - '0';
        bool rest = false;
        for (++i; i < s.size() && IsDigit(s[i]); ++i)
            rest = rest || s[i] != '0';
        if (first > 5 || (first == 5 && (rest || (whole & 1)))) ++whole;
        any = true;
    }
    if (!any) return 0;
    const int64_t v = negative ? -whole : whole;
    if (v < std::numeric_limits<int32_t>::min() || v > std::numeric_limits<int32_t>::max())
        return std::nullopt;
    return static_cast<int32_t>(v);
}

std::string PadRight(std::string s, size_t width) {
    if (s.size() < width) s.append(width - s.size(), ' ');
    return s;
}

void RefreshAsmIndex() {
    AsmIndex& ix = Index();
    if (!ix.built || ix.table != OpcodeAsmText()) Build(ix);
}

size_t FindAsmKey(std::string_view line) {
    AsmIndex& ix = Index();
    if (!ix.built) Build(ix);
    // Lines the index was not made for take the plain search.
    if (line.empty() || line[0] == ' ' || line.find("  ") != std::string_view::npos ||
        line.find_first_of("\r\n") != std::string_view::npos) {
        std::string key = "  ";
        key.append(line).append("\r\n");
        return ix.table.find(key);
    }
    const auto it = ix.hits.find(line);
    return it == ix.hits.end() ? std::string::npos : it->second;
}

} // namespace tvc
