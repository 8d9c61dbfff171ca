#include "core/MonitorText.h"

#include <algorithm>
#include <cstdio>

#include "asm/TextLib.h"
#include "core/Machine.h"
#include "core/Numbers.h"
#include "hw/Memory.h"

namespace tvc {

namespace {

// The machine's codes 0x7F to 0x9F and the font codes that draw them: the
// accented capitals and small letters of the Hungarian alphabet and the box
// drawing pieces of the graphic set.
constexpr uint8_t kFontCodes[0x21] = {
    0xDB,                                           // 0x7F
    0xB5, 0x90, 0x92, 0xE0, 0x99, 0x8A, 0xE9, 0x9A, // 0x80..0x87
    0xEB, 0xDA, 0xC0, 0xB3, 0xC3, 0xC2, 0xC5, 0xC6, // 0x88..0x8F
    0xA0, 0x82, 0x8C, 0xA2, 0x94, 0x8B, 0xA3, 0x81, // 0x90..0x97
    0xFB, 0xBF, 0xD9, 0xC4, 0xB4, 0xC1, 0xAC, 0xE6, // 0x98..0x9F
};

// The upper half of code page 852, the OEM page of the monitor's font.
constexpr char16_t kCp852[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x016F, 0x0107, 0x00E7, 0x0142, 0x00EB, 0x0150, 0x0151,
    0x00EE, 0x0179, 0x00C4, 0x0106, 0x00C9, 0x0139, 0x013A, 0x00F4, 0x00F6, 0x013D, 0x013E, 0x015A,
    0x015B, 0x00D6, 0x00DC, 0x0164, 0x0165, 0x0141, 0x00D7, 0x010D, 0x00E1, 0x00ED, 0x00F3, 0x00FA,
    0x0104, 0x0105, 0x017D, 0x017E, 0x0118, 0x0119, 0x00AC, 0x017A, 0x010C, 0x015F, 0x00AB, 0x00BB,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x00C1, 0x00C2, 0x011A, 0x015E, 0x2563, 0x2551, 0x2557,
    0x255D, 0x017B, 0x017C, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x0102, 0x0103,
    0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x00A4, 0x0111, 0x0110, 0x010E, 0x00CB,
    0x010F, 0x0147, 0x00CD, 0x00CE, 0x011B, 0x2518, 0x250C, 0x2588, 0x2584, 0x0162, 0x016E, 0x2580,
    0x00D3, 0x00DF, 0x00D4, 0x0143, 0x0144, 0x0148, 0x0160, 0x0161, 0x0154, 0x00DA, 0x0155, 0x0170,
    0x00FD, 0x00DD, 0x0163, 0x00B4, 0x00AD, 0x02DD, 0x02DB, 0x02C7, 0x02D8, 0x00A7, 0x00F7, 0x00B8,
    0x00B0, 0x00A8, 0x02D9, 0x0171, 0x0158, 0x0159, 0x25A0, 0x00A0,
};

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// "AAAAA: " with the address in five hexadecimal digits.
std::string RowAddress(int64_t a) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%05llX: ", static_cast<unsigned long long>(a));
    return buf;
}

} // namespace

int64_t DecimalValue(std::string_view text) {
    int64_t v = 0;
    size_t i = 0;
    while (i < text.size() && text[i] == ' ')
        ++i;
    const bool neg = i < text.size() && text[i] == '-';
    if (neg) ++i;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        if (v < (int64_t(1) << 40)) v = v * 10 + (text[i] - '0');
    return neg ? -v : v;
}

int32_t HexClamped(std::string_view text, int32_t lo, int32_t hi) {
    return std::clamp(HexToLong(text), lo, hi);
}

std::string HexToDecimalText(std::string_view text) {
    return std::to_string(HexToLong(text));
}

std::string ClampDumpStart(std::string_view text) {
    const int64_t v = DecimalValue(text);
    if (v > 65535) return "65535";
    if (v < 0) return "0";
    return {};
}

int32_t MonitorFontCode(int32_t code) {
    if (code >= 0x20 && code <= 0x7E) return code;
    if (code >= 0x7F && code <= 0x9F) return kFontCodes[code - 0x7F];
    return '.';
}

char32_t Cp852Char(uint8_t code) {
    return code < 0x80 ? char32_t(code) : char32_t(kCp852[code - 0x80]);
}

std::string MonitorChar(int32_t code) {
    const int32_t font = MonitorFontCode(code);
    std::string out;
    AppendUtf8(out, font < 0x80 ? char32_t(font) : char32_t(kCp852[font - 0x80]));
    return out;
}

std::string MemDumpText(Machine& m, int64_t start) {
    std::string out;
    int64_t a = start;
    for (int row = 0; row < kDumpRows; ++row) {
        std::string chars;
        out += RowAddress(a);
        for (int i = 0; i < 16; ++i, ++a) {
            const int32_t v = MemRead(m, static_cast<int32_t>(std::min<int64_t>(a, 0xFFFF)));
            out += Hex2(v) + " ";
            chars += MonitorChar(v);
        }
        out += chars;
        if (row + 1 < kDumpRows) out += '\n';
    }
    return out;
}

std::string PortDumpText(const Machine& m, int64_t start) {
    std::string out;
    int64_t p = std::max<int64_t>(start, 0);
    for (int row = 0; row < kDumpRows; ++row) {
        out += RowAddress(p);
        for (int i = 0; i < 16; ++i, ++p)
            out += Hex2(m.bus.PortLatch[std::min<int64_t>(p, 0xFF)]) + " ";
        if (row + 1 < kDumpRows) out += '\n';
    }
    return out;
}

std::string ClockText(int32_t tstates, int64_t totalT) {
    const int64_t fixed = totalT + int64_t(tstates) * kTotalTScale;
    const int64_t whole = fixed / kTotalTScale, frac = fixed % kTotalTScale;
    char buf[40];
    std::snprintf(buf, sizeof buf, "%s%lld.%04lld", fixed < 0 && whole == 0 ? "-" : "",
                  static_cast<long long>(whole), static_cast<long long>(frac < 0 ? -frac : frac));
    return buf;
}

int64_t EmulatedMs(int32_t tstates, int64_t totalT) {
    const int64_t fixed = totalT + int64_t(tstates) * kTotalTScale;
    const int64_t unit = 3125 * kTotalTScale;
    // Rounded down, negative values too, as the integer part of a quotient.
    return fixed >= 0 ? fixed / unit : -((-fixed + unit - 1) / unit);
}

std::string SpeedFigure(int64_t totalTDelta, int64_t elapsedMicroseconds) {
    if (totalTDelta <= 0 || elapsedMicroseconds <= 0) return "0.000";
    // T-states per microsecond are MHz; TotalT carries four decimal places.
    const double mhz =
        static_cast<double>(totalTDelta) / kTotalTScale / static_cast<double>(elapsedMicroseconds);
    const int64_t thousandths = RoundHalfEven(mhz * 1000.0);
    char buf[40];
    std::snprintf(buf, sizeof buf, "%lld.%03lld", static_cast<long long>(thousandths / 1000),
                  static_cast<long long>(thousandths % 1000));
    return buf;
}

int32_t TraceFlagByte(const Z80& c) {
    return c.FlagS << 0 | c.FlagZ << 1 | c.FlagH << 3 | c.FlagP << 5 | c.FlagN << 6 | c.FlagC << 7;
}

std::string TraceBlock(const Z80& c) {
    const std::string regs =
        "AF:" + Hex4(c.RegA * 256 + TraceFlagByte(c)) + ",BC:" + Hex4(c.RegB * 256 + c.RegC) +
        ",DE:" + Hex4(c.RegD * 256 + c.RegE) + ",HL:" + Hex4(c.RegH * 256 + c.RegL) + "|";
    const auto digit = [](int32_t f) { return static_cast<char>('0' + (f & 1)); };
    std::string flags(regs.size(), ' ');
    flags += {digit(c.FlagS), digit(c.FlagZ), 'x',           digit(c.FlagH), 'x',
              digit(c.FlagP), digit(c.FlagN), digit(c.FlagC)};
    const std::string index = "IX:" + Hex4(c.RegIX) + ",IY:" + Hex4(c.RegIY) +
                              ",SP:" + Hex4(c.RegSP) + ",    I:" + Hex2(c.RegI);
    return regs + "SZ-H-PNC\n" + flags + "\n" + index + "\n" + std::string(flags.size(), '-');
}

} // namespace tvc
