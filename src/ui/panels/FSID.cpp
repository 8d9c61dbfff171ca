#include "ui/panels/FSID.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include "core/Machine.h"

namespace tvc::ui {

namespace {

QString Wave(uint8_t control) {
    QStringList w;
    if (control & 0x10) w << "Tri";
    if (control & 0x20) w << "Saw";
    if (control & 0x40) w << "Pulse";
    if (control & 0x80) w << "Noise";
    return w.isEmpty() ? QString("-") : w.join('+');
}

} // namespace

SweepView::SweepView(Machine& m, QWidget* parent) : QWidget(parent), m_(m) {
    setObjectName("Pic2");
    setFixedSize(240, 200);
}

void SweepView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), Qt::black);
    p.setPen(QColor(0, 255, 0));
    for (const auto& [x, y] : m_.forms.FSID.Pic2Points)
        p.drawPoint(x, y);
}

FSID::FSID(Machine& m, QWidget* owner) : ChipPanel(m, owner, Scope::Sid) {
    setObjectName("FSID");
    setWindowTitle("SID_6581");
    FSIDControls& c = m_.forms.FSID;
    auto* outer = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    for (int v = 0; v < 3; ++v) {
        auto* f = new QGroupBox(QString("TONE %1").arg(v + 1), this);
        auto* g = new QGridLayout(f);
        g->addWidget(Pic1[v], 0, 0, 2, 1);
        g->addWidget(Check("voice on", QString("Check9_%1").arg(v), c.Check9[v]), 0, 1);
        Voice[v] = Caption("", f);
        Voice[v]->setObjectName(QString("Voice_%1").arg(v));
        g->addWidget(Voice[v], 1, 1);
        left->addWidget(f);
    }
    auto* filter = new QGroupBox("Filter", this);
    auto* fl = new QVBoxLayout(filter);
    Filter = Caption("", filter);
    fl->addWidget(Filter);
    left->addWidget(filter);
    outer->addLayout(left);

    auto* right = new QVBoxLayout;
    auto* gates = new QHBoxLayout;
    gates->addWidget(Check("Ring On", "Check10", c.Check10));
    gates->addWidget(Check("ADSR On", "Check6", c.Check6));
    gates->addWidget(Check("Filter On", "Check7", c.Check7));
    right->addLayout(gates);
    auto* scales = new QGridLayout;
    scales->addWidget(Caption("Attack/Release", this), 0, 0);
    scales->addWidget(Scroll("HScroll4", 1, 1200, c.HScroll4), 0, 1);
    scales->addWidget(Caption("Decay", this), 1, 0);
    scales->addWidget(Scroll("HScroll5", 1, 1200, c.HScroll5), 1, 1);
    right->addLayout(scales);

    auto* box = new QHBoxLayout;
    Text2 = new QLineEdit(QString::fromStdString(c.Text2), this);
    Text2->setObjectName("Text2");
    Text3 = new QLineEdit(QString::fromStdString(c.Text3), this);
    Text3->setObjectName("Text3");
    Command1 = new QPushButton("WR", this);
    Command1->setObjectName("Command1");
    box->addWidget(Text2);
    box->addWidget(Text3);
    box->addWidget(Command1);
    right->addLayout(box);

    auto* options = new QButtonGroup(this);
    auto* opts = new QHBoxLayout;
    const char* captions[3] = {"No File", "SIDX", "DMP"};
    for (int i = 0; i < 3; ++i) {
        Option[i] = new QRadioButton(captions[i], this);
        Option[i]->setObjectName(QString("Option%1").arg(i + 1));
        Option[i]->setChecked(c.Option == i);
        options->addButton(Option[i], i);
        opts->addWidget(Option[i]);
    }
    right->addLayout(opts);
    File1 = new QListWidget(this);
    File1->setObjectName("File1");
    right->addWidget(File1);
    auto* counters = new QHBoxLayout;
    Label25 = new QPushButton("0", this);
    Label25->setObjectName("Label25");
    Label25->setFlat(true);
    Label26 = Caption("0", this);
    Label26->setObjectName("Label26");
    counters->addWidget(Label25);
    counters->addWidget(Label26);
    right->addLayout(counters);

    Check8 = Check("Exp", "Check8", c.Check8);
    right->addWidget(Check8);
    Frame4 = new QGroupBox("Exp", this);
    auto* ex = new QGridLayout(Frame4);
    ex->addWidget(Check("High Pass", "Check1", c.Check1), 0, 0);
    ex->addWidget(Scroll("HScroll1", 0, 100, c.HScroll1), 0, 1);
    ex->addWidget(Check("Low Pass", "Check2", c.Check2), 1, 0);
    ex->addWidget(Scroll("HScroll2", 0, 100, c.HScroll2), 1, 1);
    ex->addWidget(Check("Butterfly Pass", "Check3", c.Check3), 2, 0);
    ex->addWidget(Scroll("HScroll3", 0, 100, c.HScroll3), 2, 1);
    Text1 = new QLineEdit(QString::fromStdString(c.Text1), Frame4);
    Text1->setObjectName("Text1");
    ex->addWidget(Caption("Passes - 1", Frame4), 3, 0);
    ex->addWidget(Text1, 3, 1);
    ex->addWidget(Check("Wobbler", "Check4", c.Check4), 4, 0);
    ex->addWidget(Check("440 Hz", "Check5", c.Check5), 4, 1);
    Pic2 = new SweepView(m_, Frame4);
    ex->addWidget(Pic2, 5, 0, 1, 2);
    right->addWidget(Frame4);
    right->addStretch(1);
    outer->addLayout(right);

    connect(Text1, &QLineEdit::textEdited, this,
            [this](const QString& t) { m_.forms.FSID.Text1 = t.toStdString(); });
    connect(Text2, &QLineEdit::textEdited, this,
            [this](const QString& t) { m_.forms.FSID.Text2 = t.toStdString(); });
    connect(Text3, &QLineEdit::textEdited, this,
            [this](const QString& t) { m_.forms.FSID.Text3 = t.toStdString(); });
    connect(Command1, &QPushButton::clicked, this, &FSID::Command1_Click);
    connect(options, &QButtonGroup::idClicked, this, &FSID::Option_Click);
    connect(File1, &QListWidget::itemClicked, this, &FSID::File1_Click);
    connect(Label25, &QPushButton::clicked, this, [this] {
        m_.forms.FSID.Label25 = 0;
        Labels();
    });
    connect(Check8, &QCheckBox::clicked, this, &FSID::Check8_Click);
    Check8_Click();
    Files();
}

void FSID::Command1_Click() {
    SidWriteButton(m_);
}

void FSID::Option_Click(int option) {
    SidChooseOption(m_, option);
    Files();
}

void FSID::File1_Click() {
    if (QListWidgetItem* item = File1->currentItem()) {
        m_.forms.FSID.Label25 = m_.forms.FSID.Label26 = 0;
        SidSelectFile(m_, item->text().toStdString());
    }
    Labels();
}

void FSID::Check8_Click() {
    Frame4->setVisible(m_.forms.FSID.Check8);
}

void FSID::Files() {
    const QSignalBlocker quiet(File1);
    File1->clear();
    for (const std::string& name : m_.forms.FSID.File1List)
        File1->addItem(QString::fromStdString(name));
    for (int i = 0; i < File1->count(); ++i)
        if (File1->item(i)->text().toStdString() == m_.forms.FSID.File1) File1->setCurrentRow(i);
}

void FSID::Labels() {
    const Sid& s = m_.sid;
    for (int v = 0; v < 3; ++v) {
        const SidVoiceState& voice = s.SidVoice[v];
        Voice[v]->setText(QString("Freq: %1\nADSR %2%3%4%5  stage %6\nPW %7  %8 %9\n%10")
                              .arg(voice.Freq / 2)
                              .arg(voice.Attack, 1, 16)
                              .arg(voice.Decay, 1, 16)
                              .arg(voice.Sustain, 1, 16)
                              .arg(voice.Release, 1, 16)
                              .arg(s.SidEnvState[v] + 1)
                              .arg(voice.PulseWidth)
                              .arg(voice.Control & 2 ? "Sync" : "")
                              .arg(s.SidRouting & (1 << v) ? "Filter" : "")
                              .arg(Wave(voice.Control)));
    }
    Filter->setText(QString("FCut: %1  FRes: %2\nMode: %3  Vol: %4")
                        .arg(s.SidCutoff)
                        .arg(s.SidResonance)
                        .arg(SidModeName(s.SidMode))
                        .arg(double(s.SidVolume)));
    Label25->setText(QString::number(m_.forms.FSID.Label25));
    Label26->setText(QString::number(m_.forms.FSID.Label26));
    m_.forms.FSID.Pic2ScaleHeight = Pic2->height();
    Pic2->update();
}

} // namespace tvc::ui
