#include "MarloTheme.h"

#include <QFontDatabase>
#include <QStringList>

#include <array>

namespace torvo::app::MarloTheme {

namespace {

struct Cut {
    const char* style;
    QFont::Weight weight;
};

constexpr std::array<Cut, 4> cuts{{{"Regular", QFont::Normal},
                                   {"Medium", QFont::Medium},
                                   {"SemiBold", QFont::DemiBold},
                                   {"Bold", QFont::Bold}}};

/// The installed family with this style, looked up once. Without the check, Qt would replace a
/// missing font by a proportional one.
const QString& family(FontCut cut) {
    static const std::array<QString, cuts.size()> families = [] {
        const QString wanted = QStringLiteral("JetBrains Mono");
        const QString fallback = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
        const QStringList styles = QFontDatabase::styles(wanted);
        std::array<QString, cuts.size()> found;
        for (std::size_t index = 0; index < cuts.size(); ++index)
            found[index] = styles.contains(QLatin1String(cuts[index].style)) ? wanted : fallback;
        return found;
    }();
    return families[static_cast<std::size_t>(cut)];
}

} // namespace

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}

QFont font(int pixelSize, FontCut cut) {
    QFont font(family(cut));
    font.setPixelSize(pixelSize);
    font.setWeight(cuts[static_cast<std::size_t>(cut)].weight);
    return font;
}

} // namespace torvo::app::MarloTheme
