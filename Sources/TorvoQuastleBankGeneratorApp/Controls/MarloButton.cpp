#include "Controls/MarloButton.h"

#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QFontMetrics>
#include <QPainter>

namespace torvo::app {

using MarloTheme::withOpacity;

QFont MarloButtonStyle::labelFont() {
    return MarloTheme::font(14, MarloTheme::FontCut::semiBold);
}

QSize MarloButtonStyle::size(const QString& label) {
    const QFontMetrics metrics(labelFont());
    return {metrics.horizontalAdvance(label) + 2 * horizontalPadding,
            metrics.height() + 2 * verticalPadding};
}

QColor MarloButtonStyle::backgroundColor() const {
    if (prominent)
        return withOpacity(MarloTheme::accent, !enabled ? 0.38 : pressed ? 0.82 : 1.0);
    return withOpacity(MarloTheme::panelRaised, !enabled ? 0.7 : pressed ? 0.75 : 1.0);
}

QColor MarloButtonStyle::labelColor() const {
    return prominent ? MarloTheme::surface : withOpacity(MarloTheme::ink, enabled ? 1.0 : 0.55);
}

QColor MarloButtonStyle::borderColor() const {
    return prominent ? withOpacity(MarloTheme::accent, enabled ? 0.35 : 0.16) : MarloTheme::line;
}

double MarloButtonStyle::opacity() const {
    return enabled ? 1.0 : 0.65;
}

void MarloButtonStyle::paint(QPainter& painter, const QRectF& rect, const QString& label) const {
    paintGroup(painter, rect, opacity(), [&](QPainter& group) {
        paintRoundedRect(group, rect, cornerRadius, backgroundColor(), borderColor());
        // Hover overlay.
        if (hovered && enabled && !pressed)
            paintRoundedRect(group, rect, cornerRadius, MarloTheme::line, Qt::transparent);
        group.setFont(labelFont());
        group.setPen(labelColor());
        group.drawText(rect, Qt::AlignCenter | Qt::TextSingleLine, label);
    });
}

MarloButton::MarloButton(const QString& text, Kind kind, QWidget* parent)
    : PaintedButton(text, parent), kind_(kind) {}

QSize MarloButton::sizeHint() const {
    return MarloButtonStyle::size(text());
}

void MarloButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const MarloButtonStyle style{.prominent = kind_ == Kind::prominent,
                                 .enabled = isEnabled(),
                                 .pressed = isDown(),
                                 .hovered = isHovered()};
    style.paint(painter, rect(), text());
}

} // namespace torvo::app
