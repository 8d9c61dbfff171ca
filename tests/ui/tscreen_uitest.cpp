// The main window under the offscreen platform: keys into the matrix, the paging calculator, the
// light pen, the full-screen geometry, the load bar, the file dialog, pause and reset, and the
// options that rebuild the machine.
#include <QAction>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include "ui/UiHost.h"
#include "ui/main/FScreen.h"
#include "ui/main/Picture.h"
#include "ui/main/ScreenView.h"
#include "ui/main/TTools.h"
#include "video/Screen.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

struct Fixture : test::WindowFixture {
    Fixture() {
        w->show();
        QVERIFY(QTest::qWaitForWindowExposed(w.get()));
    }
    // A key event to the picture, in a frame of its own: one key goes down
    // a frame, and is held two frames for the program to see it.
    void Key(QEvent::Type type, quint32 scan, int qtKey, Qt::KeyboardModifiers mods = {}) {
        m->run.FrameCount += 2;
        QKeyEvent e(type, qtKey, mods, scan, 0, 0);
        QApplication::sendEvent(w->PicD, &e);
    }
};

} // namespace

class TScreenTest : public QObject {
    Q_OBJECT
  private slots:
    void keysReachTheMatrixUntilTheMouseLetsGo();
    void pagingCalculatorAndKeypad();
    void lightPenFollowsTheMouseOverThePicture();
    void fullScreenGeometryAndLoadBar();
    void openWithNoFileReportsAndCarriesOn();
    void pauseResumeAndResetSequences();
    void optionTogglesRebuildTheMachine();
};

void TScreenTest::keysReachTheMatrixUntilTheMouseLetsGo() {
    Fixture f;
    uint8_t* matrix = f.m->bus.KeyMatrix;
    // X11 key code of a place on the Hungarian layout and its matrix bit
    // (0 left of 1, Z where Y is on other layouts), or symbolic keys alone;
    // the key map's own test walks the rest of the layout.
    const struct {
        quint32 scan;
        int qtKey, row, bit;
    } keys[] = {{49, 0, 0, 3}, {52, 0, 6, 6}, {0, Qt::Key_Q, 2, 6}, {0, Qt::Key_Return, 5, 4}};
    for (const auto& k : keys) {
        f.Key(QEvent::KeyPress, k.scan, k.qtKey);
        QVERIFY2(matrix[k.row] == (1 << k.bit), qPrintable(QString::number(k.scan)));
        f.Key(QEvent::KeyRelease, k.scan, k.qtKey);
        QCOMPARE(matrix[k.row], uint8_t(0));
    }
    f.Key(QEvent::KeyPress, 0, Qt::Key_Escape); // no place: swallowed
    f.Key(QEvent::KeyPress, 64, Qt::Key_Alt);   // Alt's own press comes with Alt held
    f.Key(QEvent::KeyPress, 38, Qt::Key_A, Qt::AltModifier);
    f.Key(QEvent::KeyPress, 67, Qt::Key_F1, Qt::AltModifier);
    QVERIFY(std::all_of(matrix, matrix + kKeyRows, [](uint8_t b) { return b == 0; }));
    QCOMPARE(f.m->cpu.ResetRequest, 0);
    f.Key(QEvent::KeyPress, 68, Qt::Key_F2); // reset, and the warm start's flag cleared
    QCOMPARE(f.m->cpu.ResetRequest, 1);
    QCOMPARE(f.m->bus.Mem[0x0B22], uint8_t(255));

    matrix[5] = 0x10;
    QTest::mousePress(f.w->PicD, Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(matrix[5], uint8_t(0));
}

void TScreenTest::pagingCalculatorAndKeypad() {
    Fixture f;
    TTools* t = f.w->tools;
    // U3 at 0xC000, U2 at 0x8000, U0 at 0, video at 0x4000.
    for (auto [field, index] : {std::pair{0, 2}, {1, 1}, {2, 2}, {3, 1}})
        QTest::mouseClick(t->pagingArrays[field][index], Qt::LeftButton);
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
    QCOMPARE(PicDRect(*f.m).topLeft(), QPoint(64, 40));
    // The picture point (64 + 17, 40 + 45) is x 17, y 45 in PicD: row 2, byte 2.
    const QRectF target = f.w->PicD->TargetRect();
    const double sx = target.width() / tvc::kWindowWidth, sy = target.height() / tvc::kWindowHeight;
    QTest::mouseMove(f.w->PicD,
                     QPoint(int(target.left() + 81.5 * sx), int(target.top() + 85.5 * sy)));
    QTest::qWait(20);
    LPENRefresh(*f.m);
    QCOMPARE(f.m->crtc.CrtcReg[16], 0);
    QCOMPARE(f.m->crtc.CrtcReg[17], 2 * 64 + 2);
}

// The picture keeps its aspect, centred; Shape4's width comes in twips, 15
// to a pixel, up to the bar's 200 pixels.
void TScreenTest::fullScreenGeometryAndLoadBar() {
    QCOMPARE(FullScreenPictureRect(QSize(1920, 1080), QSize(648, 640)), QRect(524, 108, 872, 864));
    Fixture f;
    QCOMPARE(f.w->windowTitle(), QString("LUMEKTVC"));
    for (int twips : {22, 23, 100000}) {
        f.w->SetLoadBar(twips);
        QCOMPARE(f.w->Shape4->width(), std::min(200, int(std::lround(twips / 15.0))));
    }
}

void TScreenTest::openWithNoFileReportsAndCarriesOn() {
    Fixture f;
    f.w->Click("xLoadCAS");
    QCOMPARE(f.w->Frame1->title(), QString("Open"));
    QVERIFY(f.w->Frame1->isVisible() && !f.w->Frame4->isVisible());
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
    MemoryMapChanged(*f.m);
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
    QVERIFY(f.w->Item("xS1")->isChecked() && f.w->Item("xS3")->isChecked());
    QCOMPARE(f.m->cpu.ResetRequest, 0);
    QCOMPARE(f.m->forms.CPUmon.Command6Color, 255);
}

void TScreenTest::optionTogglesRebuildTheMachine() {
    Fixture f;
    f.m->bus.Mem[0x1000] = 0x77;
    f.w->Click("x32KB");
    QVERIFY(f.m->menu.x32KB && f.w->Item("x32KB")->isChecked());
    QCOMPARE(f.m->bus.Mem[0x1000], uint8_t(0)); // a power cycle
    f.w->Click("xUnDoc");
    QCOMPARE(f.m->cpu.UndocEnabled, 0);
    QVERIFY(!f.w->Item("xUnDoc")->isChecked());
    f.w->Click("xS6");
    QVERIFY(f.m->menu.xS6);
    f.w->Click("xS3");
    QVERIFY(!f.m->menu.xS3);
    f.w->Click("xHelp");
    QVERIFY(f.w->Frame2->isVisible());
}

QTEST_MAIN(TScreenTest)
#include "tscreen_uitest.moc"
