// TTools, the on-screen keypad ("Tools"): one label per key code from 32 up
// that presses and releases that virtual key, an Enter label, the last key
// code, and a calculator for the memory paging byte of port 2.
#pragma once

#include <QWidget>
#include <vector>

class QLabel;

namespace tvc::ui {

class TScreen;

class TTools : public QWidget {
    Q_OBJECT
  public:
    explicit TTools(TScreen& screen);

    void ShowKeyCode(int code);
    // The paging calculator: the arrays U3, U2, U0, U1 in that order.
    void ChoosePaging(int field, int index);
    int PagingByte() const;

    std::vector<QLabel*> Label1; // keypad, caption Chr(i + 32)
    QLabel* Label2 = nullptr;    // last key code
    QLabel* Label3 = nullptr;    // "Enter"
    QLabel* Label4 = nullptr;    // the paging byte, decimal
    std::vector<QLabel*> pagingArrays[4];

  protected:
    bool eventFilter(QObject*, QEvent*) override;

  private:
    TScreen& screen_;
};

} // namespace tvc::ui
