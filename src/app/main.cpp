// tvc: the desktop emulator. The run loop lives on the user interface thread
// and serves the window system at its two yield points each frame.
#include <QApplication>
#include <QMessageBox>
#include <memory>

#include "app/SingleInstance.h"
#include "core/Machine.h"
#include "hw/MachineSetup.h"
#include "sound/SoundFX.h"
#include "ui/main/QtHost.h"
#include "ui/main/TScreen.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("LUMEKTVC");

    tvc::app::SingleInstance instance(tvc::app::SingleInstance::DefaultLockPath());
    if (!instance.Acquired()) {
        QMessageBox::critical(nullptr, "LUMEKTVC", "Application is already running!");
        return 1;
    }

    tvc::ui::QtHost host;
    auto machine = std::make_unique<tvc::Machine>(host);
    tvc::ui::TScreen window(*machine);
    host.SetWindow(&window);
    window.show();

    tvc::MachineInit(*machine);
    tvc::MachineReset(*machine);
    tvc::SoundInit(*machine);

    window.Command1Click();
    if (!window.QuitRequested()) app.exec();
    host.SetWindow(nullptr);
    return 0;
}
