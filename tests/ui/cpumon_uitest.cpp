// The CPU monitor and the trace monitor under the offscreen platform: the
// edit boxes' clamps, the dumps, Step as one instruction, the breakpoint,
// Run and Step while running, the line buttons, Load Bin, and the trace.
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QtTest>

#include "asm/TextLib.h"
#include "core/MonitorText.h"
#include "ui/UiHost.h"
#include "ui/monitors/CPUmon.h"
#include "ui/monitors/assmon.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

constexpr int32_t kOrg = 0x8000;

struct Fixture : test::WindowFixture {
    CPUmon* mon = nullptr;
    Fixture() : WindowFixture(0xB0) { // RAM everywhere
        w->Click("xDebug");
        mon = w->cpumon;
    }
    void Load(int32_t address, const std::vector<uint8_t>& bytes) {
        for (size_t i = 0; i < bytes.size(); ++i)
            MemWrite(*m, address + int32_t(i), bytes[i]);
        m->cpu.RegPC = address;
    }
    void Click(QPushButton* b) { QTest::mouseClick(b, Qt::LeftButton); }
    bool Stopped() const { return mon->Command6->styleSheet().contains("#ff0000"); }
};

void Enter(QLineEdit* box, const QString& text) {
    box->setText(text);
    QTest::keyClick(box, Qt::Key_Return);
}

QString Row(const QLabel* l, int row) {
    return l->text().split('\n').value(row);
}

} // namespace

class CPUmonTest : public QObject {
    Q_OBJECT
  private slots:
    void boxesClampWhatIsTyped();
    void stepRunsOneInstructionAndThePairStops();
    void breakpointStopsThenRegistersChangeAndRunGoesOn();
    void runAndStepWhileRunningStartNoSecondLoop();
    void lineButtons();
    void loadBinFromTheFileList();
    void closingHidesAndTheTraceFollows();
};

void CPUmonTest::boxesClampWhatIsTyped() {
    Fixture f;
    Z80& c = f.m->cpu;
    c.FlagY = 1;
    const struct {
        QLineEdit* box;
        const char* typed;
        int32_t Z80::*field;
        int32_t stored;
        const char* shown;
    } rows[] = {
        {f.mon->Text1[0], "1FF", &Z80::RegA, 0xFF, "FF"},
        {f.mon->Text3[1], "FFFFFFFF", &Z80::RegSP, 0, "0000"}, // -1 held at 0
        {f.mon->Text2[2], "0", &Z80::FlagY, 1, "1"},           // a copy: shown, not stored
        {f.mon->Text4[2], "7", &Z80::IntMode, 3, "3"},
    };
    for (const auto& r : rows) {
        r.box->setText(r.typed);
        QTest::keyClick(r.box, Qt::Key_Return);
        QCOMPARE(c.*r.field, r.stored);
        QCOMPARE(r.box->text(), QString(r.shown));
    }
    Enter(f.mon->Text5, "C000"); // the breakpoint, shown in decimal
    QCOMPARE(f.m->forms.CPUmon.Text5, std::string("49152"));
    for (auto [typed, kept] : {std::pair{"70000", "65535"}, {"-3", "0"}, {"abc", "abc"}}) {
        f.mon->Text10->setText(typed);
        QCOMPARE(f.mon->Text10->text(), QString(kept));
    }
    // The memory dump runs on past the top of memory: MemRead's own wrap.
    f.Load(0xFFF0, {'T', 'V', 'C', 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x81});
    f.mon->Text10->setText("65520");
    f.mon->redraw();
    QVERIFY(Row(f.mon->Picture2, 0).endsWith("TVCÁ...........É"));
    QCOMPARE(Row(f.mon->Picture2, 1).mid(7, 48), QString("81 ").repeated(16));
}

void CPUmonTest::stepRunsOneInstructionAndThePairStops() {
    Fixture f;
    f.Load(kOrg, {0x3E, 0x05, 0x00, 0xFD, 0xF3, 0x00}); // LD A,5; NOP; the stop pair
    const int32_t count = f.m->run.InstCount;
    for (int32_t pc : {kOrg + 2, kOrg + 3, kOrg + 5}) {
        f.Click(f.mon->Command7);
        QVERIFY(Row(f.mon->Picture1, 0).startsWith(" " + QString::fromStdString(Hex4(pc)) + " "));
        QCOMPARE(f.mon->Text3[3]->text(), QString::fromStdString(Hex4(pc)));
        QVERIFY(f.Stopped());
    }
    QCOMPARE(f.mon->Text8->text(), QString::number(count + 3));
    QVERIFY(Row(f.mon->Picture4, 9).startsWith(" 8003 ")); // the last ones run
    f.m->cpu.RegPC = kOrg;
    f.Click(f.mon->Command1); // Run: the pair stops the machine behind it
    QCOMPARE(f.m->cpu.RegPC, kOrg + 5);
    QCOMPARE(f.m->run.RunFlag, uint8_t(0));
}

void CPUmonTest::breakpointStopsThenRegistersChangeAndRunGoesOn() {
    Fixture f;
    std::vector<uint8_t> code(0x40, 0x00);
    code[0x20] = 0xFD, code[0x21] = 0xF3; // ends the run should the breakpoint not
    f.Load(kOrg, code);
    f.mon->Check4->click();
    QCOMPARE(f.m->run.BreakpointArmed, uint8_t(1));
    QVERIFY(f.mon->Frame8->isVisible());
    f.mon->Check2->click();
    Enter(f.mon->Text5, "8010");
    f.Click(f.mon->Command1);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 0x10);
    QVERIFY(f.Stopped());
    Enter(f.mon->Text1[0], "42"); // change a register, then run on
    Enter(f.mon->Text3[3], "8018");
    f.Click(f.mon->Command1);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 0x22);
    QCOMPARE(f.m->cpu.RegA, 0x42);
    f.mon->Check4->click(); // disarmed: the address no longer stops
    QVERIFY(!f.m->run.BreakpointArmed && !f.mon->Frame8->isVisible());
    f.m->cpu.RegPC = kOrg;
    f.Click(f.mon->Command1);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 0x22);
}

void CPUmonTest::runAndStepWhileRunningStartNoSecondLoop() {
    Fixture f;
    f.Load(kOrg, {0x18, 0xFE}); // JR to itself
    int ticks = 0, runReturnedAtTick = -1;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++ticks == 1) {
            f.mon->Command1_Click(); // running already: returns at once
            runReturnedAtTick = ticks;
        } else {
            timer.stop();
            f.mon->Command7_Click(); // Step while running stops it
        }
    });
    timer.start(10);
    f.mon->Command1_Click();
    QCOMPARE(runReturnedAtTick, 1);
    QVERIFY(!f.m->run.Running && f.Stopped());
    QCOMPARE(f.m->cpu.RegPC, kOrg);
    // Once the main window is closed, neither starts a run.
    f.w->close();
    const int32_t count = f.m->run.InstCount;
    f.mon->Command1_Click();
    f.mon->Command7_Click();
    QCOMPARE(f.m->run.InstCount, count);
}

void CPUmonTest::lineButtons() {
    Fixture f;
    Z80& c = f.m->cpu;
    c.IFF1 = 0;
    const struct {
        QPushButton* button;
        int32_t Z80::*field;
        int32_t after;
    } rows[] = {
        {f.mon->Command4, &Z80::IrqRequest, 0}, // INT with IFF1 at 0 does nothing
        {f.mon->Command11, &Z80::IFF1, 1},        {f.mon->Command4, &Z80::IrqRequest, 1},
        {f.mon->Command10, &Z80::IFF1, 0},        {f.mon->Command2, &Z80::NmiRequest, 1},
        {f.mon->Command5, &Z80::ResetRequest, 1},
    };
    for (const auto& r : rows) {
        f.Click(r.button);
        QCOMPARE(c.*r.field, r.after);
    }
}

void CPUmonTest::loadBinFromTheFileList() {
    Fixture f;
    f.dir.Write("prog.bin", {0x3E, 0x42, 0xFD, 0xF3});
    f.dir.Write("notes.txt", {0x00});
    f.Click(f.mon->Command8);
    QVERIFY(f.mon->File1->findItems("notes.txt", Qt::MatchExactly).isEmpty());
    const auto items = f.mon->File1->findItems("prog.bin", Qt::MatchExactly);
    QCOMPARE(items.size(), 1);
    const QRect r = f.mon->File1->visualItemRect(items[0]);
    QTest::mouseClick(f.mon->File1->viewport(), Qt::LeftButton, {}, r.center());
    QVERIFY(!f.mon->File1->isVisible());
    f.m->cpu.RegPC = 0;
    f.mon->Command7_Click(); // what was loaded at 0 is what runs there
    QCOMPARE(f.m->cpu.RegA, 0x42);
}

void CPUmonTest::closingHidesAndTheTraceFollows() {
    Fixture f;
    f.m->forms.CPUmon.Command6Color = 255; // the run loop's stop, through the host
    f.host.MonitorRedraw();
    QVERIFY(f.Stopped());
    f.m->run.RunFlag = 1; // the timer follows a running program only
    f.m->run.TotalT += 62500LL * 10000;
    f.m->cpu.RegPC = 0x1234;
    f.mon->Timer1_Timer();
    QCOMPARE(f.mon->Text3[3]->text(), QString("1234"));
    f.m->run.RunFlag = 0;
    QVERIFY(!f.mon->close()); // closing hides the form and keeps it
    QVERIFY(!f.mon->isVisible());

    f.Click(f.mon->Command12);
    assmon* t = f.mon->Trace();
    QCOMPARE(t->windowTitle(), QString("TVC- (Monitor)"));
    t->Timer1_Timer();
    QCOMPARE(t->Text->toPlainText(), QString::fromStdString(TraceBlock(f.m->cpu)));
    QTest::keyClick(t, Qt::Key_Return); // held
    QVERIFY(t->Check1->isChecked());
    t->Timer1_Timer();
    QCOMPARE(t->Text->document()->blockCount(), 4);
}

QTEST_MAIN(CPUmonTest)
#include "cpumon_uitest.moc"
