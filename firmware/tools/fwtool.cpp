// tvc-fwtool: the build's helper for the monitor ROMs.
//
//   tvc-fwtool font FONT.txt OUT.inc            the character set for the assembler
//   tvc-fwtool keys KEYS.txt OUT.inc OUT.cpp    the key layout for the assembler and C++
//   tvc-fwtool split IN.bin SIZE OUT...         cut an image into ROM files of SIZE bytes
//
// split insists that the image is exactly as long as the files together, so
// a ROM that outgrows its sockets stops the build instead of being cut.
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "FirmwareText.h"

namespace {

using namespace tvc::firmware;

int Fail(const std::string& why) {
    std::cerr << "tvc-fwtool: " << why << '\n';
    return 1;
}

bool WriteFile(const std::string& name, const std::string& data) {
    std::ofstream out(name, std::ios::binary);
    out << data;
    return static_cast<bool>(out);
}

int WriteFont(const std::string& in, const std::string& out) {
    std::ifstream file(in);
    if (!file) return Fail("cannot read " + in);
    std::string error;
    const auto font = ParseFont(file, error);
    if (!font) return Fail(in + ": " + error);
    return WriteFile(out, FontInclude(*font)) ? 0 : Fail("cannot write " + out);
}

int WriteKeys(const std::string& in, const std::string& inc, const std::string& cpp) {
    std::ifstream file(in);
    if (!file) return Fail("cannot read " + in);
    std::string error;
    const auto layout = ParseKeyLayout(file, error);
    if (!layout) return Fail(in + ": " + error);
    if (!WriteFile(inc, KeyInclude(*layout))) return Fail("cannot write " + inc);
    return WriteFile(cpp, KeyTableSource(*layout)) ? 0 : Fail("cannot write " + cpp);
}

int Split(const std::string& in, const std::string& sizeText,
          const std::vector<std::string>& outs) {
    std::ifstream file(in, std::ios::binary);
    if (!file) return Fail("cannot read " + in);
    const std::string data{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const size_t size = std::stoul(sizeText);
    if (size == 0 || data.size() != size * outs.size())
        return Fail(in + " holds " + std::to_string(data.size()) + " bytes, not " +
                    std::to_string(size * outs.size()));
    for (size_t i = 0; i < outs.size(); ++i)
        if (!WriteFile(outs[i], data.substr(i * size, size)))
            return Fail("cannot write " + outs[i]);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> a(argv + 1, argv + argc);
    if (a.size() == 3 && a[0] == "font") return WriteFont(a[1], a[2]);
    if (a.size() == 4 && a[0] == "keys") return WriteKeys(a[1], a[2], a[3]);
    if (a.size() >= 4 && a[0] == "split") return Split(a[1], a[2], {a.begin() + 3, a.end()});
    return Fail("usage: font FONT.txt OUT.inc | keys KEYS.txt OUT.inc OUT.cpp | "
                "split IN.bin SIZE OUT...");
}
