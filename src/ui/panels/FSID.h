// FSID ("SID_6581"): the three voices with their pictures and labels, the
// filter, the gates of ring, ADSR and filter, the write box, the dump
// player's options and file list, and the "Exp" frame of the experimental
// filters with the sweep's plot.
#pragma once

#include <array>

#include "ui/panels/ChipPanel.h"

class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace tvc::ui {

// Pic2: the sweep's response curve, the points the chip plotted since its last clear.
class SweepView : public QWidget {
  public:
    SweepView(Machine& m, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent*) override;

  private:
    Machine& m_;
};

class FSID : public ChipPanel {
    Q_OBJECT
  public:
    FSID(Machine& m, QWidget* owner);

    void Command1_Click(); // "WR"
    void Option_Click(int option);
    void File1_Click();
    void Check8_Click(); // "Exp"

    std::array<QLabel*, 3> Voice{}; // each voice's labels
    QLabel* Filter = nullptr;       // "FCut:", "FRes:", "Mode:" with Label22, "Vol:"
    QLineEdit *Text1 = nullptr, *Text2 = nullptr, *Text3 = nullptr;
    QPushButton* Command1 = nullptr;
    std::array<QRadioButton*, 3> Option{};
    QListWidget* File1 = nullptr;
    QCheckBox* Check8 = nullptr;
    QGroupBox* Frame4 = nullptr;
    QPushButton* Label25 = nullptr; // a click sets the counter to 0
    QLabel* Label26 = nullptr;
    SweepView* Pic2 = nullptr;

  protected:
    void Labels() override;

  private:
    void Files();
};

} // namespace tvc::ui
