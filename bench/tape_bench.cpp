// Tape speed: a loop polling port 0x59 over a 50 MB wave file, and a loop
// writing edges to port 0x50 while recording, each against the same loop on
// an unused port (0x4E for reads, 0x4F for writes). Prints emulated MHz.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/Machine.h"
#include "core/RunLoop.h"
#include "media/Tape.h"

using namespace tvc;

namespace {

double RunLoopMHz(Machine& m, const std::vector<uint8_t>& program, int frames) {
    std::fill(m.bus.Mem.begin(), m.bus.Mem.begin() + 0x10000, uint8_t{0});
    std::copy(program.begin(), program.end(), m.bus.Mem.begin());
    m.cpu.RegPC = 0;
    m.run.RunFlag = 1;
    const auto start = std::chrono::steady_clock::now();
    const uint64_t end = m.run.FrameCount + uint64_t(frames);
    while (m.run.FrameCount < end)
        RunPass(m);
    const double secs =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return double(frames) * kFrameT / secs / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    const int frames = argc > 1 ? std::atoi(argv[1]) : 1000;
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("tvc-tape-bench-" + std::to_string(getpid()));
    fs::create_directories(dir);
    fs::current_path(dir);
    {
        std::FILE* f = std::fopen("big.wav", "wb");
        std::vector<uint8_t> chunk(1 << 20);
        for (size_t i = 0; i < chunk.size(); ++i)
            chunk[i] = (i / 11) & 1 ? 220 : 30;
        for (int i = 0; i < 50; ++i)
            std::fwrite(chunk.data(), 1, chunk.size(), f);
        std::fclose(f);
    }
    NullHost host;
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    m->cpu.Z80Init();
    m->bus.PortLatch[0x59] = 191;
    m->bus.PortLatch[2] = 0xB0;
    TapeOpenInput(*m, "big.wav");

    auto poll = [](uint8_t port) { // loop: IN A,(port); JP loop
        return std::vector<uint8_t>{0xDB, port, 0xC3, 0x00, 0x00};
    };
    auto edges = [](uint8_t port) { // loop: LD B,20; DJNZ $; OUT (port),A; JP loop
        return std::vector<uint8_t>{0x06, 0x14, 0x10, 0xFE, 0xD3, port, 0xC3, 0x00, 0x00};
    };
    const double in59 = RunLoopMHz(*m, poll(0x59), frames);
    const double inOther = RunLoopMHz(*m, poll(0x4E), frames);
    TapeRecord(*m, true);
    const double out50 = RunLoopMHz(*m, edges(0x50), frames);
    TapeRecord(*m, false);
    const double outOther = RunLoopMHz(*m, edges(0x4F), frames);
    std::printf("frames: %d each\n", frames);
    std::printf("polling port 0x59 over a 50 MB wave: %.1f MHz (unused port 0x4E: %.1f)\n", in59,
                inOther);
    std::printf("writing edges to port 0x50, recording: %.1f MHz (unused port 0x4F: %.1f)\n", out50,
                outOther);
    m.reset();
    fs::current_path(fs::temp_directory_path());
    fs::remove_all(dir);
    return 0;
}
