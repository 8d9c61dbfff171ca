// FSN76489 ("SN76489"): three tones and the noise. With "Manual" set its
// timer passes the sliders to the chip as the bytes of port 0xFD.
#pragma once

#include <array>

#include "ui/panels/ChipPanel.h"

class QGroupBox;
class QLabel;
class QTimer;

namespace tvc::ui {

class FSN76489 : public ChipPanel {
    Q_OBJECT
  public:
    FSN76489(Machine& m, QWidget* owner);

    void Check1_Click(); // "Circuit"
    void Timer1_Timer();

    QGroupBox* Frame1 = nullptr; // the four channels
    QLabel* Image1 = nullptr;    // the circuit, in words
    QCheckBox *Check1 = nullptr, *Check2 = nullptr, *Check3 = nullptr;
    std::array<QLabel*, 3> Label1{}; // the tones' frequencies in hertz
    QTimer* Timer1 = nullptr;

  private:
    void Frequencies();
};

} // namespace tvc::ui
