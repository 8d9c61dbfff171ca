// Sound chip cost: host milliseconds per emulated second (50 blocks) for each
// chip with every voice, noise and envelope on, the same chip silent, and the
// whole SoundMix with all chips sounding. A chip joins by adding a row to
// kChips: its set-up writes and its renderer.
#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "core/Machine.h"
#include "hw/MachineSetup.h"
#include "hw/Ports.h"
#include "sound/SoundFX.h"

using namespace tvc;

namespace {

struct Chip {
    const char* name;
    std::vector<std::pair<int, int>> loud; // (port, value) writes that make every voice sound
    void (*render)(Machine&);
};

const Chip kChips[] = {
    {"SAA1099",
     {{0xFF, 0},  {0xFE, 0xFF}, {0xFF, 1},  {0xFE, 0xFF}, {0xFF, 2},  {0xFE, 0xFF},
      {0xFF, 3},  {0xFE, 0xFF}, {0xFF, 4},  {0xFE, 0xFF}, {0xFF, 5},  {0xFE, 0xFF},
      {0xFF, 8},  {0xFE, 10},   {0xFF, 9},  {0xFE, 60},   {0xFF, 10}, {0xFE, 110},
      {0xFF, 11}, {0xFE, 160},  {0xFF, 12}, {0xFE, 200},  {0xFF, 13}, {0xFE, 250},
      {0xFF, 16}, {0xFE, 0x43}, {0xFF, 17}, {0xFE, 0x52}, {0xFF, 18}, {0xFE, 0x61},
      {0xFF, 20}, {0xFE, 0x3F}, {0xFF, 21}, {0xFE, 0x3F}, {0xFF, 22}, {0xFE, 0x13},
      {0xFF, 24}, {0xFE, 0x8A}, {0xFF, 25}, {0xFE, 0x9B}, {0xFF, 28}, {0xFE, 1}},
     SaaRender},
    {"SN76489",
     {{0x30, 0x85},
      {0x30, 0x10},
      {0x30, 0x90},
      {0x30, 0xA3},
      {0x30, 0x08},
      {0x30, 0xB2},
      {0x30, 0xC9},
      {0x30, 0x04},
      {0x30, 0xD4},
      {0x30, 0xE5},
      {0x30, 0xF0}},
     SnRender},
    {"AY-3-8910",
     {{0x3A, 0},  {0x3B, 254}, {0x3A, 2},  {0x3B, 100}, {0x3A, 4},  {0x3B, 60}, {0x3A, 6},
      {0x3B, 7},  {0x3A, 7},   {0x3B, 0},  {0x3A, 8},   {0x3B, 15}, {0x3A, 9},  {0x3B, 16},
      {0x3A, 10}, {0x3B, 12},  {0x3A, 11}, {0x3B, 40},  {0x3A, 13}, {0x3B, 14}},
     AyRender},
};

std::unique_ptr<Machine> Build(NullHost& host) {
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    SaaLoadTable(*m);
    SnReset(*m);
    AyInit(*m);
    return m;
}

void Write(Machine& m, const std::vector<std::pair<int, int>>& writes) {
    for (auto [port, value] : writes) {
        int32_t v = value;
        PortOut(m, port, v);
    }
}

double CpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// Host milliseconds of processor time per emulated second of `render`: the
// share of a core, which other load on the host does not inflate.
template <class F> double MsPerSecond(Machine& m, int seconds, F render) {
    const double start = CpuMs();
    for (int b = 0; b < seconds * 50; ++b) {
        m.sound.BlockIndex = b % 5;
        render(m);
    }
    return (CpuMs() - start) / seconds;
}

} // namespace

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 20;
    NullHost host;
    std::printf("host ms per emulated second (%d s each; target: under 10 sounding, 0.5 silent)\n",
                seconds);
    auto mix = Build(host);
    for (const Chip& chip : kChips) {
        auto silent = Build(host);
        auto loud = Build(host);
        Write(*loud, chip.loud);
        Write(*mix, chip.loud);
        std::printf("  %-10s sounding %7.3f   silent %7.3f\n", chip.name,
                    MsPerSecond(*loud, seconds, chip.render),
                    MsPerSecond(*silent, seconds, chip.render));
    }
    std::printf("  SoundMix   all sounding %7.3f\n",
                MsPerSecond(*mix, seconds, [](Machine& m) { SoundMix(m); }));
    return 0;
}
