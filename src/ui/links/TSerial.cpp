#include "ui/links/TSerial.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include "core/Machine.h"
#include "core/MonitorText.h"

namespace tvc::ui {

namespace {

constexpr int kTimer1Ms = 20;

QString Latin(const std::string& bytes, size_t from = 0) {
    QString s;
    for (size_t i = from; i < bytes.size(); ++i) {
        const auto b = static_cast<uint8_t>(bytes[i]);
        if (b == 13) continue; // CR LF shows as one line end
        s += QChar(char16_t(Cp852Char(b)));
    }
    return s;
}

} // namespace

TSerial::TSerial(Machine& m, QWidget* owner) : QWidget(owner, Qt::Window), m_(m) {
    setObjectName("TSerial");
    setWindowTitle("Serial Port");
    auto* grid = new QGridLayout(this);
    auto button = [this](QPushButton*& b, const char* name, const char* caption) {
        b = new QPushButton(caption, this);
        b->setObjectName(name);
        return b;
    };
    Text1 = new QPlainTextEdit(this);
    Text1->setObjectName("Text1");
    Text1->setReadOnly(true);
    Text1->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    Text2 = new QLineEdit(this);
    Text2->setObjectName("Text2");
    Text3 = new QLineEdit("1200,n,7,1", this);
    Text3->setObjectName("Text3");
    Label1 = new QLabel("Buffer out:", this);
    Label1->setObjectName("Label1");
    Label2 = new QLabel("Buffer in: ", this);
    Label2->setObjectName("Label2");
    Label3 = new QLabel(this);
    Label3->setObjectName("Label3");
    Label3->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid->addWidget(Text1, 0, 0, 1, 4);
    grid->addWidget(Label1, 1, 0);
    grid->addWidget(Label2, 1, 1);
    grid->addWidget(Label3, 1, 2, 1, 2);
    grid->addWidget(Text3, 2, 0);
    grid->addWidget(button(Command5, "Command5", "OPEN"), 2, 1);
    grid->addWidget(button(Command1, "Command1", "CLOSE"), 2, 2);
    grid->addWidget(button(Command2, "Command2", "Clear"), 2, 3);
    grid->addWidget(new QLabel("PTZ PelcoP Address 1", this), 3, 0);
    grid->addWidget(button(Command3, "Command3", "bal"), 3, 1);
    grid->addWidget(button(Command4, "Command4", "jobb"), 3, 2);
    grid->addWidget(button(Command6, "Command6", "fel"), 3, 3);
    grid->addWidget(button(Command7, "Command7", "le"), 4, 3);
    grid->addWidget(Text2, 4, 0, 1, 2);
    grid->addWidget(button(Command8, "Command8", "CTRL+C"), 4, 2);
    grid->addWidget(button(Command9, "Command9", "Send"), 5, 3);
    connect(Command2, &QPushButton::clicked, this, &TSerial::Command2_Click);
    connect(Command3, &QPushButton::clicked, this, &TSerial::Command3_Click);
    connect(Command8, &QPushButton::clicked, this, &TSerial::Command8_Click);
    connect(Command9, &QPushButton::clicked, this, &TSerial::Command9_Click);
    resize(520, 360);

    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    connect(Timer1, &QTimer::timeout, this, &TSerial::Timer1_Timer);
    Timer1->start(kTimer1Ms);
}

void TSerial::Timer1_Timer() {
    SerialPump(m_);
    if (!isVisible()) return;
    ShowReceived();
    Label1->setText(QString("Buffer out: %1").arg(m_.serial.SerialTx.size()));
    Label2->setText(QString("Buffer in: %1").arg(m_.serial.SerialRx.size()));
    const std::string pty = SerialPtyName(m_);
    Label3->setText(pty.empty() ? QString("no bridge") : QString::fromStdString(pty));
}

// The view follows the core's text, which keeps the last 64 KB.
void TSerial::ShowReceived() {
    const TSerialControls& f = m_.forms.TSerial;
    const uint64_t fresh = f.Text1Total - shown_;
    if (fresh == 0) return;
    if (fresh >= f.Text1.size() ||
        Text1->document()->characterCount() > int(2 * kSerialViewBytes)) {
        Text1->setPlainText(Latin(f.Text1));
    } else {
        QTextCursor c = Text1->textCursor();
        c.movePosition(QTextCursor::End);
        c.insertText(Latin(f.Text1, f.Text1.size() - fresh));
        Text1->setTextCursor(c);
    }
    shown_ = f.Text1Total;
    Text1->moveCursor(QTextCursor::End);
}

void TSerial::Command2_Click() {
    Text1->clear();
    Text2->clear();
    m_.forms.TSerial.Text1.clear();
    m_.forms.TSerial.Text2.clear();
    shown_ = m_.forms.TSerial.Text1Total;
}

void TSerial::Command3_Click() {
    m_.forms.TSerial.Text2 = std::string("\x43\xFE\x00", 3);
    Text2->setText(Latin(m_.forms.TSerial.Text2));
}

void TSerial::Command8_Click() {
    m_.forms.TSerial.Text2 = "\x03\x0D";
    Text2->setText(Latin(m_.forms.TSerial.Text2));
}

void TSerial::Command9_Click() {
    m_.forms.TSerial.Text2.clear();
    Text2->clear();
}

} // namespace tvc::ui
