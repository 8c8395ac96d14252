#pragma once

#include <QIcon>
#include <QStyle>

namespace torvo::app {

/// The pictures of Qt's file panel in the colours of the theme; null for any other picture.
QIcon panelIcon(QStyle::StandardPixmap picture);

} // namespace torvo::app
