#include "ui/media/TTape.h"

#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QTimer>
#include <cmath>

#include "core/Machine.h"
#include "media/Tape.h"

namespace tvc::ui {

namespace {

constexpr int kMotorBit = 0x40;
constexpr int kTickMs = 20;

// The buttons are pictures: rewind, play, wind, back to start.
enum class Icon { Rewind, Play, Wind, Start, List };

QIcon DrawIcon(Icon kind) {
    QPixmap p(24, 24);
    p.fill(Qt::transparent);
    QPainter g(&p);
    g.setRenderHint(QPainter::Antialiasing);
    g.setBrush(Qt::black);
    g.setPen(Qt::NoPen);
    auto triangle = [&](double x, bool right) {
        QPainterPath t;
        t.moveTo(x, 5);
        t.lineTo(right ? x + 8 : x - 8, 12);
        t.lineTo(x, 19);
        t.closeSubpath();
        g.drawPath(t);
    };
    switch (kind) {
    case Icon::Rewind: triangle(12, false), triangle(20, false); break;
    case Icon::Play: triangle(8, true); break;
    case Icon::Wind: triangle(4, true), triangle(12, true); break;
    case Icon::Start: g.drawRect(5, 5, 3, 14), triangle(18, false); break;
    case Icon::List:
        for (int y : {6, 11, 16})
            g.drawRect(5, y, 14, 2);
        break;
    }
    return QIcon(p);
}

// Two reels with three spokes each, turned by the deck's angle.
class ReelView : public QWidget {
  public:
    explicit ReelView(const double& angle, QWidget* parent) : QWidget(parent), angle_(angle) {
        setMinimumSize(160, 70);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter g(this);
        g.setRenderHint(QPainter::Antialiasing);
        const double r = std::min(width() / 4.0, height() / 2.0) - 4;
        for (double cx : {width() * 0.25, width() * 0.75}) {
            const QPointF c(cx, height() / 2.0);
            g.setPen(QPen(Qt::black, 2));
            g.setBrush(QColor(0xC0, 0x90, 0x50));
            g.drawEllipse(c, r, r);
            g.setBrush(Qt::white);
            g.drawEllipse(c, r / 4, r / 4);
            for (int s = 0; s < 3; ++s) {
                const double a = (angle_ / 5.0 + s / 3.0) * 2 * M_PI;
                g.drawLine(c + QPointF(std::cos(a), std::sin(a)) * (r / 4),
                           c + QPointF(std::cos(a), std::sin(a)) * (r * 0.9));
            }
        }
    }

  private:
    const double& angle_;
};

} // namespace

TTape::TTape(Machine& m, QWidget* parent, QWidget* focusTarget)
    : QWidget(parent, Qt::Window), m_(m), focus_(focusTarget) {
    setObjectName("TTape");
    setWindowTitle("Tape");
    auto* grid = new QGridLayout(this);
    auto button = [&](const char* name, Icon icon) {
        auto* b = new QPushButton(this);
        b->setObjectName(name);
        b->setIcon(DrawIcon(icon));
        return b;
    };
    Command1 = button("Command1", Icon::Rewind);
    Command2 = button("Command2", Icon::Play);
    Command3 = button("Command3", Icon::Wind);
    Command8 = button("Command8", Icon::Start);
    Command9 = button("Command9", Icon::List);
    Reels = new ReelView(Angle, this);
    Label1 = new QLabel("0", this);
    Label1->setObjectName("Label1");
    Label2 = new QLabel("0", this);
    Label2->setObjectName("Label2");
    Label3 = new QLabel(QString::fromStdString(m_.tape.InName), this);
    Label3->setObjectName("Label3");
    Label5 = new QLabel("0", this);
    Label5->setObjectName("Label5");
    File1 = new QListWidget(this);
    File1->setObjectName("File1");
    File1->hide();
    grid->addWidget(Reels, 0, 0, 1, 5);
    grid->addWidget(Command1, 1, 0);
    grid->addWidget(Command2, 1, 1);
    grid->addWidget(Command3, 1, 2);
    grid->addWidget(Command8, 1, 3);
    grid->addWidget(Command9, 1, 4);
    grid->addWidget(Label1, 2, 0);
    grid->addWidget(Label5, 2, 1);
    grid->addWidget(Label2, 2, 2);
    grid->addWidget(Label3, 2, 3, 1, 2);
    grid->addWidget(File1, 3, 0, 1, 5);

    connect(Command1, &QPushButton::clicked, this, [this] {
        Speed = -40;
        Rewind(true);
        Focus();
    });
    connect(Command2, &QPushButton::clicked, this, [this] {
        Speed = 10;
        Focus();
    });
    connect(Command3, &QPushButton::clicked, this, [this] {
        Speed = 40;
        Rewind(true);
        Focus();
    });
    connect(Command8, &QPushButton::clicked, this, [this] {
        TapeRewind(m_);
        Label2->setText("0");
    });
    connect(Command9, &QPushButton::clicked, this, [this] {
        File1->clear();
        File1->addItems(QDir::current().entryList({"*.wav"}, QDir::Files, QDir::Name));
        File1->show();
    });
    connect(File1, &QListWidget::itemDoubleClicked, this, &TTape::File1DblClick);
    Timer1 = new QTimer(this);
    connect(Timer1, &QTimer::timeout, this, &TTape::Timer1Tick);
    Timer1->start(kTickMs);
}

void TTape::Rewind(bool counter) {
    TapeRewind(m_);
    if (counter) Label1->setText("0");
}

void TTape::Focus() {
    if (focus_) focus_->setFocus();
}

void TTape::File1DblClick(QListWidgetItem* item) {
    if (!item) return;
    const std::string name = item->text().toStdString();
    if (!TapeOpenInput(m_, name))
        m_.host->MessageBox("File not found: " + name, kAppTitle, MsgKind::Critical);
    Label1->setText("0");
    Label3->setText(item->text().toLower());
    Focus();
}

void TTape::Timer1Tick() {
    int motorStep = 0;
    if (m_.bus.PortLatch[0x05] & kMotorBit) {
        motorStep = 2;
        Label1->setText(QString::number(Label1->text().toInt() + 1));
    }
    Label5->setText(QString::number(Label1->text().toInt() / 50));
    Angle += motorStep / 10.0 + Speed / 10;
    if (Angle > 5) Angle -= 5;
    if (Angle < 0) Angle += 5;
    Reels->update();
}

} // namespace tvc::ui
