#pragma once

#include <QColor>
#include <QFont>

/// Colours, fonts and distances. Sizes are in logical pixels.
namespace torvo::app::MarloTheme {

inline constexpr QColor surface{39, 40, 34};
inline constexpr QColor panel{49, 51, 43};
inline constexpr QColor panelRaised{58, 61, 51};
inline constexpr QColor accent{153, 148, 124};
inline constexpr QColor ink{248, 248, 242};
inline constexpr QColor muted{184, 182, 169};
inline constexpr QColor line{255, 255, 255, 20}; ///< white at 8 %
inline constexpr QColor success{134, 180, 43};
inline constexpr QColor danger{196, 38, 94};

/// The colour with its alpha multiplied by `opacity` (0 to 1).
QColor withOpacity(QColor color, double opacity);

enum class FontCut { regular, medium, semiBold, bold };

/// JetBrains Mono, or the system's monospaced font of the same size and weight if that style is not
/// installed.
QFont font(int pixelSize, FontCut cut);

/// The distances of the layout are multiples of this.
inline constexpr int grid = 8;

/// The gap between the columns of a card. With it, two and three columns and eight channel buttons
/// have integer widths in a card of `cardWidth`.
inline constexpr int columnGap = 30;
inline constexpr int cardWidth = 826;

} // namespace torvo::app::MarloTheme
