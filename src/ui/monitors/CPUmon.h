// CPUmon ("Z80mon"), the processor debugger: every register and flag, the
// disassembly from RegPC, the last ten instructions, the memory and port
// dumps; register editing, and the commands that start, stop and step the
// run loop. The check boxes and text the run loop reads live in
// Machine::forms.CPUmon; the widgets here only show and set them.
#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <array>
#include <cstdint>

#include "core/MonitorOps.h"

class QCheckBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QScrollBar;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TScreen;
class assmon;

class CPUmon : public QWidget {
    Q_OBJECT
  public:
    explicit CPUmon(TScreen& screen);
    ~CPUmon() override;

    // An opcode no executor has; the processor reports and steps over it.
    void MissingOP();
    void PrintLastOPS();
    void redraw();

    void Command1_Click();  // Run
    void Command6_Click();  // Stop
    void Command7_Click();  // Step: exactly one instruction
    void Command4_Click();  // INT
    void Command2_Click();  // NMI
    void Command5_Click();  // RESET
    void Command11_Click(); // IFF1=1
    void Command10_Click(); // IFF1=0
    void Command3_Click();  // Poke
    void Command8_Click();  // Load Bin: shows or hides File1
    void Command12_Click(); // Trace: shows the trace monitor
    void File1_Click(QListWidgetItem* item);
    void Timer1_Timer();

    // The trace monitor, made on first use.
    assmon* Trace();

    // Register boxes, by index as their control arrays.
    std::array<QLineEdit*, 14> Text1{};
    std::array<QLineEdit*, 16> Text2{};
    std::array<QLineEdit*, 6> Text3{};
    std::array<QLineEdit*, 3> Text4{};
    std::array<QLineEdit*, 8> TextA{}; // bits of RegA, TextA[7] leftmost
    QLineEdit *Text5 = nullptr, *Text6 = nullptr, *Text7 = nullptr, *Text8 = nullptr;
    QLineEdit *Text10 = nullptr, *Text11 = nullptr, *Text12 = nullptr, *Text13 = nullptr;
    QLineEdit* Text14 = nullptr;
    QLabel *Picture1 = nullptr, *Picture2 = nullptr, *Picture3 = nullptr, *Picture4 = nullptr;
    QLabel *MemHeading = nullptr, *PortHeading = nullptr;
    QLabel *Label3 = nullptr, *Label7 = nullptr, *Label8 = nullptr;
    QFrame *Shape1 = nullptr, *Shape2 = nullptr; // the RegPC and RegR bars
    QPushButton *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr, *Command4 = nullptr,
                *Command5 = nullptr, *Command6 = nullptr, *Command7 = nullptr, *Command8 = nullptr,
                *Command9 = nullptr, *Command10 = nullptr, *Command11 = nullptr,
                *Command12 = nullptr;
    QCheckBox *Check2 = nullptr, *Check3 = nullptr, *Check4 = nullptr, *Check5 = nullptr,
              *Check6 = nullptr, *Check7 = nullptr, *Check8 = nullptr, *Check9 = nullptr;
    QGroupBox* Frame8 = nullptr;
    QScrollBar *VScroll1 = nullptr, *VScroll2 = nullptr, *HScroll1 = nullptr;
    QListWidget* File1 = nullptr;
    QTimer* Timer1 = nullptr;

  protected:
    void closeEvent(QCloseEvent*) override;

  private:
    QWidget* BuildRegisters();
    QWidget* BuildListings();
    QWidget* BuildDumps();
    QWidget* BuildCommands();
    void Connect();
    void RegEnter(RegBox box, int index);
    void FillRegisters();
    void ShowBoundControls();
    bool MayEnterRunLoop() const;

    TScreen& screen_;
    Machine& m_;
    assmon* trace_ = nullptr;
    int64_t lastTotalT_ = 0; // TotalT at the previous timer tick
    QElapsedTimer lastTick_; // host time since that tick
};

} // namespace tvc::ui
