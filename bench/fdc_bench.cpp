// Floppy and hardware monitor cost: host nanoseconds per port-0x13 read with
// its log record, emulated MHz of a 512-byte read loop against the same loop
// on a port without a device, and microseconds per hardware monitor redraw
// (the fields and both plots).
//
//   tvc-fdc-bench [reads] [frames] [redraws]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "core/HwMonitor.h"
#include "core/Machine.h"
#include "core/RunLoop.h"
#include "hw/Memory.h"
#include "hw/Ports.h"

using namespace tvc;

namespace {

using Clock = std::chrono::steady_clock;

std::unique_ptr<Machine> MakeMachine(Host& host) {
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    // Memory and latches as after reset, without ROM files; the page table
    // must follow the paging latch or the CPU fetches from nothing.
    m->cpu.Z80Init();
    m->bus.PortLatch[0x59] = 191;
    m->bus.PortLatch[5] = 255;
    m->crtc.CrtcReg[10] = 32;
    m->bus.PortLatch[2] = 0xB0; // RAM everywhere
    MemoryMapChanged(*m);
    m->disk.DiskData.assign(size_t(0x5A000) * kFdcDrives, 0xA5);
    return m;
}

double NanosPerRead(int reads) {
    NullHost host;
    auto m = MakeMachine(host);
    volatile int32_t sink = 0;
    const auto start = Clock::now();
    for (int i = 0; i < reads; ++i)
        sink = sink + PortIn(*m, 0x13);
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / reads;
}

// 512 reads a round into RAM from 0x8000; the core leaves INIR out, so the
// loop is spelt with IN A,(C) and DJNZ:
//   LD HL,0x8000; LD C,port; LD D,2
//   outer: LD B,0
//   inner: IN A,(C); LD (HL),A; INC HL; DJNZ inner
//   DEC D; JR NZ,outer; JP 0
double LoopMHz(uint8_t port, int frames) {
    NullHost host;
    auto m = MakeMachine(host);
    const std::vector<uint8_t> program = {0x21, 0x00, 0x80, 0x0E, port, 0x16, 0x02,
                                          0x06, 0x00, 0xED, 0x78, 0x77, 0x23, 0x10,
                                          0xFA, 0x15, 0x20, 0xF5, 0xC3, 0x00, 0x00};
    std::copy(program.begin(), program.end(), m->bus.Mem.begin());
    m->run.RunFlag = 1;
    const uint64_t end = m->run.FrameCount + uint64_t(frames);
    const auto start = Clock::now();
    while (m->run.FrameCount < end) {
        RunPass(*m);
        if (port != 0x13) m->forms.TScreen.List1.clear(); // keep the unknown-port log small
    }
    const double secs = std::chrono::duration<double>(Clock::now() - start).count();
    // Proof that the loop ran: the controller's log counts every read.
    if (port == 0x13 && m->fdc.List4.added() < uint64_t(frames))
        std::printf("the read loop did not run (%llu log records)\n",
                    static_cast<unsigned long long>(m->fdc.List4.added()));
    return double(frames) * kFrameT / secs / 1e6;
}

double MicrosPerRedraw(int redraws) {
    NullHost host;
    auto m = MakeMachine(host);
    size_t n = 0;
    const auto start = Clock::now();
    for (int i = 0; i < redraws; ++i) {
        n += HwMonitorFields(*m).size();
        n += size_t(HwMonitorPlots(*m).tone[0]);
    }
    const double us = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    return n ? us / redraws : 0;
}

} // namespace

int main(int argc, char** argv) {
    const int reads = argc > 1 ? std::atoi(argv[1]) : 2000000;
    const int frames = argc > 2 ? std::atoi(argv[2]) : 500;
    const int redraws = argc > 3 ? std::atoi(argv[3]) : 2000;
    std::printf("port 0x13 read with its log record: %8.1f ns\n", NanosPerRead(reads));
    std::printf("512-byte read loop, %d frames at Max pace: port 0x13 %6.1f MHz, "
                "port 0x15 (no device) %6.1f MHz\n",
                frames, LoopMHz(0x13, frames), LoopMHz(0x15, frames));
    std::printf("hardware monitor fields and plots: %8.1f us a redraw\n", MicrosPerRedraw(redraws));
    return 0;
}
