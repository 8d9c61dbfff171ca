// FScreen ("TVC"): the picture over the whole screen. It renders nothing
// itself: a timer copies the main window's picture, stretched, into FPic1.
#pragma once

#include <QRect>
#include <QSize>
#include <QWidget>

class QLabel;
class QTimer;

namespace tvc::ui {

class TScreen;

// FPic1's place on a form of the given inner size: 0.8 of its height, the
// main window's proportions, both cut down to multiples of 8, centred.
QRect FullScreenPictureRect(QSize inner, QSize mainWindow);

class FScreen : public QWidget {
    Q_OBJECT
  public:
    explicit FScreen(TScreen& screen);

    void Enter();          // xFullsc_Click
    void Leave();          // Esc
    void PictureReady() {} // the timer takes the picture at its next tick
    void Tick();           // Timer1
    QWidget* FPic1() const { return pic_; }

  protected:
    void keyPressEvent(QKeyEvent*) override;
    void keyReleaseEvent(QKeyEvent*) override;
    void focusOutEvent(QFocusEvent*) override; // every key up, as in the picture box
    bool eventFilter(QObject*, QEvent*) override;

  private:
    TScreen& screen_;
    QWidget* pic_;
    QTimer* timer_;
};

} // namespace tvc::ui
