#include "Controls/DisclosureHeader.h"

#include "MarloTheme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPolygonF>

namespace torvo::app {

namespace {

constexpr double chevronCenter = 8;
constexpr double titleLeft = 24;
constexpr double countGap = 10;
constexpr double kindsGap = 14;

void paintChevron(QPainter& painter, QPointF center, bool expanded, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(center);
    painter.rotate(expanded ? 90 : 0);
    painter.setPen(QPen(color, 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{{-2, -4}, {2, 0}, {-2, 4}});
    painter.restore();
}

} // namespace

void DisclosureHeaderStyle::paint(QPainter& painter, const QRectF& rect, const QString& title,
                                  const QString& count, const QString& kinds) const {
    const QColor strong = hovered ? MarloTheme::ink : MarloTheme::muted;
    paintChevron(painter, {rect.left() + chevronCenter, rect.center().y()}, expanded, strong);
    const QFont titleFont = MarloTheme::font(12, MarloTheme::FontCut::semiBold);
    painter.setFont(titleFont);
    painter.setPen(strong);
    const int flags = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine;
    painter.drawText(rect.adjusted(titleLeft, 0, 0, 0), flags, title);
    const QFontMetricsF titleMetrics(titleFont);
    const double countLeft = titleLeft + titleMetrics.horizontalAdvance(title) + countGap;
    painter.setPen(MarloTheme::ink);
    painter.drawText(rect.adjusted(countLeft, 0, 0, 0), flags, count);
    const QRectF rest =
        rect.adjusted(countLeft + titleMetrics.horizontalAdvance(count) + kindsGap, 0, 0, 0);
    const QFont kindsFont = MarloTheme::font(12, MarloTheme::FontCut::regular);
    painter.setFont(kindsFont);
    painter.setPen(MarloTheme::muted);
    painter.drawText(rest, flags,
                     QFontMetricsF(kindsFont).elidedText(kinds, Qt::ElideRight, rest.width()));
}

DisclosureHeader::DisclosureHeader(const QString& title, QWidget* parent)
    : PaintedButton(title, parent) {
    setCheckable(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCount(0, {});
}

void DisclosureHeader::setCount(qsizetype count, const QString& kinds) {
    count_ = count;
    kinds_ = kinds;
    setAccessibleDescription(kinds);
    setAccessibleName(text() + QLatin1Char(' ') + QString::number(count));
    update();
}

void DisclosureHeader::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const DisclosureHeaderStyle style{.expanded = isChecked(), .hovered = isHovered()};
    style.paint(painter, rect(), text(), QString::number(count_), kinds_);
}

} // namespace torvo::app
