#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

#include <functional>

namespace torvo::app {

inline constexpr double focusRingWidth = 2;

/// What has to be found without a text: a thumb, a track, the edge of an unticked box. Three times
/// as bright as any background of the window, by the formula of WCAG.
inline constexpr QColor outlineColor{140, 136, 114};

/// The mark of what has the keyboard focus, inside `rect`.
void paintFocusRing(QPainter& painter, const QRectF& rect, double radius);

/// A rounded rectangle: filled over the whole of `rect`, its border 1 wide just inside the edge.
void paintRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
                      const QColor& border);

/// Everything that `paint` draws, blended as one picture: parts that lie over each other do not
/// shine through.
void paintGroup(QPainter& painter, const QRectF& bounds, double opacity,
                const std::function<void(QPainter&)>& paint);

} // namespace torvo::app
