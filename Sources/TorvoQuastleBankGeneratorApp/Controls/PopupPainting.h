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

/// Paints the panel behind the rows. Its rounded corners are blended with the window's own colour,
/// because they would be black on a screen without translucent windows.
void paintPopupPanel(QPainter& painter, const QRect& rect, double radius = Popup::cornerRadius);

/// All pixels that the panel covers at least in part. As the mask of a window, it removes the
/// square corners on such a screen.
QRegion popupMask(const QRect& rect, double radius = Popup::cornerRadius);

/// Paints the highlight of the current row.
void paintPopupHighlight(QPainter& painter, const QRectF& row);

/// Paints the mark of the selected row, a square of `Popup::markSide` around `center`.
void paintPopupMark(QPainter& painter, QPointF center, const QColor& color);

} // namespace torvo::app
