#include "ui/main/TTools.h"

#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include "hw/Keyboard.h"
#include "ui/main/TScreen.h"

namespace tvc::ui {

namespace {

constexpr int kKeypadKeys = 95; // captions from " " to "~"
constexpr int kEnterCode = 13;

// Captions of the four fields of the page register, in the order of their
// values (0, 1, 2, 3 times the field's step).
const char* const kPagingCaptions[4][4] = {
    {"CART", "SYS", "U3", "EXT"},     // 0xC000 window, bits 7-6
    {"VID", "U2", nullptr, nullptr},  // 0x8000 window, bit 5
    {"SYS", "CART", "U0", "U3**"},    // 0x0000 window, bits 4-3
    {"U1", "VID*", nullptr, nullptr}, // 0x4000 window, bit 2
};
const char* const kPagingNames[4] = {"U3", "U2", "U0", "U1"};

QLabel* KeyLabel(const QString& text, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setAlignment(Qt::AlignCenter);
    l->setFrameShape(QFrame::Box);
    l->setMinimumSize(22, 22);
    return l;
}

} // namespace

TTools::TTools(TScreen& screen) : QWidget(&screen, Qt::Window), screen_(screen) {
    setObjectName("TTools");
    setWindowTitle("Tools");
    auto* layout = new QVBoxLayout(this);

    auto* keys = new QGridLayout;
    for (int i = 0; i < kKeypadKeys; ++i) {
        QLabel* l = KeyLabel(QString(QChar(i + 32)), this);
        l->setObjectName(QString("Label1_%1").arg(i));
        l->installEventFilter(this);
        Label1.push_back(l);
        keys->addWidget(l, i / 16, i % 16);
    }
    Label3 = KeyLabel("Enter", this);
    Label3->setObjectName("Label3");
    Label3->installEventFilter(this);
    keys->addWidget(Label3, kKeypadKeys / 16, kKeypadKeys % 16, 1, 2);
    layout->addLayout(keys);
    Label2 = new QLabel("0", this);
    Label2->setObjectName("Label2");
    layout->addWidget(Label2);

    auto* paging = new QGroupBox("Memory paging (port 2)", this);
    auto* grid = new QGridLayout(paging);
    for (int f = 0; f < 4; ++f) {
        grid->addWidget(new QLabel(kPagingNames[f], paging), f, 0);
        for (int i = 0; i < 4 && kPagingCaptions[f][i]; ++i) {
            QLabel* l = KeyLabel(kPagingCaptions[f][i], paging);
            l->setObjectName(QString("%1_%2").arg(kPagingNames[f]).arg(i));
            l->installEventFilter(this);
            pagingArrays[f].push_back(l);
            grid->addWidget(l, f, i + 1);
        }
    }
    Label4 = new QLabel("0", paging);
    Label4->setObjectName("Label4");
    grid->addWidget(Label4, 4, 0, 1, 5);
    layout->addWidget(paging);
}

void TTools::ShowKeyCode(int code) {
    Label2->setText(QString::number(code));
}

int TTools::PagingByte() const {
    return Label4->text().toInt();
}

void TTools::ChoosePaging(int field, int index) {
    for (QLabel* l : pagingArrays[field])
        l->setStyleSheet("background: #000000; color: #ffffff;");
    pagingArrays[field][static_cast<size_t>(index)]->setStyleSheet("background: #00ff00;");
    Label4->setText(QString::number(PagingCalculator(PagingByte(), field, index)));
}

bool TTools::eventFilter(QObject* obj, QEvent* e) {
    const bool press = e->type() == QEvent::MouseButtonPress;
    const bool release = e->type() == QEvent::MouseButtonRelease;
    if (!press && !release) return QWidget::eventFilter(obj, e);
    int code = -1;
    if (obj == Label3) code = kEnterCode;
    for (size_t i = 0; i < Label1.size(); ++i)
        if (obj == Label1[i]) code = static_cast<int>(i) + 32;
    if (code >= 0) {
        if (press)
            screen_.PicdKeyDown(code, 0);
        else
            screen_.PicdKeyUp(code, 0);
        return true;
    }
    if (press)
        for (int f = 0; f < 4; ++f)
            for (size_t i = 0; i < pagingArrays[f].size(); ++i)
                if (obj == pagingArrays[f][i]) {
                    ChoosePaging(f, static_cast<int>(i));
                    return true;
                }
    return QWidget::eventFilter(obj, e);
}

} // namespace tvc::ui
