#include "ui/main/TScreen.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/Machine.h"
#include "core/Numbers.h"
#include "core/RunLoop.h"
#include "hw/Keyboard.h"
#include "hw/MachineSetup.h"
#include "media/MediaFiles.h"
#include "ui/main/FScreen.h"
#include "ui/main/MenuTable.h"
#include "ui/main/Picture.h"
#include "ui/main/ScreenView.h"
#include "ui/main/TTools.h"
#include "ui/media/TTape.h"
#include "ui/links/ErrorSim.h"
#include "ui/links/TPrint.h"
#include "ui/links/TSerial.h"
#include "ui/monitors/CPUmon.h"
#include "ui/monitors/TVCmon.h"
#include "ui/workbench/asse.h"
#include "ui/panels/FSID.h"
#include "ui/panels/FSN76489.h"
#include "ui/panels/FYM2413.h"
#include "ui/panels/FYM3812.h"
#include "ui/panels/Fsaa.h"
#include "ui/panels/T8910.h"
#include "video/Screen.h"

namespace tvc::ui {

namespace {

constexpr int kColdStartFlag = 0x0B22; // the system ROM looks here to choose a cold start

bool MenuState::*MenuField(const std::string& name) {
    for (const MenuItem& item : kMenuItems)
        if (name == item.name) return item.field;
    return nullptr;
}

const char* kChangeLog = "TVC emulator\n\n"
                         "An emulator of the Videoton TV Computer (32K, 64K, 64K+).\n"
                         "F1: reset, F2: cold reset. The keyboard follows the Hungarian layout\n"
                         "by key position: the key left of 1 is 0, Z and Y are swapped.\n";

} // namespace

TScreen::TScreen(Machine& m) : m_(m) {
    setObjectName("TScreen");
    setWindowTitle("LUMEKTVC");
    BuildMenu();
    BuildPanels();
    tools = new TTools(*this);
    tapeDeck = new TTape(m_, this, PicD);
    fullScreen = new FScreen(*this);
    cpumon = new CPUmon(*this);
    tvcmon = new TVCmon(m_);
    tvcmon->setParent(this, Qt::Window);
    serial = new TSerial(m_, this);
    printer = new TPrint(m_, this);
    errorSim = new ErrorSim(m_, this);
    workbench = new asse(*this);
    // The drawing area keeps its size in pixels; menu and status panel come on top.
    resize(tvc::kWindowWidth,
           tvc::kWindowHeight + menuBar()->sizeHint().height() + Frame3->sizeHint().height());
    PicD->setFocus();
}

// The full-screen view is a window of its own, without a parent to take it
// along, so it goes here.
TScreen::~TScreen() {
    // The child widgets outlive this part of the object while QWidget tears
    // them down; their focus changes must not reach the handlers here.
    PicD->disconnect(this);
    delete fullScreen;
}

QAction* TScreen::Item(const std::string& name) const {
    auto it = items_.find(name);
    return it == items_.end() ? nullptr : it->second;
}

void TScreen::BuildMenu() {
    std::map<std::string, QMenu*> groups;
    for (const MenuGroup& g : kMenuGroups) {
        QMenu* menu = menuBar()->addMenu(QString::fromUtf8(g.caption));
        menu->setObjectName(g.name);
        groups[g.name] = menu;
    }
    for (const MenuEntry& e : kMenuEntries) {
        QAction* a;
        if (!e.caption) {
            a = groups[e.group]->addSeparator();
        } else if (*e.group == 0) {
            a = menuBar()->addAction(QString::fromUtf8(e.caption));
        } else {
            a = groups[e.group]->addAction(QString::fromUtf8(e.caption));
        }
        a->setObjectName(e.name);
        a->setEnabled(!e.greyed);
        if (e.checkable) {
            a->setCheckable(true);
            if (auto field = MenuField(e.name)) a->setChecked(m_.menu.*field);
        }
        const std::string name = e.name;
        if (e.caption) connect(a, &QAction::triggered, this, [this, name] { Handle(name); });
        items_[name] = a;
    }
}

void TScreen::BuildPanels() {
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    PicD = new ScreenView(m_, central);
    PicD->setMinimumSize(tvc::kWindowWidth, tvc::kWindowHeight);
    layout->addWidget(PicD, 1);
    connect(PicD, &ScreenView::KeyDown, this, &TScreen::PicdKeyDown);
    connect(PicD, &ScreenView::KeyUp, this, &TScreen::PicdKeyUp);
    connect(PicD, &ScreenView::AllKeysUp, this, &TScreen::ClearKeys);

    // Status panel: host time of the last frame, its bar, the message label
    // and the log of ports without a device.
    Frame3 = new QFrame(central);
    Frame3->setObjectName("Frame3");
    auto* status = new QHBoxLayout(Frame3);
    status->setContentsMargins(4, 2, 4, 2);
    Text1 = new QLineEdit(Frame3);
    Text1->setObjectName("Text1");
    Text1->setReadOnly(true);
    Text1->setFixedWidth(60);
    Text1->setToolTip("Host time of the last frame, in 10 µs units");
    auto* bar = new QFrame(Frame3);
    bar->setFixedSize(202, 12);
    bar->setFrameShape(QFrame::Box);
    Shape4 = new QFrame(bar);
    Shape4->setObjectName("Shape4");
    Shape4->setStyleSheet("background: #3070c0;");
    Shape4->setGeometry(1, 1, 0, 10);
    Label1 = new QLabel(Frame3);
    Label1->setObjectName("Label1");
    Label1->setMinimumWidth(120);
    List1 = new QListWidget(Frame3);
    List1->setObjectName("List1");
    List1->setFixedHeight(48);
    List1->setFocusPolicy(Qt::NoFocus);
    status->addWidget(Text1);
    status->addWidget(bar);
    status->addWidget(Label1, 1);
    status->addWidget(List1, 1);
    layout->addWidget(Frame3);
    setCentralWidget(central);

    // The file dialog, floating over the picture.
    Frame1 = new QGroupBox("Open", PicD);
    Frame1->setObjectName("Frame1");
    Frame1->setAutoFillBackground(true);
    Frame1->installEventFilter(this);
    auto* fl = new QVBoxLayout(Frame1);
    File1 = new QListWidget(Frame1);
    File1->setObjectName("File1");
    Text3 = new QLineEdit(Frame1);
    Text3->setObjectName("Text3");
    Text5 = new QLineEdit(Frame1);
    Text5->setObjectName("Text5");
    Text5->setReadOnly(true);
    Frame4 = new QGroupBox("location", Frame1);
    Frame4->setObjectName("Frame4");
    auto* loc = new QHBoxLayout(Frame4);
    Text6 = new QLineEdit(Frame4);
    Text7 = new QLineEdit(Frame4);
    Text8 = new QLineEdit(Frame4);
    Text6->setObjectName("Text6");
    Text7->setObjectName("Text7");
    Text8->setObjectName("Text8");
    loc->addWidget(Text6);
    loc->addWidget(Text7);
    loc->addWidget(Text8);
    Command2 = new QPushButton("OPEN", Frame1);
    Command2->setObjectName("Command2");
    fl->addWidget(File1);
    fl->addWidget(Text3);
    fl->addWidget(Text5);
    fl->addWidget(Frame4);
    fl->addWidget(Command2);
    Frame1->setGeometry(40, 40, 280, 360);
    Frame1->hide();
    File1->setCurrentRow(-1);
    Text5->setText("*.cas");
    connect(File1, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        Text3->setText(item->text().left(std::max<qsizetype>(0, item->text().size() - 4)));
    });
    connect(File1, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        Text3->setText(item->text().left(std::max<qsizetype>(0, item->text().size() - 4)));
        Command2Click();
    });
    connect(Command2, &QPushButton::clicked, this, &TScreen::Command2Click);

    // The about panel.
    Frame2 = new QGroupBox("About", PicD);
    Frame2->setObjectName("Frame2");
    Frame2->setAutoFillBackground(true);
    Frame2->installEventFilter(this);
    auto* al = new QVBoxLayout(Frame2);
    Text4 = new QPlainTextEdit(Frame2);
    Text4->setObjectName("Text4");
    Text4->setReadOnly(true);
    Text4->setPlainText(kChangeLog);
    Label7 = new QLabel("README.md in the source tree", Frame2);
    Label7->setObjectName("Label7");
    Command1 = new QPushButton("OK", Frame2);
    Command1->setObjectName("Command1");
    al->addWidget(Text4);
    al->addWidget(Label7);
    al->addWidget(Command1);
    Frame2->setGeometry(120, 100, 400, 300);
    Frame2->hide();
    connect(Command1, &QPushButton::clicked, Frame2, &QWidget::hide);
}

bool TScreen::eventFilter(QObject* obj, QEvent* e) {
    if (obj == Frame1 && e->type() == QEvent::MouseButtonPress) {
        Frame1->hide();
        return true;
    }
    if (obj == Frame2 && (e->type() == QEvent::Enter || e->type() == QEvent::Leave))
        Label7->setStyleSheet(e->type() == QEvent::Enter ? "color: #ffff00;" : "");
    return QMainWindow::eventFilter(obj, e);
}

bool TScreen::Tick(const std::string& name) const {
    QAction* a = Item(name);
    return a && a->isChecked();
}

void TScreen::SetTick(const std::string& name, bool on) {
    if (QAction* a = Item(name)) a->setChecked(on);
    if (auto field = MenuField(name)) m_.menu.*field = on;
}

void TScreen::FocusPicture() {
    if (PicD) PicD->setFocus();
}

void TScreen::Click(const std::string& name) {
    if (QAction* a = Item(name); a && a->isEnabled()) a->trigger();
}

void TScreen::Handle(const std::string& name) {
    // Qt flips a checkable entry before its handler runs; the handlers below
    // decide the tick themselves from the state the machine holds.
    if (auto field = MenuField(name)) Item(name)->setChecked(m_.menu.*field);

    if (name == "xLoadCAS") return OpenDialog(false, "*.cas");
    if (name == "xSaveCAS") return OpenDialog(true, "*.cas");
    if (name == "xLoadSnap") return OpenDialog(false, "*.tvs");
    if (name == "xSaveSnap") return OpenDialog(true, "*.tvs");
    if (name == "xLoadCRT") return OpenDialog(false, "*.crt");
    if (name == "xUnloadCRT") {
        Frame1->hide();
        UnloadCRT(m_);
        Item("xUnloadCRT")->setText(QString::fromStdString(m_.forms.Media.UnloadCaption));
        return FocusPicture();
    }
    if (name == "xSvaMEX4") {
        SaveMex4(m_);
        return;
    }
    if (name == "xio0" || name == "xio1" || name == "xio2" || name == "xio3")
        return ToggleCard(name);
    if (name == "xReset") {
        m_.cpu.ResetRequest = 1;
        return;
    }
    if (name == "xReset2") {
        m_.bus.Mem[kColdStartFlag] = 255;
        m_.cpu.ResetRequest = 1;
        return;
    }
    if (name == "xFullsc") {
        fullScreen->Enter();
        return;
    }
    if (name == "xScreenBW" || name == "xScreenDIB" || name == "xScreenNoise") {
        SetTick(name, !Tick(name));
        return FocusPicture();
    }
    if (name == "xSound" || name == "xNoError" || name == "xS6") return SetTick(name, !Tick(name));
    if (name == "xUnDoc") {
        SetTick(name, !Tick(name));
        m_.cpu.UndocEnabled = Tick(name) ? 1 : 0;
        return FocusPicture();
    }
    if (name == "x32KB" || name == "xBasic") {
        SetTick(name, !Tick(name));
        PowerCycle();
        return FocusPicture();
    }
    if (name.size() == 3 && name[0] == 'x' && name[1] == 'S' && name[2] >= '1' && name[2] <= '4')
        return SpeedItem(name[2] - '0');
    if (name == "xTapeLoad") {
        tapeDeck->show();
        tapeDeck->raise();
        return;
    }
    if (name == "xTools") {
        tools->show();
        tools->raise();
        return;
    }
    if (name == "xDebug") {
        cpumon->redraw();
        cpumon->show();
        cpumon->raise();
        return;
    }
    if (name == "xAsse") {
        workbench->show();
        workbench->raise();
        return;
    }
    if (name == "xTVCmon") {
        tvcmon->redraw();
        tvcmon->show();
        tvcmon->raise();
        return;
    }
    if (name == "xHelp") {
        Frame2->raise();
        Frame2->setVisible(!Frame2->isVisible());
        return;
    }
    if (name == "xSaveScrren") {
        if (!xSaveScrren(m_)) ReportFileError(m_, "screen.bin");
        return;
    }
    if (name == "xMemDump") {
        if (!xMemDump(m_)) ReportFileError(m_, "ramdump.bin");
        return;
    }
    for (auto [item, form] : {std::pair<const char*, QWidget*>{"xPrinter", printer},
                              {"xSerial", serial},
                              {"xErrorSim", errorSim}})
        if (name == item) {
            form->show();
            form->raise();
            return;
        }
    if (ChipPanel* panel = Panel(name)) {
        panel->show();
        panel->raise();
        return;
    }
    // Windows of later subsystems (hardware monitor, workbench): not here yet.
}

ChipPanel* TScreen::Panel(const std::string& item) {
    if (auto it = panels.find(item); it != panels.end()) return it->second;
    ChipPanel* made = nullptr;
    if (item == "xsaa") made = new Fsaa(m_, this);
    if (item == "xSN76") made = new FSN76489(m_, this);
    if (item == "xYM") made = new FYM3812(m_, this);
    if (item == "xYM2") made = new FYM2413(m_, this);
    if (item == "xSID") made = new FSID(m_, this);
    if (item == "xAY3") made = new T8910(m_, this);
    if (made) panels[item] = made;
    return made;
}

void TScreen::PumpPanels() {
    for (auto& [item, panel] : panels)
        panel->Poll();
}

void TScreen::PowerCycle() {
    m_.cpu.Z80Init();
    MachineInit(m_);
    if (!m_.FatalStop) MachineReset(m_);
}

void TScreen::ToggleCard(const std::string& name) {
    SetTick(name, !Tick(name));
    m_.bus.Mem[kColdStartFlag] = 255;
    PowerCycle();
    FocusPicture();
}

void TScreen::SpeedItem(int n) {
    if (n == 1) {
        if (Tick("xS1")) {
            SetTick("xS1", false);
            if (!quit_) {
                m_.run.RunFlag = 1;
                RunLoop(m_);
            }
        } else {
            SetTick("xS1", true);
            m_.run.RunFlag = 0;
        }
        SetTick("xS2", false);
        SetTick("xS3", true);
        SetTick("xS4", false);
    } else {
        SetTick("xS" + std::to_string(n), !Tick("xS" + std::to_string(n)));
        for (int other = 1; other <= 4; ++other)
            if (other != n) SetTick("xS" + std::to_string(other), false);
        if (n == 3) m_.forms.CPUmon.HScroll1 = 2;
        if (n == 4) m_.forms.CPUmon.HScroll1 = 4;
    }
    FocusPicture();
}

void TScreen::OpenDialog(bool save, const QString& pattern) {
    Text5->setText(pattern);
    Text3->clear();
    File1->clear();
    File1->addItems(QDir::current().entryList({pattern}, QDir::Files, QDir::Name));
    File1->setCurrentRow(-1);
    Frame1->move(40, 40);
    Frame1->setTitle(save ? "Save" : "Open");
    Frame1->setStyleSheet(save ? "QGroupBox#Frame1 { background: #ff0000; }"
                               : "QGroupBox#Frame1 { background: #00ff00; }");
    Frame4->setVisible(save && pattern == "*.cas");
    if (save && pattern == "*.cas") {
        xSaveCAS(m_);
        Text6->setText(QString::fromStdString(m_.forms.Media.Text6));
        Text7->setText(QString::fromStdString(m_.forms.Media.Text7));
        Text8->setText(QString::fromStdString(m_.forms.Media.Text8));
    }
    Frame1->show();
    Frame1->raise();
}

void TScreen::Command2Click() {
    const QString pattern = Text5->text();
    QListWidgetItem* selected = File1->currentItem();
    const std::string file = selected ? selected->text().toStdString() : std::string();
    if (Frame1->title() == "Open") {
        // The loader hides the dialog first: its messages stand alone.
        Frame1->hide();
        if (pattern == "*.cas") LoadCAS(m_, file);
        if (pattern == "*.tvs") LoadSnapShot(m_, file);
        if (pattern == "*.crt" && LoadCRT(m_, file))
            Item("xUnloadCRT")->setText(QString::fromStdString(m_.forms.Media.UnloadCaption));
    } else if (Frame1->title() == "Save") {
        const std::string name = Text3->text().toStdString();
        m_.forms.Media.Text6 = Text6->text().toStdString();
        m_.forms.Media.Text7 = Text7->text().toStdString();
        if (pattern == "*.cas") SaveCAS(m_, name, pattern.toStdString());
        if (pattern == "*.tvs") SaveSnapshot(m_, name, pattern.toStdString());
        Text6->setText(QString::fromStdString(m_.forms.Media.Text6));
        Text7->setText(QString::fromStdString(m_.forms.Media.Text7));
    }
    Frame1->hide();
    FocusPicture();
}

void TScreen::PicdKeyDown(int keycode, int shift) {
    keys_.Push(true, keycode, shift);
    PumpKeys();
}

void TScreen::PicdKeyUp(int keycode, int shift) {
    keys_.Push(false, keycode, shift);
    PumpKeys();
}

void TScreen::PumpKeys() {
    if (keys_.Empty()) return;
    for (KeyCommand c : keys_.Pump(m_))
        Handle(c == KeyCommand::Reset ? "xReset" : "xReset2");
    tools->ShowKeyCode(m_.forms.TTools.Label2);
}

void TScreen::ClearKeys() {
    keys_.Clear(m_);
}

void TScreen::Command1Click() {
    cpumon->Command1_Click();
}

void TScreen::MonitorRedraw() {
    cpumon->redraw();
}

void TScreen::SetStatus(StatusField field, const QString& text) {
    if (field == StatusField::Label1) Label1->setText(text);
    if (field == StatusField::Text1) Text1->setText(text);
}

// The width comes in the form's units, twips: 15 to a pixel at 96 dpi.
void TScreen::SetLoadBar(int width) {
    const int pixels = static_cast<int>(RoundHalfEven(width / double(kTwipsPerPixel)));
    Shape4->resize(std::clamp(pixels, 0, 200), Shape4->height());
}

void TScreen::RefreshPortLog() {
    const auto& log = m_.forms.TScreen.List1;
    if (log.size() < static_cast<size_t>(List1->count())) List1->clear();
    for (size_t i = static_cast<size_t>(List1->count()); i < log.size(); ++i)
        List1->addItem(QString::fromStdString(log[i]));
    List1->scrollToBottom();
}

void TScreen::PictureReady() {
    PicD->UpdatePicture();
    fullScreen->PictureReady();
}

// Form_Unload: the run loop ends at its next test and the process with it.
void TScreen::closeEvent(QCloseEvent* e) {
    quit_ = true;
    m_.run.RunFlag = 0;
    fullScreen->hide();
    tools->hide();
    tapeDeck->hide();
    cpumon->hide();
    tvcmon->hide();
    serial->hide();
    printer->hide();
    errorSim->hide();
    for (auto& [item, panel] : panels)
        panel->hide();
    SerialClose(m_);
    e->accept();
    QCoreApplication::quit();
}

} // namespace tvc::ui
