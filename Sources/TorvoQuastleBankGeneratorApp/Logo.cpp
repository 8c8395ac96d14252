#include "Logo.h"

#include <QDir>

/// Files inside a static library are found only after this; the macro wants the global namespace.
static void registerResources() {
    Q_INIT_RESOURCE(resources);
}

namespace torvo::app {

QStringList halvorineLogoLocations() {
    return {
        QStringLiteral(":/HVRN_dude_hips.png"),
        QStringLiteral("Sources/TorvoQuastleBankGeneratorApp/Resources/HVRN_dude_hips.png"),
        QStringLiteral("remote/Sources/TorvoQuastleBankGeneratorApp/Resources/HVRN_dude_hips.png"),
    };
}

QImage loadHalvorineLogoImage(const QStringList& locations) {
    registerResources();
    for (const QString& location : locations)
        if (QImage image(location); !image.isNull())
            return image;
    return {};
}

} // namespace torvo::app
