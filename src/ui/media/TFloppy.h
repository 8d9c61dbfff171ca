// TFloppy: the disk image chooser. Its list shows the *.dsk files of the
// working directory; a double click mounts one in drive 0. The menu entry
// that opens it (xdiskload) stands greyed, so "default.dsk" is the image in
// use unless a caller shows this window itself.
#pragma once

#include <QWidget>

class QLabel;
class QListWidget;
class QListWidgetItem;

namespace tvc {
class Machine;
}

namespace tvc::ui {

class TFloppy : public QWidget {
    Q_OBJECT
  public:
    explicit TFloppy(Machine& m, QWidget* parent = nullptr);

    // Lists the *.dsk files of the working directory again.
    void Refresh();
    void File1_DblClick(QListWidgetItem* item);

    QLabel* Label1 = nullptr; // the mounted file's name
    QListWidget* File1 = nullptr;

  private:
    Machine& m_;
};

} // namespace tvc::ui
