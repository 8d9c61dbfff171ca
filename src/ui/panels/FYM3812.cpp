#include "ui/panels/FYM3812.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "core/Machine.h"

namespace tvc::ui {

namespace {

constexpr int kTimerMs = 100;
constexpr int kShownRegs = 246; // the timer's share of the grid
const char* const kRowTitles[8] = {"test/timer/control", "AM/VIB/EG/KSR", "LEVELS",  "AD", "SR",
                                   "KEYON/FREQ/R",       "FM FEEDBACK",   "WAVEFORM"};
const char* const kFlags[4] = {"tremolo", "vibrato", "drums", "KSR"};
const char* const kSliders[8] = {"Mult",  "TLVL",    "KSLV",    "Attack",
                                 "Decay", "Sustain", "Release", "Wave"};
constexpr int kSliderHi[8] = {15, 63, 3, 15, 15, 15, 15, 3};

} // namespace

YmKeyboard::YmKeyboard(Machine& m, QWidget* parent) : QWidget(parent), m_(m) {
    setObjectName("Picture1");
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(200, 48);
}

void YmKeyboard::keyPressEvent(QKeyEvent* e) {
    if (e->isAutoRepeat() || e->text().isEmpty() || !YmKeyDown(m_, e->text().at(0).toLatin1()))
        QWidget::keyPressEvent(e);
}

void YmKeyboard::keyReleaseEvent(QKeyEvent* e) {
    if (e->isAutoRepeat()) return;
    YmKeyUp(m_);
}

void YmKeyboard::mousePressEvent(QMouseEvent*) {
    setFocus();
}

void YmKeyboard::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), hasFocus() ? Qt::white : Qt::lightGray);
    const int w = width() / 8;
    for (int k = 0; k < 8; ++k) {
        p.drawRect(k * w, 0, w - 1, height() - 1);
        p.drawText(QRect(k * w, 0, w, height()), Qt::AlignBottom | Qt::AlignHCenter,
                   QString(QChar("ASDFGHJK"[k])));
    }
}

FYM3812::FYM3812(Machine& m, QWidget* owner) : ChipPanel(m, owner, std::nullopt) {
    setObjectName("FYM3812");
    setWindowTitle("YM3812");
    FYM3812Controls& c = m_.forms.FYM3812;
    auto* outer = new QHBoxLayout(this);

    auto* regs = new QGroupBox("Registers", this);
    auto* grid = new QGridLayout(regs);
    grid->setSpacing(1);
    for (int r = 0; r < 256; ++r) {
        Label1[r] = Caption("0", regs);
        Label1[r]->setObjectName(QString("Label1_%1").arg(r));
        Label1[r]->setMinimumWidth(24);
        Label1[r]->setAttribute(Qt::WA_Hover);
        Label1[r]->installEventFilter(this);
        grid->addWidget(Label1[r], r / 16, 1 + r % 16);
    }
    for (int t = 0; t < 8; ++t)
        grid->addWidget(Caption(kRowTitles[t], regs), t * 2, 0);
    Label5 = Caption("", regs);
    Label5->setObjectName("Label5");
    grid->addWidget(Label5, 16, 0);
    outer->addWidget(regs);

    auto* right = new QVBoxLayout;
    auto* ops = new QHBoxLayout;
    for (int op = 0; op < 2; ++op) {
        auto* f = new QGroupBox(op == 0 ? "Modulator" : "Carrier", this);
        auto* g = new QGridLayout(f);
        for (int k = 0; k < 4; ++k)
            g->addWidget(
                Check(kFlags[k], QString("Check2_%1").arg(op * 4 + k), c.Check2[op * 4 + k]), k / 2,
                k % 2);
        for (int k = 0; k < 8; ++k) {
            g->addWidget(Caption(kSliders[k], f), 2 + k, 0);
            g->addWidget(Scroll(QString("HScroll1_%1").arg(op * 8 + k), 0, kSliderHi[k],
                                c.HScroll1[op * 8 + k]),
                         2 + k, 1);
        }
        ops->addWidget(f);
    }
    right->addLayout(ops);
    auto* fb = new QHBoxLayout;
    fb->addWidget(Caption("Feedback", this));
    fb->addWidget(Scroll("HScroll1_16", 0, 7, c.HScroll1[16]));
    right->addLayout(fb);
    auto* texts = new QHBoxLayout;
    for (int k = 0; k < 8; ++k) {
        Text1[k] = new QLineEdit(QString::fromStdString(c.Text1[k]), this);
        Text1[k]->setObjectName(QString("Text1_%1").arg(k));
        Text1[k]->setMaximumWidth(36);
        texts->addWidget(Text1[k]);
        connect(Text1[k], &QLineEdit::returnPressed, this, [this, k] { Text1_KeyPress(k); });
    }
    right->addLayout(texts);
    Picture1 = new YmKeyboard(m_, this);
    right->addWidget(Picture1);
    auto* bottom = new QHBoxLayout;
    Command1 = new QPushButton("reset", this);
    Command1->setObjectName("Command1");
    bottom->addWidget(Command1);
    Check3 = Check("Direct I/O port:", "Check3", c.Check3);
    bottom->addWidget(Check3);
    Text2 = new QLineEdit(QString::fromStdString(c.Text2), this);
    Text2->setObjectName("Text2");
    Text2->setMaximumWidth(60);
    bottom->addWidget(Text2);
    right->addLayout(bottom);
    // The channels' frames: their pictures and bars have no function.
    auto* tones = new QGridLayout;
    for (int t = 0; t < 9; ++t) {
        auto* f = new QGroupBox(QString("TONE %1").arg(t + 1), this);
        auto* g = new QVBoxLayout(f);
        g->addWidget(Check("on", QString("Check1_%1").arg(t), c.Check1[t]));
        auto* pic = new ScopeView(f);
        pic->setFixedSize(ScopeView::kWidth / 2, ScopeView::kHeight / 2);
        g->addWidget(pic);
        for (int k = 0; k < 2; ++k)
            g->addWidget(new QScrollBar(Qt::Horizontal, f));
        tones->addWidget(f, t / 3, t % 3);
    }
    right->addLayout(tones);
    right->addStretch(1);
    outer->addLayout(right);

    connect(Text2, &QLineEdit::textEdited, this,
            [this](const QString& t) { m_.forms.FYM3812.Text2 = t.toStdString(); });
    connect(Command1, &QPushButton::clicked, this, &FYM3812::Command1_Click);
    // Any change of the editor writes the whole instrument.
    changed = [this] {
        YmInstrumentChanged(m_);
        Mirrors();
    };
    Timer1 = new QTimer(this);
    connect(Timer1, &QTimer::timeout, this, &FYM3812::Timer1_Timer);
    Timer1->start(kTimerMs);
}

void FYM3812::Command1_Click() {
    YmResetButton(m_);
    Timer1_Timer();
}

void FYM3812::Text1_KeyPress(int k) {
    YmTextEnter(m_.forms.FYM3812, k, Text1[k]->text().toStdString());
    Sync();
    YmInstrumentChanged(m_);
    Mirrors();
}

void FYM3812::Timer1_Timer() {
    for (int r = 0; r < kShownRegs; ++r)
        Label1[r]->setText(QString::number(m_.ym.YmRegs[r]));
}

void FYM3812::Mirrors() {
    for (int k = 0; k < 8; ++k)
        Text1[k]->setText(QString::fromStdString(m_.forms.FYM3812.Text1[k]));
}

bool FYM3812::eventFilter(QObject* o, QEvent* e) {
    if (e->type() == QEvent::HoverEnter || e->type() == QEvent::Enter)
        for (int r = 0; r < 256; ++r)
            if (o == Label1[r]) Label5->setText(QString("%1").arg(r, 2, 16, QChar('0')).toUpper());
    return ChipPanel::eventFilter(o, e);
}

} // namespace tvc::ui
