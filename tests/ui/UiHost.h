// A host for window tests: records what the core says and serves the yield
// points, pictures and monitor redraws as the application's host does.
#pragma once

#include <QCoreApplication>

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

} // namespace tvc::test
