#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace torvo::app {

class FocusRing;

/// Qt hands the focus of a control that is hidden or disabled to the next one, where the next key
/// would press something else and the page would scroll. Here no control has it then; the one that
/// had it gets it back when it can be used again, unless another control has the focus by then.
class FocusKeeper final : public QObject {
    Q_OBJECT

public:
    explicit FocusKeeper(const FocusRing& ring) : ring_(ring) {}

    /// For `focusNextPrevChild` of the window's content: whether the focus is not to move on,
    /// because `focused` cannot be used any more.
    bool keep(QWidget& focused);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const FocusRing& ring_;
    QPointer<QWidget> awaited_;
    bool wasRinged_ = false;
};

} // namespace torvo::app
