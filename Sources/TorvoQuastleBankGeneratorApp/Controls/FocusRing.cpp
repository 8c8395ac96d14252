#include "Controls/FocusRing.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

namespace torvo::app {

namespace {

bool isKey(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

/// Whether the focus changed without an action of the user.
bool isInterruption(Qt::FocusReason reason) {
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
           reason == Qt::MenuBarFocusReason;
}

} // namespace

FocusRing::FocusRing(QWidget& window) : QObject(&window), window_(window) {
    qApp->installEventFilter(this);
}

QWidget* FocusRing::ringed() const {
    return frame_ ? frame_->widget() : nullptr;
}

void FocusRing::ring(QWidget& widget) {
    if (!frame_)
        frame_ = new QFocusFrame(&window_);
    frame_->setWidget(&widget);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != window_.window())
        return false;
    if (event->type() == QEvent::FocusOut) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // Interruptions may follow each other: the menu bar returns the focus to the control that
        // had the ring.
        if (!isInterruption(reason))
            interrupted_ = nullptr;
        else if (ringed())
            interrupted_ = ringed();
        if (frame_)
            frame_->setWidget(nullptr);
    } else if (event->type() == QEvent::FocusIn) {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        const bool isRinged = isInterruption(reason)
                                  ? widget == interrupted_
                                  : isKey(reason) || reason == Qt::OtherFocusReason;
        if (isRinged)
            ring(*widget);
        if (isKey(reason))
            Q_EMIT moved(widget);
    }
    return false;
}

} // namespace torvo::app
