#include "Controls/PaintedButton.h"

#include <QKeyEvent>

namespace torvo::app {

PaintedButton::PaintedButton(const QString& text, QWidget* parent) : QAbstractButton(parent) {
    setText(text);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PaintedButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

} // namespace torvo::app
