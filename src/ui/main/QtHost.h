// The desktop application's host: message boxes, the status panel, the port
// log, and the run loop's yield points served by Qt's event loop.
#pragma once

#include <functional>

#include "core/Host.h"
#include "links/AudioCompanion.h"

namespace tvc::ui {

class TScreen;

class QtHost final : public Host {
  public:
    void SetWindow(TScreen* window) { window_ = window; }

    void DoEvents() override;
    void MessageBox(std::string_view text, std::string_view title, MsgKind kind) override;
    void Fatal(std::string_view text, std::string_view title) override;
    void SetStatus(StatusField field, std::string_view text) override;
    void SetLoadBar(int width) override;
    void PortLogChanged(bool cleared) override;
    void MonitorRedraw() override;
    void Beep(int frequencyHz, int milliseconds) override;
    void PictureReady() override;
    void Sleep(int milliseconds) override;

    // The audio player, stood in for while the emulator waits on it.
    AudioCompanion* audio = nullptr;

    // What a fatal stop does after its message: ends the process unless a
    // test replaces it.
    std::function<void()> onFatal;

  private:
    TScreen* window_ = nullptr;
};

} // namespace tvc::ui
