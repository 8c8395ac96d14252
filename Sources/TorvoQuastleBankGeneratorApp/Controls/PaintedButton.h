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

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool isHovered() const { return isEnabled() && underMouse(); }
};

} // namespace torvo::app
