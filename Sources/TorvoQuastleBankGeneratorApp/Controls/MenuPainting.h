#pragma once

#include <QSize>

class QPainter;
class QStyleOptionMenuItem;

namespace torvo::app {

QSize menuItemSize(const QStyleOptionMenuItem& item);
void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item);

/// The title of a menu in the bar.
void paintMenuTitle(QPainter& painter, const QStyleOptionMenuItem& title);

} // namespace torvo::app
