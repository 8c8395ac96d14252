#pragma once

#include "MarloTheme.h"

class QLabel;
class QString;

namespace torvo::app {

/// A label of plain text in the theme's typeface.
QLabel* makeLabel(const QString& text, int pixelSize, MarloTheme::FontCut cut, QColor color);

/// The heading of a card.
QLabel* makeCardHeading(const QString& text);

/// The small title above a group of settings.
QLabel* makeSubheading(const QString& text);

/// The small title of a value or a picker.
QLabel* makeCaption(const QString& text);

void setTextColor(QLabel& label, QColor color);

} // namespace torvo::app
