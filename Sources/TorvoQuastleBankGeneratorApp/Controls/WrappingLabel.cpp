#include "WrappingLabel.h"

#include <QPainter>
#include <QTextLayout>

#include <cmath>

namespace torvo::app {

namespace {

/// More lines than a message may take from the window: the last one then loses its middle.
constexpr int mostLines = 6;

struct Lines {
    double height = 0;
    double lastTop = 0;
    int lastStart = 0; ///< in characters
    bool isCut = false;
};

/// Breaks the text into lines.
Lines layOut(QTextLayout& text, double width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text.setTextOption(option);
    Lines lines;
    text.beginLayout();
    for (QTextLine line = text.createLine(); line.isValid(); line = text.createLine()) {
        if (text.lineCount() > mostLines) {
            lines.isCut = true;
            break;
        }
        line.setLineWidth(width);
        line.setPosition({0, lines.height});
        lines.lastTop = lines.height;
        lines.lastStart = line.textStart();
        lines.height += line.height();
    }
    text.endLayout();
    return lines;
}

} // namespace

WrappingLabel::WrappingLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int WrappingLabel::heightForWidth(int width) const {
    QTextLayout layout(text(), font());
    return static_cast<int>(std::ceil(layOut(layout, width).height));
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
    QTextLayout layout(text(), font());
    const Lines lines = layOut(layout, width());
    for (int index = 0; index < layout.lineCount(); ++index)
        if (const QTextLine line = layout.lineAt(index);
            !lines.isCut || line.textStart() < lines.lastStart)
            line.draw(&painter, {0, 0});
    if (lines.isCut) {
        const QString rest = text().mid(lines.lastStart);
        painter.drawText(QRectF(0, lines.lastTop, width(), lines.height - lines.lastTop),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(rest, Qt::ElideMiddle, width()));
    }
    setToolTip(lines.isCut ? text() : QString());
}

} // namespace torvo::app
