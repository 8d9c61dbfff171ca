#include "ui/panels/ChipPanel.h"

#include <QCheckBox>
#include <QLabel>
#include <QPainter>
#include <QScrollBar>

#include "core/Machine.h"

namespace tvc::ui {

namespace {
constexpr QRgb kTrace = 0xFF00FF00; // 0x00FF00, opaque
constexpr QRgb kBack = 0xFF000000;
} // namespace

ScopeView::ScopeView(QWidget* parent)
    : QWidget(parent), image_(kWidth, kHeight, QImage::Format_RGB32) {
    image_.fill(kBack);
    setFixedSize(kWidth, kHeight);
}

void ScopeView::Draw(const Trace& y) {
    image_.fill(kBack);
    QPainter p(&image_);
    p.setPen(QColor::fromRgb(kTrace));
    QPoint from(0, 0);
    for (int x = 0; x < kTracePoints; ++x) {
        const QPoint to(x, y[x]);
        p.drawLine(from, to);
        from = to;
    }
    p.end();
    update();
}

int ScopeView::GreenPixels() const {
    int n = 0;
    for (int y = 0; y < image_.height(); ++y)
        for (int x = 0; x < image_.width(); ++x)
            n += image_.pixel(x, y) == kTrace;
    return n;
}

void ScopeView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.drawImage(0, 0, image_);
}

ChipPanel::ChipPanel(Machine& m, QWidget* owner, std::optional<Scope> scope)
    : QWidget(owner, Qt::Window), m_(m), scope_(scope) {
    if (!scope) return;
    for (int n = 0; n < ScopeCount(*scope); ++n) {
        Pic1.push_back(new ScopeView(this));
        Pic1.back()->setObjectName(QString("Pic1_%1").arg(n));
    }
    seen_ = ScopeSerial(m_, *scope);
}

void ChipPanel::Poll() {
    if (!isVisible()) return;
    if (scope_) {
        const uint32_t serial = ScopeSerial(m_, *scope_);
        if (serial == seen_) return;
        seen_ = serial;
    }
    Redraw();
}

void ChipPanel::Redraw() {
    if (scope_)
        for (size_t n = 0; n < Pic1.size(); ++n)
            Pic1[n]->Draw(ScopeTrace(m_, *scope_, int(n)));
    Labels();
}

void ChipPanel::Sync() {
    for (auto& s : sync_)
        s();
}

void ChipPanel::showEvent(QShowEvent* e) {
    Sync();
    QWidget::showEvent(e);
}

QCheckBox* ChipPanel::Check(const QString& caption, const QString& name, bool& field) {
    auto* box = new QCheckBox(caption, this);
    box->setObjectName(name);
    box->setChecked(field);
    connect(box, &QCheckBox::toggled, this, [this, &field](bool on) {
        field = on;
        if (changed) changed();
    });
    sync_.push_back([box, &field] {
        const QSignalBlocker quiet(box);
        box->setChecked(field);
    });
    return box;
}

QScrollBar* ChipPanel::Scroll(const QString& name, int lo, int hi, int& field) {
    auto* bar = new QScrollBar(Qt::Horizontal, this);
    bar->setObjectName(name);
    bar->setRange(lo, hi);
    bar->setValue(field);
    bar->setMinimumWidth(120);
    connect(bar, &QScrollBar::valueChanged, this, [this, &field](int v) {
        field = v;
        if (changed) changed();
    });
    sync_.push_back([bar, &field] {
        const QSignalBlocker quiet(bar);
        bar->setValue(field);
    });
    return bar;
}

QLabel* Caption(const QString& text, QWidget* parent) {
    return new QLabel(text, parent);
}

} // namespace tvc::ui
