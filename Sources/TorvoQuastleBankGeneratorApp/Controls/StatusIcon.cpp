#include "Controls/StatusIcon.h"

#include "MarloTheme.h"

#include <QPainter>
#include <QPolygonF>

namespace torvo::app {

namespace {

constexpr int side = 20;

} // namespace

void paintStatus(QPainter& painter, const QRectF& rect, StatusKind kind) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.topLeft());
    painter.scale(rect.width() / side, rect.height() / side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kind == StatusKind::success ? MarloTheme::success : MarloTheme::danger);
    painter.drawEllipse(QRectF(1, 1, 18, 18));
    const QColor mark = kind == StatusKind::success ? MarloTheme::surface : MarloTheme::ink;
    painter.setPen(QPen(mark, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (kind == StatusKind::success) {
        painter.drawPolyline(QPolygonF{{6, 10.4}, {8.9, 13.2}, {14, 7.2}});
    } else {
        painter.drawLine(QPointF(10, 5.6), QPointF(10, 10.8));
        painter.drawPoint(QPointF(10, 14.4));
    }
    painter.restore();
}

StatusIcon::StatusIcon(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setKind(StatusKind::success);
}

void StatusIcon::setKind(StatusKind kind) {
    kind_ = kind;
    setAccessibleName(kind == StatusKind::success ? tr("Done") : tr("Failed"));
    update();
}

QSize StatusIcon::sizeHint() const {
    return {side, side};
}

void StatusIcon::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintStatus(painter, rect(), kind_);
}

} // namespace torvo::app
