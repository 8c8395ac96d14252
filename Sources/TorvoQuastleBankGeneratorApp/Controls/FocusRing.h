#pragma once

#include <QFocusFrame>
#include <QObject>
#include <QPointer>

class QWidget;

namespace torvo::app {

/// Draws a ring around the focused control of a window if it was focused by keyboard, not by a
/// click.
class FocusRing final : public QObject {
    Q_OBJECT

public:
    explicit FocusRing(QWidget& window);

    /// Null while no control has the ring.
    QWidget* ringed() const;

Q_SIGNALS:
    /// Emitted when the keyboard has moved the focus to this control.
    void moved(QWidget* control);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ring(QWidget& widget);

    QWidget& window_;
    /// A sibling of the control, destroyed with their parent.
    QPointer<QFocusFrame> frame_;
    /// The control that had the ring when the window or a popup took the focus.
    QPointer<QWidget> interrupted_;
};

} // namespace torvo::app
