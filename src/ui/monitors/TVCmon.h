// TVCmon ("HW Monitor"): the machine's hardware as it runs. A thin view over
// HwMonitorFields: one box per group, one label per field, two plots and the
// floppy command log. "Record" and "Int enabled" are the fields of
// Machine::forms.TVCmon that the emulation reads.
#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QTimer;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TVCmon : public QWidget {
    Q_OBJECT
  public:
    explicit TVCmon(Machine& m);

    void redraw();
    void Timer3_Timer();
    void Command1_Click(); // clears the command log
    void Check1_Click();   // "Record"
    void Check3_Click();   // "Int enabled"

    QCheckBox *Check1 = nullptr, *Check3 = nullptr;
    QPushButton* Command1 = nullptr;
    QListWidget* List4 = nullptr;
    QLabel *Picture1 = nullptr, *Picture2 = nullptr; // tone slots, tape wave
    QTimer* Timer3 = nullptr;
    std::vector<QLabel*> fields; // in HwMonitorFields' order

  private:
    void Build();
    void RefreshLog();
    Machine& m_;
    uint64_t logSeen_ = 0, logClears_ = 0;
};

} // namespace tvc::ui
