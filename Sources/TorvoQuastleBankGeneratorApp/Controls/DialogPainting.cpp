#include "Controls/DialogPainting.h"

#include "Controls/MarloButton.h"
#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QStyleOption>

#include <algorithm>

namespace torvo::app {

namespace {

constexpr int minButtonWidth = 96;
constexpr double toolButtonRadius = 6;

/// The program's buttons have no mnemonics.
QString label(const QStyleOptionButton& button) {
    return QString(button.text).remove(QLatin1Char('&'));
}

} // namespace

void paintPushButton(QPainter& painter, const QStyleOptionButton& button) {
    const MarloButtonStyle style{.prominent =
                                     button.features.testFlag(QStyleOptionButton::DefaultButton),
                                 .enabled = hasState(button, QStyle::State_Enabled),
                                 .pressed = hasState(button, QStyle::State_Sunken),
                                 .hovered = hasState(button, QStyle::State_MouseOver)};
    style.paint(painter, button.rect, label(button));
}

QSize pushButtonSize(const QStyleOptionButton& button) {
    const QSize size = MarloButtonStyle::size(label(button));
    return {std::max(size.width(), minButtonWidth), size.height()};
}

void paintField(QPainter& painter, const QStyleOptionFrame& field) {
    if (field.lineWidth <= 0) {
        painter.fillRect(field.rect, MarloTheme::surface);
        return;
    }
    paintRoundedRect(painter, field.rect, fieldRadius, MarloTheme::panel,
                     hasState(field, QStyle::State_HasFocus) ? MarloTheme::muted : outlineColor);
}

void paintColumnHead(QPainter& painter, const QStyleOption& head) {
    painter.fillRect(head.rect, MarloTheme::panel);
    painter.fillRect(QRect(head.rect.left(), head.rect.bottom(), head.rect.width(), 1),
                     MarloTheme::line);
}

void paintToolButton(QPainter& painter, const QStyleOption& button) {
    const bool on = hasState(button, QStyle::State_On) || hasState(button, QStyle::State_Sunken);
    if (on)
        paintRoundedRect(painter, button.rect, toolButtonRadius, MarloTheme::panelRaised,
                         MarloTheme::line);
    else if (hasState(button, QStyle::State_MouseOver) && hasState(button, QStyle::State_Enabled))
        paintRoundedRect(painter, button.rect, toolButtonRadius, MarloTheme::panel,
                         MarloTheme::line);
}

} // namespace torvo::app
