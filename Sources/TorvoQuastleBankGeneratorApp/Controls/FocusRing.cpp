#include "FocusRing.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QWidget>

namespace torvo::app {

namespace {

/// The focus goes or comes back without the user having moved it.
bool isInterruption(Qt::FocusReason reason) {
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
           reason == Qt::MenuBarFocusReason;
}

bool isKeyboard(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
}

} // namespace

FocusRing::FocusRing(QWidget& window)
    : QObject(&window), window_(window), frame_(new QFocusFrame(&window)) {
    qApp->installEventFilter(this);
}

QWidget* FocusRing::ringed() const {
    return frame_->widget();
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != window_.window())
        return false;
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        interrupted_ = isInterruption(reason) ? ringed() : nullptr;
        frame_->setWidget(nullptr);
    } else if (event->type() == QEvent::FocusIn) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (isInterruption(reason) ? widget == interrupted_ : isKeyboard(reason))
            frame_->setWidget(widget);
    }
    return false;
}

} // namespace torvo::app
