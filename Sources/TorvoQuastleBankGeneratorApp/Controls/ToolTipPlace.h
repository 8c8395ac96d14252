#pragma once

#include <QPoint>
#include <QRect>

class QWidget;

namespace torvo::app {

/// The position of a tooltip that Qt would show at `toolTip`, inside its window.
QPoint toolTipPosition(const QRect& toolTip, const QRect& window);

/// Moves a tooltip that is about to be shown into its window. Qt keeps tooltips on the screen, but
/// not on Wayland, where it does not know the position of the window.
void placeToolTip(QWidget& toolTip);

/// Shows a tooltip that Qt has moved in its new place. On Wayland, popups that are visible do not
/// move.
void followMove(QWidget& toolTip);

} // namespace torvo::app
