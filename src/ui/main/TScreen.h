// TScreen, the main window: the picture box, every command of the emulator
// in its menu, the built-in file dialog, the about panel and the status
// panel with the port log.
#pragma once

#include <QMainWindow>
#include <map>
#include <string>

#include "core/Host.h"
#include "hw/Keyboard.h"

class QAction;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class CPUmon;
class TVCmon;
class ErrorSim;
class TPrint;
class TSerial;
class FScreen;
class ScreenView;
class TTools;
class TTape;
class asse;
class ChipPanel;

class TScreen : public QMainWindow {
    Q_OBJECT
  public:
    explicit TScreen(Machine& m);
    ~TScreen() override;

    Machine& machine() { return m_; }
    QAction* Item(const std::string& name) const;
    // Chooses a menu entry as the user would.
    void Click(const std::string& name);

    // picd_KeyDown / picd_KeyUp, also used by the full-screen view and keypad.
    void PicdKeyDown(int keycode, int shift);
    void PicdKeyUp(int keycode, int shift);
    // Feeds queued key events to the matrix (at each yield point).
    void PumpKeys();
    void ClearKeys();
    // The chip panels that exist redraw when their chip has a new picture.
    void PumpPanels();
    // A chip panel by its menu entry (xsaa, xSN76, ...), made on first use.
    ChipPanel* Panel(const std::string& item);

    // The CPU monitor's Run command: the loop from the state that stands.
    void Command1Click();
    // The CPU monitor shows the machine state again.
    void MonitorRedraw();
    // Set when the window was closed: the run loop must end and not restart.
    bool QuitRequested() const { return quit_; }

    // Host callbacks.
    void SetStatus(StatusField field, const QString& text);
    // Shape4 of the status panel; the width is in twips.
    void SetLoadBar(int width);
    static constexpr int kTwipsPerPixel = 15;
    void RefreshPortLog();
    void PictureReady();

    // Controls, by their names in the form.
    ScreenView* PicD = nullptr;
    QGroupBox* Frame1 = nullptr; // file dialog
    QListWidget* File1 = nullptr;
    QLineEdit* Text3 = nullptr;  // file name without extension
    QLineEdit* Text5 = nullptr;  // current pattern
    QGroupBox* Frame4 = nullptr; // "location", for saving CAS
    QLineEdit *Text6 = nullptr, *Text7 = nullptr, *Text8 = nullptr;
    QPushButton* Command2 = nullptr; // "OPEN"
    QGroupBox* Frame2 = nullptr;     // about panel
    QPlainTextEdit* Text4 = nullptr;
    QPushButton* Command1 = nullptr;
    QLabel* Label7 = nullptr;
    QFrame* Frame3 = nullptr; // status panel
    QLineEdit* Text1 = nullptr;
    QFrame* Shape4 = nullptr;
    QLabel* Label1 = nullptr;
    QListWidget* List1 = nullptr;
    TTools* tools = nullptr;
    TTape* tapeDeck = nullptr;
    FScreen* fullScreen = nullptr;
    CPUmon* cpumon = nullptr;
    TVCmon* tvcmon = nullptr;
    TSerial* serial = nullptr;
    TPrint* printer = nullptr;
    ErrorSim* errorSim = nullptr;
    asse* workbench = nullptr; // the assembler, View → "Assembler"
    std::map<std::string, ChipPanel*> panels; // by menu entry, once made

  protected:
    void closeEvent(QCloseEvent*) override;
    bool eventFilter(QObject*, QEvent*) override;

  private:
    void BuildMenu();
    void BuildPanels();
    void Handle(const std::string& name);
    void SetTick(const std::string& name, bool on);
    bool Tick(const std::string& name) const;
    void ToggleCard(const std::string& name);
    void PowerCycle();
    void SpeedItem(int n);
    void OpenDialog(bool save, const QString& pattern);
    void Command2Click();
    void FocusPicture();

    Machine& m_;
    std::map<std::string, QAction*> items_;
    bool quit_ = false;
    KeyEventQueue keys_;
};

} // namespace tvc::ui
