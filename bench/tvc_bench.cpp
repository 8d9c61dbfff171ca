// Emulation speed: a CPU-bound Z80 loop at "Max" pace for a fixed number of
// emulated frames. Prints emulated MHz and host nanoseconds per frame.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "core/Machine.h"
#include "core/RunLoop.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"

using namespace tvc;

int main(int argc, char** argv) {
    const int frames = argc > 1 ? std::atoi(argv[1]) : 3000;
    NullHost host;
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    // Build the machine without ROM files: memory and latches as after reset.
    m->cpu.Z80Init();
    m->bus.PortLatch[0x59] = 191;
    m->bus.PortLatch[5] = 255;
    m->crtc.CrtcReg[10] = 32;
    m->bus.PortLatch[2] = 0xB0; // RAM everywhere
    MemoryMapChanged(*m);

    // A mix of loads, ALU work, memory traffic, calls and conditional jumps.
    const std::vector<uint8_t> program = {
        0x31, 0x00, 0xF0, // LD SP,0xF000
        0x21, 0x00, 0x80, // loop: LD HL,0x8000
        0x06, 0x00,       //   LD B,0
        0x7E,             // inner: LD A,(HL)
        0x80,             //   ADD A,B
        0xEE, 0x5A,       //   XOR 0x5A
        0x77,             //   LD (HL),A
        0x23,             //   INC HL
        0xCD, 0x20, 0x00, //   CALL sub
        0x10, 0xF5,       //   DJNZ inner
        0xC3, 0x03, 0x00, //   JP loop
        0,    0,    0,    0,    0,    0,    0,
        0,    0,    0,    0xE5, 0x09, 0xE1, 0xC9, // sub (0x20): PUSH HL; ADD HL,BC; POP HL; RET
    };
    std::copy(program.begin(), program.end(), m->bus.Mem.begin());

    m->run.RunFlag = 1;
    const auto start = std::chrono::steady_clock::now();
    const uint64_t end = m->run.FrameCount + static_cast<uint64_t>(frames);
    int64_t instructions = 0;
    while (m->run.FrameCount < end) {
        RunPass(*m);
        ++instructions;
    }
    const double secs =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double tstates = double(frames) * kFrameT;
    std::printf("frames: %d  instructions: %lld  host seconds: %.3f\n", frames,
                static_cast<long long>(instructions), secs);
    std::printf("emulated MHz: %.1f  (real machine: 3.125)\n", tstates / secs / 1e6);
    std::printf("host ns per emulated frame: %.0f  (real time: 20000000)\n", secs * 1e9 / frames);
    return 0;
}
