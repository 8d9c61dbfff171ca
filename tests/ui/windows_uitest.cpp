// The windows reached from the View menu, under the offscreen platform: each
// opens with its caption and is made once; each form's controls change the
// core fields they are bound to (and show them back); and the path a user
// takes through each: the hardware monitor following a program, the printer's
// text and PDF, the serial terminal, the chip panels' keyboard, pictures and
// recording, and the tape deck.
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTimer>
#include <QtTest>
#include <filesystem>

#include "core/HwMonitor.h"
#include "core/RunLoop.h"
#include "hw/Ports.h"
#include "links/Printer.h"
#include "sound/ChipPanels.h"
#include "ui/UiHost.h"
#include "ui/links/ErrorSim.h"
#include "ui/links/TPrint.h"
#include "ui/links/TSerial.h"
#include "ui/media/TTape.h"
#include "ui/monitors/TVCmon.h"
#include "ui/panels/FSID.h"
#include "ui/panels/FSN76489.h"
#include "ui/panels/FYM3812.h"
#include "ui/panels/Fsaa.h"
#include "ui/panels/T8910.h"

using namespace tvc;
using namespace tvc::ui;
namespace fs = std::filesystem;

namespace {

struct Fixture : test::WindowFixture {
    Fixture() : WindowFixture(0xB0) { // RAM everywhere
        m->menu.xS6 = true;           // Max pace: no audio player to wait for
    }
    template <class T> T* Open(const char* item) {
        w->Click(item);
        return dynamic_cast<T*>(w->Panel(item));
    }
    // Runs the program at `pc` for about `ms` milliseconds of host time.
    void RunFor(int32_t pc, const std::vector<uint8_t>& program, int ms) {
        for (size_t i = 0; i < program.size(); ++i)
            MemWrite(*m, pc + int32_t(i), program[i]);
        m->cpu.RegPC = pc;
        QTimer::singleShot(ms, [this] { m->run.RunFlag = 0; });
        m->run.RunFlag = 1;
        RunLoop(*m);
    }
};

// The one window with this caption; nullptr when there is none or several.
QWidget* Window(const QString& caption) {
    QWidget* found = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->windowTitle() == caption) {
            if (found) return nullptr;
            found = w;
        }
    return found;
}

void Out(Machine& m, int port, int value) {
    int32_t v = value;
    PortOut(m, port, v);
}

} // namespace

class WindowsTest : public QObject {
    Q_OBJECT
  private slots:
    void menuOpensEachWindowOnceWithItsCaption() {
        Fixture f;
        const std::pair<const char*, const char*> rows[] = {
            {"xTVCmon", "HW Monitor"},  {"xPrinter", "Printer"},
            {"xSerial", "Serial Port"}, {"xErrorSim", "Error simulation"},
            {"xDebug", "Z80mon"},       {"xAsse", "Assembler"},
            {"xTapeLoad", "Tape"},      {"xTools", "Tools"},
            {"xsaa", "SAA1099P"},       {"xSN76", "SN76489"},
            {"xYM", "YM3812"},          {"xYM2", "YM2413"},
            {"xSID", "SID_6581"},       {"xAY3", "AY-3-8910"}};
        for (auto [item, caption] : rows) {
            QVERIFY2(!Window(caption) || !Window(caption)->isVisible(), item);
            f.w->Click(item);
            QWidget* shown = Window(caption);
            QVERIFY2(shown && shown->isVisible(), item);
            shown->hide();
            f.w->Click(item); // the same window again
            QCOMPARE(Window(caption), shown);
            QVERIFY(shown->isVisible());
        }
    }

    void hwMonitorBoxesLogAndRunningProgram() {
        Fixture f;
        f.w->Click("xTVCmon");
        TVCmon* mon = f.w->tvcmon;
        // Record is the tape's record switch: a wave file while it is on.
        mon->Check1->click();
        QVERIFY(f.m->forms.TVCmon.Check1 && f.m->tape.Out != nullptr);
        mon->Check1->click();
        QVERIFY(!f.m->forms.TVCmon.Check1 && f.m->tape.Out == nullptr);
        QVERIFY(mon->Check3->isChecked());
        mon->Check3->click();
        QVERIFY(!f.m->forms.TVCmon.Check3);

        Out(*f.m, 0x10, 0x10);
        mon->redraw();
        QCOMPARE(mon->List4->item(1)->text(), QString("CMD Seek: 00"));
        mon->Command1->click(); // Clear
        QCOMPARE(f.m->fdc.List4.size(), size_t(0));
        QCOMPARE(mon->List4->count(), 1);

        QLabel* track = nullptr;
        const auto fields = HwMonitorFields(*f.m);
        for (size_t i = 0; i < fields.size(); ++i)
            if (fields[i].group == "FD1793" && fields[i].caption == "Track") track = mon->fields[i];
        QVERIFY(track);
        QString seen;
        QTimer::singleShot(500, [&] { seen = track->text(); });
        f.RunFor(0x8000, {0x3E, 0x2A, 0xD3, 0x11, 0x18, 0xFE}, 700); // LD A,2Ah; OUT (11h),A; JR $
        QCOMPARE(seen, QString("Track: 2A"));
    }

    void errorSimControlsDriveTheCore() {
        Fixture f;
        ErrorSim& e = *f.w->errorSim;
        e.CH0[0]->click();
        e.CH0[7]->click();
        QCOMPARE(int(f.m->forms.ErrorSim.ErrorBits), 0x81);
        e.CH0[7]->click();
        QCOMPARE(int(f.m->forms.ErrorSim.ErrorBits), 0x01);
        e.Option1[2]->click();
        QCOMPARE(f.m->forms.ErrorSim.Option1, 2);
        e.Check1->click();
        QCOMPARE(f.m->bus.VideoErrorEnabled, 1);
        e.Check5->click();
        QVERIFY(f.m->forms.ErrorSim.Check5);
    }

    void printerShowsCodePage852AndPrintsAPdf() {
        Fixture f;
        TPrint& p = *f.w->printer;
        f.w->Click("xPrinter");
        // 128 is the printer's 181, 'Á' in code page 852.
        for (uint8_t b : {uint8_t(128), uint8_t(13), uint8_t(10)})
            Senddata(*f.m, b);
        p.Timer1_Timer();
        QCOMPARE(p.Text1->toPlainText(), QString::fromUtf8("\u00C1\n"));
        QCOMPARE(p.Combo1->itemText(p.Combo1->count() - 1), QString("PDF file"));
        p.Combo1->setCurrentIndex(p.Combo1->count() - 1);
        p.Command1_Click();
        QFile pdf(f.dir.path() / "print.pdf");
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(5) == "%PDF-");
        p.Command2_Click();
        QVERIFY(p.Text1->toPlainText().isEmpty() && f.m->printer.Text1.empty());
    }

    void serialTerminalButtons() {
        Fixture f;
        TSerial& s = *f.w->serial;
        s.Command8_Click();
        QCOMPARE(f.m->forms.TSerial.Text2, std::string("\x03\x0D"));
        s.Command9_Click();
        QVERIFY(f.m->forms.TSerial.Text2.empty());
        f.m->forms.TSerial.Text1 = "abc";
        f.m->forms.TSerial.Text1Total = 3;
        f.w->Click("xSerial");
        s.Timer1_Timer();
        QCOMPARE(s.Text1->toPlainText(), QString("abc"));
        s.Command2_Click();
        QVERIFY(f.m->forms.TSerial.Text1.empty());
    }

    void panelBoxesAndBarsAreBoundBothWays() {
        Fixture f;
        // Every panel binds its controls by name through ChipPanel: a box and
        // a bar on a few panels, indexed names among them, stand for the rest.
        ChipPanel* saa = f.Open<Fsaa>("xsaa");
        ChipPanel* sn = f.Open<FSN76489>("xSN76");
        ChipPanel* ym = f.Open<FYM3812>("xYM");
        auto* sid = f.Open<FSID>("xSID");
        Controls& c = f.m->forms;
        const struct {
            ChipPanel* panel;
            const char* name;
            bool* field;
        } boxes[] = {{saa, "Check2", &c.Fsaa.Check2}, {ym, "Check2_5", &c.FYM3812.Check2[5]}};
        for (const auto& r : boxes) {
            auto* box = r.panel->findChild<QCheckBox*>(r.name);
            QVERIFY2(box, r.name);
            const bool before = *r.field;
            box->click();
            QCOMPARE(*r.field, !before);
            *r.field = before; // and back from the core
            r.panel->Sync();
            QCOMPARE(box->isChecked(), before);
        }
        const struct {
            ChipPanel* panel;
            const char* name;
            int* field;
            int lo, hi;
        } bars[] = {{sn, "HScroll3_1", &c.FSN76489.HScroll3[1], 1, 1023},
                    {sid, "HScroll5", &c.FSID.HScroll5, 1, 1200}};
        for (const auto& r : bars) {
            auto* bar = r.panel->findChild<QScrollBar*>(r.name);
            QVERIFY2(bar, r.name);
            QCOMPARE(bar->minimum(), r.lo);
            QCOMPARE(bar->maximum(), r.hi);
            bar->setValue(r.hi);
            QCOMPARE(*r.field, r.hi);
            *r.field = r.lo;
            r.panel->Sync();
            QCOMPARE(bar->value(), r.lo);
        }
        QVERIFY(!sid->Frame4->isVisible());
        sid->Check8->click(); // "Exp" shows the experimental filters
        QVERIFY(sid->Frame4->isVisible());
        QTest::keyClicks(sid->Text2, "54296");
        QTest::keyClicks(sid->Text3, "9");
        sid->Command1->click();
        QCOMPARE(f.m->sid.SidRegs[24], 9);
    }

    void ymKeyboardAndEditorWriteTheChip() {
        Fixture f;
        FYM3812* ym = f.Open<FYM3812>("xYM");
        const uint8_t* regs = f.m->ym.YmRegs;
        ym->Picture1->setFocus();
        QTest::keyPress(ym->Picture1, Qt::Key_H, Qt::NoModifier);
        QCOMPARE(int(regs[0xB0]), 0x30);
        QTest::keyRelease(ym->Picture1, Qt::Key_H, Qt::NoModifier);
        QCOMPARE(int(regs[0xB0]), 16);
        ym->Text1[5]->setText("4b"); // register 0x80: sustain 4, release 11
        QTest::keyClick(ym->Text1[5], Qt::Key_Return);
        QCOMPARE(ym->findChild<QScrollBar*>("HScroll1_5")->value(), 4);
        QCOMPARE(int(regs[0x80]), 0x4B);
    }

    // Pictures come with the block at BlockIndex 4, from chips that sounded,
    // on panels that are shown; "Record" copies the recording to record.wav.
    void saaPicturesAndRecord() {
        Fixture f;
        Machine& m = *f.m;
        Fsaa* saa = f.Open<Fsaa>("xsaa");
        T8910* ay = f.Open<T8910>("xAY3");
        FSN76489* sn = f.Open<FSN76489>("xSN76");
        sn->hide();
        for (auto [reg, value] : {std::pair{0, 0xFF}, {8, 100}, {16, 3}, {20, 1}, {28, 1}}) {
            Out(m, 0xFF, reg);
            Out(m, 0xFE, value);
        }
        Out(m, 0xFD, 0x90);     // tone 1 loud: the SN76489 renders too
        m.sound.BlockIndex = 3; // a block that draws nothing
        SoundMix(m);
        f.w->PumpPanels();
        QCOMPARE(saa->Pic1[0]->GreenPixels(), 0);
        SoundMix(m);
        f.w->PumpPanels();
        QVERIFY(saa->Pic1[0]->GreenPixels() > ScopeView::kWidth); // a square wave: edges too
        QCOMPARE(ay->Pic1[0]->GreenPixels(), 0);
        QCOMPARE(sn->Pic1[0]->GreenPixels(), 0);

        fs::copy_file(fs::path(TVC_FIRMWARE_DIR) / "techno.wav", "techno.wav");
        saa->Command1->click();
        QCOMPARE(m.forms.Fsaa.Command1Color, 255);
        QCOMPARE(fs::file_size("record.wav"), fs::file_size("techno.wav"));
        saa->Command1->click();
        QCOMPARE(m.forms.Fsaa.Command1Color, 0xFFFFFF);
    }

    void tapeDeckButtonsCounterAndReels() {
        test::TestMachine t;
        std::vector<uint8_t> wav(44 + 10, 255);
        wav[43] = 30;
        t.dir->Write("Deck.wav", wav);
        TTape deck(t.m(), nullptr, nullptr);
        deck.Timer1->stop();
        deck.Command9->click();
        QCOMPARE(deck.File1->count(), 1);
        deck.File1DblClick(deck.File1->item(0));
        QCOMPARE(deck.Label3->text(), QString("deck.wav"));
        QCOMPARE(TapeSample(t.m()), 1);
        const struct {
            QPushButton* button;
            int speed;
            const char* counter;
        } rows[] = {{deck.Command1, -40, "0"}, {deck.Command2, 10, "7"}, {deck.Command3, 40, "0"}};
        for (const auto& r : rows) {
            deck.Label1->setText("7");
            r.button->click();
            QCOMPARE(deck.Speed, r.speed);
            QCOMPARE(deck.Label1->text(), QString(r.counter));
        }
        // Motor on: the counter rises, Label5 = Label1 div 50.
        t.m().bus.PortLatch[5] = 0x40;
        deck.Label1->setText("149");
        deck.Timer1Tick();
        QCOMPARE(deck.Label1->text(), QString("150"));
        QCOMPARE(deck.Label5->text(), QString("3"));
    }
};

QTEST_MAIN(WindowsTest)
#include "windows_uitest.moc"
