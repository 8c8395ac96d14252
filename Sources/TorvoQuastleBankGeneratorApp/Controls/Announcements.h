#pragma once

#include <functional>

class QObject;
class QWidget;

namespace torvo::app {

/// Screen readers announce the widget when it appears, although it does not have the focus.
void setAnnounced(QWidget& widget);
bool isAnnounced(const QObject& object);

/// Changes the text of such a widget and announces it, even if the widget is already visible.
/// Widgets that become visible are announced without this.
void announceAfter(QWidget& widget, const std::function<void()>& change);

} // namespace torvo::app
