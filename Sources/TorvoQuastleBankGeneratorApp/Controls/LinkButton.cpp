#include "Controls/LinkButton.h"

#include "MarloTheme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace torvo::app {

namespace {

constexpr int verticalPadding = 2;
constexpr int minHeight = 24; ///< of the area to be clicked in

QFont linkFont() {
    return MarloTheme::font(13, MarloTheme::FontCut::medium);
}

} // namespace

LinkButton::LinkButton(const QString& text, QWidget* parent) : PaintedButton(text, parent) {
    setCursor(Qt::PointingHandCursor);
}

QSize LinkButton::lineSize() const {
    const QFontMetrics metrics(linkFont());
    return {metrics.horizontalAdvance(text()), metrics.height() + 2 * verticalPadding};
}

int LinkButton::overhang() const {
    return std::max(0, minHeight - lineSize().height() + 1) / 2;
}

QSize LinkButton::sizeHint() const {
    return lineSize() + QSize(0, 2 * overhang());
}

QLayout* LinkButton::inLine() {
    auto* line = new QVBoxLayout;
    line->setSpacing(0);
    line->addSpacing(-overhang());
    line->addWidget(this);
    line->addSpacing(-overhang());
    return line;
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
