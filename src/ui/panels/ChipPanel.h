// What the six chip panels share: the oscilloscope picture Pic1, widgets
// bound to fields of the core's Controls in both directions, and the redraw
// at a yield point after the chip rendered at BlockIndex 4.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "sound/ChipPanels.h"

class QCheckBox;
class QLabel;
class QScrollBar;

namespace tvc {
class Machine;
}

namespace tvc::ui {

// Pic1(n): a 221 x 64 picture cleared to black, the trace drawn in 0x00FF00.
class ScopeView : public QWidget {
  public:
    explicit ScopeView(QWidget* parent);
    static constexpr int kWidth = kTracePoints, kHeight = 64;
    // Clears the picture and draws the line through the trace's points,
    // from the pen's home at (0, 0) as a cleared picture has it.
    void Draw(const Trace& y);
    const QImage& image() const { return image_; }
    // Pixels of the trace's colour: what a test looks for.
    int GreenPixels() const;

  protected:
    void paintEvent(QPaintEvent*) override;

  private:
    QImage image_;
};

class ChipPanel : public QWidget {
    Q_OBJECT
  public:
    ChipPanel(Machine& m, QWidget* owner, std::optional<Scope> scope);

    // At a yield point: a shown panel whose chip has rendered at
    // BlockIndex 4 since its last look redraws; a hidden one does nothing.
    void Poll();
    // Puts the core's values into every bound widget.
    void Sync();
    // Redraws pictures and labels from the chip's last block.
    virtual void Redraw();

    std::vector<ScopeView*> Pic1;

  protected:
    void showEvent(QShowEvent*) override;
    // Labels a panel fills from the chip, refreshed with its pictures.
    virtual void Labels() {}

    QCheckBox* Check(const QString& caption, const QString& name, bool& field);
    QScrollBar* Scroll(const QString& name, int lo, int hi, int& field);
    // After a bound widget changed its field.
    std::function<void()> changed;

    Machine& m_;

  private:
    std::optional<Scope> scope_;
    uint32_t seen_ = 0;
    std::vector<std::function<void()>> sync_;
};

// A small caption label.
QLabel* Caption(const QString& text, QWidget* parent);

} // namespace tvc::ui
