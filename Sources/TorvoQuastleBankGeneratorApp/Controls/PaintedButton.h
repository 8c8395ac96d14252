#pragma once

#include "Controls/Painting.h"

#include <QAbstractButton>

namespace torvo::app {

/// The base of all painted buttons: Enter clicks like Space, hovering repaints, and the size is
/// that of the content.
class PaintedButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit PaintedButton(const QString& text, QWidget* parent = nullptr);

    QSize minimumSizeHint() const override { return sizeHint(); }
    /// The focus ring is concentric with these corners.
    virtual double cornerRadius() const { return plainCornerRadius; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool isHovered() const { return isEnabled() && underMouse(); }
};

} // namespace torvo::app
