// Picture cost: host time per redraw for each renderer of both families, on
// a full 512 x 480 picture (640 x 480 for the 80-column one) of busy video
// memory, and emulated MHz of a CPU-bound loop at "Max" pace with pictures
// on and off.
//
//   tvc-redraw-bench [redraws per renderer] [frames]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "core/Machine.h"
#include "core/RunLoop.h"
#include "video/Screen.h"

using namespace tvc;

namespace {

using Clock = std::chrono::steady_clock;

// A machine as after reset, without ROM files, showing a 64-byte-wide,
// 240-row picture of noise in every colour.
std::unique_ptr<Machine> MakeMachine(Host& host) {
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    m->cpu.Z80Init();
    m->bus.PortLatch[0x59] = 191;
    m->bus.PortLatch[5] = 255;
    m->bus.PortLatch[2] = 0xB0; // RAM everywhere
    int32_t* reg = m->crtc.CrtcReg;
    reg[1] = 64, reg[2] = 75, reg[5] = 2, reg[6] = 60, reg[7] = 70, reg[10] = 32;
    std::mt19937 rng(1);
    for (int32_t a = 0x10000; a < 0x14000; ++a)
        m->bus.Mem[a] = static_cast<uint8_t>(rng());
    for (int k = 0; k < 4; ++k)
        m->bus.PortLatch[0x60 + k] = static_cast<uint8_t>(0x11 << k);
    return m;
}

double MicrosPerRedraw(int mode, bool dib, int r1, int redraws) {
    NullHost host;
    auto m = MakeMachine(host);
    m->bus.PortLatch[6] = static_cast<uint8_t>(0x80 | mode);
    m->menu.xScreenDIB = dib;
    m->crtc.CrtcReg[1] = r1;
    ScreenRedraw(*m); // sizes the buffers
    const auto start = Clock::now();
    for (int i = 0; i < redraws; ++i) {
        ScreenRedraw(*m);
        PALchNull(*m);
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / redraws;
}

double EmulatedMHz(bool pictures, int frames, int& painted) {
    struct CountingHost final : Host {
        int pictures = 0;
        void PictureReady() override { ++pictures; }
    } host;
    auto m = MakeMachine(host);
    m->bus.PortLatch[6] = 0x82; // sixteen colours
    m->forms.CPUmon.Check5 = pictures;
    const std::vector<uint8_t> program = {
        0x21, 0x00, 0x80, // loop: LD HL,0x8000
        0x06, 0x00,       //   LD B,0
        0x7E,             // inner: LD A,(HL)
        0x80,             //   ADD A,B
        0x77,             //   LD (HL),A
        0x23,             //   INC HL
        0x10, 0xFA,       //   DJNZ inner
        0xC3, 0x00, 0x00, //   JP loop
    };
    std::copy(program.begin(), program.end(), m->bus.Mem.begin());
    m->run.RunFlag = 1;
    const uint64_t end = m->run.FrameCount + static_cast<uint64_t>(frames);
    const auto start = Clock::now();
    while (m->run.FrameCount < end)
        RunPass(*m);
    const double secs = std::chrono::duration<double>(Clock::now() - start).count();
    painted = host.pictures;
    return double(frames) * kFrameT / secs / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    const int redraws = argc > 1 ? std::atoi(argv[1]) : 500;
    const int frames = argc > 2 ? std::atoi(argv[2]) : 3000;

    const struct {
        const char* name;
        int mode;
        bool dib;
        int r1;
    } renderers[] = {
        {"Srefresh2DIB", 0, true, 64},  {"Srefresh4DIB", 1, true, 64},
        {"Srefresh16DIB", 2, true, 64}, {"Srefresh16DIB80", 2, true, 80},
        {"Srefresh2", 0, false, 64},    {"Srefresh4", 1, false, 64},
        {"Srefresh16", 2, false, 64},
    };
    std::printf("host time per redraw (%d redraws each; the machine paints 20 a second):\n",
                redraws);
    for (const auto& r : renderers)
        std::printf("  %-16s %s  %8.1f us\n", r.name, r.dib ? "DIB   " : "bitmap",
                    MicrosPerRedraw(r.mode, r.dib, r.r1, redraws));

    int painted = 0;
    const double on = EmulatedMHz(true, frames, painted);
    std::printf("emulated MHz, %d frames at Max pace, pictures on:  %6.1f  (%d pictures)\n", frames,
                on, painted);
    const double off = EmulatedMHz(false, frames, painted);
    std::printf("emulated MHz, %d frames at Max pace, pictures off: %6.1f  (real machine: 3.125)\n",
                frames, off);
    return 0;
}
