#pragma once

#include "Controls/PaintedButton.h"

namespace torvo::app {

/// One segment of the mode selector. It paints its label; the selector paints the background.
class ModeSegment final : public PaintedButton {
    Q_OBJECT

public:
    ModeSegment(const QString& title, QSize size, QWidget* parent);

    QSize sizeHint() const override { return size_; }

protected:
    /// Set by the selector.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    const QSize size_;
};

} // namespace torvo::app
