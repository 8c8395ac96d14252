#pragma once

#include "Controls/PaintedButton.h"
#include "Models/GenerationMode.h"

#include <QRectF>
#include <QVariantAnimation>
#include <QWidget>

#include <vector>

class QPainter;

namespace torvo::app {

/// The geometry of the mode selector.
struct ModeToggleGeometry {
    double segmentWidth = 0;
    double height = 0;

    static constexpr double cornerRadius = 10;
    static constexpr double highlightInset = 3;
    /// Concentric with the corner of the control.
    static constexpr double highlightRadius = cornerRadius - highlightInset;

    QSizeF size(std::size_t modeCount) const;
    QRectF segment(std::size_t index) const;
    /// `position` is in segments, and fractional while the highlight slides.
    QRectF highlight(double position) const;
};

/// Paints the background and the highlight without the labels.
void paintModeToggle(QPainter& painter, const ModeToggleGeometry& geometry, std::size_t modeCount,
                     double highlightPosition);

/// One segment of the mode selector. It paints its label; the selector paints the background.
class ModeSegment final : public PaintedButton {
    Q_OBJECT

public:
    ModeSegment(const QString& title, QSize size, QWidget* parent);

    QSize sizeHint() const override { return size_; }
    double cornerRadius() const override { return ModeToggleGeometry::cornerRadius; }

protected:
    /// Set by the selector.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    const QSize size_;
};

/// The mode selector with three segments. It is one tab stop; arrow keys move within it. Choosing a
/// segment does not change the selection: the receiver of `modeChosen` calls `setSelection`.
class ThreeWayModeToggle final : public QWidget {
    Q_OBJECT

public:
    ThreeWayModeToggle(std::vector<GenerationMode> modes, double segmentWidth, double height,
                       QWidget* parent = nullptr);

    /// Slides the highlight to the mode.
    void setSelection(GenerationMode mode);
    GenerationMode selection() const { return modes_[selectedIndex_]; }
    /// The position of the highlight in segments from the left.
    double highlightPosition() const { return highlightPosition_; }
    const std::vector<QAbstractButton*>& segments() const { return segments_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void modeChosen(torvo::GenerationMode mode);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void markSelected();
    void moveHighlight(double position);
    void chooseByKeyboard(std::size_t index);

    const std::vector<GenerationMode> modes_;
    const ModeToggleGeometry geometry_;
    std::vector<QAbstractButton*> segments_;
    std::size_t selectedIndex_ = 0;
    double highlightPosition_ = 0;
    QVariantAnimation slide_{this};
};

} // namespace torvo::app
