// Everything that reaches the user goes through Host: message boxes, the
// fatal stops, the status fields of the main window, the port log and the
// run loop's yield points. The core never talks to a window system itself;
// the Qt application, the headless runner and the tests each supply one.
//
// None of these calls is made on the per-instruction path except for rare
// events (an unknown opcode, an unknown port), so virtual dispatch is fine.
#pragma once

#include <chrono>
#include <string_view>
#include <thread>

namespace tvc {

enum class MsgKind { Plain, Critical, Exclamation, Information };

// Text fields of the forms the core writes to.
enum class StatusField {
    Label1, // main window: "Unknown Opcode!"
    Text1,  // main window: host time of the last frame, 10 us units
};

class Host {
  public:
    virtual ~Host() = default;

    // A yield point of the run loop: serve every pending user interface event.
    virtual void DoEvents() {}

    virtual void MessageBox(std::string_view text, std::string_view title, MsgKind kind) {
        (void)text, (void)title, (void)kind;
    }

    // A stop the program does not survive. The core marks the machine as
    // stopped before calling this and copes with a return (the headless
    // runner and tests return; the desktop application ends the process).
    virtual void Fatal(std::string_view text, std::string_view title) { (void)text, (void)title; }

    virtual void SetStatus(StatusField field, std::string_view text) { (void)field, (void)text; }

    // The frame-time load bar beside Text1; its width follows the number.
    virtual void SetLoadBar(int width) { (void)width; }

    // An entry was added to the main window's port log List1 (which the core
    // holds); cleared says the list was emptied first.
    virtual void PortLogChanged(bool cleared) { (void)cleared; }

    // The CPU monitor must show the machine state again (breakpoint, stop).
    virtual void MonitorRedraw() {}

    // The host's blocking beep.
    virtual void Beep(int frequencyHz, int milliseconds) { (void)frequencyHz, (void)milliseconds; }

    // A new picture stands in the core's pixel buffers.
    virtual void PictureReady() {}

    // The audio delivery's wait between two looks at the handshake byte.
    virtual void Sleep(int milliseconds) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
};

// A host that ignores everything; for tools and tests that need none.
class NullHost final : public Host {};

} // namespace tvc
