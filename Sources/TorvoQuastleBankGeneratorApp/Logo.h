#pragma once

#include <QImage>
#include <QStringList>

namespace torvo::app {

/// Where the maker's logo may be: inside the program first, then below the current directory, for
/// runs from a source checkout.
QStringList halvorineLogoLocations();

/// The first of these images that loads; a null image when none does.
QImage loadHalvorineLogoImage(const QStringList& locations = halvorineLogoLocations());

} // namespace torvo::app
