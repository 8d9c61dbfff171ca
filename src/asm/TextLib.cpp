#include "asm/TextLib.h"

#include <cctype>

namespace tvc {

namespace {

std::string HexDigits(int32_t value, size_t width) {
    static const char kDigits[] = "0123456789ABCDEF";
    auto v = static_cast<uint32_t>(value);
    std::string s;
    do {
        s.insert(s.begin(), kDigits[v & 15]);
        v >>= 4;
    } while (v != 0);
    if (s.size() < width) s.insert(0, width - s.size(), '0');
    return s;
}

char Fold(char c, TextCompare compare) {
    if (compare == TextCompare::Binary) return c;
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// Position of find in text from pos on, or npos.
size_t Find(std::string_view text, std::string_view find, size_t pos, TextCompare compare) {
    if (compare == TextCompare::Binary) return text.find(find, pos);
    if (find.size() > text.size()) return std::string_view::npos;
    for (size_t i = pos; i + find.size() <= text.size(); ++i) {
        size_t k = 0;
        while (k < find.size() && Fold(text[i + k], compare) == Fold(find[k], compare))
            ++k;
        if (k == find.size()) return i;
    }
    return std::string_view::npos;
}

} // namespace

std::string Hex2(int32_t value) {
    return HexDigits(value, 2);
}
std::string Hex4(int32_t value) {
    return HexDigits(value, 4);
}

int32_t SignedByte(int32_t value) {
    return value >= 128 ? value - 256 : value;
}

int32_t HexToLong(std::string_view text) {
    text = TrimBlanks(text);
    if (text.empty()) return 0;
    uint32_t v = 0;
    for (char c : text) {
        int digit;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else if (c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else
            return 0;
        if (v > 0x0FFFFFFFu) return 0;
        v = v << 4 | static_cast<uint32_t>(digit);
    }
    return static_cast<int32_t>(v);
}

std::vector<std::string> SplitText(std::string_view text, std::string_view separator, int32_t count,
                                   TextCompare compare) {
    std::vector<std::string> pieces;
    if (text.empty() || count == 0) return pieces;
    size_t pos = 0;
    while (!separator.empty() && (count < 0 || pieces.size() + 1 < static_cast<size_t>(count))) {
        size_t hit = Find(text, separator, pos, compare);
        if (hit == std::string_view::npos) break;
        pieces.emplace_back(text.substr(pos, hit - pos));
        pos = hit + separator.size();
    }
    pieces.emplace_back(text.substr(pos));
    return pieces;
}

std::string ReplaceText(std::string_view text, std::string_view find, std::string_view with,
                        int32_t start, int32_t count, TextCompare compare) {
    size_t pos = start < 1 ? 0 : static_cast<size_t>(start) - 1;
    if (pos >= text.size()) return {};
    text.remove_prefix(pos);
    std::string out;
    size_t from = 0;
    for (int32_t done = 0; !find.empty() && (count < 0 || done < count); ++done) {
        size_t hit = Find(text, find, from, compare);
        if (hit == std::string_view::npos) break;
        out.append(text.substr(from, hit - from)).append(with);
        from = hit + find.size();
    }
    out.append(text.substr(from));
    return out;
}

std::string_view TrimBlanks(std::string_view text) {
    size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    size_t last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

void AppendUtf8(std::string& out, uint32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | cp >> 6);
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | cp >> 12);
        out += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

std::string WidenText(std::string_view bytes) {
    // Code points of 0x80 to 0x9F; the five unassigned bytes keep their own value.
    static const uint16_t kHigh[32] = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    std::string out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        const auto b = static_cast<uint8_t>(c);
        const uint32_t cp = b >= 0x80 && b < 0xA0 ? kHigh[b - 0x80] : b;
        AppendUtf8(out, cp);
    }
    return out;
}

} // namespace tvc
