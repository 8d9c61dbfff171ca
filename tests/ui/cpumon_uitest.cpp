// The CPU monitor and the trace monitor under the offscreen platform: the
// edit boxes' clamps, the dump layouts, Step as one instruction, the
// breakpoint, Run and Step while running, Load Bin, and the trace.
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
#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"
#include "ui/main/TScreen.h"
#include "ui/UiHost.h"
#include "ui/monitors/CPUmon.h"
#include "ui/monitors/assmon.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

using test::UiHost;

constexpr int32_t kOrg = 0x8000;

struct Fixture {
    test::ScratchDir dir;
    UiHost host;
    std::unique_ptr<Machine> m = std::make_unique<Machine>(host);
    std::unique_ptr<TScreen> w;
    CPUmon* mon = nullptr;
    Fixture() {
        test::WriteRomSet(dir);
        MachineInit(*m);
        MachineReset(*m);
        m->bus.PortLatch[2] = 0xB0; // RAM everywhere
        MemoryMapChanged(*m);
        w = std::make_unique<TScreen>(*m);
        host.window = w.get();
        w->Click("xDebug");
        mon = w->cpumon;
    }
    void Load(int32_t address, const std::vector<uint8_t>& bytes) {
        for (size_t i = 0; i < bytes.size(); ++i)
            MemWrite(*m, address + int32_t(i), bytes[i]);
        m->cpu.RegPC = address;
    }
};

void Enter(QLineEdit* box, const QString& text) {
    box->setText(text);
    QTest::keyClick(box, Qt::Key_Return);
}

QStringList Rows(const QLabel* l) {
    return l->text().split('\n');
}

bool IsRed(const QPushButton* b) {
    return b->styleSheet().contains("#ff0000");
}

} // namespace

class CPUmonTest : public QObject {
    Q_OBJECT
  private slots:
    void registerBoxesClampOnEnter();
    void breakpointAndDumpStartBoxes();
    void dumpLayouts();
    void stepPerformsExactlyOneInstruction();
    void breakpointStopsThenRegistersChangeAndRunGoesOn();
    void runAndStepWhileRunningStartNoSecondLoop();
    void noRunAfterTheMainWindowClosed();
    void lineAndMemoryButtons();
    void loadBinFromTheFileList();
    void timerFollowsARunningProgramOnly();
    void windowsOpenAndCloseAsForms();
    void traceMonitorPrintsBlocksWhileVisibleAndNotHeld();
};

void CPUmonTest::registerBoxesClampOnEnter() {
    Fixture f;
    Z80& c = f.m->cpu;
    c.FlagY = 1, c.FlagX2 = 1;
    struct Row {
        RegBox box;
        int index;
        const char* typed;
        int32_t Z80::*field;
        int32_t stored;
        const char* shown;
    };
    const Row rows[] = {
        {RegBox::Text1, 0, "1FF", &Z80::RegA, 0xFF, "FF"},
        {RegBox::Text1, 13, "7f", &Z80::RegL2, 0x7F, "7F"},
        {RegBox::Text1, 1, "zz", &Z80::RegB, 0, "00"}, // bad text is 0
        {RegBox::Text3, 3, "12345", &Z80::RegPC, 0xFFFF, "FFFF"},
        {RegBox::Text3, 1, "FFFFFFFF", &Z80::RegSP, 0, "0000"}, // -1 held at 0
        {RegBox::Text3, 4, "1FF", &Z80::RegI, 0x1FF, "1FF"},    // the word clamp for I too
        {RegBox::Text2, 0, "5", &Z80::FlagS, 1, "1"},
        {RegBox::Text2, 7, "0", &Z80::FlagC, 0, "0"},
        {RegBox::Text2, 2, "0", &Z80::FlagY, 1, "1"}, // copies: shown, not stored
        {RegBox::Text2, 12, "0", &Z80::FlagX2, 1, "1"},
        {RegBox::Text2, 9, "0", &Z80::FlagZ2, 0, "0"},
        {RegBox::Text4, 0, "2", &Z80::IFF1, 0, "0"},
        {RegBox::Text4, 1, "3", &Z80::IFF2, 1, "1"},
        {RegBox::Text4, 2, "7", &Z80::IntMode, 3, "3"},
    };
    for (const Row& r : rows) {
        QLineEdit* box = r.box == RegBox::Text1   ? f.mon->Text1[r.index]
                         : r.box == RegBox::Text2 ? f.mon->Text2[r.index]
                         : r.box == RegBox::Text3 ? f.mon->Text3[r.index]
                                                  : f.mon->Text4[r.index];
        const int32_t before = c.*r.field;
        box->setText(r.typed); // typing alone changes nothing
        QCOMPARE(c.*r.field, before);
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(c.*r.field, r.stored);
        QCOMPARE(box->text(), QString(r.shown));
    }
    QCOMPARE(f.mon->TextA[0]->text(), QString("1")); // A = FF
    Enter(f.mon->Text1[0], "80");
    QCOMPARE(f.mon->TextA[7]->text(), QString("1"));
    QCOMPARE(f.mon->TextA[0]->text(), QString("0"));
}

void CPUmonTest::breakpointAndDumpStartBoxes() {
    Fixture f;
    Enter(f.mon->Text5, "C000");
    QCOMPARE(f.mon->Text5->text(), QString("49152"));
    QCOMPARE(f.m->forms.CPUmon.Text5, std::string("49152"));
    Enter(f.mon->Text5, "nonsense");
    QCOMPARE(f.mon->Text5->text(), QString("0"));
    const struct {
        const char *typed, *kept;
    } starts[] = {{"70000", "65535"}, {"-3", "0"}, {"65535", "65535"}, {"abc", "abc"}};
    for (const auto& s : starts) {
        f.mon->Text10->setText(s.typed);
        QCOMPARE(f.mon->Text10->text(), QString(s.kept));
    }
    f.mon->VScroll1->setValue(3);
    QCOMPARE(f.mon->Text10->text(), QString("48"));
    QCOMPARE(Rows(f.mon->Picture2).at(0).left(7), QString("00030: "));
    f.mon->VScroll2->setValue(2);
    QCOMPARE(f.mon->Text11->text(), QString("32"));
    QCOMPARE(Rows(f.mon->Picture3).at(0).left(7), QString("00020: "));
}

void CPUmonTest::dumpLayouts() {
    Fixture f;
    QCOMPARE(f.mon->MemHeading->text(),
             QString(" Mem:  00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ................"));
    QCOMPARE(f.mon->PortHeading->text(),
             QString(" Port: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ................"));
    std::vector<uint8_t> top(16, 0x00);
    top[0] = 'T', top[1] = 'V', top[2] = 'C', top[3] = 0x80, top[4] = 0x01, top[15] = 0x81;
    f.Load(0xFFF0, top);
    for (int p = 0x50; p < 0x60; ++p)
        f.m->bus.PortLatch[p] = 0xFF;
    f.m->bus.PortLatch[0x59] = 0xA5;
    f.mon->Text10->setText("65530");
    f.mon->Text11->setText("80");
    f.mon->redraw();
    const QStringList mem = Rows(f.mon->Picture2);
    QCOMPARE(mem.size(), 8);
    QCOMPARE(mem[0].left(25), QString("0FFFA: 00 00 00 00 00 81 "));
    for (int row = 1; row < 8; ++row) {
        QCOMPARE(mem[row].left(7),
                 QString("%1: ").arg(0xFFFA + row * 16, 5, 16, QChar('0')).toUpper());
        QCOMPARE(mem[row].mid(7, 48), QString("81 ").repeated(16)); // the top byte repeated
        QCOMPARE(mem[row].mid(55), QString("É").repeated(16));
        QCOMPARE(mem[row].size(), f.mon->MemHeading->text().size());
    }
    f.mon->Text10->setText("65520");
    f.mon->redraw();
    QVERIFY(Rows(f.mon->Picture2).at(0).endsWith("TVCÁ...........É"));

    const QStringList ports = Rows(f.mon->Picture3);
    QCOMPARE(ports.size(), 8);
    QCOMPARE(ports[0],
             QString("00050: ") + QString("FF ").repeated(9) + "A5 " + QString("FF ").repeated(6));
    QCOMPARE(ports[0].size() + 16, f.mon->PortHeading->text().size());
    QCOMPARE(Rows(f.mon->Picture1).size(), 10);
    QCOMPARE(Rows(f.mon->Picture4).size(), 10);
}

void CPUmonTest::stepPerformsExactlyOneInstruction() {
    Fixture f;
    f.Load(kOrg, {0x3E, 0x05, 0x00, 0xFD, 0xF3, 0x00}); // LD A,5; NOP; the stop pair
    const int32_t count = f.m->run.InstCount;
    const struct {
        int32_t pc;
        const char* next;
    } steps[] = {{kOrg + 2, " 8002 "}, {kOrg + 3, " 8003 "}, {kOrg + 5, " 8005 "}};
    for (const auto& s : steps) {
        QTest::mouseClick(f.mon->Command7, Qt::LeftButton);
        QCOMPARE(f.m->cpu.RegPC, s.pc);
        QCOMPARE(f.m->run.RunFlag, uint8_t(0));
        QVERIFY(Rows(f.mon->Picture1).at(0).startsWith(s.next)); // disassembly follows RegPC
        QCOMPARE(f.mon->Text3[3]->text(), QString::fromStdString(Hex4(s.pc)));
        QVERIFY(IsRed(f.mon->Command6));
    }
    QCOMPARE(f.m->cpu.RegA, 5);
    QCOMPARE(f.m->run.InstCount, count + 3);
    QCOMPARE(f.mon->Text8->text(), QString::number(count + 3));
    QVERIFY(Rows(f.mon->Picture4).at(9).startsWith(" 8003 "));
    QVERIFY(Rows(f.mon->Picture4).at(8).startsWith(" 8002 "));
    QCOMPARE(f.host.beeps.size(), size_t(1)); // the pair's stop beep

    // Run from the start: the pair stops the machine behind it.
    f.m->cpu.RegPC = kOrg;
    QTest::mouseClick(f.mon->Command1, Qt::LeftButton);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 5);
    QCOMPARE(f.m->run.RunFlag, uint8_t(0));
    QVERIFY(IsRed(f.mon->Command6));
}

void CPUmonTest::breakpointStopsThenRegistersChangeAndRunGoesOn() {
    Fixture f;
    std::vector<uint8_t> code(0x40, 0x00);
    code[0x20] = 0xFD, code[0x21] = 0xF3; // ends the run should the breakpoint not
    f.Load(kOrg, code);
    QVERIFY(!f.mon->Frame8->isVisible());
    f.mon->Check4->click();
    QCOMPARE(f.m->run.BreakpointArmed, uint8_t(1));
    QVERIFY(f.mon->Frame8->isVisible());
    f.mon->Check2->click();
    QVERIFY(f.m->forms.CPUmon.Check2);
    Enter(f.mon->Text5, "8010");
    QTest::mouseClick(f.mon->Command1, Qt::LeftButton);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 0x10); // stopped on the next instruction's address
    QVERIFY(IsRed(f.mon->Command6));
    QVERIFY(Rows(f.mon->Picture1).at(0).startsWith(" 8010 "));

    Enter(f.mon->Text1[0], "42"); // change a register, then run on
    Enter(f.mon->Text3[3], "8018");
    QTest::mouseClick(f.mon->Command1, Qt::LeftButton);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 0x22);
    QCOMPARE(f.m->cpu.RegA, 0x42);

    f.mon->Check4->click(); // disarmed: the address no longer stops
    QCOMPARE(f.m->run.BreakpointArmed, uint8_t(0));
    QVERIFY(!f.mon->Frame8->isVisible());
    f.m->cpu.RegPC = kOrg;
    QTest::mouseClick(f.mon->Command1, Qt::LeftButton);
    QCOMPARE(f.m->cpu.RegPC, kOrg + 0x22);
}

void CPUmonTest::runAndStepWhileRunningStartNoSecondLoop() {
    Fixture f;
    f.Load(kOrg, {0x18, 0xFE}); // JR to itself
    int ticks = 0, runReturnedAtTick = -1;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++ticks;
        if (ticks == 1) {
            f.mon->Command1_Click(); // running already: returns at once
            runReturnedAtTick = ticks;
            QCOMPARE(f.m->run.RunFlag, uint8_t(1));
        }
        if (ticks == 2) {
            timer.stop();
            f.mon->Command7_Click(); // Step while running stops it
        }
    });
    timer.start(10);
    f.mon->Command1_Click();
    timer.stop();
    QCOMPARE(runReturnedAtTick, 1);
    QVERIFY(ticks >= 2);
    QVERIFY(!f.m->run.Running);
    QCOMPARE(f.m->cpu.RegPC, kOrg);
    QVERIFY(IsRed(f.mon->Command6));
}

void CPUmonTest::noRunAfterTheMainWindowClosed() {
    Fixture f;
    f.Load(kOrg, {0x18, 0xFE});
    f.w->close();
    QVERIFY(f.w->QuitRequested());
    const int32_t count = f.m->run.InstCount;
    f.mon->Command1_Click();
    f.mon->Command7_Click();
    QCOMPARE(f.m->run.InstCount, count);
}

void CPUmonTest::lineAndMemoryButtons() {
    Fixture f;
    Z80& c = f.m->cpu;
    c.IFF1 = 0;
    struct Row {
        QPushButton* button;
        int32_t Z80::*field;
        int32_t after;
    };
    const Row rows[] = {
        {f.mon->Command4, &Z80::IrqRequest, 0}, // INT with IFF1 at 0 does nothing
        {f.mon->Command11, &Z80::IFF1, 1},        {f.mon->Command4, &Z80::IrqRequest, 1},
        {f.mon->Command10, &Z80::IFF1, 0},        {f.mon->Command2, &Z80::NmiRequest, 1},
        {f.mon->Command5, &Z80::ResetRequest, 1},
    };
    for (const Row& r : rows) {
        QTest::mouseClick(r.button, Qt::LeftButton);
        QCOMPARE(c.*r.field, r.after);
    }
    f.mon->Text12->setText("49152");
    f.mon->Text13->setText("171");
    QTest::mouseClick(f.mon->Command3, Qt::LeftButton);
    QCOMPARE(MemRead(*f.m, 0xC000), 171);

    f.m->run.RunFlag = 1, c.TStates = 99, f.m->run.TotalT = 12345;
    QTest::mouseClick(f.mon->Command6, Qt::LeftButton);
    QCOMPARE(f.m->run.RunFlag, uint8_t(0));
    QCOMPARE(c.TStates, 0);
    QCOMPARE(f.m->run.TotalT, int64_t(0));
}

void CPUmonTest::loadBinFromTheFileList() {
    Fixture f;
    f.dir.Write("prog.bin", {0x3E, 0x42, 0xFD, 0xF3});
    f.dir.Write("notes.txt", {0x00});
    f.m->bus.PortLatch[2] = 0xB0; // U0 at 0: the loaded bytes are what runs there
    MemoryMapChanged(*f.m);
    QTest::mouseClick(f.mon->Command8, Qt::LeftButton);
    QVERIFY(f.mon->File1->isVisible());
    QVERIFY(f.mon->File1->findItems("notes.txt", Qt::MatchExactly).isEmpty());
    QVERIFY(!f.mon->File1->findItems("TVC12_D4.rom", Qt::MatchExactly).isEmpty());
    const auto items = f.mon->File1->findItems("prog.bin", Qt::MatchExactly);
    QCOMPARE(items.size(), 1);
    const QRect r = f.mon->File1->visualItemRect(items[0]);
    QTest::mouseClick(f.mon->File1->viewport(), Qt::LeftButton, {}, r.center());
    QVERIFY(!f.mon->File1->isVisible());
    QCOMPARE(f.m->bus.Mem[1], uint8_t(0x42));

    f.m->cpu.RegPC = 0;
    f.mon->Command7_Click();
    QCOMPARE(f.m->cpu.RegA, 0x42);
    f.mon->Command7_Click();
    QCOMPARE(f.m->cpu.RegPC, 4);

    QTest::mouseClick(f.mon->Command8, Qt::LeftButton);
    QTest::mouseClick(f.mon->Command8, Qt::LeftButton); // the same button hides it
    QVERIFY(!f.mon->File1->isVisible());
}

void CPUmonTest::timerFollowsARunningProgramOnly() {
    Fixture f;
    f.mon->redraw();
    f.m->cpu.RegPC = 0x1234;
    f.mon->Timer1_Timer(); // stopped: the boxes stay as they were drawn
    QCOMPARE(f.mon->Text3[3]->text(), QString("0000"));
    QCOMPARE(f.mon->Label3->text(), QString("0.000"));
    f.m->run.RunFlag = 1;
    f.m->run.TotalT += 62500LL * 10000;
    f.mon->Timer1_Timer();
    QCOMPARE(f.mon->Text3[3]->text(), QString("1234"));
    QVERIFY(f.mon->Label3->text() != "0.000");
    f.m->run.RunFlag = 0;
}

void CPUmonTest::windowsOpenAndCloseAsForms() {
    Fixture f;
    QVERIFY(f.mon->isVisible());
    QCOMPARE(f.mon->windowTitle(), QString("Z80mon"));
    QVERIFY(!f.mon->close()); // closing hides the form and keeps it
    QVERIFY(!f.mon->isVisible());
    f.w->Click("xDebug");
    QVERIFY(f.mon->isVisible());
    QTest::mouseClick(f.mon->Command12, Qt::LeftButton);
    QVERIFY(f.mon->Trace()->isVisible());
    QCOMPARE(f.mon->Trace()->windowTitle(), QString("TVC- (Monitor)"));
    // The stop from the run loop reaches the form through the host.
    f.m->forms.CPUmon.Command6Color = 255;
    f.host.MonitorRedraw();
    QVERIFY(IsRed(f.mon->Command6));
    f.m->forms.CPUmon.Check4 = true; // the fields decide what the boxes show
    f.m->forms.CPUmon.Text5 = "100";
    f.mon->redraw();
    QVERIFY(f.mon->Check4->isChecked());
    QCOMPARE(f.mon->Text5->text(), QString("100"));
}

void CPUmonTest::traceMonitorPrintsBlocksWhileVisibleAndNotHeld() {
    Fixture f;
    assmon* t = f.mon->Trace();
    t->Timer1_Timer(); // hidden: nothing
    QVERIFY(t->Text->toPlainText().isEmpty());
    t->show();
    t->Timer1_Timer();
    QCOMPARE(t->Text->toPlainText(), QString::fromStdString(TraceBlock(f.m->cpu)));
    t->Timer1_Timer();
    QCOMPARE(t->Text->document()->blockCount(), 8);
    QTest::keyClick(t, Qt::Key_Return);
    QVERIFY(t->Check1->isChecked());
    t->Timer1_Timer(); // held
    QCOMPARE(t->Text->document()->blockCount(), 8);
}

QTEST_MAIN(CPUmonTest)
#include "cpumon_uitest.moc"
