#include "ui/monitors/TVCmon.h"

#include <QCheckBox>
#include <QColor>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <map>

#include "core/HwMonitor.h"
#include "core/Machine.h"
#include "media/Tape.h"

namespace tvc::ui {

namespace {

// Ticks arrive only while Qt serves events: at the run loop's yield points.
constexpr int kTimer3Ms = 200;
constexpr int kColumns = 4;
constexpr int kPlotHeight = 64;

QString Q(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

// Back colour of a light: 24-bit with red in the low byte; the button face
// stands for the palette's own.
QString LightStyle(int32_t colour) {
    if (colour == kButtonFace) return {};
    const QColor c(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
    return "background: " + c.name() + ";";
}

QPixmap Plot(const std::array<int32_t, kHwPlotPoints>& v, int lo, int hi) {
    QPixmap pix(kHwPlotPoints, kPlotHeight);
    pix.fill(Qt::black);
    QPainter p(&pix);
    p.setPen(Qt::green);
    auto y = [&](int i) {
        const int c = std::clamp(v[size_t(i)], lo, hi);
        return kPlotHeight - 1 - (c - lo) * (kPlotHeight - 1) / (hi - lo);
    };
    for (int i = 1; i < kHwPlotPoints; ++i)
        p.drawLine(i - 1, y(i - 1), i, y(i));
    return pix;
}

} // namespace

TVCmon::TVCmon(Machine& m) : m_(m) {
    setObjectName("TVCmon");
    setWindowTitle("HW Monitor");
    Build();
    Timer3 = new QTimer(this);
    Timer3->setObjectName("Timer3");
    connect(Timer3, &QTimer::timeout, this, &TVCmon::Timer3_Timer);
    Timer3->start(kTimer3Ms);
}

void TVCmon::Build() {
    auto* top = new QHBoxLayout(this);
    auto* grid = new QGridLayout;
    top->addLayout(grid, 1);
    std::map<std::string, QGridLayout*> boxes;
    int placed = 0;
    for (const HwField& f : HwMonitorFields(m_)) {
        QGridLayout*& box = boxes[f.group];
        if (!box) {
            auto* g = new QGroupBox(Q(f.group), this);
            box = new QGridLayout(g);
            // Rows tight, columns apart: a long caption must not run into its neighbour.
            box->setVerticalSpacing(1);
            box->setHorizontalSpacing(12);
            grid->addWidget(g, placed / kColumns, placed % kColumns, Qt::AlignTop);
            ++placed;
        }
        auto* label = new QLabel(this);
        label->setObjectName("Field" + QString::number(fields.size()));
        const int row = box->count();
        box->addWidget(label, row / 2, row % 2);
        fields.push_back(label);
    }

    auto* side = new QVBoxLayout;
    top->addLayout(side);
    Check1 = new QCheckBox("Record", this);
    Check1->setObjectName("Check1");
    Check3 = new QCheckBox("Int enabled", this);
    Check3->setObjectName("Check3");
    Command1 = new QPushButton("Clear", this);
    Command1->setObjectName("Command1");
    List4 = new QListWidget(this);
    List4->setObjectName("List4");
    List4->setMinimumWidth(260);
    List4->addItem(kFdcLogTitle);
    Picture1 = new QLabel(this);
    Picture1->setObjectName("Picture1");
    Picture2 = new QLabel(this);
    Picture2->setObjectName("Picture2");
    for (QWidget* w :
         std::initializer_list<QWidget*>{Check1, Check3, Picture1, Picture2, Command1, List4})
        side->addWidget(w);
    connect(Check1, &QCheckBox::clicked, this, &TVCmon::Check1_Click);
    connect(Check3, &QCheckBox::clicked, this, &TVCmon::Check3_Click);
    connect(Command1, &QPushButton::clicked, this, &TVCmon::Command1_Click);
    redraw();
}

void TVCmon::redraw() {
    const auto all = HwMonitorFields(m_);
    for (size_t i = 0; i < all.size() && i < fields.size(); ++i) {
        const HwField& f = all[i];
        QLabel* l = fields[i];
        const QString text = f.isLight ? Q(f.caption) : Q(f.caption) + ": " + Q(f.text);
        if (l->text() != text) l->setText(text);
        const QString style = f.isLight ? LightStyle(f.Colour()) : QString();
        if (l->styleSheet() != style) l->setStyleSheet(style);
    }
    const HwPlots plots = HwMonitorPlots(m_);
    Picture1->setPixmap(Plot(plots.tone, 0, 31));
    Picture2->setPixmap(Plot(plots.wave, 0, 255));
    Check1->setChecked(m_.forms.TVCmon.Check1);
    Check3->setChecked(m_.forms.TVCmon.Check3);
    RefreshLog();
}

// Appends what the log gained since the last look; the list keeps the title
// line and at most the log's own bound.
void TVCmon::RefreshLog() {
    const FdcLog& log = m_.fdc.List4;
    if (log.clears() != logClears_) {
        logClears_ = log.clears();
        logSeen_ = 0;
        List4->clear();
        List4->addItem(kFdcLogTitle);
    }
    const uint64_t fresh = std::min<uint64_t>(log.added() - logSeen_, log.size());
    if (fresh == 0) return;
    for (size_t i = log.size() - size_t(fresh); i < log.size(); ++i)
        List4->addItem(Q(FdcLogText(log[i])));
    while (size_t(List4->count()) > kFdcLogLimit + 1)
        delete List4->takeItem(1);
    logSeen_ = log.added();
    List4->scrollToBottom();
}

void TVCmon::Timer3_Timer() {
    if (isVisible()) redraw();
}

void TVCmon::Command1_Click() {
    m_.fdc.List4.Clear();
    RefreshLog();
}

// The tape's record switch: it opens or finishes "save.wav" and "record.wav".
void TVCmon::Check1_Click() {
    TapeRecord(m_, Check1->isChecked());
}

void TVCmon::Check3_Click() {
    m_.forms.TVCmon.Check3 = Check3->isChecked();
}

} // namespace tvc::ui
