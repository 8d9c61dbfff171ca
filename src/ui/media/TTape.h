// TTape, the tape deck: picks the input wave file, rewinds it, and shows a
// tape counter and two turning reels. The motor bit (port 5 bit 6) moves the
// counter; the wind buttons only turn the reels. Nothing here touches the
// samples except the rewinds and the choice of file.
#pragma once

#include <QWidget>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TTape : public QWidget {
    Q_OBJECT
  public:
    TTape(Machine& m, QWidget* parent, QWidget* focusTarget);

    // The deck's timer tick: counter, minutes label and the reels' angle.
    void Timer1Tick();
    void File1DblClick(QListWidgetItem* item);

    QPushButton *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr;
    QPushButton *Command8 = nullptr, *Command9 = nullptr;
    QListWidget* File1 = nullptr;
    QLabel *Label1 = nullptr, *Label2 = nullptr, *Label3 = nullptr, *Label5 = nullptr;
    QTimer* Timer1 = nullptr;
    QWidget* Reels = nullptr;
    int32_t Speed = 0; // the reels' step: -40 rewind, 10 play, 40 wind
    double Angle = 0;  // 0 to 5

  private:
    void Rewind(bool counter);
    void Focus();
    Machine& m_;
    QWidget* focus_;
};

} // namespace tvc::ui
