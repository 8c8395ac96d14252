#include "Controls/Announcements.h"

#include <QAccessible>
#include <QWidget>

namespace torvo::app {

namespace {

constexpr const char* announced = "announced";

} // namespace

void setAnnounced(QWidget& widget) {
    widget.setProperty(announced, true);
}

bool isAnnounced(const QObject& object) {
    return object.property(announced).toBool();
}

void announceAfter(QWidget& widget, const std::function<void()>& change) {
    const bool wasVisible = widget.isVisible();
    change();
    if (!wasVisible || !widget.isVisible())
        return;
    QAccessibleEvent appeared(&widget, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&appeared);
}

} // namespace torvo::app
