#pragma once

#include <QSize>

class QPainter;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionFrame;

namespace torvo::app {

inline constexpr int fieldHeight = 34;
inline constexpr double fieldRadius = 8;

/// Paints a push button of Qt's dialogs like the program's own buttons. The default button is
/// highlighted.
void paintPushButton(QPainter& painter, const QStyleOptionButton& button);
QSize pushButtonSize(const QStyleOptionButton& button);

/// Paints the frame of a text field.
void paintField(QPainter& painter, const QStyleOptionFrame& field);

/// Paints a column header.
void paintColumnHead(QPainter& painter, const QStyleOption& head);

/// Paints the background of a tool button.
void paintToolButton(QPainter& painter, const QStyleOption& button);

} // namespace torvo::app
