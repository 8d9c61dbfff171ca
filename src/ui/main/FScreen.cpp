#include "ui/main/FScreen.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>

#include "core/Numbers.h"
#include "ui/main/KeyMap.h"
#include "ui/main/Picture.h"
#include "ui/main/ScreenView.h"
#include "ui/main/TScreen.h"
#include "video/LightPen.h"

namespace tvc::ui {

namespace {

constexpr int kTimerMs = 40; // two ticks a frame of pictures; fast enough to look live

class PictureBox : public QWidget {
  public:
    PictureBox(TScreen& screen, QWidget* parent) : QWidget(parent), screen_(screen) {
        setObjectName("FPic1");
        setMouseTracking(true);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::SmoothPixmapTransform, false);
        // Only the picture box, stretched: the border stays behind in the main window.
        const QRect picd = PicDRect(screen_.machine());
        if (!picd.isEmpty())
            p.drawImage(rect(), screen_.PicD->Picture(), picd);
        else
            p.fillRect(rect(), Qt::black);
    }

  private:
    TScreen& screen_;
};

int DownToEight(double v) {
    return static_cast<int>(RoundHalfEven(v)) / 8 * 8;
}

} // namespace

QRect FullScreenPictureRect(QSize inner, QSize mainWindow) {
    const int h = DownToEight(inner.height() * 0.8);
    const int w = mainWindow.height() > 0
                      ? DownToEight(double(mainWindow.width()) * h / mainWindow.height())
                      : 0;
    return QRect((inner.width() - w) / 2, (inner.height() - h) / 2, w, h);
}

FScreen::FScreen(TScreen& screen) : QWidget(nullptr, Qt::Window), screen_(screen) {
    setObjectName("FScreen");
    setWindowTitle("TVC");
    setFocusPolicy(Qt::StrongFocus);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::black);
    setPalette(pal);
    setAutoFillBackground(true);
    pic_ = new PictureBox(screen, this);
    pic_->installEventFilter(this);
    timer_ = new QTimer(this);
    timer_->setInterval(kTimerMs);
    connect(timer_, &QTimer::timeout, this, &FScreen::Tick);
}

void FScreen::Enter() {
    timer_->start();
    showFullScreen();
    screen_.hide();
    Tick();
    setFocus();
}

void FScreen::Leave() {
    screen_.show();
    timer_->stop();
    hide();
    screen_.PicD->setFocus();
}

void FScreen::Tick() {
    if (QScreen* s = screen()) resize(s->size());
    pic_->setGeometry(FullScreenPictureRect(size(), QSize(kMainWindowWidth, kMainWindowHeight)));
    pic_->update();
}

void FScreen::keyPressEvent(QKeyEvent* e) {
    if (e->isAutoRepeat()) return;
    const int vk = VirtualKey(*e);
    if (vk == 27) return Leave();
    screen_.PicdKeyDown(screen_.PicD->Held().Press(PhysicalKey(*e), vk), ShiftState(*e));
}

void FScreen::keyReleaseEvent(QKeyEvent* e) {
    if (e->isAutoRepeat() || !isVisible()) return;
    if (const int vk = screen_.PicD->Held().Release(PhysicalKey(*e)))
        screen_.PicdKeyUp(vk, ShiftState(*e));
}

void FScreen::focusOutEvent(QFocusEvent*) {
    screen_.PicD->Held().Clear();
    screen_.ClearKeys();
}

// The pointer over FPic1, scaled to the picture box of the main window.
bool FScreen::eventFilter(QObject* obj, QEvent* e) {
    if (obj == pic_ && e->type() == QEvent::MouseMove && pic_->width() > 0 && pic_->height() > 0) {
        const auto* me = static_cast<QMouseEvent*>(e);
        const QRect picd = PicDRect(screen_.machine());
        const double x = me->position().x() * picd.width() / pic_->width();
        const double y = me->position().y() * picd.height() / pic_->height();
        PicdMouseMove(screen_.machine(), x, y);
    }
    return QWidget::eventFilter(obj, e);
}

} // namespace tvc::ui
