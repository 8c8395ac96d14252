#pragma once

#include <QPainter>
#include <QRectF>
#include <QRegion>

namespace torvo::app {

/// Painting shared by menus and the lists of combo boxes.
namespace Popup {

inline constexpr double cornerRadius = 10;
inline constexpr double toolTipRadius = 6;
inline constexpr int padding = 6; ///< between the edge and the rows
inline constexpr int rowHeight = 28;
inline constexpr int markSide = 16;

} // namespace Popup

/// The raised panel that the rows lie on. Its corners are blended with the window's own colour: on
/// a screen whose windows cannot be translucent they would be black.
void paintPopupPanel(QPainter& painter, const QRect& rect, double radius = Popup::cornerRadius);

/// All pixels that the panel touches. A window that is no larger has no square corners on such a
/// screen.
QRegion popupMask(const QRect& rect, double radius = Popup::cornerRadius);

/// Paints the highlight of the current row.
void paintPopupHighlight(QPainter& painter, const QRectF& row);

/// Paints the mark of the selected row, a square of `Popup::markSide` around `center`.
void paintPopupMark(QPainter& painter, QPointF center, const QColor& color);

} // namespace torvo::app
