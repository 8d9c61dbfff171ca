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

} // namespace tvc::test
