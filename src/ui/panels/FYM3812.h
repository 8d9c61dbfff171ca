// FYM3812 ("YM3812"): the register grid, an instrument editor for channel 0
// and a keyboard. Always live: every change is written at once through the
// program's own ports, so the direct sink sees it too.
#pragma once

#include <array>

#include "ui/panels/ChipPanel.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;

namespace tvc::ui {

// Picture1: takes the keys A S D F G H J K while it has the focus.
class YmKeyboard : public QWidget {
  public:
    YmKeyboard(Machine& m, QWidget* parent);

  protected:
    void keyPressEvent(QKeyEvent*) override;
    void keyReleaseEvent(QKeyEvent*) override;
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent*) override;

  private:
    Machine& m_;
};

class FYM3812 : public ChipPanel {
    Q_OBJECT
  public:
    FYM3812(Machine& m, QWidget* owner);

    void Command1_Click();      // "reset"
    void Text1_KeyPress(int k); // Enter in a mirror box
    void Timer1_Timer();

    std::array<QLabel*, 256> Label1{};
    QLabel* Label5 = nullptr; // the register under the mouse, hexadecimal
    std::array<QLineEdit*, 8> Text1{};
    QLineEdit* Text2 = nullptr;
    QCheckBox* Check3 = nullptr;
    QPushButton* Command1 = nullptr;
    YmKeyboard* Picture1 = nullptr;
    QTimer* Timer1 = nullptr;

  protected:
    bool eventFilter(QObject* o, QEvent* e) override;

  private:
    void Mirrors();
};

} // namespace tvc::ui
