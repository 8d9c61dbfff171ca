// tvc: the desktop emulator. The run loop lives on the user interface thread
// and serves the window system at its two yield points each frame.
#include <QApplication>
#include <QMessageBox>
#include <QSocketNotifier>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <sys/socket.h>
#include <unistd.h>

#include "app/SingleInstance.h"
#include "core/Machine.h"
#include "hw/MachineSetup.h"
#include "sound/PortSinks.h"
#include "media/Disk.h"
#include "sound/SoundFX.h"
#include "ui/main/QtHost.h"
#include "ui/main/TScreen.h"
#include "ui/monitors/CPUmon.h"

namespace {

// SIGTERM and SIGINT close the main window like its close button, at the
// next yield point: the handler only writes a byte the event loop reads.
int signalPipe[2] = {-1, -1};

void OnSignal(int) {
    // A wait for a stalled audio player must not keep the close from the
    // next yield point.
    tvc::AudioCompanion::ReleaseWaits();
    const char byte = 1;
    [[maybe_unused]] ssize_t n = ::write(signalPipe[1], &byte, 1);
}

// Installed first thing, so that a signal during start-up already waits in
// the pipe for the window instead of killing the process.
void CatchSignals() {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0) return;
    struct sigaction sa = {};
    sa.sa_handler = OnSignal;
    sigemptyset(&sa.sa_mask);
    sa.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &sa, nullptr);
    sigaction(SIGINT, &sa, nullptr);
}

void CloseOnSignals(QWidget& window) {
    if (signalPipe[0] < 0) return;
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &window);
    QObject::connect(notifier, &QSocketNotifier::activated, &window, [&window] {
        char byte;
        [[maybe_unused]] ssize_t n = ::read(signalPipe[0], &byte, 1);
        window.close();
    });
}

} // namespace

int main(int argc, char** argv) {
    CatchSignals();
    QApplication app(argc, argv);
    QApplication::setApplicationName("LUMEKTVC");

    tvc::app::SingleInstance instance(tvc::app::SingleInstance::DefaultLockPath());
    if (!instance.Acquired()) {
        QMessageBox::critical(nullptr, "LUMEKTVC", "Application is already running!");
        return 1;
    }

    tvc::ui::QtHost host;
    auto machine = std::make_unique<tvc::Machine>(host);
    // The YM3812's "Direct I/O port:" writes to a real OPL2 card's ports.
    tvc::DevPortSink ymPort;
    machine->ym.DirectSink = &ymPort;
    tvc::ui::TScreen window(*machine);
    host.SetWindow(&window);
    CloseOnSignals(window);
    window.show();

    tvc::MachineInit(*machine);
    tvc::MachineReset(*machine);
    tvc::TapeOpenInput(*machine, "load.wav"); // a missing tape is not reported
    tvc::DiskLoad(*machine, tvc::kDefaultDisk); // silent when missing or empty
    tvc::SoundInit(*machine);

    // The audio link: the maps first, then the player that opens them.
    if (!tvc::SoundMapsCreate(*machine)) {
        const tvc::MMapper& failed =
            machine->sound.MMDemo.IsOpen() ? machine->sound.MMDemo2 : machine->sound.MMDemo;
        const tvc::MapError& err = failed.LastError();
        host.MessageBox(err.Description, err.Source, tvc::MsgKind::Critical);
    }
    tvc::AudioCompanion player;
    host.audio = &player;
    const std::string playerPath =
        QCoreApplication::applicationDirPath().toStdString() + "/sndpipe";
    // TVC_SNDPIPE_OPTIONS passes options to the player ("--stats").
    std::vector<std::string> playerArgs;
    if (const char* options = std::getenv("TVC_SNDPIPE_OPTIONS")) {
        std::istringstream words(options);
        for (std::string w; words >> w;)
            playerArgs.push_back(w);
    }
    if (!player.Start(playerPath, playerArgs))
        host.MessageBox("SNDpipe open error!", "LUMEKTVC", tvc::MsgKind::Plain);

    // The serial link: the record, then a bridge unless one already serves.
    if (!tvc::SerialOpen(*machine)) {
        const tvc::MapError& err = machine->serial.map.LastError();
        host.MessageBox(err.Description, err.Source, tvc::MsgKind::Critical);
    } else if (!tvc::SerialBridge::Serving()) {
        const std::string bridgePath = QCoreApplication::applicationDirPath().toStdString() + "/" +
                                       tvc::kSerialBridgeName;
        if (!machine->serial.bridge.Start(bridgePath,
                                          {"--link", "serial.pty", "--exit-with-parent"}))
            host.MessageBox(std::string("Not Found : ") + tvc::kSerialBridgeName, "LUMEKTVC",
                            tvc::MsgKind::Plain);
    }

    // From here the program lives in the run loop, entered as the CPU
    // monitor's Run button enters it.
    window.cpumon->Command1_Click();
    if (!window.QuitRequested()) app.exec();
    host.SetWindow(nullptr);
    host.audio = nullptr;
    machine->sound.MMDemo2.CloseMap();
    tvc::SerialClose(*machine);
    return 0;
}
