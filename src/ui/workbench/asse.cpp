#include "ui/workbench/asse.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QImage>
#include <QPixmap>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <fstream>

#include "asm/AsmText.h"
#include "asm/Assembler.h"
#include "asm/Converter.h"
#include "asm/Disassembler.h"
#include "asm/OpcodeHelp.h"
#include "asm/SourceFiles.h"
#include "asm/SourceFormat.h"
#include "asm/TextLib.h"
#include "core/Machine.h"
#include "ui/decode/PictureDecode.h"
#include "ui/main/TScreen.h"
#include "video/Screen.h"

namespace tvc::ui {

namespace {

constexpr int kTwips = 15;                 // twips to a pixel
constexpr int kFormWidth = 13100 / kTwips; // Form_Load
constexpr int kFrame2Left = 120 / kTwips;
constexpr int kTimer1Ms = 300; // the help follows the last key after this
constexpr int kResPicSide = 512;

// The help panel's text, line by line.
const char* const kHelpLines[] = {
    "Z80 Assembler parancsok:",
    "Az utasítások decimális és hexadecimális értékekeket ",
    "fogadnak el.",
    "LD A,15  LD A,$15",
    "ORG n",
    "(fordítás a megadott címtől)",
    "Címke:",
    "(hivatkozáskor @ van előtte!)",
    "cim:",
    "JP @cim",
    "Speciális debug parancsok:",
    "*INT",
    "(maszkolható interrupt)",
    "*NMI",
    "(nem maszkolható interrupt)",
    "*RESET",
    "(reset)",
    "*BREAK",
    "(futás megszakítás)",
    "DB n",
    "(egy byte az aktuális fordítási camre)",
    "DB 1,2,3....",
    "DB \"szöveg\"",
    "DW n",
    "(egy szó az aktuális fordítási camre)",
    "DW 1,2.3...",
    "DS s,n",
    "feltölt n byte-ot s értékével ",
    "DS 0,255",
    "DS \"x\",255",
    "INCBIN fájl betöltése az aktuális memória címre",
    "INCBIN \"adatok.dat\"",
    "példa:",
    "'program neve",
    "org 10000   'innen indul",
    "*break",
    "ld a,r",
    "out (0),a",
    "jr @ee",
};

const char* const kFlagCaptions[] = {"C:", "N:", "P/V:", "H:", "Z:", "S:"};

// Colours are kept with red in the low byte.
QColor Colour(int32_t c) {
    return QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF);
}

void SetBack(QWidget* w, int32_t colour) {
    QPalette p = w->palette();
    p.setColor(QPalette::Base, Colour(colour));
    p.setColor(QPalette::Window, Colour(colour));
    w->setPalette(p);
    w->setAutoFillBackground(true);
}

QString FromUtf8(const std::string& s) {
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

// CR LF and lone CR as the editor's one line end.
std::string EditorLines(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            out += '\n';
            if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace

asse::asse(TScreen& screen) : QWidget(&screen, Qt::Window), screen_(screen), m_(screen.machine()) {
    setObjectName("asse");
    setWindowTitle("Assembler");
    auto* top = new QVBoxLayout(this);
    top->setContentsMargins(4, 0, 4, 4);
    menu = new QMenuBar(this);
    const std::pair<const char*, void (asse::*)()> items[] = {{"Open", &asse::xOpen_Click},
                                                              {"Save", &asse::xSave_Click},
                                                              {"Edit", &asse::xEdit_Click},
                                                              {"Format", &asse::xFormat_Click},
                                                              {"Help", &asse::xHelp_Click}};
    const char* const names[] = {"xOpen", "xSave", "xEdit", "xFormat", "xHelp"};
    for (size_t i = 0; i < std::size(items); ++i) {
        QAction* a = menu->addAction(items[i].first);
        a->setObjectName(names[i]);
        connect(a, &QAction::triggered, this, items[i].second);
    }
    top->setMenuBar(menu);
    auto* row = new QHBoxLayout;
    row->addWidget(BuildEditor(), 3);
    row->addWidget(BuildSide(), 2);
    top->addLayout(row, 1);
    BuildFilePanel();

    Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    Timer1->setSingleShot(true); // one run per enabling
    Timer1->setInterval(kTimer1Ms);
    connect(Timer1, &QTimer::timeout, this, &asse::Timer1_Timer);

    ResPic = PixelGrid{kResPicSide, kResPicSide,
                       std::vector<int32_t>(size_t(kResPicSide) * kResPicSide, 0), 0};
    resize(kFormWidth, 640);
}

QWidget* asse::BuildEditor() {
    auto* box = new QWidget(this);
    auto* v = new QVBoxLayout(box);
    v->setContentsMargins(0, 0, 0, 0);
    RText1 = new QTextEdit(box);
    RText1->setObjectName("RText1");
    RText1->setAcceptRichText(false);
    RText1->setLineWrapMode(QTextEdit::NoWrap);
    RText1->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    // TAB is typed into the text, never a move to the next control.
    RText1->setTabChangesFocus(false);
    RText1->installEventFilter(this);
    RText1->viewport()->installEventFilter(this);
    SetBack(RText1, 0xFFFFFF);
    RText2 = new QTextEdit(box);
    RText2->setObjectName("RText2");
    RText2->setReadOnly(true);
    RText2->setLineWrapMode(QTextEdit::NoWrap);
    RText2->setFont(RText1->font());
    RText2->viewport()->installEventFilter(this);
    RText2->hide();
    Text4 = new QPlainTextEdit(box);
    Text4->setObjectName("Text4");
    Text4->setReadOnly(true);
    QStringList help;
    for (const char* line : kHelpLines)
        help << QString::fromUtf8(line);
    Text4->setPlainText(help.join('\n'));
    Text4->hide();
    v->addWidget(RText1, 3);
    v->addWidget(RText2, 2);
    v->addWidget(Text4, 2);
    return box;
}

QWidget* asse::BuildSide() {
    auto* side = new QWidget(this);
    auto* g = new QGridLayout(side);
    g->setContentsMargins(0, 0, 0, 0);
    const std::pair<int, const char*> buttons[] = {
        {1, "Compile"},  {6, "RUN"},        {7, "RESET"},          {12, "STOP CPU"},
        {13, "RUN CPU"}, {2, "Clear"},      {3, "Del TABS"},       {4, "Ucase"},
        {5, "Lcase"},    {8, "Disassemly"}, {11, "Convert tvcasm"}};
    void (asse::*const handlers[])() = {
        &asse::Command1_Click,  &asse::Command6_Click,  &asse::Command7_Click,
        &asse::Command12_Click, &asse::Command13_Click, &asse::Command2_Click,
        &asse::Command3_Click,  &asse::Command4_Click,  &asse::Command5_Click,
        &asse::Command8_Click,  &asse::Command11_Click};
    int r = 0;
    for (size_t i = 0; i < std::size(buttons); ++i) {
        auto* b = new QPushButton(buttons[i].second, side);
        b->setObjectName(QString("Command%1").arg(buttons[i].first));
        Command[size_t(buttons[i].first)] = b;
        connect(b, &QPushButton::clicked, this, handlers[i]);
        g->addWidget(b, r + int(i) / 3, int(i) % 3);
    }
    r += 4;
    Check1 = new QCheckBox("Undocumented*", side);
    Check1->setObjectName("Check1");
    Check2 = new QCheckBox("Debug", side);
    Check2->setObjectName("Check2");
    connect(Check1, &QCheckBox::clicked, this, [this] { Timer1->start(); });
    connect(Check2, &QCheckBox::toggled, this, [this](bool on) {
        m_.forms.asse.Check2 = on;
        RText2->setVisible(on);
    });
    g->addWidget(Check1, r, 0);
    g->addWidget(Check2, r, 1);
    ++r;
    auto edit = [&](const char* name, bool readOnly) {
        auto* e = new QLineEdit(side);
        e->setObjectName(name);
        e->setReadOnly(readOnly);
        return e;
    };
    Text13 = edit("Text13", true);
    Text14 = edit("Text14", true);
    g->addWidget(Text13, r, 0, 1, 2);
    g->addWidget(Text14, r, 2);
    ++r;
    Label1 = new QLabel("Size:", side);
    Label2 = new QLabel(side);
    Label2->setObjectName("Label2");
    g->addWidget(Label1, r, 0);
    g->addWidget(Label2, r, 1, 1, 2);
    ++r;
    Text5 = edit("Text5", false);
    Text6 = edit("Text6", false);
    connect(Text5, &QLineEdit::returnPressed, this, &asse::Text5_Enter);
    connect(Text6, &QLineEdit::returnPressed, this, &asse::Text6_Enter);
    auto* calc = new QHBoxLayout;
    calc->addWidget(new QLabel("dec", side));
    calc->addWidget(Text5);
    calc->addWidget(new QLabel("hex", side));
    calc->addWidget(Text6);
    g->addLayout(calc, r++, 0, 1, 3);
    Text15 = edit("Text15", false);
    Text15->setText("10000");
    g->addWidget(Text15, r++, 0);
    Text9 = new QPlainTextEdit(side);
    Text9->setObjectName("Text9");
    Text9->setReadOnly(true);
    Text9->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    g->addWidget(Text9, r++, 0, 1, 3);
    List2 = new QListWidget(side);
    List2->setObjectName("List2");
    connect(List2, &QListWidget::currentRowChanged, this, &asse::List2_Click);
    connect(List2, &QListWidget::itemDoubleClicked, this, &asse::List2_DblClick);
    g->addWidget(List2, r++, 0, 1, 3);
    const std::pair<QLineEdit**, const char*> panel[] = {
        {&Text8, "Opcode:"}, {&Text7, "Size (byte):"}, {&Text10, "Colock cycles:"}};
    const char* const panelNames[] = {"Text8", "Text7", "Text10"};
    for (size_t i = 0; i < 3; ++i) {
        *panel[i].first = edit(panelNames[i], true);
        g->addWidget(new QLabel(panel[i].second, side), r, 0);
        g->addWidget(*panel[i].first, r++, 1, 1, 2);
    }
    Text11 = new QLabel(side);
    Text11->setObjectName("Text11");
    Text11->setWordWrap(true);
    Text11->setMinimumHeight(Text11->fontMetrics().height() * 2);
    g->addWidget(Text11, r++, 0, 1, 3);
    for (size_t i = 0; i < 6; ++i) {
        Label7[i] = new QLabel(side);
        Label7[i]->setObjectName(QString("Label7_%1").arg(i));
        SetBack(Label7[i], 0xFFFF);
        g->addWidget(new QLabel(kFlagCaptions[i], side), r, 0);
        g->addWidget(Label7[i], r++, 1, 1, 2);
    }
    List3 = new QListWidget(side);
    List3->setObjectName("List3");
    QFont lucida("Lucida Console");
    lucida.setStyleHint(QFont::TypeWriter);
    List3->setFont(lucida);
    connect(List3, &QListWidget::itemDoubleClicked, this, &asse::List3_DblClick);
    g->addWidget(List3, r++, 0, 1, 3);
    return side;
}

void asse::BuildFilePanel() {
    Frame2 = new QGroupBox(this);
    Frame2->setObjectName("Frame2");
    Frame2->setAutoFillBackground(true);
    auto* g = new QGridLayout(Frame2);
    Drive1 = new QComboBox(Frame2);
    Drive1->setObjectName("Drive1");
    Drive1->addItem("/");
    Drive1->addItem(QDir::homePath());
    Dir1 = new QListWidget(Frame2);
    Dir1->setObjectName("Dir1");
    File1 = new QListWidget(Frame2);
    File1->setObjectName("File1");
    Combo1 = new QComboBox(Frame2);
    Combo1->setObjectName("Combo1");
    for (const FileType& t : kFileTypes)
        Combo1->addItem(t.item);
    Text16 = new QLineEdit(Frame2);
    Text16->setObjectName("Text16");
    Command[14] = new QPushButton("OPEN", Frame2);
    Command[15] = new QPushButton("CANCEL", Frame2);
    Image1 = new QLabel(Frame2);
    Image1->setObjectName("Image1");
    Image1->setFixedSize(160, 150);
    Image1->setScaledContents(true);
    HScroll1 = new QScrollBar(Qt::Horizontal, Frame2);
    HScroll1->setObjectName("HScroll1");
    HScroll1->setRange(kHScrollMin, kHScrollMax);
    HScroll1->setValue(0);
    g->addWidget(Drive1, 0, 0);
    g->addWidget(Dir1, 1, 0, 3, 1);
    g->addWidget(File1, 0, 1, 4, 1);
    g->addWidget(Combo1, 0, 2);
    g->addWidget(Text16, 1, 2);
    g->addWidget(Command[14], 2, 2);
    g->addWidget(Command[15], 3, 2);
    g->addWidget(Image1, 0, 3, 4, 1);
    auto* importers = new QGridLayout;
    int i = 0;
    for (const ImportButton& b : kImportButtons) {
        auto* button = new QPushButton(b.caption, Frame2);
        Command[size_t(b.number)] = button;
        const int32_t number = b.number;
        connect(button, &QPushButton::clicked, this, [this, number] { Import(number); });
        importers->addWidget(button, i / 4, i % 4);
        ++i;
    }
    importers->addWidget(HScroll1, 2, 0, 1, 4);
    g->addLayout(importers, 4, 0, 1, 4);
    for (int n : {14, 15})
        Command[size_t(n)]->setObjectName(QString("Command%1").arg(n));
    for (const ImportButton& b : kImportButtons)
        Command[size_t(b.number)]->setObjectName(QString("Command%1").arg(b.number));

    connect(Command[14], &QPushButton::clicked, this, &asse::Command14_Click);
    connect(Command[15], &QPushButton::clicked, Frame2, &QWidget::hide);
    connect(Combo1, &QComboBox::currentIndexChanged, this, &asse::Combo1_Click);
    connect(File1, &QListWidget::itemClicked, this, &asse::File1_Click);
    connect(File1, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        File1_Click(item);
        Command14_Click();
    });
    connect(Dir1, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        SetFolder(QDir(folder_).absoluteFilePath(item->text()));
    });
    connect(Drive1, &QComboBox::textActivated, this, &asse::SetFolder);
    pattern_ = kFirstPattern;
    folder_ = QDir::currentPath();
    Frame2->hide();
}

void asse::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The file panel covers the top of the form while it is shown.
    const int top = menu->height();
    Frame2->setGeometry(kFrame2Left, top, width() - 2 * kFrame2Left,
                        std::max(Frame2->sizeHint().height(), height() / 2));
}

bool asse::eventFilter(QObject* watched, QEvent* event) {
    if (!RText1 || !RText2) return QWidget::eventFilter(watched, event); // still being built
    if (watched == RText1 && event->type() == QEvent::KeyPress) {
        auto* k = static_cast<QKeyEvent*>(event);
        if (k->key() == Qt::Key_F4) {
            // F4 puts the label mark at the cursor.
            RText1->textCursor().insertText(QString(QChar(64)));
            return true;
        }
    }
    if (watched == RText1 && event->type() == QEvent::KeyRelease) {
        Timer1->stop();
        Timer1->start();
    }
    if (watched == RText1->viewport() && event->type() == QEvent::MouseButtonRelease)
        Timer1->start();
    if (watched == RText2->viewport() && event->type() == QEvent::MouseButtonDblClick)
        RText2_DblClick();
    return QWidget::eventFilter(watched, event);
}

std::string asse::EditorText() const {
    return RText1->toPlainText().toStdString();
}

void asse::SetEditorText(const std::string& utf8) {
    RText1->setPlainText(FromUtf8(EditorLines(utf8)));
}

void asse::FileError() {
    m_.host->MessageBox(kFileOpenError, "", MsgKind::Plain);
}

// --- compile and run ---------------------------------------------------------

void asse::Command1_Click() {
    AsseControls& a = m_.forms.asse;
    a.RText1 = EditorText();
    // The source turns dark and the boxes green while the passes run.
    SetBack(RText1, 0x535353);
    SetBack(Text13, 0xC0FFC0);
    SetBack(Text14, 0xC0FFC0);
    RText1->repaint();
    Frame2->hide();
    tvc::asse::Command1_Click(m_);
    ShowCompile();
}

void asse::ShowCompile() {
    AsseControls& a = m_.forms.asse;
    SetBack(RText1, a.RText1BackColor);
    Text13->setText(FromUtf8(a.Text13));
    Text14->setText(FromUtf8(a.Text14));
    SetBack(Text13, a.Text13BackColor);
    SetBack(Text14, a.Text14BackColor);
    Label2->setText(FromUtf8(a.Label2));
    List3->clear();
    for (const std::string& e : a.List3)
        List3->addItem(FromUtf8(Cp1250ToUtf8(e)));
    RText2->clear();
    QTextCursor c(RText2->document());
    for (const ListingRun& run : a.RText2) {
        QTextCharFormat f;
        f.setForeground(Colour(run.colour));
        c.insertText(FromUtf8(Cp1250ToUtf8(run.text)), f);
    }
    if (a.ErrorLine > 0) {
        // The bad line is selected in the editor.
        const QTextBlock block = RText1->document()->findBlockByNumber(a.ErrorLine - 1);
        if (block.isValid()) {
            QTextCursor sel(block);
            sel.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
            RText1->setTextCursor(sel);
            if (a.RText1Focus) RText1->setFocus();
        }
    }
}

void asse::Dline(const std::string& text) {
    if (!tvc::Dline(m_, text)) return;
    const AsseControls& a = m_.forms.asse;
    QTextCursor c(RText2->document());
    c.setPosition(std::min(a.RText2SelStart, RText2->document()->characterCount() - 1));
    c.setPosition(
        std::min(a.RText2SelStart + a.RText2SelLength, RText2->document()->characterCount() - 1),
        QTextCursor::KeepAnchor);
    RText2->setTextCursor(c);
    RText2->ensureCursorVisible();
}

void asse::Command6_Click() {
    tvc::asse::Command6_Click(m_);
    screen_.MonitorRedraw();
}
void asse::Command7_Click() {
    tvc::asse::Command7_Click(m_);
    screen_.MonitorRedraw();
}
void asse::Command12_Click() {
    tvc::asse::Command12_Click(m_);
}
void asse::Command13_Click() {
    // A second loop is not started inside a running one.
    if (m_.run.RunFlag == 1) return;
    tvc::asse::Command13_Click(m_);
}

// --- editing ---------------------------------------------------------------

void asse::Command2_Click() {
    RText1->clear();
}
void asse::Command3_Click() {
    RText1->setPlainText(RText1->toPlainText().replace('\t', ' '));
}
void asse::Command4_Click() {
    RText1->setPlainText(RText1->toPlainText().toUpper());
}
void asse::Command5_Click() {
    RText1->setPlainText(RText1->toPlainText().toLower());
}

void asse::Command8_Click() {
    int32_t address = LeadingNumber(Text15->text().toStdString()).value_or(0);
    Text9->setPlainText(FromUtf8(EditorLines(Disassemble(m_, address, 500, 1))));
}

void asse::Command11_Click() {
    SetEditorText(ConvertTvcasm(EditorText()));
}

void asse::xEdit_Click() {
    Frame2->hide();
}

void asse::xFormat_Click() {
    const int start = RText1->textCursor().selectionStart();
    Frame2->hide();
    const std::string text = EditorText();
    RText1->clear();
    QTextCursor c(RText1->document());
    c.beginEditBlock();
    for (const ListingRun& run : Format(text)) {
        QTextCharFormat f;
        f.setForeground(Colour(run.colour));
        c.insertText(FromUtf8(run.text), f);
    }
    c.endEditBlock();
    SetBack(RText1, 0xFFFFFF);
    QTextCursor back(RText1->document());
    back.setPosition(std::min(start, RText1->document()->characterCount() - 1));
    RText1->setTextCursor(back);
}

void asse::xHelp_Click() {
    Frame2->hide();
    Text4->setVisible(!Text4->isVisible());
}

void asse::Text5_Enter() {
    const int32_t v = LeadingNumber(Text5->text().toStdString()).value_or(0);
    Text5->setText(QString::number(v));
    Text6->setText(QString::number(uint32_t(v), 16).toUpper());
}

void asse::Text6_Enter() {
    Text5->setText(QString::number(HexToLong(Text6->text().toStdString())));
}

// --- opcode help -----------------------------------------------------------

void asse::Timer1_Timer() {
    Timer1->stop();
    const QString all = RText1->toPlainText();
    const int pos = RText1->textCursor().selectionStart();
    const std::string text = all.toStdString();
    const size_t selStart = size_t(all.left(pos).toUtf8().size());
    const auto help = OpcodeHelp(text, selStart, Check1->isChecked());
    if (!help) return;
    const QSignalBlocker block(List2);
    List2->clear();
    for (const std::string& row : help->List2)
        List2->addItem(FromUtf8(row));
    if (help->selected >= 0) {
        List2->setCurrentRow(help->selected);
        List2_Click();
    }
}

void asse::List2_Click() {
    Text8->clear();
    if (List2->count() == 0 || !List2->currentItem()) return;
    const auto panel = OpcodeInfo(List2->currentItem()->text().toStdString());
    if (!panel) return;
    Text8->setText(FromUtf8(panel->Text8));
    Text7->setText(FromUtf8(panel->Text7));
    Text10->setText(FromUtf8(panel->Text10));
    Text11->setText(FromUtf8(panel->Text11));
    for (size_t i = 0; i < 6; ++i) {
        Label7[i]->setText(FromUtf8(panel->Label7[i].caption));
        SetBack(Label7[i], panel->Label7[i].colour);
    }
    if (panel->flagError) m_.host->MessageBox("error", "", MsgKind::Plain);
}

void asse::List2_DblClick() {
    if (!List2->currentItem()) return;
    QApplication::clipboard()->clear();
    QApplication::clipboard()->setText(List2->currentItem()->text());
}

void asse::List3_DblClick(QListWidgetItem* item) {
    const QString name = item->text().section(' ', 0, 0);
    if (name.isEmpty()) return;
    QTextCursor found = RText1->document()->find(name); // case ignored
    if (found.isNull()) return;
    const int from = found.selectionStart();
    found.setPosition(from);
    found.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    RText1->setTextCursor(found);
    RText1->setFocus();
}

void asse::RText2_DblClick() {
    std::ofstream out("RichTextBox.rtf", std::ios::binary | std::ios::trunc);
    out << ListingRtf(m_.forms.asse.RText2);
    if (!out) m_.host->MessageBox("RichTextBox.rtf", "", MsgKind::Plain);
}

// --- files -----------------------------------------------------------------

void asse::SetFolder(const QString& path) {
    QDir dir(path);
    if (!dir.exists()) return;
    folder_ = dir.absolutePath();
    Frame2->setTitle(folder_);
    Dir1->clear();
    Dir1->addItem("..");
    for (const QString& d : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        Dir1->addItem(d);
    RefreshFiles();
}

void asse::RefreshFiles() {
    File1->clear();
    const QStringList patterns = QString(pattern_).split(';');
    for (const QString& f : QDir(folder_).entryList(patterns, QDir::Files, QDir::Name))
        File1->addItem(f);
}

void asse::Combo1_Click() {
    const FileType& t = kFileTypes[std::clamp(Combo1->currentIndex(), 0, 3)];
    if (t.pattern) pattern_ = t.pattern;
    RefreshFiles();
}

void asse::xOpen_Click() {
    Timer1->stop();
    Command[14]->setText("OPEN");
    Combo1->setCurrentIndex(0);
    SetFolder(folder_);
    Frame2->show();
    Frame2->raise();
}

void asse::xSave_Click() {
    Command[14]->setText("SAVE");
    SetFolder(folder_);
    Frame2->show();
    Frame2->raise();
}

void asse::File1_Click(QListWidgetItem* item) {
    if (!item) return;
    Text16->setText(item->text());
    if (Combo1->currentText() != "picture") return;
    const QString path = QDir(folder_).absoluteFilePath(item->text());
    auto grid = DecodePicture(path.toStdString(), ResPic.background);
    if (!grid) return FileError(); // the picture that stands stays
    ResPic = std::move(*grid);
    QImage shown(ResPic.width, ResPic.height, QImage::Format_RGB32);
    for (int y = 0; y < ResPic.height; ++y)
        for (int x = 0; x < ResPic.width; ++x) {
            const int32_t p = ResPic.Point(x, y);
            shown.setPixel(x, y, qRgb(p & 0xFF, (p >> 8) & 0xFF, (p >> 16) & 0xFF));
        }
    Image1->setPixmap(QPixmap::fromImage(shown));
}

void asse::Command14_Click() {
    const std::string path = QDir(folder_).absoluteFilePath(Text16->text()).toStdString();
    if (Command[14]->text() == "OPEN") {
        const QString type = Combo1->currentText();
        if (type == "asm" || type == "tvcasm") {
            const auto text = ReadSourceFile(path);
            if (!text) return FileError();
            SetEditorText(*text);
        }
    } else if (Text16->text().isEmpty() || !WriteSourceFile(path, EditorText())) {
        return FileError();
    }
    Frame2->hide();
}

void asse::Import(int32_t button) {
    const ImportButton* b = FindImportButton(button);
    if (!b) return;
    ImportPicture(m_, *b, ResPic, HScroll1->value());
    ScreenRedraw(m_);
    screen_.PictureReady();
}

} // namespace tvc::ui
