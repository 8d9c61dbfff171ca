#include "ui/panels/FYM2413.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "core/Machine.h"

namespace tvc::ui {

namespace {
constexpr int kTimerMs = 20;
constexpr int kMaxHz = 11000;
} // namespace

FYM2413::FYM2413(Machine& m, QWidget* owner) : ChipPanel(m, owner, Scope::Ym2413) {
    setObjectName("FYM2413");
    setWindowTitle("YM2413");
    FYM2413Controls& c = m_.forms.FYM2413;
    auto* outer = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    for (int ch = 0; ch < 9; ++ch) {
        auto* f = new QGroupBox(QString("TONE %1").arg(ch + 1), this);
        auto* g = new QGridLayout(f);
        const QString i = QString::number(ch);
        g->addWidget(Check("ON", "Check7_" + i, c.Check7[ch]), 0, 0);
        Label6[ch] = Caption("", f);
        Label8[ch] = Caption("", f);
        g->addWidget(Label6[ch], 0, 1);
        g->addWidget(Label8[ch], 0, 2);
        g->addWidget(Pic1[ch], 1, 0, 1, 3);
        HScroll3[ch] = new QScrollBar(Qt::Horizontal, f);
        HScroll4[ch] = new QScrollBar(Qt::Horizontal, f);
        HScroll3[ch]->setRange(0, 15);
        HScroll4[ch]->setRange(0, kMaxHz);
        for (QScrollBar* b : {HScroll3[ch], HScroll4[ch]})
            b->setEnabled(false);
        g->addWidget(Caption("Volume", f), 2, 0);
        g->addWidget(HScroll3[ch], 2, 1, 1, 2);
        g->addWidget(Caption("Freq", f), 3, 0);
        g->addWidget(HScroll4[ch], 3, 1, 1, 2);
        grid->addWidget(f, ch / 3, ch % 3);
    }
    outer->addLayout(grid);
    auto* rhythm = new QHBoxLayout;
    const char* captions[6] = {
        "6 sound + 5 percussion", "dob 1", "dob 2", "dob 3", "dob 4", "dob 5"};
    for (int k = 0; k < 6; ++k) {
        Check1to6[k] = new QCheckBox(captions[k], this);
        Check1to6[k]->setObjectName(QString("Check%1").arg(k + 1));
        Check1to6[k]->setEnabled(false); // set on each update, never read
        rhythm->addWidget(Check1to6[k]);
    }
    outer->addLayout(rhythm);
    auto* regs = new QGridLayout;
    for (int r = 0; r < 64; ++r) {
        Label1[r] = Caption("0", this);
        Label1[r]->setObjectName(QString("Label1_%1").arg(r));
        Label1[r]->setMinimumWidth(24);
        Label1[r]->setAttribute(Qt::WA_Hover);
        Label1[r]->installEventFilter(this);
        regs->addWidget(Label1[r], r / 16, r % 16);
    }
    Label5 = Caption("", this);
    Label5->setObjectName("Label5");
    regs->addWidget(Label5, 4, 0, 1, 4);
    outer->addLayout(regs);
    Timer1 = new QTimer(this);
    connect(Timer1, &QTimer::timeout, this, &FYM2413::Timer1_Timer);
    Timer1->start(kTimerMs);
}

void FYM2413::Timer1_Timer() {
    for (int r = 0; r < 64; ++r)
        Label1[r]->setText(QString::number(m_.ym2.Ym2Regs[r]));
}

void FYM2413::Labels() {
    const FYM2413Controls& c = m_.forms.FYM2413;
    for (int ch = 0; ch < 9; ++ch) {
        Label6[ch]->setText(QString::number(c.Label6[ch]));
        Label8[ch]->setText(QString::fromStdString(c.Label8[ch]));
        HScroll3[ch]->setValue(static_cast<int>(m_.ym2.Ym2Channel[ch].Volume));
        HScroll4[ch]->setValue(c.Label6[ch]);
    }
    Check1to6[0]->setChecked(c.Check1);
    for (int k = 0; k < 5; ++k)
        Check1to6[k + 1]->setChecked(c.Check2to6[k]);
}

bool FYM2413::eventFilter(QObject* o, QEvent* e) {
    if (e->type() == QEvent::HoverEnter || e->type() == QEvent::Enter)
        for (int r = 0; r < 64; ++r)
            if (o == Label1[r]) Label5->setText(QString("%1").arg(r, 2, 16, QChar('0')).toUpper());
    return ChipPanel::eventFilter(o, e);
}

} // namespace tvc::ui
