// Whole-machine speed: the Z80 exerciser zexdoc.com run through RunPass at
// "Max" pace, so paging, the run loop, frames, pictures and the sound mix all
// take their share. Prints emulated T-states per host second.
//
// Usage: tvc-zexdoc-bench <zexdoc.com> [--groups N] [--instructions N]
//   --groups N         stop after N groups (the first few take about a second each)
//   --instructions N   stop after N instructions: a fixed amount of work, for
//                      counting host instructions under valgrind --tool=callgrind
// The figure is given per wall-clock second and per second of this process's
// CPU time; the second is the steadier one while other programs load the host.
#include <chrono>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "../tests/z80/CpmShim.h"
#include "core/Machine.h"
#include "core/RunLoop.h"
#include "core/RunPassInline.h"
#include "sound/Ay8910.h"
#include "sound/Sn76489.h"
#include "sound/SoundFX.h"

using namespace tvc;

namespace {

double CpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// The loop as RunLoop runs it, in a function of its own: the compiler takes
// main as run once and would lay its loop out as cold code.
[[gnu::noinline]] int64_t RunExerciser(Machine& m, CpmShim& shim, int maxGroups,
                                       long long maxInstructions) {
    int64_t instructions = 0;
    while (shim.Step(m, maxGroups) && !m.FatalStop && instructions != maxInstructions) {
        RunPassInline(m);
        ++instructions;
    }
    return instructions;
}

} // namespace

int main(int argc, char** argv) {
    const char* path = nullptr;
    int maxGroups = -1;
    long long maxInstructions = -1;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--groups") && i + 1 < argc)
            maxGroups = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--instructions") && i + 1 < argc)
            maxInstructions = std::atoll(argv[++i]);
        else
            path = argv[i];
    }
    if (!path) {
        std::fprintf(stderr,
                     "usage: tvc-zexdoc-bench <zexdoc.com> [--groups N] [--instructions N]\n");
        return 2;
    }
    NullHost host;
    auto machine = std::make_unique<Machine>(host);
    Machine& m = *machine;
    m.menu.xS6 = true; // "Max"
    // The machine without ROM files: the latches as after reset.
    m.cpu.Z80Init();
    m.bus.PortLatch[0x59] = 191;
    m.bus.PortLatch[5] = 255;
    m.crtc.CrtcReg[10] = 32;
    SoundInit(m);
    // The sound card's chips as after reset: silent, as a reset machine's are.
    SnReset(m);
    AyReset(m);
    CpmShim shim;
    const std::string error = shim.Load(m, path);
    if (!error.empty()) {
        std::fprintf(stderr, "tvc-zexdoc-bench: %s: %s\n", path, error.c_str());
        return 1;
    }

    m.run.RunFlag = 1;
    const uint64_t frame0 = m.run.FrameCount;
    const int32_t frameT0 = m.run.FrameT;
    const auto start = std::chrono::steady_clock::now();
    const double cpuStart = CpuSeconds();
    const int64_t instructions = RunExerciser(m, shim, maxGroups, maxInstructions);
    const double secs =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double cpuSecs = CpuSeconds() - cpuStart;
    const double tstates =
        double(m.run.FrameCount - frame0) * kFrameT + double(m.run.FrameT - frameT0);
    std::printf("\ngroups: %zu  instructions: %lld  frames: %llu  T-states: %.0f\n",
                shim.console.results.size(), static_cast<long long>(instructions),
                static_cast<unsigned long long>(m.run.FrameCount - frame0), tstates);
    std::printf("wall: %.2f s, %.1f M T-states/s;  cpu: %.2f s, %.1f M T-states/s  "
                "(real machine: 3.125 M)\n",
                secs, tstates / secs / 1e6, cpuSecs, tstates / cpuSecs / 1e6);
    return 0;
}
