// assmon ("TVC- (Monitor)"), the trace monitor: a read-only text window
// that prints the processor's registers as a scrolling trace, one block per
// tick of its timer, while it is visible.
#pragma once

#include <QWidget>

class QCheckBox;
class QPlainTextEdit;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class assmon : public QWidget {
    Q_OBJECT
  public:
    assmon(Machine& m, QWidget* owner);

    void Timer1_Timer();

    QPlainTextEdit* Text = nullptr; // the printed trace
    QCheckBox* Check1 = nullptr;    // "Hold": no blocks are printed while ticked
    QTimer* Timer1 = nullptr;

  protected:
    void keyPressEvent(QKeyEvent*) override; // Form_KeyDown

  private:
    Machine& m_;
};

} // namespace tvc::ui
