// TPrint ("Printer"): the printer's text as the core holds it, shown through
// code page 852, and sent on to a CUPS queue or to "print.pdf".
#pragma once

#include <QWidget>

class QComboBox;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TPrint : public QWidget {
    Q_OBJECT
  public:
    TPrint(Machine& m, QWidget* owner);

    void Form_Load();      // fills Combo1
    void Command1_Click(); // "Print"
    void Command2_Click(); // "Clear"
    void Timer1_Timer();   // brings Text1 up to date with the core

    QPlainTextEdit* Text1 = nullptr;
    QComboBox* Combo1 = nullptr;
    QPushButton *Command1 = nullptr, *Command2 = nullptr;
    QTimer* Timer1 = nullptr;

  protected:
    void showEvent(QShowEvent* e) override;

  private:
    Machine& m_;
    bool loaded_ = false;
    uint64_t shown_ = 0; // bytes of the printer's output the view holds, dropped ones counted
};

// The printer's bytes as text: code page 852, CR dropped before line ends.
QString PrinterText(const std::string& bytes, size_t from = 0);

} // namespace tvc::ui
