#include "Controls/LinkButton.h"

#include "MarloTheme.h"

#include <QFontMetrics>
#include <QPainter>

namespace torvo::app {

namespace {

constexpr int verticalPadding = 2;

QFont linkFont() {
    return MarloTheme::font(13, MarloTheme::FontCut::medium);
}

} // namespace

LinkButton::LinkButton(const QString& text, QWidget* parent) : PaintedButton(text, parent) {
    setCursor(Qt::PointingHandCursor);
}

QSize LinkButton::sizeHint() const {
    const QFontMetrics metrics(linkFont());
    return {metrics.horizontalAdvance(text()), metrics.height() + 2 * verticalPadding};
}

void LinkButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QFont font = linkFont();
    font.setUnderline(true);
    painter.setFont(font);
    painter.setPen(isHovered() ? MarloTheme::ink : MarloTheme::muted);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

} // namespace torvo::app
