#include "Controls/Painting.h"

#include "MarloTheme.h"

#include <QPaintDevice>
#include <QPixmap>
#include <QStyleOption>

#include <cmath>

namespace torvo::app {

bool hasState(const QStyleOption& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

void paintRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
                      const QColor& border) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rect, radius, radius);
    painter.setPen(QPen(border, 1));
    painter.setBrush(Qt::NoBrush);
    // Inset only the stroke: a fill that ends between two pixels is blurred at 1x.
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

void paintFocusRing(QPainter& painter, const QRectF& rect, double radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(MarloTheme::ink, focusRingWidth));
    painter.setBrush(Qt::NoBrush);
    const double inset = focusRingWidth / 2;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

void paintGroup(QPainter& painter, const QRectF& bounds, double opacity,
                const std::function<void(QPainter&)>& paint) {
    if (opacity >= 1) {
        paint(painter);
        return;
    }
    const double scale = painter.device()->devicePixelRatioF();
    QPixmap layer(static_cast<int>(std::ceil(bounds.width() * scale)),
                  static_cast<int>(std::ceil(bounds.height() * scale)));
    layer.setDevicePixelRatio(scale);
    layer.fill(Qt::transparent);
    {
        QPainter layerPainter(&layer);
        layerPainter.setFont(painter.font());
        layerPainter.translate(-bounds.topLeft());
        paint(layerPainter);
    }
    painter.save();
    painter.setOpacity(painter.opacity() * opacity);
    painter.drawPixmap(bounds.topLeft(), layer);
    painter.restore();
}

} // namespace torvo::app
