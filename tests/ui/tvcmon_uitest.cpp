// The hardware monitor under the offscreen platform: opened from the View
// menu, its boxes bound (Record is the tape's record switch) to the fields the emulation reads,
// Clear, and its timer following a running program.
#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QtTest>
#include <filesystem>

#include "core/HwMonitor.h"
#include "core/RunLoop.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"
#include "ui/UiHost.h"
#include "ui/main/TScreen.h"
#include "ui/monitors/TVCmon.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

struct Fixture : test::WindowFixture {
    TVCmon* mon = nullptr;
    Fixture() : WindowFixture(0xB0) { // RAM everywhere
        m->menu.xS6 = true;           // Max pace: no audio player to wait for
        w->Click("xTVCmon");
        mon = w->tvcmon;
    }
    QLabel* Field(const std::string& group, const std::string& caption) {
        const auto all = HwMonitorFields(*m);
        for (size_t i = 0; i < all.size(); ++i)
            if (all[i].group == group && all[i].caption == caption) return mon->fields.at(i);
        return nullptr;
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

} // namespace

class TVCmonTest : public QObject {
    Q_OBJECT
  private slots:
    void menuOpensTheMonitor() {
        Fixture f;
        QVERIFY(f.mon->isVisible());
        QCOMPARE(f.mon->windowTitle(), QString("HW Monitor"));
        QCOMPARE(f.mon->List4->item(0)->text(), QString(kFdcLogTitle));
        QCOMPARE(f.Field("Slot ID (Port 90)", "Slot 0")->text(), QString("Slot 0: Empty"));
    }

    void boxesBindTheirFields() {
        Fixture f;
        QVERIFY(f.mon->Check3->isChecked());
        f.mon->Check3->click();
        QVERIFY(!f.m->forms.TVCmon.Check3);
        QVERIFY(!std::filesystem::exists(f.dir.path() / "save.wav"));
        f.mon->Check1->click();
        QVERIFY(f.m->forms.TVCmon.Check1);
        QVERIFY(f.m->tape.Out != nullptr);
        f.mon->Check1->click();
        QVERIFY(!f.m->forms.TVCmon.Check1);
        QVERIFY(f.m->tape.Out == nullptr);
        // A finished wave file: at least its 44-byte header.
        QVERIFY(std::filesystem::file_size(f.dir.path() / "save.wav") >= 44);
    }

    void clearEmptiesTheLog() {
        Fixture f;
        int32_t v = 0x10;
        PortOut(*f.m, 0x10, v);
        PortIn(*f.m, 0x13);
        f.mon->redraw();
        QCOMPARE(f.mon->List4->count(), 3);
        QCOMPARE(f.mon->List4->item(1)->text(), QString("CMD Seek: 00"));
        f.mon->Command1->click();
        QCOMPARE(f.m->fdc.List4.size(), size_t(0));
        QCOMPARE(f.mon->List4->count(), 1);
        PortIn(*f.m, 0x14);
        f.mon->redraw();
        QCOMPARE(f.mon->List4->item(1)->text(), QString("Read HW status REG:80"));
    }

    void updatesWhileAProgramRuns() {
        Fixture f;
        QLabel* track = f.Field("FD1793", "Track");
        QCOMPARE(track->text(), QString("Track: 00"));
        QString seen;
        QTimer::singleShot(500, [&] { seen = track->text(); });
        // LD A,2Ah; OUT (11h),A; JR $
        f.RunFor(0x8000, {0x3E, 0x2A, 0xD3, 0x11, 0x18, 0xFE}, 700);
        QCOMPARE(seen, QString("Track: 2A"));
    }

    void untickingIntEnabledStopsTheToneInterrupt() {
        for (bool enabled : {false, true}) {
            Fixture f;
            if (!enabled) f.mon->Check3->click();
            f.m->bus.PortLatch[5] = 0x20; // the tone's interrupt enable
            f.m->bus.PortLatch[0x59] = 0xFF;
            f.m->cpu.IFF1 = 0;
            f.RunFor(0x8000, {0x18, 0xFE}, 200); // JR $
            QCOMPARE(bool(f.m->bus.PortLatch[0x59] & 0x10), !enabled);
        }
    }
};

QTEST_MAIN(TVCmonTest)
#include "tvcmon_uitest.moc"
