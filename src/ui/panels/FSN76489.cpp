#include "ui/panels/FSN76489.h"

#include <QCheckBox>
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
constexpr int kTimerMs = 100;
} // namespace

FSN76489::FSN76489(Machine& m, QWidget* owner) : ChipPanel(m, owner, Scope::Sn) {
    setObjectName("FSN76489");
    setWindowTitle("SN76489");
    FSN76489Controls& c = m_.forms.FSN76489;
    auto* outer = new QVBoxLayout(this);
    Frame1 = new QGroupBox(this);
    auto* grid = new QGridLayout(Frame1);
    for (int n = 0; n < 4; ++n) {
        const bool noise = n == 3;
        auto* f = new QGroupBox(noise ? QString("NOISE 1") : QString("TONE %1").arg(n + 1), Frame1);
        auto* g = new QGridLayout(f);
        const QString i = QString::number(n);
        g->addWidget(Pic1[n], 0, 0, 3, 1);
        g->addWidget(Caption("Freq", f), 0, 1);
        g->addWidget(Scroll("HScroll3_" + i, noise ? 0 : 1, noise ? 3 : 1023, c.HScroll3[n]), 0, 2);
        g->addWidget(Caption("Volume", f), 1, 1);
        g->addWidget(Scroll("HScroll4_" + i, 0, 15, c.HScroll4[n]), 1, 2);
        if (!noise) {
            Label1[n] = Caption("", f);
            Label1[n]->setObjectName("Label1_" + i);
            g->addWidget(Label1[n], 2, 1, 1, 2);
        }
        grid->addWidget(f, n / 2, n % 2);
    }
    Image1 = new QLabel("Circuit: the SN76489 at port 0xFD (0x30) of the sound card, on its own\n"
                        "3,579,545 Hz crystal; its one output goes to both channels.",
                        this);
    Image1->hide();

    auto* bar = new QHBoxLayout;
    Check2 = Check("Periodic Noise", "Check2", c.Check2);
    Check3 = Check("Manual", "Check3", c.Check3);
    Check1 = Check("Circuit", "Check1", c.Check1);
    for (QCheckBox* b : {Check2, Check3, Check1})
        bar->addWidget(b);
    outer->addLayout(bar);
    outer->addWidget(Frame1);
    outer->addWidget(Image1);
    outer->addWidget(Caption("Three square-wave tones of 10-bit dividers, one noise source of\n"
                             "three fixed rates or tone 3's, sixteen volume steps each.",
                             this));
    changed = [this] { Frequencies(); };
    connect(Check1, &QCheckBox::clicked, this, &FSN76489::Check1_Click);
    Timer1 = new QTimer(this);
    connect(Timer1, &QTimer::timeout, this, &FSN76489::Timer1_Timer);
    Timer1->start(kTimerMs);
    Frequencies();
}

void FSN76489::Check1_Click() {
    Frame1->setVisible(!m_.forms.FSN76489.Check1);
    Image1->setVisible(m_.forms.FSN76489.Check1);
}

void FSN76489::Timer1_Timer() {
    SnPanelTick(m_);
    Sync();
    Check1_Click();
    Frequencies();
}

void FSN76489::Frequencies() {
    for (int n = 0; n < 3; ++n)
        Label1[n]->setText(QString("%1 Hz").arg(SnFreqLabel(m_.forms.FSN76489.HScroll3[n])));
}

} // namespace tvc::ui
