// The headless runner's host: messages go to stderr, there is nothing to
// yield to, and a fatal stop is remembered for the exit status.
#pragma once

#include <functional>

#include "core/Host.h"
#include "sound/ChipPanels.h"

namespace tvc::headless {

class HeadlessHost final : public Host {
  public:
    // Run at each yield point of the run loop, when set.
    std::function<void()> onYield;
    // The chip panels' timers tick every fifth frame: two yields a frame.
    Machine* panels = nullptr;
    int yields = 0;
    void DoEvents() override {
        if (onYield) onYield();
        if (panels && ++yields % 10 == 0) ChipPanelsTick(*panels);
    }
    void MessageBox(std::string_view text, std::string_view title, MsgKind kind) override;
    void Fatal(std::string_view text, std::string_view title) override;
};

} // namespace tvc::headless
