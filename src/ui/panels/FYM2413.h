// FYM2413 ("YM2413"): nine channels with their "ON" boxes, pictures,
// frequencies and instrument names, the rhythm bits of register 0x0E, and
// the 64 registers.
#pragma once

#include <array>

#include "ui/panels/ChipPanel.h"

class QTimer;

namespace tvc::ui {

class FYM2413 : public ChipPanel {
    Q_OBJECT
  public:
    FYM2413(Machine& m, QWidget* owner);

    void Timer1_Timer();

    std::array<QLabel*, 9> Label6{}, Label8{};
    std::array<QScrollBar*, 9> HScroll3{}, HScroll4{}; // volume and frequency, shown
    std::array<QCheckBox*, 6> Check1to6{};             // register 0x0E bit 5, then bits 0 to 4
    std::array<QLabel*, 64> Label1{};
    QLabel* Label5 = nullptr;
    QTimer* Timer1 = nullptr;

  protected:
    void Labels() override;
    bool eventFilter(QObject* o, QEvent* e) override;
};

} // namespace tvc::ui
