// Chip panel cost: with every panel open and every chip sounding, the host
// time the panels' redraws take per emulated second (their share of one
// core), the same with the panels closed, and the frames per host second
// of the whole loop at "Max" pace with the panels open.
//
//   QT_QPA_PLATFORM=offscreen tvc-panels-bench [emulated seconds]
#include <QApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>

#include "core/Machine.h"
#include "core/RunLoop.h"
#include "hw/MachineSetup.h"
#include "hw/Ports.h"
#include "ui/main/TScreen.h"
#include "ui/panels/ChipPanel.h"

using namespace tvc;
using Clock = std::chrono::steady_clock;

namespace {

const char* const kItems[] = {"xsaa", "xSN76", "xYM", "xYM2", "xSID", "xAY3"};

// The panels' yield points, timed; the Qt events are served as the app does.
class BenchHost final : public Host {
  public:
    ui::TScreen* window = nullptr;
    double panelSeconds = 0;
    void DoEvents() override {
        QCoreApplication::processEvents();
        const auto start = Clock::now();
        if (window) window->PumpPanels();
        panelSeconds += std::chrono::duration<double>(Clock::now() - start).count();
    }
};

void Out(Machine& m, int port, int value) {
    int32_t v = value;
    PortOut(m, port, v);
}

// Every chip of the sound card sounding a tone.
void Sound(Machine& m) {
    for (auto [r, v] :
         {std::pair{0, 0xFF}, {1, 0xFF}, {8, 90}, {9, 140}, {16, 0x33}, {20, 3}, {28, 1}})
        Out(m, 0xFF, r), Out(m, 0xFE, v);
    for (int v : {0x8E, 0x0F, 0x90, 0xA4, 0x12, 0xB2})
        Out(m, 0xFD, v);
    for (auto [r, v] : {std::pair{0, 200}, {1, 0}, {7, 0x3E}, {8, 15}})
        Out(m, 0x3A, r), Out(m, 0x3B, v);
    for (auto [r, v] : {std::pair{0x20, 1}, {0x23, 1}, {0x43, 0}, {0xA0, 0x44}, {0xB0, 0x31}})
        Out(m, 0x34, r), Out(m, 0x35, v);
    for (auto [r, v] : {std::pair{0x10, 0x40}, {0x30, 0x10}, {0x20, 0x18}})
        Out(m, 0x3C, r), Out(m, 0x3D, v);
    for (auto [r, v] : {std::pair{0, 0x40}, {1, 0x1C}, {5, 0}, {6, 0xF0}, {24, 15}, {4, 0x11}})
        Out(m, 0x38, r), Out(m, 0x39, v);
}

struct Result {
    double panelSeconds, hostSeconds;
};

Result Run(bool open, int seconds) {
    BenchHost host;
    auto m = std::make_unique<Machine>(host);
    m->menu.xS6 = true;
    MachineInit(*m); // over the built-in ROM set: the monitor waits for keys
    MachineReset(*m);
    SoundInit(*m);
    ui::TScreen w(*m);
    host.window = &w;
    for (const char* item : kItems) {
        w.Click(item);
        if (!open && w.Panel(item)) w.Panel(item)->hide();
    }
    Sound(*m);
    const int64_t frames = int64_t(seconds) * 50;
    const auto start = Clock::now();
    while (m->run.FrameCount < frames)
        RunPass(*m);
    return {host.panelSeconds, std::chrono::duration<double>(Clock::now() - start).count()};
}

} // namespace

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    QApplication app(argc, argv);
    if (chdir(TVC_FIRMWARE_DIR) != 0) {
        std::perror(TVC_FIRMWARE_DIR);
        return 1;
    }
    for (bool open : {true, false}) {
        const Result r = Run(open, seconds);
        std::printf("panels %s: redraws %.3f ms per emulated second (%.2f%% of a core), "
                    "%.0f frames per host second\n",
                    open ? "open  " : "closed", r.panelSeconds * 1000 / seconds,
                    r.panelSeconds / seconds * 100, seconds * 50 / r.hostSeconds);
    }
    return 0;
}
