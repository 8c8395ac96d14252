#pragma once

#include "Controls/PaintedButton.h"

#include <QRectF>

class QLabel;
class QPainter;

namespace torvo::app {

/// The look of the drop zone.
struct DropZoneStyle {
    bool targeted = false; ///< a drag that it can take is over the window
    bool quiet = false;    ///< it has done its work: a folder is chosen
    bool pressed = false;
    bool hovered = false;

    static constexpr double cornerRadius = 10;

    QColor backgroundColor() const;
    QColor borderColor() const;
    void paint(QPainter& painter, const QRectF& rect) const;
};

/// Says where a source folder is dropped. A press (mouse, Enter, Space) asks for the panel instead.
class DropZone final : public PaintedButton {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    void setHint(const QString& hint);
    /// Lit: a drag that it can take is over the window.
    void setTargeted(bool targeted);
    /// Steps back behind the folder that has been chosen.
    void setQuiet(bool quiet);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void colorTexts();

    QLabel* caption_;
    QLabel* hint_;
    QLabel* choose_;
    bool isTargeted_ = false;
    bool isQuiet_ = false;
};

} // namespace torvo::app
