#include "Controls/WrappingLabel.h"

#include "MarloTheme.h"
#include "Text.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace torvo::app {

namespace {

struct Lines {
    double height = 0;
    double lastTop = 0;
    int lastStart = 0; ///< in characters
    bool isCut = false;
};

/// Breaks the text into lines.
Lines layOut(QTextLayout& text, double width, Qt::Alignment alignment, int maxLines) {
    QTextOption option(alignment);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text.setTextOption(option);
    Lines lines;
    text.beginLayout();
    for (QTextLine line = text.createLine(); line.isValid(); line = text.createLine()) {
        if (text.lineCount() > maxLines) {
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
    return static_cast<int>(std::ceil(layOut(layout, width, alignment(), maxLines_).height));
}

QSize WrappingLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()), fontMetrics().height()};
}

QSize WrappingLabel::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

void WrappingLabel::setCopyable(bool copyable) {
    isCopyable_ = copyable;
    select(0, 0);
    setFocusPolicy(copyable ? Qt::StrongFocus : Qt::NoFocus);
    if (copyable)
        setCursor(Qt::IBeamCursor);
    else
        unsetCursor();
}

void WrappingLabel::setMaxLines(int lines) {
    maxLines_ = lines;
    updateGeometry();
}

int WrappingLabel::positionAt(QPointF point) const {
    QTextLayout layout(text(), font());
    layOut(layout, width(), alignment(), maxLines_);
    for (int index = 0; index < layout.lineCount(); ++index)
        if (const QTextLine line = layout.lineAt(index);
            point.y() < line.y() + line.height() || index + 1 == layout.lineCount())
            return line.xToCursor(point.x());
    return 0;
}

void WrappingLabel::select(int anchor, int position) {
    anchor_ = anchor;
    position_ = position;
    update();
}

void WrappingLabel::selectAll() {
    select(0, static_cast<int>(text().size()));
}

void WrappingLabel::copy() const {
    const QString selected =
        text().mid(std::min(anchor_, position_), std::abs(position_ - anchor_));
    QGuiApplication::clipboard()->setText(selected.isEmpty() ? text() : selected);
}

void WrappingLabel::mousePressEvent(QMouseEvent* event) {
    if (!isCopyable_ || event->button() != Qt::LeftButton) {
        QLabel::mousePressEvent(event);
        return;
    }
    const int position = positionAt(event->position());
    select(position, position);
}

void WrappingLabel::mouseMoveEvent(QMouseEvent* event) {
    if (isCopyable_ && event->buttons() == Qt::LeftButton)
        select(anchor_, positionAt(event->position()));
    else
        QLabel::mouseMoveEvent(event);
}

void WrappingLabel::keyPressEvent(QKeyEvent* event) {
    if (isCopyable_ && event->matches(QKeySequence::Copy))
        copy();
    else if (isCopyable_ && event->matches(QKeySequence::SelectAll))
        selectAll();
    else
        QLabel::keyPressEvent(event);
}

void WrappingLabel::contextMenuEvent(QContextMenuEvent* event) {
    if (!isCopyable_) {
        QLabel::contextMenuEvent(event);
        return;
    }
    QMenu menu(this);
    connect(menu.addAction(tr("Copy")), &QAction::triggered, this, &WrappingLabel::copy);
    connect(menu.addAction(tr("Select All")), &QAction::triggered, this, &WrappingLabel::selectAll);
    menu.exec(event->globalPos());
}

void WrappingLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    QTextLayout layout(text(), font());
    if (position_ != anchor_) {
        QTextLayout::FormatRange selection;
        selection.start = std::min(anchor_, position_);
        selection.length = std::abs(position_ - anchor_);
        selection.format.setBackground(MarloTheme::accent);
        selection.format.setForeground(MarloTheme::surface);
        layout.setFormats({selection});
    }
    const Lines lines = layOut(layout, width(), alignment(), maxLines_);
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
    setToolTip(lines.isCut ? plainToolTip(text()) : QString());
}

} // namespace torvo::app
