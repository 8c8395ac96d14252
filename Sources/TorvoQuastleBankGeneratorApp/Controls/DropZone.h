#pragma once

#include "Controls/PaintedButton.h"

#include <QRectF>

class QLabel;
class QPainter;

namespace torvo::app {

/// The appearance of the drop zone.
struct DropZoneStyle {
    bool targeted = false; ///< a drag that it accepts is over the window
    bool quiet = false;    ///< a folder is chosen; the zone is less prominent
    bool pressed = false;
    bool hovered = false;

    static constexpr double cornerRadius = 10;

    QColor backgroundColor() const;
    QColor borderColor() const;
    void paint(QPainter& painter, const QRectF& rect) const;
};

/// Shows where to drop a source folder. A click, Enter or Space opens the panel instead.
class DropZone final : public PaintedButton {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    void setHint(const QString& hint);
    /// Highlights the zone while a drag that it accepts is over the window.
    void setTargeted(bool targeted);
    /// Makes the zone less prominent once a folder is chosen.
    void setQuiet(bool quiet);
    QSize sizeHint() const override;
    double cornerRadius() const override { return DropZoneStyle::cornerRadius; }

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
