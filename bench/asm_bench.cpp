// Assembler speed: a generated 10,000-line source, inside the 100000-character
// stop, through Compile (both passes), in lines a second.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "asm/Assembler.h"
#include "asm/OpcodeTables.h"
#include "core/Machine.h"

int main(int argc, char** argv) {
    const int runs = argc > 1 ? std::atoi(argv[1]) : 20;
    tvc::NullHost host;
    tvc::Machine m(host);
    tvc::OpcodeTablesLoad(m);
    m.bus.PortLatch[2] = 0xB0;
    static const char* const kLines[] = {"LD A,5", "INC A", "JR @L",     "DB 1,2", "LD B,$F",
                                         "NOP",    "CP 9",  "OUT (1),A", "DEC B"};
    std::string src = "ORG 10000\n";
    int lines = 1;
    for (int i = 0; lines < 10000; ++i, ++lines) {
        std::string label = "L";
        label += std::to_string(i / 10);
        const std::string text = kLines[i % 9];
        src += i % 10 == 0 ? label + ":\n" : text == "JR @L" ? "JR @" + label + "\n" : text + "\n";
    }
    m.forms.asse.RText1 = src;
    if (tvc::asse::Command1_Click(m) != 0 || m.forms.asse.Truncated) {
        std::fprintf(stderr, "the benchmark source did not assemble: %s, line %d\n",
                     m.forms.asse.Text13.c_str(), m.forms.asse.ErrorLine);
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    for (int r = 0; r < runs; ++r)
        tvc::asse::Command1_Click(m);
    const double s =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%d lines (%zu characters), %d compiles: %.0f lines/s\n", lines, src.size(), runs,
                lines * runs / s);
    return 0;
}
