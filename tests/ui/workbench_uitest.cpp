// The assembler window under the offscreen platform, one test per user path:
// open, format and save; compile and run to *BREAK with the listing following
// Step; the opcode help and the edit buttons; picture import. What the tools
// compute is the core tests' business: here, that each control reaches it.
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>
#include <filesystem>
#include <fstream>

#include "asm/TextLib.h"
#include "hw/Memory.h"
#include "ui/UiHost.h"
#include "ui/monitors/CPUmon.h"
#include "ui/workbench/asse.h"

using namespace tvc;
using namespace tvc::ui;

namespace {

struct Fixture : test::WindowFixture {
    asse* a = nullptr;
    Fixture() : WindowFixture(0xB0) {
        w->Click("xAsse");
        a = w->workbench;
    }
    void Open(const char* type, const QString& name) {
        a->xOpen_Click();
        a->Combo1->setCurrentText(type);
        const auto items = a->File1->findItems(name, Qt::MatchExactly);
        QVERIFY2(!items.isEmpty(), qPrintable(name));
        a->File1->itemDoubleClicked(items[0]);
    }
};

std::string Slurp(const char* file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The colour of the character at `pos` in the editor, red in the low byte.
int32_t ColourAt(QTextEdit* e, int pos) {
    QTextCursor c(e->document());
    c.setPosition(pos + 1);
    const QColor q = c.charFormat().foreground().color();
    return q.red() | q.green() << 8 | q.blue() << 16;
}

std::string Example(const char* name) {
    return (std::filesystem::path(TVC_SOURCE_DIR) / "examples" / name).string();
}

} // namespace

class WorkbenchTest : public QObject {
    Q_OBJECT
  private slots:
    void openFormatAndSave();
    void compileRunToBreakAndStepFollows();
    void helpAndEditButtons();
    void importPictures();
};

void WorkbenchTest::openFormatAndSave() {
    Fixture f;
    std::ofstream("w1250.asm", std::ios::binary) << "X:\r\nDB \"\xC1\" 'c";
    std::ofstream("pic.bmp", std::ios::binary) << "BM";
    f.Open("asm", "w1250.asm");
    const QString text = QString::fromUtf8("X:\nDB \"\xC3\x81\" 'c");
    QCOMPARE(f.a->RText1->toPlainText(), text);
    QCOMPARE(f.a->Text16->text(), QString("w1250.asm"));
    f.Open("picture", "pic.bmp"); // not decodable: the text stays
    QCOMPARE(f.a->RText1->toPlainText(), text);
    QCOMPARE(f.host.messages.back().text, std::string("File Open error!"));
    QTextCursor c = f.a->RText1->textCursor();
    c.setPosition(5);
    f.a->RText1->setTextCursor(c);
    f.a->xFormat_Click();
    QCOMPARE(f.a->RText1->textCursor().position(), 5);
    QCOMPARE(ColourAt(f.a->RText1, 10), 0x379B37);
    f.a->xSave_Click();
    QCOMPARE(f.a->Command[14]->text(), QString("SAVE"));
    f.a->Text16->setText("w1250.asm"); // overwritten without a question
    f.a->Command[14]->click();
    QCOMPARE(Slurp("w1250.asm"), std::string("X:\r\nDB \"\xC3\x81\" 'c"));
}

void WorkbenchTest::compileRunToBreakAndStepFollows() {
    Fixture f;
    std::filesystem::copy_file(Example("count.asm"), "count.asm");
    f.Open("asm", "count.asm");
    f.a->Command[1]->click();
    QCOMPARE(f.a->Text13->text().left(10), QString("Completed:"));
    f.a->Check2->setChecked(true);
    QVERIFY(f.a->RText2->isVisible());
    f.a->Command[6]->click();
    QCOMPARE(f.m->cpu.RegPC, 10000);
    f.a->Command[13]->click(); // RUN CPU: stops behind the first *BREAK
    QCOMPARE(f.m->cpu.RegPC, 10000 + 2 + 2 + 2);
    f.w->Click("xDebug");
    f.w->cpumon->Command7->click(); // Step: INC A, the listing marks DJNZ
    QCOMPARE(f.a->RText2->textCursor().selectedText(),
             QString("0x" + QString::fromStdString(Hex4(10007))));
    QTest::mouseDClick(f.a->RText2->viewport(), Qt::LeftButton);
    QVERIFY(Slurp("RichTextBox.rtf").find("DJNZ @LOOP\\par") != std::string::npos);
    // A bad line: red boxes and the line selected.
    f.a->RText1->setPlainText("NOP\nLD A,256\nNOP");
    f.a->Command[1]->click();
    QCOMPARE(f.a->Text13->palette().color(QPalette::Base), QColor(0xFF, 0x80, 0x80));
    QCOMPARE(f.a->RText1->textCursor().selectedText(), QString("LD A,256"));
    // Double-clicking a label jumps to its definition.
    f.a->RText1->setPlainText("org 10000\nloop:\njr @loop");
    f.a->Command[1]->click();
    f.a->List3->itemDoubleClicked(f.a->List3->item(0));
    QCOMPARE(f.a->RText1->textCursor().selectedText(), QString("loop:"));
}

void WorkbenchTest::helpAndEditButtons() {
    Fixture f;
    f.a->RText1->setFocus();
    QTest::keyClicks(f.a->RText1, "NOP");
    QVERIFY(f.a->Timer1->isActive());
    f.a->Timer1_Timer();
    QCOMPARE(f.a->Label7[5]->text(), QString("unaffected"));
    QTest::keyClick(f.a->RText1, Qt::Key_Return);
    QTest::keyClicks(f.a->RText1, "SLL");
    f.a->Timer1_Timer();
    QCOMPARE(f.a->List2->count(), 0);
    f.a->Check1->click(); // the undocumented rows too
    f.a->Timer1_Timer();
    QVERIFY(f.a->List2->count() > 1);
    QTest::keyClick(f.a->RText1, Qt::Key_F4);
    QVERIFY(f.a->RText1->toPlainText().endsWith("SLL@"));
    f.a->Text5->setText("255"); // the calculator
    QTest::keyClick(f.a->Text5, Qt::Key_Return);
    QCOMPARE(f.a->Text6->text(), QString("FF"));
    const std::pair<int, const char*> buttons[] = {
        {11, "X: EQU 5"}, {4, "X: EQU 5"}, {5, "x: equ 5"}, {2, ""}};
    f.a->RText1->setPlainText("X EQU 5");
    for (auto [button, text] : buttons) {
        f.a->Command[size_t(button)]->click();
        QCOMPARE(f.a->RText1->toPlainText(), QString(text));
    }
    MemWrite(*f.m, 10000, 0);
    f.a->Command[8]->click();
    QVERIFY(f.a->Text9->toPlainText().startsWith(" 2710 NOP"));
}

void WorkbenchTest::importPictures() {
    Fixture f;
    QImage half(16, 2, QImage::Format_RGB32); // white left half
    half.fill(Qt::black);
    for (int x = 0; x < 8; ++x)
        half.setPixel(x, 0, qRgb(255, 255, 255));
    QVERIFY(half.save("half.bmp"));
    std::ofstream("bad.bmp", std::ios::binary) << "not a picture";
    f.a->xOpen_Click();
    f.a->Combo1->setCurrentText("picture");
    f.a->File1->itemClicked(f.a->File1->findItems("half.bmp", Qt::MatchExactly)[0]);
    QVERIFY(!f.a->Image1->pixmap().isNull());
    f.a->Command[16]->click();
    QCOMPARE(f.m->bus.Mem[0x10000], uint8_t(0xFF));
    QCOMPARE(f.m->bus.Mem[0x10001], uint8_t(0x00));
    QCOMPARE(f.m->bus.PortLatch[6] & 3, 2);
    f.a->File1->itemClicked(f.a->File1->findItems("bad.bmp", Qt::MatchExactly)[0]);
    QCOMPARE(f.host.messages.back().text, std::string("File Open error!"));
}

QTEST_MAIN(WorkbenchTest)
#include "workbench_uitest.moc"
