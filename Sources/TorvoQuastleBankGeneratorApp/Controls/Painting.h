#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QStyle>

#include <functional>

class QStyleOption;

namespace torvo::app {

inline constexpr double focusRingWidth = 2;

/// The corner radius of the focus ring around a control that paints no outline.
inline constexpr double plainCornerRadius = 4;

/// For parts of controls without a text: scroll handles, tracks, the edge of an unticked box. Its
/// contrast with every background of the window is at least 3:1 (WCAG).
inline constexpr QColor outlineColor{140, 136, 114};

bool hasState(const QStyleOption& option, QStyle::StateFlag flag);

/// Paints the focus ring inside `rect`.
void paintFocusRing(QPainter& painter, const QRectF& rect, double radius);

/// Paints a rounded rectangle that fills `rect`, with a border of 1 logical pixel inside its edge.
void paintRoundedRect(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
                      const QColor& border);

/// Blends everything that `paint` draws as one layer, so that overlapping parts do not show
/// through.
void paintGroup(QPainter& painter, const QRectF& bounds, double opacity,
                const std::function<void(QPainter&)>& paint);

} // namespace torvo::app
