#include "ui/monitors/CPUmon.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "asm/Disassembler.h"
#include "ui/workbench/asse.h"
#include "asm/TextLib.h"
#include "core/Machine.h"
#include "core/MonitorText.h"
#include "core/RunLoop.h"
#include "hw/Memory.h"
#include "ui/main/TScreen.h"
#include "ui/monitors/assmon.h"
#include "video/Screen.h"

namespace tvc::ui {

namespace {

constexpr int kTimer1Ms = 500;
constexpr int kBarWidth = 200;

QString Q(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

// Text of the disassembler with its CR LF line ends, for a label.
QString Lines(const std::string& s) {
    return Q(s).remove(QLatin1Char('\r'));
}

// A colour value with red in the low byte, as a style sheet colour.
QString ColourName(int value) {
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF).name();
}

QLineEdit* Box(QWidget* parent, const QString& name, int width, bool readOnly = false) {
    auto* e = new QLineEdit(parent);
    e->setObjectName(name);
    e->setFixedWidth(width);
    e->setReadOnly(readOnly);
    return e;
}

QLabel* Surface(QWidget* parent, const QString& name) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    l->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    l->setTextFormat(Qt::PlainText);
    l->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    l->setAutoFillBackground(true);
    l->setStyleSheet("background: white; color: black;");
    l->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return l;
}

QPushButton* Button(QWidget* parent, const QString& name, const QString& caption) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

QCheckBox* Tick(QWidget* parent, const QString& name, const QString& caption, bool on) {
    auto* c = new QCheckBox(caption, parent);
    c->setObjectName(name);
    c->setChecked(on);
    return c;
}

// A bar inside its frame; its width is set by redraw.
QFrame* Bar(QWidget* parent, const QString& name, QWidget** container) {
    auto* frame = new QFrame(parent);
    frame->setFixedSize(kBarWidth + 2, 10);
    frame->setFrameShape(QFrame::Box);
    auto* bar = new QFrame(frame);
    bar->setObjectName(name);
    bar->setStyleSheet("background: #3070c0;");
    bar->setGeometry(1, 1, 0, 8);
    *container = frame;
    return bar;
}

} // namespace

CPUmon::CPUmon(TScreen& screen)
    : QWidget(&screen, Qt::Window), screen_(screen), m_(screen.machine()) {
    setObjectName("CPUmon");
    setWindowTitle("Z80mon");
    auto* layout = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    left->addWidget(BuildRegisters());
    left->addWidget(BuildCommands());
    left->addStretch(1);
    auto* right = new QVBoxLayout;
    right->addWidget(BuildListings());
    right->addWidget(BuildDumps());
    right->addStretch(1);
    layout->addLayout(left);
    layout->addLayout(right, 1);
    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    Connect();
    ShowBoundControls();
    Timer1->start(kTimer1Ms);
    lastTick_.start();
}

CPUmon::~CPUmon() = default;

QWidget* CPUmon::BuildRegisters() {
    auto* box = new QGroupBox("Registers", this);
    auto* g = new QGridLayout(box);
    g->setHorizontalSpacing(2);
    const char* names8[] = {"A", "B", "C", "D", "E", "H", "L"};
    for (int i = 0; i < 14; ++i) {
        const int row = i < 7 ? 0 : 2, col = i % 7;
        g->addWidget(new QLabel(QString(names8[col]) + (i < 7 ? "" : "'"), box), row, col);
        Text1[i] = Box(box, QString("Text1_%1").arg(i), 34);
        g->addWidget(Text1[i], row + 1, col);
    }
    const char* flags = "SZYHXPNC";
    for (int i = 0; i < 16; ++i) {
        if (i < 8) g->addWidget(new QLabel(QString(flags[i]), box), 4, i);
        Text2[i] = Box(box, QString("Text2_%1").arg(i), 26);
        g->addWidget(Text2[i], 5 + i / 8, i % 8);
    }
    const char* names16[] = {"IX", "SP", "IY", "PC", "I", "R"};
    for (int i = 0; i < 6; ++i) {
        g->addWidget(new QLabel(names16[i], box), 7, i);
        Text3[i] = Box(box, QString("Text3_%1").arg(i), i < 4 ? 48 : 34);
        g->addWidget(Text3[i], 8, i);
    }
    const char* lines[] = {"IFF1", "IFF2", "IM"};
    for (int i = 0; i < 3; ++i) {
        g->addWidget(new QLabel(lines[i], box), 9, i);
        Text4[i] = Box(box, QString("Text4_%1").arg(i), 34);
        g->addWidget(Text4[i], 10, i);
    }
    Label7 = new QLabel("Halt ON", box);
    Label8 = new QLabel("INT ON", box);
    for (QLabel* l : {Label7, Label8})
        l->setAlignment(Qt::AlignCenter);
    Label7->setObjectName("Label7");
    Label8->setObjectName("Label8");
    g->addWidget(Label7, 10, 4, 1, 2);
    g->addWidget(Label8, 10, 6, 1, 2);

    auto* acc = new QGroupBox("Accumulator", box);
    auto* ag = new QGridLayout(acc);
    ag->setHorizontalSpacing(2);
    auto* heading = new QLabel("7  6  5  4  3  2  1  0", acc);
    heading->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    ag->addWidget(heading, 0, 0, 1, 8);
    for (int bit = 7; bit >= 0; --bit) {
        TextA[bit] = Box(acc, QString("TextA_%1").arg(bit), 22, true);
        ag->addWidget(TextA[bit], 1, 7 - bit);
    }
    g->addWidget(acc, 11, 0, 1, 8);

    QWidget *pcFrame, *rFrame;
    Shape1 = Bar(box, "Shape1", &pcFrame);
    Shape2 = Bar(box, "Shape2", &rFrame);
    g->addWidget(new QLabel("PC", box), 12, 0);
    g->addWidget(pcFrame, 12, 1, 1, 7);
    g->addWidget(new QLabel("R", box), 13, 0);
    g->addWidget(rFrame, 13, 1, 1, 7);

    Text7 = Box(box, "Text7", 120, true);
    Text14 = Box(box, "Text14", 80, true);
    Text8 = Box(box, "Text8", 80, true);
    Label3 = new QLabel("0.000", box);
    Label3->setObjectName("Label3");
    g->addWidget(new QLabel("T", box), 14, 0);
    g->addWidget(Text7, 14, 1, 1, 4);
    g->addWidget(Text14, 14, 5, 1, 2);
    g->addWidget(new QLabel("ms", box), 14, 7);
    g->addWidget(new QLabel("Inst", box), 15, 0);
    g->addWidget(Text8, 15, 1, 1, 3);
    g->addWidget(Label3, 15, 5, 1, 2);
    g->addWidget(new QLabel("Mhz", box), 15, 7);
    return box;
}

QWidget* CPUmon::BuildListings() {
    auto* box = new QWidget(this);
    auto* h = new QHBoxLayout(box);
    h->setContentsMargins(0, 0, 0, 0);
    auto* dis = new QGroupBox("Disassembly", box);
    auto* last = new QGroupBox("Last instructions", box);
    Picture1 = Surface(dis, "Picture1");
    Picture4 = Surface(last, "Picture4");
    (new QVBoxLayout(dis))->addWidget(Picture1);
    (new QVBoxLayout(last))->addWidget(Picture4);
    const int tenLines = Picture1->fontMetrics().lineSpacing() * 10 + 4;
    Picture1->setMinimumSize(Picture1->fontMetrics().horizontalAdvance('0') * 28, tenLines);
    Picture4->setMinimumSize(Picture1->minimumSize());
    h->addWidget(dis);
    h->addWidget(last);
    return box;
}

QWidget* CPUmon::BuildDumps() {
    auto* box = new QWidget(this);
    auto* g = new QGridLayout(box);
    g->setContentsMargins(0, 0, 0, 0);
    const auto dump = [&](QLabel*& heading, QLabel*& picture, QScrollBar*& scroll,
                          QLineEdit*& start, std::string_view text, const char* pic,
                          const char* bar, const char* startName, int max, int row) {
        heading = Surface(box, QString(pic) + "Heading");
        heading->setText(QString::fromLatin1(text.data(), qsizetype(text.size())));
        heading->setStyleSheet("");
        picture = Surface(box, pic);
        picture->setMinimumHeight(picture->fontMetrics().lineSpacing() * kDumpRows + 4);
        scroll = new QScrollBar(Qt::Vertical, box);
        scroll->setObjectName(bar);
        scroll->setRange(0, max);
        start = Box(box, startName, 60);
        start->setText("0");
        g->addWidget(heading, row, 0);
        g->addWidget(start, row, 1);
        g->addWidget(picture, row + 1, 0);
        g->addWidget(scroll, row + 1, 1, Qt::AlignLeft);
    };
    dump(MemHeading, Picture2, VScroll1, Text10, kMemHeading, "Picture2", "VScroll1", "Text10",
         0xFFFF / 16, 0);
    dump(PortHeading, Picture3, VScroll2, Text11, kPortHeading, "Picture3", "VScroll2", "Text11",
         0xFF / 16, 2);
    MemHeading->setObjectName("MemHeading");
    PortHeading->setObjectName("PortHeading");
    return box;
}

QWidget* CPUmon::BuildCommands() {
    auto* box = new QGroupBox("Commands", this);
    auto* g = new QGridLayout(box);
    Command1 = Button(box, "Command1", "Run");
    Command6 = Button(box, "Command6", "Stop");
    Command7 = Button(box, "Command7", "Step");
    Command4 = Button(box, "Command4", "INT");
    Command2 = Button(box, "Command2", "NMI");
    Command5 = Button(box, "Command5", "RESET");
    Command11 = Button(box, "Command11", "IFF1=1");
    Command10 = Button(box, "Command10", "IFF1=0");
    Command9 = Button(box, "Command9", "redraw");
    Command8 = Button(box, "Command8", "Load Bin");
    Command12 = Button(box, "Command12", "Trace");
    Command3 = Button(box, "Command3", "Poke");
    QPushButton* row[] = {Command1,  Command6,  Command7, Command4, Command2, Command5,
                          Command11, Command10, Command9, Command8, Command12};
    for (int i = 0; i < 11; ++i)
        g->addWidget(row[i], i / 4, i % 4);

    Text12 = Box(box, "Text12", 60);
    Text13 = Box(box, "Text13", 40);
    g->addWidget(new QLabel("Addr", box), 3, 0);
    g->addWidget(Text12, 3, 1);
    g->addWidget(Text13, 3, 2);
    g->addWidget(Command3, 3, 3);

    const CPUmonControls& c = m_.forms.CPUmon;
    Check4 = Tick(box, "Check4", "Debug", c.Check4);
    Check5 = Tick(box, "Check5", "Screen", c.Check5);
    Check6 = Tick(box, "Check6", "Border", c.Check6);
    g->addWidget(Check4, 4, 0);
    g->addWidget(Check5, 4, 1);
    g->addWidget(Check6, 4, 2);

    Frame8 = new QGroupBox(box);
    Frame8->setObjectName("Frame8");
    auto* f = new QGridLayout(Frame8);
    Check2 = Tick(Frame8, "Check2", "Address", c.Check2);
    Text5 = Box(Frame8, "Text5", 70);
    Text5->setText(QString::fromStdString(c.Text5));
    Check3 = Tick(Frame8, "Check3", "Instcount", false);
    Check7 = Tick(Frame8, "Check7", "Int", false);
    Check8 = Tick(Frame8, "Check8", "Nmi", false);
    Check9 = Tick(Frame8, "Check9", "Reset", false);
    Text6 = Box(Frame8, "Text6", 70);
    f->addWidget(Check2, 0, 0);
    f->addWidget(Text5, 0, 1);
    f->addWidget(Check3, 0, 2);
    f->addWidget(Check7, 1, 0);
    f->addWidget(Check8, 1, 1);
    f->addWidget(Check9, 1, 2);
    f->addWidget(Text6, 2, 0);
    g->addWidget(Frame8, 5, 0, 1, 4);

    HScroll1 = new QScrollBar(Qt::Horizontal, box);
    HScroll1->setObjectName("HScroll1");
    HScroll1->setRange(0, 4);
    g->addWidget(new QLabel("Speed", box), 6, 0);
    g->addWidget(HScroll1, 6, 1, 1, 3);

    File1 = new QListWidget(box);
    File1->setObjectName("File1");
    File1->setMinimumHeight(100);
    File1->hide();
    g->addWidget(File1, 7, 0, 1, 4);
    return box;
}

void CPUmon::Connect() {
    const auto enter = [this](QLineEdit* e, RegBox box, int i) {
        connect(e, &QLineEdit::returnPressed, this, [this, box, i] { RegEnter(box, i); });
    };
    for (int i = 0; i < 14; ++i)
        enter(Text1[i], RegBox::Text1, i);
    for (int i = 0; i < 16; ++i)
        enter(Text2[i], RegBox::Text2, i);
    for (int i = 0; i < 6; ++i)
        enter(Text3[i], RegBox::Text3, i);
    for (int i = 0; i < 3; ++i)
        enter(Text4[i], RegBox::Text4, i);

    CPUmonControls& c = m_.forms.CPUmon;
    connect(Text5, &QLineEdit::returnPressed, this,
            [this] { Text5->setText(Q(HexToDecimalText(Text5->text().toStdString()))); });
    connect(Text5, &QLineEdit::textChanged, this,
            [&c](const QString& t) { c.Text5 = t.toStdString(); });
    connect(Text10, &QLineEdit::textChanged, this, [this](const QString& t) {
        const std::string clamped = ClampDumpStart(t.toStdString());
        if (!clamped.empty()) Text10->setText(Q(clamped));
    });
    for (QLineEdit* start : {Text10, Text11})
        connect(start, &QLineEdit::returnPressed, this, &CPUmon::redraw);
    connect(VScroll1, &QScrollBar::valueChanged, this, [this](int v) {
        Text10->setText(QString::number(v * 16));
        redraw();
    });
    connect(VScroll2, &QScrollBar::valueChanged, this, [this](int v) {
        Text11->setText(QString::number(v * 16));
        redraw();
    });
    connect(Check4, &QCheckBox::toggled, this, [this, &c](bool on) {
        c.Check4 = on;
        m_.run.BreakpointArmed = on ? 1 : 0;
        Frame8->setVisible(on);
    });
    connect(Check2, &QCheckBox::toggled, this, [&c](bool on) { c.Check2 = on; });
    connect(Check5, &QCheckBox::toggled, this, [&c](bool on) { c.Check5 = on; });
    connect(Check6, &QCheckBox::toggled, this, [&c](bool on) { c.Check6 = on; });
    connect(HScroll1, &QScrollBar::valueChanged, this, [&c](int v) { c.HScroll1 = v; });

    const std::pair<QPushButton*, void (CPUmon::*)()> buttons[] = {
        {Command1, &CPUmon::Command1_Click},   {Command6, &CPUmon::Command6_Click},
        {Command7, &CPUmon::Command7_Click},   {Command4, &CPUmon::Command4_Click},
        {Command2, &CPUmon::Command2_Click},   {Command5, &CPUmon::Command5_Click},
        {Command11, &CPUmon::Command11_Click}, {Command10, &CPUmon::Command10_Click},
        {Command3, &CPUmon::Command3_Click},   {Command8, &CPUmon::Command8_Click},
        {Command9, &CPUmon::redraw},           {Command12, &CPUmon::Command12_Click},
    };
    for (const auto& [button, handler] : buttons)
        connect(button, &QPushButton::clicked, this, handler);
    connect(File1, &QListWidget::itemClicked, this, &CPUmon::File1_Click);
    connect(Timer1, &QTimer::timeout, this, &CPUmon::Timer1_Timer);
}

void CPUmon::MissingOP() {
    m_.cpu.MissingOP();
}

void CPUmon::PrintLastOPS() {
    QString text;
    for (int i = 0; i < 10; ++i) {
        int32_t a = m_.run.LastPcRing(i);
        text += Lines(Disassemble(m_, a, 1, 1));
        if (i < 9) text += '\n';
    }
    Picture4->setText(text);
}

void CPUmon::redraw() {
    int32_t pc = m_.cpu.RegPC; // Disassemble moves its copy past what it read
    Picture1->setText(Lines(Disassemble(m_, pc, 10, 1)));
    Text8->setText(QString::number(m_.run.InstCount));
    PrintLastOPS();
    FillRegisters();
    Picture2->setText(Q(MemDumpText(m_, DecimalValue(Text10->text().toStdString()))));
    Picture3->setText(Q(PortDumpText(m_, DecimalValue(Text11->text().toStdString()))));
    const auto barWidth = [](int64_t v, int64_t full) {
        return int(std::clamp<int64_t>(v * kBarWidth / full, 0, kBarWidth));
    };
    Shape1->resize(barWidth(m_.cpu.RegPC, 65535), Shape1->height());
    Shape2->resize(barWidth(m_.cpu.RegR, 255), Shape2->height());
    const auto light = [](QLabel* l, int32_t on) {
        l->setStyleSheet("color: white; background: " + ColourName(on * 255) + ";");
    };
    light(Label7, m_.cpu.Halted);
    light(Label8, m_.cpu.IrqRequest);
    ShowBoundControls();
}

void CPUmon::FillRegisters() {
    Z80& c = m_.cpu;
    for (int i = 0; i < 14; ++i)
        Text1[i]->setText(Q(Hex2(*RegBoxField(c, RegBox::Text1, i))));
    for (int i = 0; i < 16; ++i)
        Text2[i]->setText(QString::number(*RegBoxField(c, RegBox::Text2, i)));
    for (int i = 0; i < 6; ++i) {
        const int32_t v = *RegBoxField(c, RegBox::Text3, i);
        Text3[i]->setText(Q(i < 4 ? Hex4(v) : Hex2(v)));
    }
    for (int i = 0; i < 3; ++i)
        Text4[i]->setText(QString::number(*RegBoxField(c, RegBox::Text4, i)));
    for (int bit = 0; bit < 8; ++bit)
        TextA[bit]->setText((c.RegA >> bit) & 1 ? "1" : "0");
    Text7->setText(Q(ClockText(c.TStates, m_.run.TotalT)));
    Text14->setText(QString::number(EmulatedMs(c.TStates, m_.run.TotalT)));
}

// The fields the machine holds for these controls may have been changed
// elsewhere (the speed menu, the run loop's stop); the widgets follow them.
void CPUmon::ShowBoundControls() {
    const CPUmonControls& c = m_.forms.CPUmon;
    const auto tick = [](QCheckBox* box, bool on) {
        if (box->isChecked() != on) box->setChecked(on);
    };
    tick(Check2, c.Check2);
    tick(Check4, c.Check4);
    tick(Check5, c.Check5);
    tick(Check6, c.Check6);
    Frame8->setVisible(c.Check4);
    if (Text5->text().toStdString() != c.Text5) Text5->setText(Q(c.Text5));
    if (HScroll1->value() != c.HScroll1) HScroll1->setValue(c.HScroll1);
    Command6->setStyleSheet(
        c.Command6Color < 0 ? QString() : "background: " + ColourName(c.Command6Color) + ";");
}

void CPUmon::RegEnter(RegBox box, int index) {
    QLineEdit* const* boxes = box == RegBox::Text1   ? Text1.data()
                              : box == RegBox::Text2 ? Text2.data()
                              : box == RegBox::Text3 ? Text3.data()
                                                     : Text4.data();
    RegBoxEnter(m_.cpu, box, index, boxes[index]->text().toStdString());
    redraw();
}

bool CPUmon::MayEnterRunLoop() const {
    return !screen_.QuitRequested() && !m_.run.Running;
}

void CPUmon::Command1_Click() {
    if (!MayEnterRunLoop()) return; // running already: it just goes on
    m_.forms.CPUmon.Command6Color = -1;
    ShowBoundControls();
    m_.run.RunFlag = 1;
    m_.cpu.TStates = 0;
    m_.run.TotalT = 0;
    RunLoop(m_);
}

void CPUmon::Command6_Click() {
    m_.run.RunFlag = 0;
    m_.cpu.TStates = 0;
    m_.run.TotalT = 0;
}

// With RunFlag 0 the loop makes one pass: one whole instruction. Pressed
// while the machine runs, the cleared flag stops it and no second loop starts.
void CPUmon::Command7_Click() {
    m_.run.RunFlag = 0;
    if (!MayEnterRunLoop()) return;
    RunLoop(m_);
    ScreenRedraw(m_);
    // The assembler's listing follows: the line of the next instruction.
    if (screen_.workbench) screen_.workbench->Dline("0x" + Hex4(m_.cpu.RegPC));
}

void CPUmon::Command4_Click() {
    if (m_.cpu.IFF1 == 1) m_.cpu.IrqRequest = 1;
}
void CPUmon::Command2_Click() {
    m_.cpu.NmiRequest = 1;
}
void CPUmon::Command5_Click() {
    m_.cpu.ResetRequest = 1;
    redraw();
}
void CPUmon::Command11_Click() {
    m_.cpu.IFF1 = 1;
}
void CPUmon::Command10_Click() {
    m_.cpu.IFF1 = 0;
}

void CPUmon::Command3_Click() {
    const auto number = [](QLineEdit* e) {
        return int32_t(
            std::clamp<int64_t>(DecimalValue(e->text().toStdString()), INT32_MIN, INT32_MAX));
    };
    MemWrite(m_, number(Text12), number(Text13));
}

void CPUmon::Command8_Click() {
    if (File1->isVisible()) {
        File1->hide();
        return;
    }
    File1->clear();
    File1->addItems(
        QDir::current().entryList({"*.obj", "*.rom", "*.bin"}, QDir::Files, QDir::Name));
    File1->setCurrentRow(-1);
    File1->show();
}

void CPUmon::File1_Click(QListWidgetItem* item) {
    if (!item) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    LoadBin(m_, item->text().toStdString());
    QApplication::restoreOverrideCursor();
    File1->hide();
    redraw();
}

void CPUmon::Command12_Click() {
    Trace()->show();
    Trace()->raise();
}

assmon* CPUmon::Trace() {
    if (!trace_) trace_ = new assmon(m_, this);
    return trace_;
}

// The speed figure is worked from TotalT's advance over the host time
// actually passed: ticks come only at the run loop's yield points, so the
// nominal period would misstate it.
void CPUmon::Timer1_Timer() {
    if (!isVisible()) return;
    const int64_t us = std::max<int64_t>(1, lastTick_.nsecsElapsed() / 1000);
    Label3->setText(Q(SpeedFigure(m_.run.TotalT - lastTotalT_, us)));
    lastTotalT_ = m_.run.TotalT;
    lastTick_.restart();
    if (m_.run.RunFlag == 1) redraw();
}

void CPUmon::closeEvent(QCloseEvent* e) {
    e->ignore();
    hide();
}

} // namespace tvc::ui
