#include "Controls/ToolTipPlace.h"

#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace torvo::app {

namespace {

/// The height of the pointer and the distances above and below it.
constexpr int pointerRoom = 24;

bool isWayland() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

} // namespace

QPoint toolTipPosition(const QRect& toolTip, const QRect& window) {
    QPoint position = toolTip.topLeft();
    position.setX(
        std::max(window.left(), std::min(position.x(), window.right() + 1 - toolTip.width())));
    if (toolTip.bottom() > window.bottom())
        position.setY(std::max(window.top(), position.y() - pointerRoom - toolTip.height()));
    return position;
}

void placeToolTip(QWidget& toolTip) {
    if (isWayland() && toolTip.parentWidget())
        toolTip.move(
            toolTipPosition(toolTip.geometry(), toolTip.parentWidget()->window()->geometry()));
}

void followMove(QWidget& toolTip) {
    const QWindow* const shown = toolTip.windowHandle();
    if (!isWayland() || !shown || !shown->isVisible())
        return;
    toolTip.hide();
    toolTip.show();
}

} // namespace torvo::app
