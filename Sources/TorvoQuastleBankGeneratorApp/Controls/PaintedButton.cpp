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
    if (!available) {
        awaitsFocus_ = window()->focusWidget() == this;
        if (awaitsFocus_)
            clearFocus();
    }
    setEnabled(available);
    if (available && std::exchange(awaitsFocus_, false) && !window()->focusWidget())
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
