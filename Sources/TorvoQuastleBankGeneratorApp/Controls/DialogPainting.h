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
/// prominent.
void paintPushButton(QPainter& painter, const QStyleOptionButton& button);
QSize pushButtonSize(const QStyleOptionButton& button);

/// A field to write in.
void paintField(QPainter& painter, const QStyleOptionFrame& field);

/// The head of a column.
void paintColumnHead(QPainter& painter, const QStyleOption& head);

/// Behind the icon of a button in a tool bar.
void paintToolButton(QPainter& painter, const QStyleOption& button);

} // namespace torvo::app
