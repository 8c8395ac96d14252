#pragma once

#include <QImage>
#include <QStringList>

namespace torvo::app {

/// The possible locations of the maker's logo: the program's resources, then the current folder for
/// runs from a source checkout.
QStringList halvorineLogoLocations();

/// The first of these images that can be loaded, or a null image.
QImage loadHalvorineLogoImage(const QStringList& locations = halvorineLogoLocations());

} // namespace torvo::app
