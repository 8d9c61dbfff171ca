// The chip panels under the offscreen platform: opened from the View menu,
// their boxes bound to the core both ways, the pictures after a block at
// BlockIndex 4, the hand control's timer, and "Record".
#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QtTest>
#include <filesystem>

#include "hw/Ports.h"
#include "sound/ChipPanels.h"
#include "support/TestMachine.h"
#include "ui/UiHost.h"
#include "ui/main/TScreen.h"
#include "ui/panels/FSID.h"
#include "ui/panels/FSN76489.h"
#include "ui/panels/FYM2413.h"
#include "ui/panels/FYM3812.h"
#include "ui/panels/Fsaa.h"
#include "ui/panels/T8910.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

void Out(Machine& m, int port, int value) {
    int32_t v = value;
    PortOut(m, port, v);
}

template <class T> T* Open(test::WindowFixture& f, const char* item) {
    f.w->Click(item);
    return dynamic_cast<T*>(f.w->Panel(item));
}

} // namespace

class PanelsTest : public QObject {
    Q_OBJECT
  private slots:
    void menuItemsOpenThePanels() {
        test::WindowFixture f;
        const struct {
            const char* item;
            const char* caption;
        } rows[] = {{"xsaa", "SAA1099P"}, {"xSN76", "SN76489"}, {"xYM", "YM3812"},
                    {"xYM2", "YM2413"},   {"xSID", "SID_6581"}, {"xAY3", "AY-3-8910"}};
        for (const auto& r : rows) {
            QVERIFY(!f.w->panels.count(r.item)); // made on first use
            f.w->Click(r.item);
            ChipPanel* p = f.w->Panel(r.item);
            QVERIFY(p->isVisible());
            QCOMPARE(p->windowTitle(), QString(r.caption));
            p->hide();
            f.w->Click(r.item); // the same one again
            QCOMPARE(f.w->Panel(r.item), p);
            QVERIFY(p->isVisible());
        }
    }

    void boxesAndBarsAreBoundBothWays() {
        test::WindowFixture f;
        Fsaa* saa = Open<Fsaa>(f, "xsaa");
        FSN76489* sn = Open<FSN76489>(f, "xSN76");
        FsaaControls& a = f.m->forms.Fsaa;
        FSN76489Controls& b = f.m->forms.FSN76489;
        ChipPanel* ym = Open<FYM3812>(f, "xYM");
        ChipPanel* ym2 = Open<FYM2413>(f, "xYM2");
        ChipPanel* sid = Open<FSID>(f, "xSID");
        FSIDControls& d = f.m->forms.FSID;
        FYM3812Controls& y = f.m->forms.FYM3812;
        const struct {
            ChipPanel* panel;
            const char* name;
            bool* field;
        } boxes[] = {
            {saa, "Check2", &a.Check2},      {saa, "Check8", &a.Check8},
            {saa, "Check11", &a.Check11},    {saa, "Check1_4", &a.Check1[4]},
            {saa, "Check6_1", &a.Check6[1]}, {sn, "Check3", &b.Check3},
            {sn, "Check2", &b.Check2},       {ym, "Check1_8", &y.Check1[8]},
            {ym, "Check2_5", &y.Check2[5]},  {ym2, "Check7_0", &f.m->forms.FYM2413.Check7[0]},
            {sid, "Check10", &d.Check10},    {sid, "Check9_2", &d.Check9[2]},
            {sid, "Check3", &d.Check3}};
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
        } bars[] = {{saa, "HScroll4_5", &a.HScroll4[5], 0, 255},
                    {saa, "HScroll3_0", &a.HScroll3[0], 0, 7},
                    {saa, "HScroll5_1", &a.HScroll5[1], 0, 3},
                    {sn, "HScroll3_1", &b.HScroll3[1], 1, 1023},
                    {sn, "HScroll3_3", &b.HScroll3[3], 0, 3},
                    {ym, "HScroll1_9", &y.HScroll1[9], 0, 63},
                    {sid, "HScroll5", &d.HScroll5, 1, 1200}};
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
        // "Circuit" trades the controls for the diagram.
        QVERIFY(saa->Frame1->isVisible());
        saa->Check10->click();
        QVERIFY(!saa->Frame1->isVisible());
        QVERIFY(saa->Image1->isVisible());
        // "Exp" shows the experimental filters.
        FSID* s = static_cast<FSID*>(sid);
        QVERIFY(!s->Frame4->isVisible());
        s->Check8->click();
        QVERIFY(s->Frame4->isVisible());
    }

    void ymKeyboardAndEditorWriteTheChip() {
        test::WindowFixture f;
        FYM3812* ym = Open<FYM3812>(f, "xYM");
        const uint8_t* regs = f.m->ym.YmRegs;
        ym->Picture1->setFocus();
        QTest::keyPress(ym->Picture1, Qt::Key_H, Qt::NoModifier);
        QCOMPARE(int(regs[0xA0]), 577 / 3);
        QCOMPARE(int(regs[0xB0]), 0x30);
        QTest::keyRelease(ym->Picture1, Qt::Key_H, Qt::NoModifier);
        QCOMPARE(int(regs[0xB0]), 16);
        auto* mult = ym->findChild<QScrollBar*>("HScroll1_0");
        mult->setValue(9); // any change writes the whole instrument
        QCOMPARE(int(regs[1]), 32);
        QCOMPARE(int(regs[0xBD]), 0xC0);
        QCOMPARE(int(regs[0x20]), 0xE9);
        QCOMPARE(ym->Text1[0]->text(), QString("e9"));
        ym->Text1[5]->setText("4b"); // register 0x80: sustain 4, release 11
        QTest::keyClick(ym->Text1[5], Qt::Key_Return);
        QCOMPARE(ym->findChild<QScrollBar*>("HScroll1_5")->value(), 4);
        QCOMPARE(int(regs[0x80]), 0x4B);
        ym->Command1->click(); // "reset"
        QCOMPARE(int(regs[0x80]), 0);
        ym->Timer1_Timer();
        QCOMPARE(ym->Label1[0x20]->text(), QString("0"));
    }

    void sidWriteBoxReachesThePorts() {
        test::WindowFixture f;
        FSID* sid = Open<FSID>(f, "xSID");
        QTest::keyClicks(sid->Text2, "54296");
        QTest::keyClicks(sid->Text3, "9");
        sid->Command1->click();
        QCOMPARE(f.m->sid.SidRegs[24], 9);
    }

    void picturesFollowTheBlockAtIndexFour() {
        test::WindowFixture f;
        Machine& m = *f.m;
        Fsaa* saa = Open<Fsaa>(f, "xsaa");
        T8910* ay = Open<T8910>(f, "xAY3");
        FSN76489* sn = Open<FSN76489>(f, "xSN76");
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
        SoundMix(m); // BlockIndex 4
        f.w->PumpPanels();
        QVERIFY(saa->Pic1[0]->GreenPixels() > ScopeView::kWidth); // a square wave: edges too
        QCOMPARE(ay->Pic1[0]->GreenPixels(), 0); // the AY stayed silent: no block, no picture
        QCOMPARE(sn->Pic1[0]->GreenPixels(), 0); // hidden: draws nothing
        QVERIFY(!saa->Label8->text().isEmpty());
    }

    void manualTimerWritesTheChip() {
        test::WindowFixture f;
        Fsaa* saa = Open<Fsaa>(f, "xsaa");
        QVERIFY(!saa->Frame1->isEnabled());
        saa->Check2->click();
        QVERIFY(saa->Frame1->isEnabled());
        saa->bil[9]->click();
        QCOMPARE(f.m->forms.Fsaa.HScroll4[0], 227);
        saa->Timer1_Timer();
        QCOMPARE(int(f.m->saa.SaaFreq[0]), 227);
        QCOMPARE(int(f.m->saa.SaaOctave[0]), 3);
    }

    void recordMakesRecordWav() {
        test::WindowFixture f;
        namespace fs = std::filesystem;
        fs::copy_file(fs::path(TVC_FIRMWARE_DIR) / "techno.wav", "techno.wav");
        Fsaa* saa = Open<Fsaa>(f, "xsaa");
        saa->Command1->click();
        QVERIFY(fs::exists("record.wav"));
        QCOMPARE(f.m->forms.Fsaa.Command1Color, 255);
        QCOMPARE(saa->Command1->palette().color(QPalette::Button), QColor(255, 0, 0));
        QCOMPARE(fs::file_size("record.wav"), fs::file_size("techno.wav"));
        saa->Command1->click();
        QCOMPARE(f.m->forms.Fsaa.Command1Color, 0xFFFFFF);
        QCOMPARE(saa->Command1->palette().color(QPalette::Button), QColor(255, 255, 255));
    }
};

QTEST_MAIN(PanelsTest)
#include "panels_uitest.moc"
