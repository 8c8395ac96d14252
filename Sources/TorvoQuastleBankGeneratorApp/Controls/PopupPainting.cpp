#include "Controls/PopupPainting.h"

#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QPolygonF>

#include <cmath>

namespace torvo::app {

namespace {

constexpr double highlightRadius = Popup::cornerRadius - Popup::padding + 2;

} // namespace

void paintPopupPanel(QPainter& painter, const QRect& rect, double radius) {
    for (const QRect& part : popupMask(rect, radius))
        painter.fillRect(part, MarloTheme::panel);
    paintRoundedRect(painter, rect, radius, MarloTheme::panelRaised,
                     MarloTheme::withOpacity(MarloTheme::accent, 0.5));
}

QRegion popupMask(const QRect& rect, double radius) {
    const int rows = static_cast<int>(radius);
    QRegion mask(rect.adjusted(0, rows, 0, -rows));
    for (int row = 0; row < rows; ++row) {
        // The arc is farthest to the left at the lower edge of the row.
        const double rise = radius - (row + 1);
        const int inset = static_cast<int>(radius - std::sqrt(radius * radius - rise * rise));
        const int width = rect.width() - 2 * inset;
        mask += QRect(rect.left() + inset, rect.top() + row, width, 1);
        mask += QRect(rect.left() + inset, rect.bottom() - row, width, 1);
    }
    return mask;
}

void paintPopupHighlight(QPainter& painter, const QRectF& row) {
    paintRoundedRect(painter, row, highlightRadius, MarloTheme::accent, Qt::transparent);
}

void paintPopupMark(QPainter& painter, QPointF center, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{center + QPointF(-4.5, 0.3), center + QPointF(-1.4, 3.4),
                                   center + QPointF(4.5, -3.4)});
}

} // namespace torvo::app
