#include "FocusRing.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QScrollArea>
#include <QWidget>

namespace torvo::app {

FocusRing::FocusRing(QWidget& window)
    : QObject(&window), window_(window), frame_(new QFocusFrame(&window)) {
    qApp->installEventFilter(this);
}

QWidget* FocusRing::ringed() const { return frame_->widget(); }

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != window_.window())
        return false;
    if (event->type() == QEvent::FocusOut && widget == frame_->widget()) {
        frame_->setWidget(nullptr);
    } else if (event->type() == QEvent::FocusIn) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        const bool byKeyboard = reason != Qt::MouseFocusReason && reason != Qt::PopupFocusReason;
        frame_->setWidget(byKeyboard && !qobject_cast<QScrollArea*>(widget) ? widget : nullptr);
    }
    return false;
}

} // namespace torvo::app
