#include "ui/media/TFloppy.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

#include "core/Machine.h"
#include "media/Disk.h"

namespace tvc::ui {

TFloppy::TFloppy(Machine& m, QWidget* parent) : QWidget(parent, Qt::Window), m_(m) {
    setObjectName("TFloppy");
    setWindowTitle("Floppy");
    auto* layout = new QVBoxLayout(this);
    Label1 = new QLabel(QString::fromStdString(m_.disk.DiskName), this);
    Label1->setObjectName("Label1");
    File1 = new QListWidget(this);
    File1->setObjectName("File1");
    layout->addWidget(Label1);
    layout->addWidget(File1, 1);
    connect(File1, &QListWidget::itemDoubleClicked, this, &TFloppy::File1_DblClick);
    Refresh();
}

void TFloppy::Refresh() {
    File1->clear();
    File1->addItems(QDir::current().entryList({"*.dsk"}, QDir::Files, QDir::Name));
}

void TFloppy::File1_DblClick(QListWidgetItem* item) {
    if (!item) return;
    Label1->setText(item->text());
    DiskLoad(m_, item->text().toStdString());
}

} // namespace tvc::ui
