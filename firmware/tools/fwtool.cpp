// tvc-fwtool: the build's helper for the monitor ROMs.
//
//   tvc-fwtool font FONT.txt OUT.inc            the character set for the assembler
//   tvc-fwtool keys KEYS.txt OUT.inc OUT.cpp    the key layout for the assembler and C++
//   tvc-fwtool split IN.bin SIZE OUT...         cut an image into ROM files of SIZE bytes
//   tvc-fwtool techno OUT.wav                   the sound panel's recording template
//
// split insists that the image is exactly as long as the files together, so
// a ROM that outgrows its sockets stops the build instead of being cut.
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <numbers>
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

void Put(std::string& s, uint32_t v, int bytes) {
    for (int i = 0; i < bytes; ++i)
        s += static_cast<char>((v >> (8 * i)) & 0xFF);
}

// One second of a four-to-the-floor beat, 22,050 Hz stereo unsigned 8-bit:
// a falling kick on each quarter, a noise hat between them. Recordings
// overwrite the tenth of a second behind its 44-byte header and keep the rest.
int WriteTechno(const std::string& out) {
    constexpr uint32_t rate = 22050, frames = rate, bytes = frames * 2;
    std::string w = "RIFF";
    Put(w, bytes + 36, 4);
    w += "WAVEfmt ";
    Put(w, 16, 4), Put(w, 1, 2), Put(w, 2, 2), Put(w, rate, 4), Put(w, rate * 2, 4);
    Put(w, 2, 2), Put(w, 8, 2);
    w += "data";
    Put(w, bytes, 4);
    uint32_t noise = 0x7EC40;
    double phase = 0;
    for (uint32_t i = 0; i < frames; ++i) {
        const uint32_t beat = rate / 4, t = i % beat;
        const double s = double(t) / rate;
        phase += (50 + 120 * std::exp(-s * 30)) / rate;
        const double kick = std::sin(2 * std::numbers::pi * phase) * std::exp(-s * 12) * 90;
        noise = noise * 1103515245u + 12345u;
        const double hat = t >= beat / 2 && t < beat / 2 + 1200
                               ? ((noise >> 16) % 61 - 30.0) * (1 - (t - beat / 2) / 1200.0)
                               : 0;
        const int v = 128 + static_cast<int>(kick + hat);
        w += static_cast<char>(v), w += static_cast<char>(v);
    }
    return WriteFile(out, w) ? 0 : Fail("cannot write " + out);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> a(argv + 1, argv + argc);
    if (a.size() == 3 && a[0] == "font") return WriteFont(a[1], a[2]);
    if (a.size() == 4 && a[0] == "keys") return WriteKeys(a[1], a[2], a[3]);
    if (a.size() == 2 && a[0] == "techno") return WriteTechno(a[1]);
    if (a.size() >= 4 && a[0] == "split") return Split(a[1], a[2], {a.begin() + 3, a.end()});
    return Fail("usage: font FONT.txt OUT.inc | keys KEYS.txt OUT.inc OUT.cpp | "
                "split IN.bin SIZE OUT... | techno OUT.wav");
}
