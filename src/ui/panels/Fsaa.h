// Fsaa ("SAA1099P"): the SAA1099's six channels, noises and envelopes. With
// "Manual" set its timer writes the whole chip from the sliders; the note
// keys tune channel 0; "Record" records the deliveries into "record.wav".
#pragma once

#include <array>

#include "ui/panels/ChipPanel.h"

class QGroupBox;
class QLabel;
class QPushButton;
class QTimer;

namespace tvc::ui {

class Fsaa : public ChipPanel {
    Q_OBJECT
  public:
    Fsaa(Machine& m, QWidget* owner);

    void Check2_Click();   // "Manual"
    void Check10_Click();  // "Circuit"
    void Command1_Click(); // "Record"
    void bil_Click(int k);
    void Timer1_Timer();

    QGroupBox* Frame1 = nullptr; // Frame1(1): the hand controls
    QLabel* Image1 = nullptr;    // the circuit, in words
    QCheckBox *Check2 = nullptr, *Check8 = nullptr, *Check9 = nullptr, *Check10 = nullptr;
    QPushButton* Command1 = nullptr;
    QLabel *Label8 = nullptr, *Label9 = nullptr, *Label11 = nullptr;
    std::array<QPushButton*, 13> bil{};
    QTimer* Timer1 = nullptr;

  protected:
    void Labels() override;

  private:
    void Colours();
};

} // namespace tvc::ui
