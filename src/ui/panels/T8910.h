// T8910 ("AY-3-8910"): the AY's three tones, noise and envelope, and the
// labels its renderer fills at every fifth block. No event code of its own.
#pragma once

#include <array>

#include "ui/panels/ChipPanel.h"

namespace tvc::ui {

class T8910 : public ChipPanel {
    Q_OBJECT
  public:
    T8910(Machine& m, QWidget* owner);

    // Per tone: frequency, period, amplitude, mix, shape.
    std::array<QLabel*, 3> Label1{};
    QLabel* Label2 = nullptr; // the envelope's frequency

  protected:
    void Labels() override;
};

} // namespace tvc::ui
