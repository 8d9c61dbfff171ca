// A code page's byte as UTF-8, from the C library's own converter: an
// oracle for the emulator's tables that owes nothing to them.
#pragma once

#include <iconv.h>

#include <string>

namespace tvc::test {

// "" when the page leaves the byte unassigned.
inline std::string CodepageUtf8(const char* page, unsigned char byte) {
    iconv_t cd = iconv_open("UTF-8", page);
    if (cd == iconv_t(-1)) return "?";
    char in[1] = {char(byte)}, out[8];
    char *ip = in, *op = out;
    size_t il = 1, ol = sizeof out;
    const bool ok = iconv(cd, &ip, &il, &op, &ol) != size_t(-1);
    iconv_close(cd);
    return ok ? std::string(out, size_t(op - out)) : std::string();
}

// The same byte as its code point; 0 when unassigned.
inline char32_t CodepageChar(const char* page, unsigned char byte) {
    const std::string u = CodepageUtf8(page, byte);
    if (u.empty()) return 0;
    const auto b = [&](size_t i) { return char32_t(static_cast<unsigned char>(u[i])); };
    if (u.size() == 1) return b(0);
    if (u.size() == 2) return (b(0) & 0x1F) << 6 | (b(1) & 0x3F);
    return (b(0) & 0x0F) << 12 | (b(1) & 0x3F) << 6 | (b(2) & 0x3F);
}

} // namespace tvc::test
