#include "Controls/FocusKeeper.h"

#include "Controls/FocusRing.h"

#include <QEvent>
#include <QWidget>

namespace torvo::app {

bool FocusKeeper::keep(QWidget& focused) {
    if (focused.isVisible() && focused.isEnabled())
        return false;
    if (awaited_)
        awaited_->removeEventFilter(this);
    awaited_ = &focused;
    wasRinged_ = ring_.ringed() == &focused;
    focused.installEventFilter(this);
    focused.clearFocus();
    return true;
}

bool FocusKeeper::eventFilter(QObject* watched, QEvent* event) {
    const bool isAwaited = watched == awaited_ && (event->type() == QEvent::Show ||
                                                   event->type() == QEvent::EnabledChange);
    if (isAwaited && awaited_->isVisible() && awaited_->isEnabled()) {
        watched->removeEventFilter(this);
        QWidget& widget = *awaited_;
        awaited_ = nullptr;
        if (!widget.window()->focusWidget())
            widget.setFocus(wasRinged_ ? Qt::OtherFocusReason : Qt::MouseFocusReason);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace torvo::app
