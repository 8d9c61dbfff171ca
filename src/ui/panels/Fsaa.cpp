#include "ui/panels/Fsaa.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "core/Machine.h"

namespace tvc::ui {

namespace {

constexpr int kTimerMs = 100;
constexpr int kRecording = 255; // red, as the pipeline tests it
const char* const kKeyNames[13] = {"C", "C#", "D", "D#", "E", "F", "F#",
                                   "G", "G#", "A", "A#", "B", "C"};

// The form's colours hold red in the low byte.
QColor Colour(int rgb) {
    return QColor(rgb & 255, (rgb >> 8) & 255, (rgb >> 16) & 255);
}

} // namespace

Fsaa::Fsaa(Machine& m, QWidget* owner) : ChipPanel(m, owner, Scope::Saa) {
    setObjectName("Fsaa");
    setWindowTitle("SAA1099P");
    FsaaControls& c = m_.forms.Fsaa;
    auto* outer = new QVBoxLayout(this);

    Frame1 = new QGroupBox(this);
    Frame1->setObjectName("Frame1_1");
    Frame1->setAutoFillBackground(true);
    auto* grid = new QGridLayout(Frame1);
    for (int n = 0; n < 6; ++n) {
        auto* f = new QGroupBox(QString("FREQ %1 Registers").arg(n), Frame1);
        auto* g = new QGridLayout(f);
        const QString i = QString::number(n);
        g->addWidget(Pic1[n], 0, 0, 6, 1);
        g->addWidget(Caption("Freq", f), 0, 1);
        g->addWidget(Scroll("HScroll4_" + i, 0, 255, c.HScroll4[n]), 0, 2);
        g->addWidget(Caption("Octave", f), 1, 1);
        g->addWidget(Scroll("HScroll3_" + i, 0, 7, c.HScroll3[n]), 1, 2);
        g->addWidget(Caption("L", f), 2, 1);
        g->addWidget(Scroll("HScroll1_" + i, 0, 15, c.HScroll1[n]), 2, 2);
        g->addWidget(Caption("R", f), 3, 1);
        g->addWidget(Scroll("HScroll2_" + i, 0, 15, c.HScroll2[n]), 3, 2);
        g->addWidget(Check("Enable Freq", "Check1_" + i, c.Check1[n]), 4, 1, 1, 2);
        g->addWidget(Check("Enable Noise", "Check3_" + i, c.Check3[n]), 5, 1, 1, 2);
        grid->addWidget(f, n / 2, n % 2);
    }
    for (int e = 0; e < 2; ++e) {
        const QString i = QString::number(e);
        auto* noise = new QGroupBox("Noise " + i, Frame1);
        auto* nl = new QHBoxLayout(noise);
        nl->addWidget(Scroll("HScroll5_" + i, 0, 3, c.HScroll5[e]));
        auto* env = new QGroupBox("Envelope " + i, Frame1);
        auto* el = new QGridLayout(env);
        el->addWidget(Scroll("HScroll6_" + i, 0, 7, c.HScroll6[e]), 0, 0, 1, 2);
        el->addWidget(Check("Enable envelope", "Check7_" + i, c.Check7[e]), 1, 0);
        el->addWidget(Check("Inverse R", "Check4_" + i, c.Check4[e]), 1, 1);
        el->addWidget(Check("3 Bit", "Check5_" + i, c.Check5[e]), 2, 0);
        el->addWidget(Check("External clock", "Check6_" + i, c.Check6[e]), 2, 1);
        el->addWidget(Caption("Type:", env), 3, 0);
        QLabel* type = Caption("", env);
        type->setObjectName(e == 0 ? "Label8" : "Label9");
        (e == 0 ? Label8 : Label9) = type;
        el->addWidget(type, 3, 1);
        grid->addWidget(noise, 3, e);
        grid->addWidget(env, 4, e);
    }
    auto* keys = new QHBoxLayout;
    for (int k = 0; k < 13; ++k) {
        bil[k] = new QPushButton(kKeyNames[k], Frame1);
        bil[k]->setObjectName(QString("bil_%1").arg(k));
        bil[k]->setFixedWidth(32);
        keys->addWidget(bil[k]);
        connect(bil[k], &QPushButton::clicked, this, [this, k] { bil_Click(k); });
    }
    grid->addLayout(keys, 5, 0, 1, 2);

    Image1 = new QLabel("Circuit: the SAA1099 on the sound card, data at port 0xFE (0x32),\n"
                        "address at 0xFF (0x33); its two outputs feed the left and right\n"
                        "channels directly, each side held to 120.",
                        this);
    Image1->setObjectName("Image1");
    Image1->hide();

    auto* bar = new QHBoxLayout;
    Check2 = Check("Manual", "Check2", c.Check2);
    Check8 = Check("All out enable", "Check8", c.Check8);
    Check9 = Check("Reset", "Check9", c.Check9);
    Check10 = Check("Circuit", "Check10", c.Check10);
    bar->addWidget(Check2);
    bar->addWidget(Check8);
    bar->addWidget(Check9);
    bar->addWidget(Check10);
    bar->addWidget(Check("patch", "Check11", c.Check11));
    bar->addWidget(Check("patch", "Check12", c.Check12));
    Command1 = new QPushButton("Record", this);
    Command1->setAutoFillBackground(true);
    Command1->setObjectName("Command1");
    bar->addWidget(Command1);
    Label11 = Caption("", this);
    Label11->setObjectName("Label11");
    bar->addWidget(Label11);
    outer->addLayout(bar);
    outer->addWidget(Frame1);
    outer->addWidget(Image1);

    connect(Check2, &QCheckBox::clicked, this, &Fsaa::Check2_Click);
    connect(Check10, &QCheckBox::clicked, this, &Fsaa::Check10_Click);
    connect(Command1, &QPushButton::clicked, this, &Fsaa::Command1_Click);
    Timer1 = new QTimer(this);
    connect(Timer1, &QTimer::timeout, this, &Fsaa::Timer1_Timer);
    Timer1->start(kTimerMs);
    Colours();
    Check10_Click();
}

// Frame1(1) takes the sliders only while "Manual" holds the chip.
void Fsaa::Check2_Click() {
    Colours();
}

void Fsaa::Check10_Click() {
    Frame1->setVisible(!m_.forms.Fsaa.Check10);
    Image1->setVisible(m_.forms.Fsaa.Check10);
}

void Fsaa::Command1_Click() {
    SaaRecordButton(m_);
    Colours();
}

void Fsaa::bil_Click(int k) {
    SaaNoteKey(m_.forms.Fsaa, k);
    Sync();
}

void Fsaa::Timer1_Timer() {
    SaaPanelTick(m_);
    Sync();
    Colours();
    Check10_Click();
    Label11->setText(QString::fromStdString(m_.forms.Fsaa.Label11));
}

void Fsaa::Labels() {
    Label8->setText(QString::fromStdString(m_.forms.Fsaa.Label8));
    Label9->setText(QString::fromStdString(m_.forms.Fsaa.Label9));
    Label11->setText(QString::fromStdString(m_.forms.Fsaa.Label11));
}

void Fsaa::Colours() {
    const bool manual = m_.forms.Fsaa.Check2;
    Frame1->setEnabled(manual);
    QPalette p = Frame1->palette();
    p.setColor(QPalette::Window,
               manual ? QColor(0xC0, 0xC0, 0xC0) : QApplication::palette().color(QPalette::Button));
    Frame1->setPalette(p);
    QPalette b = Command1->palette();
    b.setColor(QPalette::Button, Colour(m_.forms.Fsaa.Command1Color));
    Command1->setPalette(b);
}

} // namespace tvc::ui
