#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace torvo::app {

class FocusRing;

/// Qt moves the focus of a control that is hidden or disabled to the next one: the next key would
/// then press another control, and the page would scroll. Instead, no control has the focus until
/// the former one is usable again or the user focuses another.
class FocusKeeper final : public QObject {
    Q_OBJECT

public:
    explicit FocusKeeper(const FocusRing& ring) : ring_(ring) {}

    /// For `focusNextPrevChild` of the window's content: whether the focus must not move because
    /// `focused` has become unusable.
    bool keep(QWidget& focused);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const FocusRing& ring_;
    QPointer<QWidget> awaited_;
    bool wasRinged_ = false;
};

} // namespace torvo::app
