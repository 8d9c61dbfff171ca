#include "ui/links/TPrint.h"

#include <QComboBox>
#include <QDir>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>

#include "core/Machine.h"
#include "core/MonitorText.h"

namespace tvc::ui {

namespace {
constexpr int kTimer1Ms = 100;
const char* const kNoPrinter = "No Printer";
const char* const kPdfFile = "PDF file";
} // namespace

QString PrinterText(const std::string& bytes, size_t from) {
    QString s;
    s.reserve(qsizetype(bytes.size() - from));
    for (size_t i = from; i < bytes.size(); ++i) {
        const auto b = static_cast<uint8_t>(bytes[i]);
        if (b != 13) s += QChar(char16_t(Cp852Char(b)));
    }
    return s;
}

TPrint::TPrint(Machine& m, QWidget* owner) : QWidget(owner, Qt::Window), m_(m) {
    setObjectName("TPrint");
    setWindowTitle("Printer");
    auto* layout = new QVBoxLayout(this);
    Text1 = new QPlainTextEdit(this);
    Text1->setObjectName("Text1");
    Text1->setReadOnly(true);
    Text1->setLineWrapMode(QPlainTextEdit::NoWrap);
    Text1->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    Combo1 = new QComboBox(this);
    Combo1->setObjectName("Combo1");
    Command1 = new QPushButton("Print", this);
    Command1->setObjectName("Command1");
    Command2 = new QPushButton("Clear", this);
    Command2->setObjectName("Command2");
    auto* row = new QHBoxLayout;
    row->addWidget(Combo1, 1);
    row->addWidget(Command1);
    row->addWidget(Command2);
    layout->addWidget(Text1, 1);
    layout->addLayout(row);
    connect(Command1, &QPushButton::clicked, this, &TPrint::Command1_Click);
    connect(Command2, &QPushButton::clicked, this, &TPrint::Command2_Click);
    resize(560, 420);

    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    connect(Timer1, &QTimer::timeout, this, &TPrint::Timer1_Timer);
    Timer1->start(kTimer1Ms);
}

// The printer list is asked of CUPS when the window is first shown: the
// question can take a while, and start-up does not wait for it.
void TPrint::showEvent(QShowEvent* e) {
    if (!loaded_) Form_Load();
    QWidget::showEvent(e);
}

void TPrint::Form_Load() {
    loaded_ = true;
    Combo1->clear();
    Combo1->addItem(kNoPrinter);
    Combo1->addItems(QPrinterInfo::availablePrinterNames());
    Combo1->addItem(kPdfFile);
    Combo1->setCurrentIndex(0);
}

void TPrint::Timer1_Timer() {
    if (!isVisible()) return;
    const Printer& p = m_.printer;
    const uint64_t total = p.Dropped + p.Text1.size();
    if (total == shown_) return;
    if (shown_ < p.Dropped || total < shown_) {
        Text1->setPlainText(PrinterText(p.Text1));
    } else {
        QTextCursor c = Text1->textCursor();
        c.movePosition(QTextCursor::End);
        c.insertText(PrinterText(p.Text1, size_t(shown_ - p.Dropped)));
    }
    shown_ = total;
    Text1->moveCursor(QTextCursor::End);
}

void TPrint::Command1_Click() {
    const QString choice = Combo1->currentText();
    QPrinter printer(QPrinter::HighResolution);
    if (choice == kPdfFile) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(QDir::current().filePath("print.pdf"));
    } else {
        const QPrinterInfo info = choice == kNoPrinter ? QPrinterInfo::defaultPrinter()
                                                       : QPrinterInfo::printerInfo(choice);
        if (info.isNull()) {
            m_.host->MessageBox("Printer error", kAppTitle, MsgKind::Exclamation);
            return;
        }
        printer.setPrinterName(info.printerName());
    }
    QTextDocument doc;
    QFont font("terminal");
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setFamilies({"terminal", QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
    doc.setDefaultFont(font);
    doc.setPlainText(PrinterText(m_.printer.Text1));
    if (!printer.isValid()) {
        m_.host->MessageBox("Printer error", kAppTitle, MsgKind::Exclamation);
        return;
    }
    doc.print(&printer);
}

void TPrint::Command2_Click() {
    Text1->clear();
    m_.printer.Dropped += m_.printer.Text1.size();
    m_.printer.Text1.clear();
    shown_ = m_.printer.Dropped;
}

} // namespace tvc::ui
