#include "Controls/ModeSegment.h"

#include "MarloTheme.h"

#include <QPainter>

namespace torvo::app {

ModeSegment::ModeSegment(const QString& title, QSize size, QWidget* parent)
    : PaintedButton(title, parent), size_(size) {
    setCheckable(true);
    setAutoExclusive(true);
    setProperty("cornerRadius", 10.0);
}

void ModeSegment::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(MarloTheme::font(15, MarloTheme::FontCut::semiBold));
    // A label at rest is muted; it brightens to say that it can be pressed.
    painter.setPen(isChecked()   ? MarloTheme::surface
                   : isHovered() ? MarloTheme::ink
                                 : MarloTheme::muted);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

} // namespace torvo::app
