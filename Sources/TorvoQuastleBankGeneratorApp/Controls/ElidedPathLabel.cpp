#include "Controls/ElidedPathLabel.h"

#include "Text.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QToolTip>
#include <QtMath>

namespace torvo::app {

ElidedPathLabel::ElidedPathLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedPathLabel::setPath(const QString& path, const QString& line) {
    if (path == path_ && line == line_)
        return;
    path_ = path;
    line_ = line;
    setAccessibleName(path);
    updateGeometry();
    elide();
}

QSize ElidedPathLabel::sizeHint() const {
    // Rounded up, because the text would be elided if the width were a fraction too small.
    return {qCeil(QFontMetricsF(font()).horizontalAdvance(line_)), fontMetrics().height()};
}

QSize ElidedPathLabel::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

void ElidedPathLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    elide();
}

void ElidedPathLabel::elide() {
    const QString shown = fontMetrics().elidedText(line_, Qt::ElideMiddle, width());
    const bool isWhole = shown == path_;
    setToolTip(isWhole ? QString() : plainToolTip(path_));
    // A path that is shown whole is not a tab stop.
    setFocusPolicy(isWhole ? Qt::ClickFocus : Qt::StrongFocus);
    if (shown != text())
        setText(shown);
}

void ElidedPathLabel::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        QToolTip::showText(mapToGlobal(rect().bottomLeft()), toolTip(), this);
}

void ElidedPathLabel::focusOutEvent(QFocusEvent* event) {
    QLabel::focusOutEvent(event);
    QToolTip::hideText();
}

void ElidedPathLabel::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        copy();
    else
        QLabel::keyPressEvent(event);
}

void ElidedPathLabel::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    connect(menu.addAction(tr("Copy")), &QAction::triggered, this, &ElidedPathLabel::copy);
    menu.exec(event->globalPos());
}

void ElidedPathLabel::copy() const {
    const bool wholeLine = !hasSelectedText() || selectedText() == text();
    QGuiApplication::clipboard()->setText(wholeLine ? path_ : selectedText());
}

} // namespace torvo::app
