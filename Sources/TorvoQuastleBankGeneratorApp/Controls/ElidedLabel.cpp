#include "Controls/ElidedLabel.h"

#include "Text.h"

#include <QPainter>

namespace torvo::app {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()), fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    setToolTip(shown == text() ? QString() : plainToolTip(text()));
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const Qt::Alignment side = alignment() & Qt::AlignHorizontal_Mask;
    painter.drawText(rect(), static_cast<int>(Qt::AlignVCenter | side) | Qt::TextSingleLine, shown);
}

} // namespace torvo::app
