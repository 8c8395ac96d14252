#include "WrappingLabel.h"

#include <QPainter>

#include <limits>

namespace torvo::app {

namespace {

constexpr int wrapping = Qt::TextWordWrap | Qt::TextWrapAnywhere;

} // namespace

WrappingLabel::WrappingLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int WrappingLabel::heightForWidth(int width) const {
    const QRect space(0, 0, width, std::numeric_limits<int>::max());
    return fontMetrics().boundingRect(space, wrapping, text()).height();
}

QSize WrappingLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()), fontMetrics().height()};
}

QSize WrappingLabel::minimumSizeHint() const { return {0, fontMetrics().height()}; }

void WrappingLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), wrapping, text());
}

} // namespace torvo::app
