// ErrorSim ("Error simulation"): the memory error simulator's controls,
// bound to the core's fields. The damage is done at each painted picture.
#pragma once

#include <QWidget>
#include <array>

class QCheckBox;
class QGroupBox;
class QRadioButton;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class ErrorSim : public QWidget {
    Q_OBJECT
  public:
    ErrorSim(Machine& m, QWidget* owner);

    void CH0_Click(int index); // ErrorBits from all eight boxes
    void Check1_Click();       // VideoErrorEnabled from "Enabled"

    QGroupBox* Frame1 = nullptr; // "Video RAM"
    QGroupBox* Frame2 = nullptr; // "Sytem RAM"
    QCheckBox* Check1 = nullptr; // "Enabled"
    std::array<QCheckBox*, 8> CH0{};
    std::array<QRadioButton*, 3> Option1{};
    QCheckBox *Check2 = nullptr, *Check3 = nullptr, *Check4 = nullptr, *Check5 = nullptr;

  private:
    Machine& m_;
};

} // namespace tvc::ui
