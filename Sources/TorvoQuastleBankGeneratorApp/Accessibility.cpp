#include "Accessibility.h"

#include "Controls/Announcements.h"
#include "Controls/Card.h"
#include "Controls/ChannelToggleButton.h"
#include "Controls/CountRow.h"
#include "Controls/DisclosureHeader.h"
#include "Controls/DisclosureSection.h"
#include "Controls/LinkButton.h"
#include "Controls/StatusIcon.h"
#include "Controls/ThreeWayModeToggle.h"
#include "Views/LogoView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCheckBox>
#include <QLabel>

namespace torvo::app {

namespace {

/// A button whose role or state differs from a push button's.
class AccessibleButton : public QAccessibleWidget {
public:
    AccessibleButton(QAbstractButton* button, QAccessible::Role role)
        : QAccessibleWidget(button, role) {}

    QString text(QAccessible::Text kind) const override {
        const QString own = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && own.isEmpty() ? button()->text() : own;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction())
            button()->click();
    }

protected:
    QAbstractButton* button() const { return static_cast<QAbstractButton*>(widget()); }
};

/// A button that is on or off. Qt's own interface toggles the button without a click, so the model
/// would not be notified.
class AccessibleToggle final : public AccessibleButton {
public:
    using AccessibleButton::AccessibleButton;

    QAccessible::State state() const override {
        QAccessible::State state = AccessibleButton::state();
        state.checkable = true;
        state.checked = button()->isChecked();
        return state;
    }
    QStringList actionNames() const override { return {toggleAction(), pressAction()}; }
    void doAction(const QString& action) override {
        if (action == toggleAction() || action == pressAction())
            button()->click();
    }
};

class AccessibleDisclosureHeader final : public AccessibleButton {
public:
    explicit AccessibleDisclosureHeader(DisclosureHeader* header)
        : AccessibleButton(header, QAccessible::Button) {}

    QAccessible::State state() const override {
        QAccessible::State state = AccessibleButton::state();
        state.expandable = true;
        state.expanded = button()->isChecked();
        state.collapsed = !button()->isChecked();
        return state;
    }
};

/// A label without an accessible name is named by its text.
class AccessibleAnnouncement final : public QAccessibleWidget {
public:
    explicit AccessibleAnnouncement(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::Notification) {}

    QString text(QAccessible::Text kind) const override {
        const auto* label = qobject_cast<const QLabel*>(widget());
        const bool isNamedByContent =
            kind == QAccessible::Name && label && label->accessibleName().isEmpty();
        return isNamedByContent ? label->text() : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (isAnnounced(*object))
        return new AccessibleAnnouncement(static_cast<QWidget*>(object));
    if (auto* header = qobject_cast<DisclosureHeader*>(object))
        return new AccessibleDisclosureHeader(header);
    if (qobject_cast<QCheckBox*>(object) || qobject_cast<ChannelToggleButton*>(object))
        return new AccessibleToggle(static_cast<QAbstractButton*>(object), QAccessible::CheckBox);
    if (auto* segment = qobject_cast<ModeSegment*>(object))
        return new AccessibleToggle(segment, QAccessible::RadioButton);
    if (auto* link = qobject_cast<LinkButton*>(object))
        return new AccessibleButton(link, QAccessible::Link);
    // Qt gives the icon of a message box no name.
    if (object->objectName() == QLatin1String("qt_msgboxex_icon_label")) {
        auto* icon = static_cast<QWidget*>(object);
        return new QAccessibleWidget(icon, QAccessible::Graphic, icon->window()->windowTitle());
    }
    if (qobject_cast<StatusIcon*>(object) || qobject_cast<LogoView*>(object))
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Graphic);
    if (qobject_cast<Card*>(object) || qobject_cast<CountRow*>(object) ||
        qobject_cast<DisclosureSection*>(object) || qobject_cast<ThreeWayModeToggle*>(object))
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Grouping);
    return nullptr;
}

} // namespace

void installAccessibility() {
    QAccessible::installFactory(makeInterface);
}

} // namespace torvo::app
