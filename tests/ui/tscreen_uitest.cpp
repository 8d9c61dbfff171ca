// The main window under the offscreen platform: the menu as the user finds
// it, keys into the matrix by physical place, focus and mouse clearing, the
// paging calculator, the light pen and the full-screen geometry.
#include <QAction>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include "core/RunLoop.h"
#include "hw/MachineSetup.h"
#include "support/TestMachine.h"
#include "ui/main/FScreen.h"
#include "ui/main/Picture.h"
#include "ui/main/ScreenView.h"
#include "ui/main/TScreen.h"
#include "ui/UiHost.h"
#include "ui/main/TTools.h"
#include "video/Screen.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

using test::UiHost;

struct Fixture {
    test::ScratchDir dir;
    UiHost host;
    std::unique_ptr<Machine> m = std::make_unique<Machine>(host);
    std::unique_ptr<TScreen> w;
    Fixture() {
        test::WriteRomSet(dir);
        MachineInit(*m);
        MachineReset(*m);
        w = std::make_unique<TScreen>(*m);
        host.window = w.get();
        w->show();
        QVERIFY(QTest::qWaitForWindowExposed(w.get()));
    }
};

void SendKey(QWidget* target, QEvent::Type type, quint32 scan, int qtKey,
             Qt::KeyboardModifiers mods = Qt::NoModifier) {
    QKeyEvent e(type, qtKey, mods, scan, 0, 0);
    QApplication::sendEvent(target, &e);
}

} // namespace

class TScreenTest : public QObject {
    Q_OBJECT
  private slots:
    void menuEntriesStartAsTheFormDefinesThem();
    void physicalKeysReachTheirMatrixBits();
    void symbolicKeysAreTheFallback();
    void functionKeysAndAlt();
    void focusChangeAndMousePressReleaseAllKeys();
    void pagingCalculator();
    void lightPenFollowsTheMouseOverThePicture();
    void fullScreenGeometry();
    void loadBarWidthIsInTwips();
    void openWithNoFileReportsAndCarriesOn();
    void pauseResumeAndResetSequences();
    void optionTogglesRebuildTheMachine();
};

void TScreenTest::menuEntriesStartAsTheFormDefinesThem() {
    Fixture f;
    struct Row {
        const char *name, *caption;
        bool ticked, greyed;
    };
    const Row rows[] = {
        {"xLoadCAS", "Load cas", false, false},
        {"xSaveCAS", "Save cas", false, false},
        {"xLoadSnap", "Load Snap", false, false},
        {"xSaveSnap", "Save Snap", false, false},
        {"xLoadCRT", "Load CRT", false, false},
        {"xUnloadCRT", "Unload", false, false},
        {"xSvaMEX4", "Save MEX4MB", false, true},
        {"xio0", "I/O card 0: Floppy", false, true},
        {"xio1", "I/O card 1: RS232", false, false},
        {"xio2", "I/O card 2: SoundCard", true, false},
        {"xio3", "I/O card 3: (IO3.rom)", false, false},
        {"xSaveScrren", "Save Screen", false, false},
        {"xMemDump", "Memory dump", false, false},
        {"xReset", "Reset", false, false},
        {"xReset2", "Reset2", false, false},
        {"xdiskload", "Disk Load", false, true},
        {"xTapeLoad", "Tape Load", false, false},
        {"xFullsc", "FullScreen", false, false},
        {"xScreenBW", "Screen BW", false, false},
        {"xScreenDIB", "Screen DIB", true, false},
        {"xScreenNoise", "Screen noise", false, false},
        {"xSound", "Sound", true, false},
        {"xNoError", "Ignore CPU error", false, true},
        {"xUnDoc", "Undocumented", true, false},
        {"x32KB", "32K", false, false},
        {"xBasic", "Basic 2.2", false, false},
        {"xS1", "Pause", false, false},
        {"xS2", "0.5x", false, true},
        {"xS3", "Normal", true, false},
        {"xS4", "2x", false, true},
        {"xS5", "4x", false, true},
        {"xS6", "Max", false, false},
        {"xTVCmon", "TVC monitor", false, false},
        {"xDebug", "Z80 monitor", false, false},
        {"xAsse", "Assembler", false, false},
        {"xPrinter", "Printer", false, false},
        {"xSerial", "Serial", false, false},
        {"xsaa", "SAA1099", false, false},
        {"xSN76", "SN76489", false, false},
        {"xYM", "YM3812", false, false},
        {"xYM2", "YM2413", false, false},
        {"xSID", "SID6581", false, false},
        {"xAY3", "AY-3-8910", false, false},
        {"xErrorSim", "ErrorSim", false, false},
        {"xTools", "Tools", false, false},
        {"xHelp", "Help", false, false},
    };
    for (const Row& r : rows) {
        QAction* a = f.w->Item(r.name);
        QVERIFY2(a, r.name);
        QCOMPARE(a->text(), QString(r.caption));
        QCOMPARE(a->isChecked(), r.ticked);
        QCOMPARE(!a->isEnabled(), r.greyed);
    }
    for (const char* sep : {"semmi", "semmi2", "semmi3", "semmi4"})
        QVERIFY(f.w->Item(sep)->isSeparator());
    QCOMPARE(f.w->windowTitle(), QString("LUMEKTVC"));
}

void TScreenTest::physicalKeysReachTheirMatrixBits() {
    Fixture f;
    // X11 key code of a place on the keyboard, and the matrix bit it must set
    // (the Hungarian layout: 0 left of 1, Z and Y swapped, accented letters).
    const struct {
        quint32 scan;
        int row, bit;
    } keys[] = {
        {49, 0, 3},  {10, 0, 6}, {94, 0, 5}, {19, 1, 6},  {20, 1, 3},  {21, 1, 5},  {63, 1, 4},
        {82, 1, 0},  {24, 2, 6}, {29, 2, 4}, {72, 2, 5},  {71, 2, 3},  {34, 3, 3},  {35, 3, 5},
        {73, 3, 4},  {74, 3, 0}, {38, 4, 6}, {86, 4, 5},  {106, 4, 3}, {47, 5, 6},  {51, 5, 5},
        {48, 5, 3},  {36, 5, 4}, {22, 5, 0}, {52, 6, 6},  {66, 6, 5},  {50, 6, 3},  {62, 6, 3},
        {61, 7, 6},  {65, 7, 5}, {37, 7, 4}, {115, 7, 3}, {60, 7, 2},  {59, 7, 1},  {113, 8, 6},
        {114, 8, 5}, {76, 8, 4}, {75, 8, 3}, {116, 8, 2}, {111, 8, 1}, {118, 8, 0},
    };
    for (const auto& k : keys) {
        f.m->run.FrameCount += 1; // each key gets frames of its own, as when running
        SendKey(f.w->PicD, QEvent::KeyPress, k.scan, 0);
        QVERIFY2(f.m->bus.KeyMatrix[k.row] == (1 << k.bit), qPrintable(QString::number(k.scan)));
        f.m->run.FrameCount += 2; // held long enough for the program to see it
        SendKey(f.w->PicD, QEvent::KeyRelease, k.scan, 0);
        QCOMPARE(f.m->bus.KeyMatrix[k.row], uint8_t(0));
    }
}

void TScreenTest::symbolicKeysAreTheFallback() {
    Fixture f;
    SendKey(f.w->PicD, QEvent::KeyPress, 0, Qt::Key_Q);
    QCOMPARE(f.m->bus.KeyMatrix[2], uint8_t(0x40));
    f.m->run.FrameCount += 1; // one key goes down per frame
    SendKey(f.w->PicD, QEvent::KeyPress, 0, Qt::Key_Return);
    QCOMPARE(f.m->bus.KeyMatrix[5], uint8_t(0x10));
    SendKey(f.w->PicD, QEvent::KeyPress, 0, Qt::Key_Escape); // no place: swallowed
    SendKey(f.w->PicD, QEvent::KeyPress, 0, Qt::Key_F11);
    QCOMPARE(f.m->bus.KeyMatrix[2], uint8_t(0x40));
}

void TScreenTest::functionKeysAndAlt() {
    Fixture f;
    SendKey(f.w->PicD, QEvent::KeyPress, 67, Qt::Key_F1, Qt::AltModifier);
    QCOMPARE(f.m->cpu.ResetRequest, 0);
    f.m->run.FrameCount += 1; // one key goes down per frame
    SendKey(f.w->PicD, QEvent::KeyPress, 67, Qt::Key_F1);
    QCOMPARE(f.m->cpu.ResetRequest, 1);
    f.m->cpu.ResetRequest = 0;
    f.m->run.FrameCount += 1;
    SendKey(f.w->PicD, QEvent::KeyPress, 68, Qt::Key_F2);
    QCOMPARE(f.m->cpu.ResetRequest, 1);
    QCOMPARE(f.m->bus.Mem[0x0B22], uint8_t(255));
    // Qt reports the Alt key's own press with Alt held, as after the press.
    f.m->run.FrameCount += 1;
    SendKey(f.w->PicD, QEvent::KeyPress, 64, Qt::Key_Alt);
    QCOMPARE(f.m->bus.KeyMatrix[7], uint8_t(0));
    f.m->run.FrameCount += 1;
    SendKey(f.w->PicD, QEvent::KeyPress, 38, Qt::Key_A, Qt::AltModifier);
    QCOMPARE(f.m->bus.KeyMatrix[4], uint8_t(0));
}

void TScreenTest::focusChangeAndMousePressReleaseAllKeys() {
    Fixture f;
    f.m->bus.KeyMatrix[3] = 0xFF;
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(f.w->PicD, &out);
    QCOMPARE(f.m->bus.KeyMatrix[3], uint8_t(0));
    f.m->bus.KeyMatrix[5] = 0x10;
    QTest::mousePress(f.w->PicD, Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(f.m->bus.KeyMatrix[5], uint8_t(0));
}

void TScreenTest::pagingCalculator() {
    Fixture f;
    TTools* t = f.w->tools;
    QTest::mouseClick(t->pagingArrays[0][2], Qt::LeftButton); // U3 at 0xC000
    QCOMPARE(t->PagingByte(), 0x80);
    QTest::mouseClick(t->pagingArrays[1][1], Qt::LeftButton); // U2 at 0x8000
    QTest::mouseClick(t->pagingArrays[2][2], Qt::LeftButton); // U0 at 0
    QCOMPARE(t->PagingByte(), 0xB0);
    QTest::mouseClick(t->pagingArrays[3][1], Qt::LeftButton); // video at 0x4000
    QCOMPARE(t->Label4->text(), QString("180"));
    QCOMPARE(f.m->bus.PortLatch[2], uint8_t(0)); // shows only, writes nothing
    // The keypad presses by key code: label 33 ("A") is virtual key 65.
    QTest::mousePress(t->Label1[33], Qt::LeftButton);
    QCOMPARE(f.m->bus.KeyMatrix[4], uint8_t(0x40));
    QTest::mouseRelease(t->Label1[33], Qt::LeftButton);
    QCOMPARE(f.m->bus.KeyMatrix[4], uint8_t(0x40)); // a quick tap waits for two frames
    f.m->run.FrameCount += 2;
    f.w->PumpKeys();
    QCOMPARE(f.m->bus.KeyMatrix[4], uint8_t(0));
    QCOMPARE(t->Label2->text(), QString("65"));
}

void TScreenTest::lightPenFollowsTheMouseOverThePicture() {
    Fixture f;
    int32_t* r = f.m->crtc.CrtcReg;
    r[1] = 64, r[2] = 75, r[5] = 2, r[6] = 60, r[7] = 67; // PicD at (64, 40)
    ScreenRedraw(*f.m);
    const QRect picd = PicDRect(*f.m);
    QCOMPARE(picd.topLeft(), QPoint(64, 40));
    // The picture point (64 + 17, 40 + 45) is x 17, y 45 in PicD: row 2, byte 2.
    const QRectF target = f.w->PicD->TargetRect();
    const double sx = target.width() / tvc::kWindowWidth, sy = target.height() / tvc::kWindowHeight;
    QTest::mouseMove(f.w->PicD,
                     QPoint(int(target.left() + (81.5) * sx), int(target.top() + 85.5 * sy)));
    QTest::qWait(20);
    LPENRefresh(*f.m);
    QCOMPARE(f.m->crtc.CrtcReg[16], 0);
    QCOMPARE(f.m->crtc.CrtcReg[17], 2 * 64 + 2);
}

void TScreenTest::fullScreenGeometry() {
    QCOMPARE(FullScreenPictureRect(QSize(1920, 1080), QSize(648, 640)), QRect(524, 108, 872, 864));
    QCOMPARE(FullScreenPictureRect(QSize(1280, 1024), QSize(648, 640)), QRect(228, 104, 824, 816));
    QCOMPARE(FullScreenPictureRect(QSize(10, 5), QSize(648, 640)), QRect(5, 2, 0, 0));
}

// Shape4's width comes in twips, 15 to a pixel, up to the bar's 200 pixels.
void TScreenTest::loadBarWidthIsInTwips() {
    Fixture f;
    auto* shape = f.w->findChild<QFrame*>("Shape4");
    for (int twips : {0, 7, 8, 22, 23, 1500, 2000, 2999, 3000, 100000}) {
        f.w->SetLoadBar(twips);
        const int pixels = std::min(200, int(std::lround(twips / 15.0)));
        QCOMPARE(shape->width(), pixels);
    }
}

void TScreenTest::openWithNoFileReportsAndCarriesOn() {
    Fixture f;
    f.w->Click("xLoadCAS");
    QVERIFY(f.w->Frame1->isVisible());
    QCOMPARE(f.w->Frame1->title(), QString("Open"));
    QVERIFY(!f.w->Frame4->isVisible());
    QTest::mouseClick(f.w->Command2, Qt::LeftButton);
    QVERIFY(!f.w->Frame1->isVisible());
    QCOMPARE(f.host.messages.size(), size_t(1));
    QVERIFY(!f.m->FatalStop);
    f.w->Click("xSaveCAS");
    QCOMPARE(f.w->Frame1->title(), QString("Save"));
    QVERIFY(f.w->Frame4->isVisible());
}

void TScreenTest::pauseResumeAndResetSequences() {
    Fixture f;
    f.m->bus.PortLatch[2] = 0xB0; // NOPs in RAM
    // Pause from inside the running loop, twice over, with a reset between.
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++ticks;
        if (ticks == 1) f.w->Click("xReset");
        if (ticks == 2) f.w->Click("xS1"); // pause: the loop ends
    });
    timer.start(20);
    f.w->Command1Click();
    QVERIFY(f.w->Item("xS1")->isChecked());
    QVERIFY(f.m->run.FrameCount > 0);
    f.w->Click("xReset"); // reset while paused: taken when running again
    QCOMPARE(f.m->cpu.ResetRequest, 1);
    ticks = 1;
    f.w->Click("xS1"); // resume; the timer pauses it again
    QVERIFY(f.w->Item("xS1")->isChecked());
    QVERIFY(f.w->Item("xS3")->isChecked());
    QCOMPARE(f.m->cpu.ResetRequest, 0);
    QCOMPARE(f.m->forms.CPUmon.Command6Color, 255);
}

void TScreenTest::optionTogglesRebuildTheMachine() {
    Fixture f;
    f.m->bus.Mem[0x1000] = 0x77;
    f.w->Click("x32KB");
    QVERIFY(f.m->menu.x32KB);
    QVERIFY(f.w->Item("x32KB")->isChecked());
    QCOMPARE(f.m->bus.Mem[0x1000], uint8_t(0)); // a power cycle
    f.w->Click("xUnDoc");
    QCOMPARE(f.m->cpu.UndocEnabled, 0);
    QVERIFY(!f.w->Item("xUnDoc")->isChecked());
    f.w->Click("xio1");
    QVERIFY(f.m->menu.xio1);
    f.w->Click("xio0"); // greyed: nothing happens
    QVERIFY(!f.m->menu.xio0);
    f.w->Click("xS6");
    QVERIFY(f.m->menu.xS6);
    f.w->Click("xS3");
    QVERIFY(!f.m->menu.xS3);
    QCOMPARE(f.m->forms.CPUmon.HScroll1, 2);
    f.w->Click("xHelp");
    QVERIFY(f.w->Frame2->isVisible());
    QVERIFY(!f.m->FatalStop);
}

QTEST_MAIN(TScreenTest)
#include "tscreen_uitest.moc"
