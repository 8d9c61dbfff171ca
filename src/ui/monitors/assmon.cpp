#include "ui/monitors/assmon.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTimer>
#include <QVBoxLayout>

#include "core/Machine.h"
#include "core/MonitorText.h"

namespace tvc::ui {

namespace {
constexpr int kTimer1Ms = 500;
// The trace scrolls: the oldest lines go once this many stand.
constexpr int kKeptLines = 2000;
} // namespace

assmon::assmon(Machine& m, QWidget* owner) : QWidget(owner, Qt::Window), m_(m) {
    setObjectName("assmon");
    setWindowTitle("TVC- (Monitor)");
    // The form takes the keys itself; the text beside it only shows.
    setFocusPolicy(Qt::StrongFocus);
    auto* layout = new QVBoxLayout(this);
    Text = new QPlainTextEdit(this);
    Text->setObjectName("Text");
    Text->setReadOnly(true);
    Text->setFocusPolicy(Qt::NoFocus);
    Text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    Text->setMaximumBlockCount(kKeptLines);
    Text->setLineWrapMode(QPlainTextEdit::NoWrap);
    Check1 = new QCheckBox("Hold", this);
    Check1->setObjectName("Check1");
    Check1->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(Text, 1);
    layout->addWidget(Check1);
    resize(Text->fontMetrics().horizontalAdvance('0') * 44 + 30, 400);

    // The timer runs all the time; a hidden form costs one test per tick.
    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    connect(Timer1, &QTimer::timeout, this, &assmon::Timer1_Timer);
    Timer1->start(kTimer1Ms);
}

void assmon::Timer1_Timer() {
    if (!isVisible() || Check1->isChecked()) return;
    const std::string block = TraceBlock(m_.cpu);
    Text->appendPlainText(QString::fromUtf8(block.data(), qsizetype(block.size())));
}

void assmon::keyPressEvent(QKeyEvent* e) {
    if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) {
        Check1->setChecked(true);
        return;
    }
    QWidget::keyPressEvent(e);
}

} // namespace tvc::ui
