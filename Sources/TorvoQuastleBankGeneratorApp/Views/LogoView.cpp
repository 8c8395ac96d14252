#include "Views/LogoView.h"

#include "MarloTheme.h"

#include <QPainter>

#include <utility>

namespace torvo::app {

namespace {

constexpr int side = 72;

} // namespace

LogoView::LogoView(QImage image, QWidget* parent) : QWidget(parent), image_(std::move(image)) {
    setAccessibleName(QStringLiteral("HVRN"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LogoView::sizeHint() const {
    return {side, side};
}

void LogoView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (image_.isNull()) {
        painter.setFont(MarloTheme::font(20, MarloTheme::FontCut::bold));
        painter.setPen(MarloTheme::accent);
        painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("HVRN"));
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect(), image_);
}

} // namespace torvo::app
