#include "Controls/ChannelToggleButton.h"

#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QPainter>

namespace torvo::app {

using MarloTheme::withOpacity;

QFont ChannelToggleButtonStyle::labelFont() {
    return MarloTheme::font(13, MarloTheme::FontCut::semiBold);
}

QColor ChannelToggleButtonStyle::backgroundColor() const {
    if (!enabled)
        return withOpacity(MarloTheme::panelRaised, 0.45);
    return withOpacity(selected ? MarloTheme::accent : MarloTheme::panelRaised,
                       pressed ? 0.82 : 1.0);
}

QColor ChannelToggleButtonStyle::labelColor() const {
    if (!enabled)
        return withOpacity(MarloTheme::muted, 0.55);
    return selected ? MarloTheme::surface : MarloTheme::ink;
}

QColor ChannelToggleButtonStyle::borderColor() const {
    return selected ? MarloTheme::accent : MarloTheme::line;
}

void ChannelToggleButtonStyle::paint(QPainter& painter, const QRectF& rect,
                                     const QString& label) const {
    paintRoundedRect(painter, rect, cornerRadius, backgroundColor(), borderColor());
    // Hover overlay.
    if (hovered && enabled && !pressed)
        paintRoundedRect(painter, rect, cornerRadius, MarloTheme::line, Qt::transparent);
    painter.setFont(labelFont());
    painter.setPen(labelColor());
    painter.drawText(rect, Qt::AlignCenter | Qt::TextSingleLine, label);
}

ChannelToggleButton::ChannelToggleButton(int channel, QWidget* parent)
    : PaintedButton(QString::number(channel), parent) {
    setCheckable(true);
    setAccessibleDescription(tr("CV assignment of channel %1").arg(channel));
}

void ChannelToggleButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ChannelToggleButtonStyle style{.selected = isChecked(),
                                         .enabled = isEnabled(),
                                         .pressed = isDown(),
                                         .hovered = isHovered()};
    style.paint(painter, rect(), text());
}

} // namespace torvo::app
