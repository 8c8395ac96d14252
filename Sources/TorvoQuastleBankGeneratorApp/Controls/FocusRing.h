#pragma once

#include <QFocusFrame>
#include <QObject>
#include <QPointer>

class QWidget;

namespace torvo::app {

/// Draws one ring around whatever control of a window has the focus, as long as it came there by
/// the keyboard; a click does not call for it.
class FocusRing final : public QObject {
    Q_OBJECT

public:
    explicit FocusRing(QWidget& window);

    /// None while nothing is ringed.
    QWidget* ringed() const;

Q_SIGNALS:
    /// A key has moved the focus to this control.
    void moved(QWidget* to);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ring(QWidget& widget);

    QWidget& window_;
    /// Lives beside the control that it rings, and dies with the parent of both.
    QPointer<QFocusFrame> frame_;
    /// What was ringed when the window or a popup took the focus away for a while.
    QPointer<QWidget> interrupted_;
};

} // namespace torvo::app
