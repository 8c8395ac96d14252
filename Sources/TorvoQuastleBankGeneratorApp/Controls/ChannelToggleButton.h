#pragma once

#include "Controls/PaintedButton.h"

#include <QColor>
#include <QRectF>

class QPainter;

namespace torvo::app {

/// The appearance of a channel button.
struct ChannelToggleButtonStyle {
    bool selected = false; ///< the channel is selected
    bool enabled = true;
    bool pressed = false;
    bool hovered = false;

    static constexpr double cornerRadius = 8;
    static constexpr QSize size{72, 28};

    static QFont labelFont();

    QColor backgroundColor() const;
    QColor labelColor() const;
    QColor borderColor() const;

    void paint(QPainter& painter, const QRectF& rect, const QString& label) const;
};

/// Shows whether a channel is selected. A click does not change the button: the receiver of
/// `clicked` calls `setSelected`.
class ChannelToggleButton final : public PaintedButton {
    Q_OBJECT

public:
    explicit ChannelToggleButton(int channel, QWidget* parent = nullptr);

    void setSelected(bool selected) { setChecked(selected); }
    QSize sizeHint() const override { return ChannelToggleButtonStyle::size; }
    double cornerRadius() const override { return ChannelToggleButtonStyle::cornerRadius; }

protected:
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvo::app
