#include "Controls/ProgressBar.h"

#include "Controls/Painting.h"
#include "MarloTheme.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>

namespace torvo::app {

namespace {

constexpr int barHeight = 6;
constexpr int minWidth = 120;
constexpr double sweepSeconds = 1.6; ///< back and forth
constexpr double movingPart = 0.3;   ///< of the bar's width
constexpr double lightSeconds = 2.4; ///< from one end to the other
constexpr double lightOpacity = 0.25;
constexpr std::chrono::milliseconds frameTime{33};

void paintLight(QPainter& painter, const QRectF& bar, const QRectF& light) {
    const QColor clear = MarloTheme::withOpacity(MarloTheme::ink, 0);
    QLinearGradient gradient(light.topLeft(), light.topRight());
    gradient.setColorAt(0, clear);
    gradient.setColorAt(0.5, MarloTheme::withOpacity(MarloTheme::ink, lightOpacity));
    gradient.setColorAt(1, clear);
    const double radius = bar.height() / 2;
    painter.setBrush(gradient);
    painter.drawRoundedRect(bar, radius, radius);
}

} // namespace

QRectF progressFill(const QRectF& bar, double fraction) {
    const double width = bar.width() * std::clamp(fraction, 0.0, 1.0);
    return {bar.left(), bar.top(), width, bar.height()};
}

QRectF indeterminateFill(const QRectF& bar, double seconds) {
    const double phase = (1 - std::cos(2 * std::numbers::pi * seconds / sweepSeconds)) / 2;
    const double width = bar.width() * movingPart;
    return {bar.left() + (bar.width() - width) * phase, bar.top(), width, bar.height()};
}

void paintProgress(QPainter& painter, const QRectF& bar, const QRectF& fill) {
    const double radius = bar.height() / 2;
    paintRoundedRect(painter, bar, radius, MarloTheme::panelRaised, outlineColor);
    if (fill.width() <= 0)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(MarloTheme::accent);
    // At least as wide as its rounded ends.
    painter.drawRoundedRect(
        QRectF(fill.left(), fill.top(), std::max(fill.width(), fill.height()), fill.height()),
        radius, radius);
}

QRectF lightOnBar(const QRectF& bar, double seconds) {
    const double phase = std::fmod(seconds, lightSeconds) / lightSeconds;
    const double width = bar.width() * movingPart;
    return {bar.left() - width + (bar.width() + width) * phase, bar.top(), width, bar.height()};
}

ProgressBar::ProgressBar(QWidget* parent) : QProgressBar(parent) {
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    frames_.setInterval(frameTime);
    connect(&frames_, &QTimer::timeout, this, [this] { update(); });
}

QSize ProgressBar::sizeHint() const {
    return {minWidth, barHeight};
}

void ProgressBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF bar = rect();
    const double seconds =
        shownFor_.isValid() ? static_cast<double>(shownFor_.elapsed()) / 1000 : 0;
    if (isIndeterminate()) {
        paintProgress(painter, bar, indeterminateFill(bar, seconds));
    } else {
        const double fraction =
            static_cast<double>(value() - minimum()) / static_cast<double>(maximum() - minimum());
        paintProgress(painter, bar, progressFill(bar, fraction));
        paintLight(painter, bar, lightOnBar(bar, seconds));
    }
}

void ProgressBar::showEvent(QShowEvent* event) {
    QProgressBar::showEvent(event);
    shownFor_.start();
    frames_.start();
}

void ProgressBar::hideEvent(QHideEvent* event) {
    frames_.stop();
    QProgressBar::hideEvent(event);
}

} // namespace torvo::app
