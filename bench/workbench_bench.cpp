// Workbench speed: each picture importer over a 512 x 480 picture, and Format
// over a 100000-character source, in milliseconds a run (best of the runs).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "asm/PicImport.h"
#include "asm/SourceFormat.h"
#include "core/Machine.h"

namespace {

template <typename F> double BestMs(int runs, F&& f) {
    double best = 1e9;
    for (int r = 0; r < runs; ++r) {
        const auto start = std::chrono::steady_clock::now();
        f();
        best = std::min(best, std::chrono::duration<double, std::milli>(
                                  std::chrono::steady_clock::now() - start)
                                  .count());
    }
    return best;
}

} // namespace

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::atoi(argv[1]) : 20;
    tvc::NullHost host;
    tvc::Machine m(host);
    tvc::PixelGrid g{512, 480, std::vector<int32_t>(512 * 480), 0};
    uint32_t seed = 12345;
    for (int32_t& p : g.pixels) {
        seed = seed * 1103515245u + 12345u;
        p = static_cast<int32_t>(seed >> 8 & 0xFFFFFF);
    }
    double worst = 0;
    for (const tvc::ImportButton& b : tvc::kImportButtons) {
        const double ms = BestMs(runs, [&] { tvc::ImportPicture(m, b, g, 0); });
        worst = std::max(worst, ms);
        std::printf("Command%-2d %-12s 512 x 480: %.2f ms\n", b.number, b.caption, ms);
    }

    static const char* const kLines[] = {"LOOP:",    "  LD A,5 'five", "X: EQU 7",
                                         "DB 1,2,3", "*BREAK",         "ORG 10000",
                                         "JR @LOOP", "INCBIN \"a\"",   "  ds 5,0 ' fill"};
    std::string src;
    for (int i = 0; src.size() < 100000; ++i)
        src += std::string(kLines[i % 9]) + "\r\n";
    src.resize(100000);
    size_t pieces = 0;
    const double ms = BestMs(runs, [&] { pieces += tvc::Format(src).size(); });
    std::printf("Format on %zu characters: %.2f ms (%zu runs made)\n", src.size(), ms,
                pieces / static_cast<size_t>(runs));
    std::printf("heaviest importer: %.2f ms\n", worst);
    return 0;
}
