#include "PaintedButton.h"

#include "FocusRing.h"

#include <QKeyEvent>

#include <utility>

namespace torvo::app {

PaintedButton::PaintedButton(const QString& text, QWidget* parent) : QAbstractButton(parent) {
    setText(text);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PaintedButton::setAvailable(bool available) {
    if (available == isEnabled())
        return;
    if (!available)
        deferFocus();
    setEnabled(available);
    if (available)
        takeFocusBack();
}

void PaintedButton::setShown(bool shown) {
    if (shown != isHidden())
        return;
    if (!shown)
        deferFocus();
    setVisible(shown);
    if (shown)
        takeFocusBack();
}

void PaintedButton::deferFocus() {
    awaitsFocus_ = window()->focusWidget() == this;
    if (awaitsFocus_)
        clearFocus();
}

void PaintedButton::takeFocusBack() {
    if (std::exchange(awaitsFocus_, false) && !window()->focusWidget())
        setFocus(focusReason_);
}

void PaintedButton::focusInEvent(QFocusEvent* event) {
    if (!isInterruption(event->reason()))
        focusReason_ = event->reason();
    QAbstractButton::focusInEvent(event);
}

void PaintedButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

} // namespace torvo::app
