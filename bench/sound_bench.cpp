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
#include "core/RunLoop.h"
#include "hw/Memory.h"
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

// Nine channels keyed on with FM: the costliest case.
std::vector<std::pair<int, int>> YmNineKeys() {
    std::vector<std::pair<int, int>> w;
    auto reg = [&](int r, int v) { w.insert(w.end(), {{0x34, r}, {0x35, v}}); };
    for (int c = 0; c < 9; ++c) {
        const int mod = (c / 3) * 8 + c % 3;
        reg(0x20 + mod, 1 + c % 4), reg(0x23 + mod, 1), reg(0x40 + mod, 4), reg(0x43 + mod, 0);
        reg(0xC0 + c, 2 * (c % 8)), reg(0xA0 + c, 0x48 + 9 * c), reg(0xB0 + c, 0x32);
    }
    return w;
}

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
    {"YM3812", YmNineKeys(), YmRender},
    {"YM2413",
     {{0x3C, 0x10}, {0x3D, 33},   {0x3C, 0x11}, {0x3D, 99},   {0x3C, 0x14}, {0x3D, 150},
      {0x3C, 0x15}, {0x3D, 200},  {0x3C, 0x20}, {0x3D, 0x19}, {0x3C, 0x21}, {0x3D, 0x18},
      {0x3C, 0x24}, {0x3D, 0x1A}, {0x3C, 0x25}, {0x3D, 0x16}, {0x3C, 0x30}, {0x3D, 15},
      {0x3C, 0x31}, {0x3D, 12},   {0x3C, 0x34}, {0x3D, 9},    {0x3C, 0x35}, {0x3D, 6}},
     Ym2Render},
    {"SID",
     {{0xE0, 0x41},
      {0xE1, 0x1D},
      {0xE4, 0x21},
      {0xE6, 0xF0},
      {0xE7, 0x00},
      {0xE8, 0x30},
      {0xEA, 0x08},
      {0xEB, 0x41},
      {0xED, 0xF0},
      {0xEE, 0x00},
      {0xEF, 0x40},
      {0xF2, 0x81},
      {0xF4, 0xF0},
      {0xF6, 0x80},
      {0xF7, 0x07},
      {0xF8, 0x5F}},
     SidRender},
};

std::unique_ptr<Machine> Build(NullHost& host) {
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    SaaLoadTable(*m);
    SnReset(*m);
    AyInit(*m);
    YmInit(*m);
    Ym2Reset(*m);
    SidReset(*m);
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

// Emulated MHz of the whole machine at "Max" pace, running a short loop,
// with the sound card's chips silent or all six sounding.
double EmulatedMHz(NullHost& host, bool sounding, int frames) {
    auto m = Build(host);
    m->menu.xio2 = true;
    m->cpu.Z80Init();
    m->bus.PortLatch[2] = 0xB0; // RAM everywhere
    MemoryMapChanged(*m);
    const uint8_t loop[] = {0x21, 0x00, 0x80, 0x7E,
                            0x23, 0x18, 0xFC}; // LD HL; LD A,(HL); INC HL; JR
    std::copy(std::begin(loop), std::end(loop), m->bus.Mem.begin());
    if (sounding)
        for (const Chip& chip : kChips)
            Write(*m, chip.loud);
    m->run.RunFlag = 1;
    const double start = CpuMs();
    const uint64_t end = m->run.FrameCount + uint64_t(frames);
    while (m->run.FrameCount < end)
        RunPass(*m);
    return double(frames) * kFrameT / ((CpuMs() - start) / 1e3) / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 20;
    NullHost host;
    std::printf("host ms per emulated second (%d s each; target: under 10 sounding, YM3812 25, 0.5 "
                "silent; SoundMix 50)\n",
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
    std::printf("emulated MHz at \"Max\": all six silent %.1f, all six sounding %.1f\n",
                EmulatedMHz(host, false, seconds * 50), EmulatedMHz(host, true, seconds * 50));
    return 0;
}
