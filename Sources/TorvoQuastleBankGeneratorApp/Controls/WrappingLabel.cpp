#include "WrappingLabel.h"

#include <QPainter>
#include <QTextLayout>

#include <cmath>

namespace torvo::app {

namespace {

/// Breaks the text into lines; returns their height.
double layOut(QTextLayout& text, double width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text.setTextOption(option);
    double height = 0;
    text.beginLayout();
    for (QTextLine line = text.createLine(); line.isValid(); line = text.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, height});
        height += line.height();
    }
    text.endLayout();
    return height;
}

} // namespace

WrappingLabel::WrappingLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int WrappingLabel::heightForWidth(int width) const {
    QTextLayout lines(text(), font());
    return static_cast<int>(std::ceil(layOut(lines, width)));
}

QSize WrappingLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()), fontMetrics().height()};
}

QSize WrappingLabel::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

void WrappingLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    QTextLayout lines(text(), font());
    layOut(lines, width());
    lines.draw(&painter, {0, 0});
}

} // namespace torvo::app
