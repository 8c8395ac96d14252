#pragma once

#include <functional>

class QWidget;

namespace torvo::app {

/// Describes the window's own controls to screen readers: cards are groups, disclosure headers can
/// be expanded, links are links. Call once, before the first window is created.
void installAccessibility();

/// Screen readers announce the widget when it appears, although it does not have the focus.
void setAnnounced(QWidget& widget);

/// Changes the text of such a widget and announces it, even if the widget is already visible.
/// Widgets that become visible are announced without this.
void announceAfter(QWidget& widget, const std::function<void()>& change);

} // namespace torvo::app
