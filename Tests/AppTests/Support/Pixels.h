#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>

namespace torvo::test {

/// An image of what `paint` draws over a plain background.
inline QImage painted(QSize size, const QColor& background,
                      const std::function<void(QPainter&)>& paint) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(background);
    {
        QPainter painter(&image);
        paint(painter);
    }
    return image;
}

/// `color` over `background`, then the result over `background` again at `opacity`.
inline QColor blended(const QColor& color, const QColor& background, double opacity = 1) {
    const double share = static_cast<double>(color.alphaF()) * opacity;
    const auto mix = [share](int over, int under) {
        return static_cast<int>(over * share + under * (1 - share) + 0.5);
    };
    return {mix(color.red(), background.red()), mix(color.green(), background.green()),
            mix(color.blue(), background.blue())};
}

/// Whether the colours are equal except for the rounding of two 8-bit blends.
inline bool isClose(const QColor& left, const QColor& right, int tolerance = 2) {
    return std::abs(left.red() - right.red()) <= tolerance &&
           std::abs(left.green() - right.green()) <= tolerance &&
           std::abs(left.blue() - right.blue()) <= tolerance;
}

/// The radius of the top left corner of a rounded rectangle that fills the image, computed from the
/// area outside the corner.
inline double cornerRadius(const QImage& image, const QColor& background, const QColor& fill) {
    int free = 0;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            free += 2 * (image.pixelColor(x, y).green() - background.green()) <
                            fill.green() - background.green()
                        ? 1
                        : 0;
    return std::sqrt(free / (1 - std::numbers::pi / 4));
}

} // namespace torvo::test

/// Compares the colour of a pixel; the message shows both.
#define EXPECT_PIXEL(image, x, y, expected)                                                        \
    EXPECT_TRUE(torvo::test::isClose((image).pixelColor(x, y), expected))                          \
        << (image).pixelColor(x, y).name().toStdString() << " instead of "                         \
        << QColor(expected).name().toStdString()
