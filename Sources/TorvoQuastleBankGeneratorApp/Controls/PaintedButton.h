#pragma once

#include <QAbstractButton>

namespace torvo::app {

/// What all painted buttons share: Enter presses like Space, the pointer's presence repaints, the
/// size is fixed by the content.
class PaintedButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit PaintedButton(const QString& text, QWidget* parent = nullptr);

    QSize minimumSizeHint() const override { return sizeHint(); }

    /// Like `setEnabled`, but the focus waits: Qt would hand that of a disabled button to the next
    /// control, where the next key presses something else. The button takes it back when it is
    /// enabled again and no other control has it by then.
    void setAvailable(bool available);
    /// The same for `setVisible`.
    void setShown(bool shown);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool isHovered() const { return isEnabled() && underMouse(); }

private:
    void deferFocus();
    void takeFocusBack();

    /// How the focus came here, so that it comes back in the same way.
    Qt::FocusReason focusReason_ = Qt::OtherFocusReason;
    bool awaitsFocus_ = false;
};

} // namespace torvo::app
