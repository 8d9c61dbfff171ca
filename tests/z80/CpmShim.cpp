#include "CpmShim.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "hw/Memory.h"

namespace tvc {

namespace {

constexpr int32_t kLoadAddress = 0x100;
constexpr int32_t kTopOfMemory = 0xF000;

// The length of a group's message, as the program prints it before the result.
constexpr int32_t kMessageLength = 30;

int32_t Word(Machine& m, int32_t a) {
    return MemRead(m, a) | MemRead(m, a + 1) << 8;
}

} // namespace

void ExerciserConsole::Put(char ch) {
    std::fputc(ch, stdout);
    if (ch == '\n') {
        EndLine();
        std::fflush(stdout);
    } else if (ch != '\r') {
        line += ch;
        if (line.find("Tests complete") != std::string::npos) complete = true;
    }
}

void ExerciserConsole::EndLine() {
    const bool ok = line.find("  OK") != std::string::npos;
    const bool error = line.find("  ERROR") != std::string::npos;
    if (ok || error) {
        std::string name = line.substr(0, std::min<size_t>(line.size(), kMessageLength));
        while (!name.empty() && name.back() == '.')
            name.pop_back();
        results.emplace_back(name, ok);
    }
    line.clear();
}

std::string CpmShim::Load(Machine& m, const char* path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return kMissing;
    const std::vector<uint8_t> image((std::istreambuf_iterator<char>(in)),
                                     std::istreambuf_iterator<char>());
    if (image.empty() || image.size() > size_t(kTopOfMemory - kLoadAddress))
        return "not a CP/M program of a usable size";

    m.bus.PortLatch[2] = 0xB0;
    MemoryMapChanged(m);
    for (size_t i = 0; i < image.size(); ++i)
        MemWrite(m, kLoadAddress + int32_t(i), image[i]);
    MemWrite(m, 0, 0x76); // the warm boot: the run ends when RegPC reaches it
    MemWrite(m, 5, 0xC9); // BDOS: served by the shim, then returns
    MemWrite(m, 6, kTopOfMemory & 255);
    MemWrite(m, 7, kTopOfMemory >> 8);

    // The test table, a run of words pointing at the descriptors ended by 0,
    // is what the start-up code loads into HL: JP start, and at start LD HL,(6);
    // LD SP,HL; LD DE,msg; LD C,9; CALL bdos; LD HL,table.
    const int32_t start = Word(m, kLoadAddress + 1);
    if (image[0] != 0xC3 || MemRead(m, start + 12) != 0x21) return "no test table found";
    table_ = Word(m, start + 13);
    m.cpu.RegPC = kLoadAddress;
    return {};
}

bool CpmShim::Serve(Machine& m, int32_t pc, int maxGroups) {
    Z80& cpu = m.cpu;
    if (pc == 0) {
        ended_ = true;
        return false;
    }
    if (pc != 5) return true;
    if (cpu.RegC == 2) console.Put(char(cpu.RegE));
    if (cpu.RegC == 9)
        for (int32_t a = cpu.DE(), n = 0; n < 0x10000; ++a, ++n) {
            const int32_t ch = MemRead(m, a & 0xFFFF);
            if (ch == '$') break;
            console.Put(char(ch));
        }
    std::fflush(stdout);
    return maxGroups < 0 || int(console.results.size()) < maxGroups;
}

} // namespace tvc
