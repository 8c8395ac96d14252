#include "Logo.h"

#include <QDir>

namespace torvo::app {

QStringList halvorineLogoLocations() {
    return {
        QStringLiteral(":/HVRN_dude_hips.png"),
        QStringLiteral("Sources/TorvoQuastleBankGeneratorApp/Resources/HVRN_dude_hips.png"),
        QStringLiteral("remote/Sources/TorvoQuastleBankGeneratorApp/Resources/HVRN_dude_hips.png"),
    };
}

QImage loadHalvorineLogoImage(const QStringList& locations) {
    for (const QString& location : locations)
        if (QImage image(location); !image.isNull())
            return image;
    return {};
}

} // namespace torvo::app
