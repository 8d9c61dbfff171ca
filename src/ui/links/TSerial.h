// TSerial ("Serial Port"): the serial link's window. Its timer pumps the
// record shared with the bridge at every tick, shown or hidden; the form
// shows what came in, the lengths of both queues and the bridge's pty, and
// has the small terminal's buttons.
#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TSerial : public QWidget {
    Q_OBJECT
  public:
    TSerial(Machine& m, QWidget* owner);

    void Timer1_Timer();
    void Command2_Click(); // "Clear"
    void Command3_Click(); // "bal": a camera frame into Text2
    void Command8_Click(); // "CTRL+C"
    void Command9_Click(); // "Send"

    QPlainTextEdit* Text1 = nullptr; // received text
    QLineEdit* Text2 = nullptr;      // outgoing text
    QLineEdit* Text3 = nullptr;      // "1200,n,7,1"
    QLabel* Label1 = nullptr;        // "Buffer out:"
    QLabel* Label2 = nullptr;        // "Buffer in: "
    QLabel* Label3 = nullptr;        // the bridge's pty
    QPushButton *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr, *Command4 = nullptr,
                *Command5 = nullptr, *Command6 = nullptr, *Command7 = nullptr, *Command8 = nullptr,
                *Command9 = nullptr;
    QTimer* Timer1 = nullptr;

  private:
    void ShowReceived();
    Machine& m_;
    uint64_t shown_ = 0; // the core's Text1Total the view has shown
};

} // namespace tvc::ui
