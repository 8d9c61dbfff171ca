// The printer, serial and error simulation windows under the offscreen
// platform: reached from the View menu, their controls bound to the core,
// the printer's text through code page 852 and its PDF output.
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QtTest>

#include "hw/MachineSetup.h"
#include "links/Printer.h"
#include "support/TestMachine.h"
#include "ui/UiHost.h"
#include "ui/links/ErrorSim.h"
#include "ui/links/TPrint.h"
#include "ui/links/TSerial.h"
#include "ui/main/TScreen.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

using Fixture = test::WindowFixture;

} // namespace

class LinksTest : public QObject {
    Q_OBJECT
  private slots:
    void viewMenuShowsTheWindows() {
        Fixture f;
        const struct {
            const char* item;
            QWidget* form;
            const char* title;
        } rows[] = {{"xPrinter", f.w->printer, "Printer"},
                    {"xSerial", f.w->serial, "Serial Port"},
                    {"xErrorSim", f.w->errorSim, "Error simulation"}};
        for (const auto& r : rows) {
            QVERIFY(!r.form->isVisible());
            f.w->Click(r.item);
            QVERIFY(r.form->isVisible());
            QCOMPARE(r.form->windowTitle(), QString(r.title));
        }
    }

    void errorSimControlsDriveTheCore() {
        Fixture f;
        ErrorSim& e = *f.w->errorSim;
        for (int bit : {0, 3, 7}) {
            e.CH0[bit]->click();
        }
        QCOMPARE(int(f.m->forms.ErrorSim.ErrorBits), 0x89);
        e.CH0[3]->click();
        QCOMPARE(int(f.m->forms.ErrorSim.ErrorBits), 0x81);
        for (int i : {2, 0, 1}) {
            e.Option1[i]->click();
            QCOMPARE(f.m->forms.ErrorSim.Option1, i);
        }
        e.Check1->click();
        QCOMPARE(f.m->bus.VideoErrorEnabled, 1);
        e.Check1->click();
        QCOMPARE(f.m->bus.VideoErrorEnabled, 0);
        QCheckBox* banks[] = {e.Check2, e.Check3, e.Check4, e.Check5};
        bool ErrorSimControls::*fields[] = {&ErrorSimControls::Check2, &ErrorSimControls::Check3,
                                            &ErrorSimControls::Check4, &ErrorSimControls::Check5};
        for (int i = 0; i < 4; ++i) {
            banks[i]->click();
            QVERIFY(f.m->forms.ErrorSim.*fields[i]);
        }
        QCOMPARE(e.Frame2->title(), QString("Sytem RAM"));
    }

    void printerShowsCodePage852AndPrintsAPdf() {
        Fixture f;
        TPrint& p = *f.w->printer;
        f.w->Click("xPrinter");
        QCOMPARE(p.Combo1->itemText(0), QString("No Printer"));
        QCOMPARE(p.Combo1->itemText(p.Combo1->count() - 1), QString("PDF file"));
        // "Ár" on the machine: 128 is the printer's 181, 'Á' in code page 852.
        for (uint8_t b : {uint8_t(128), uint8_t('r'), uint8_t(13), uint8_t(10), uint8_t(200)})
            Senddata(*f.m, b);
        p.Timer1_Timer();
        QCOMPARE(p.Text1->toPlainText(), QString::fromUtf8("\u00C1r\n."));
        p.Combo1->setCurrentIndex(p.Combo1->count() - 1);
        p.Command1_Click();
        QFile pdf(f.dir.path() / "print.pdf");
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(5) == "%PDF-");
        p.Command2_Click();
        QVERIFY(p.Text1->toPlainText().isEmpty());
        QVERIFY(f.m->printer.Text1.empty());
    }

    void serialTerminalButtons() {
        Fixture f;
        TSerial& s = *f.w->serial;
        QCOMPARE(s.Text3->text(), QString("1200,n,7,1"));
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
};

QTEST_MAIN(LinksTest)
#include "links_uitest.moc"
