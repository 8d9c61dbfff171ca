#include "ui/main/ScreenView.h"

#include <QKeyEvent>
#include <QPainter>
#include <cmath>

#include "core/Machine.h"
#include "hw/Keyboard.h"
#include "ui/main/KeyMap.h"
#include "ui/main/Picture.h"
#include "video/LightPen.h"
#include "video/Screen.h"

namespace tvc::ui {

ScreenView::ScreenView(Machine& m, QWidget* parent) : QWidget(parent), m_(m) {
    setObjectName("PicD");
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    picture_ = ComposedPicture(m_);
}

void ScreenView::UpdatePicture() {
    picture_ = ComposedPicture(m_);
    update();
}

QRectF ScreenView::TargetRect() const {
    if (picture_.isNull()) return {};
    // Work in device pixels so a whole-number scale is whole on the screen.
    const qreal dpr = devicePixelRatioF();
    const qreal availW = width() * dpr, availH = height() * dpr;
    qreal scale = std::min(availW / picture_.width(), availH / picture_.height());
    if (scale >= 1.0) scale = std::floor(scale);
    const qreal w = picture_.width() * scale / dpr, h = picture_.height() * scale / dpr;
    return QRectF((width() - w) / 2, (height() - h) / 2, w, h);
}

QPointF ScreenView::ToPicture(QPointF p) const {
    const QRectF r = TargetRect();
    if (r.isEmpty()) return {};
    return QPointF((p.x() - r.left()) * picture_.width() / r.width(),
                   (p.y() - r.top()) * picture_.height() / r.height());
}

void ScreenView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), Qt::black);
    p.setRenderHint(QPainter::SmoothPixmapTransform, false);
    p.drawImage(TargetRect(), picture_);
}

void ScreenView::keyPressEvent(QKeyEvent* e) {
    if (e->isAutoRepeat()) return; // the key is down already
    emit KeyDown(held_.Press(PhysicalKey(*e), VirtualKey(*e)), ShiftState(*e));
}

void ScreenView::keyReleaseEvent(QKeyEvent* e) {
    if (e->isAutoRepeat()) return;
    if (const int vk = held_.Release(PhysicalKey(*e))) emit KeyUp(vk, ShiftState(*e));
}

void ScreenView::focusInEvent(QFocusEvent*) {
    held_.Clear();
    emit AllKeysUp();
}
void ScreenView::focusOutEvent(QFocusEvent*) {
    held_.Clear();
    emit AllKeysUp();
}

void ScreenView::mousePressEvent(QMouseEvent*) {
    held_.Clear();
    emit AllKeysUp();
    setFocus();
}

void ScreenView::mouseMoveEvent(QMouseEvent* e) {
    const QPointF p = ToPicture(e->position());
    const QRect picd = PicDRect(m_);
    if (picd.contains(p.toPoint())) PicdMouseMove(m_, p.x() - picd.left(), p.y() - picd.top());
}

} // namespace tvc::ui
