// The picture box PicD: shows the machine's picture scaled crisply (whole
// multiples where they fit, the screen's pixel ratio honoured), takes the
// keyboard for the matrix and the mouse for the light pen.
#pragma once

#include <QImage>
#include <QWidget>

#include "ui/main/KeyMap.h"

namespace tvc {
class Machine;
}

namespace tvc::ui {

class ScreenView : public QWidget {
    Q_OBJECT
  public:
    ScreenView(Machine& m, QWidget* parent = nullptr);

    // Takes the machine's latest picture and schedules a repaint.
    void UpdatePicture();
    const QImage& Picture() const { return picture_; }

    // The rectangle, in widget coordinates, the picture is drawn into.
    QRectF TargetRect() const;
    // A widget position as a pixel of the picture (may lie outside it).
    QPointF ToPicture(QPointF widgetPos) const;

    // What each held key's press gave; the full-screen view shares it.
    HeldKeys& Held() { return held_; }

  signals:
    void KeyDown(int keycode, int shift);
    void KeyUp(int keycode, int shift);
    // Focus changes and mouse presses let go of every key.
    void AllKeysUp();

  protected:
    void paintEvent(QPaintEvent*) override;
    void keyPressEvent(QKeyEvent*) override;
    void keyReleaseEvent(QKeyEvent*) override;
    void focusInEvent(QFocusEvent*) override;
    void focusOutEvent(QFocusEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void mouseMoveEvent(QMouseEvent*) override;
    bool focusNextPrevChild(bool) override { return false; } // Tab belongs to the machine

  private:
    Machine& m_;
    QImage picture_;
    HeldKeys held_;
};

} // namespace tvc::ui
