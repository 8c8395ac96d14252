#pragma once

#include "Controls/PaintedButton.h"

namespace torvo::app {

/// One segment of the mode selector: its label, over the background that the selector paints.
class ModeSegment final : public PaintedButton {
    Q_OBJECT

public:
    ModeSegment(const QString& title, QSize size, QWidget* parent);

    QSize sizeHint() const override { return size_; }

protected:
    /// The selector says which segment is the selected one.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    const QSize size_;
};

} // namespace torvo::app
