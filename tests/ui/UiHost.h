// A host for window tests: records what the core says and serves the yield
// points, pictures and monitor redraws as the application's host does.
#pragma once

#include <QCoreApplication>

#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"
#include "ui/main/TScreen.h"

namespace tvc::test {

class UiHost : public RecordingHost {
  public:
    ui::TScreen* window = nullptr;
    void DoEvents() override {
        ++doEvents;
        QCoreApplication::processEvents();
    }
    void PictureReady() override {
        if (window) window->PictureReady();
    }
    void MonitorRedraw() override {
        ++monitorRedraws;
        if (window) window->MonitorRedraw();
    }
};

// The main window over a machine built from a scratch ROM set; `paging` is
// written to port 2 before the window is made.
struct WindowFixture {
    ScratchDir dir;
    UiHost host;
    std::unique_ptr<Machine> m = std::make_unique<Machine>(host);
    std::unique_ptr<ui::TScreen> w;
    explicit WindowFixture(int paging = -1) {
        WriteRomSet(dir);
        MachineInit(*m);
        MachineReset(*m);
        if (paging >= 0) {
            m->bus.PortLatch[2] = uint8_t(paging);
            MemoryMapChanged(*m);
        }
        w = std::make_unique<ui::TScreen>(*m);
        host.window = w.get();
    }
};

} // namespace tvc::test
