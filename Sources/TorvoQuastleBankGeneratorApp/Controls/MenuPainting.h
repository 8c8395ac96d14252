#pragma once

#include <QSize>

class QPainter;
class QStyleOptionMenuItem;

namespace torvo::app {

QSize menuItemSize(const QStyleOptionMenuItem& item);
void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item);

/// Paints the title of a menu in the menu bar.
void paintMenuTitle(QPainter& painter, const QStyleOptionMenuItem& title);

} // namespace torvo::app
